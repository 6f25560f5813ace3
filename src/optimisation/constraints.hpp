#pragma once

#include <string>

#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

// Linear constraints on non-negative variables, every right-hand side at
// least 0, grouped as the "<=" rows, then the ">=" rows, then the "=" rows,
// each group in the order of input.
struct LinearConstraints {
    dmat a;  // one row of n coefficients per constraint
    dvec b;
    int le_count = 0;
    int ge_count = 0;
    int eq_count = 0;
};

// The objective's coefficients, in one row or one column of numbers.
dvec read_objective(const CellMatrix& c);

// n + 2 columns per row: coefficients, operator, right-hand side. A row whose
// right-hand side is negative is negated and its inequality turned round.
LinearConstraints read_constraints(const CellMatrix& table, std::size_t n);

// A square matrix of numbers; `shape_message` for any other shape.
dmat read_square_matrix(const CellMatrix& table, const char* shape_message);

// MAX or MIN in any letter case; `fallback` when omitted.
bool read_maximise(const CellMatrix& mode, bool fallback, const char* not_text_message,
                   const char* invalid_message);

// The solved layout shared by the two programming commands.
CellMatrix solution_table(const dvec& x, double objective);

}  // namespace zentable
