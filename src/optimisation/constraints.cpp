#include "optimisation/constraints.hpp"

#include <algorithm>
#include <cctype>

#include "xlw/cell_conversions.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

namespace {

constexpr const char* kNotConformable = "Data matrix not conformable in LP";
constexpr const char* kBadOperator =
    "Error: wrong format for constraints. The valid constraints are <=, >=, =";

enum class Relation { le, ge, eq };

Relation read_relation(const CellValue& cell) {
    const std::string text = trim(cell_to_text(cell));
    if (text == "<=")
        return Relation::le;
    if (text == ">=")
        return Relation::ge;
    if (text == "=")
        return Relation::eq;
    throw kBadOperator;
}

double read_entry(const CellValue& cell) {
    if (!cell.IsANumber())
        throw kNotConformable;
    return cell.NumericValue();
}

std::string to_upper(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char ch) { return static_cast<char>(std::toupper(ch)); });
    return text;
}

}  // namespace

dvec read_objective(const CellMatrix& c) {
    constexpr const char* kMessage = "Input c must be in one row or one column";
    if (c.RowsInStructure() != 1 && c.ColumnsInStructure() != 1)
        throw kMessage;
    dvec out;
    read_double_vector(c, kMessage, out);
    if (out.empty())
        throw kMessage;
    return out;
}

LinearConstraints read_constraints(const CellMatrix& table, std::size_t n) {
    const std::size_t columns = table.ColumnsInStructure();
    if (columns != n + 2)
        throw "Constraints with " + std::to_string(columns) +
            " columns are not consistent with the objective function with " + std::to_string(n) +
            " variables";
    struct Row {
        dvec a;
        double b;
        Relation relation;
    };
    std::vector<Row> rows;
    const std::size_t count = table.RowsInStructure();
    rows.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        Row row{dvec(n), 0.0, read_relation(table(i, n))};
        for (std::size_t j = 0; j < n; ++j)
            row.a[j] = read_entry(table(i, j));
        row.b = read_entry(table(i, n + 1));
        if (row.b < 0.0) {
            for (double& v : row.a)
                v = -v;
            row.b = -row.b;
            if (row.relation != Relation::eq)
                row.relation = row.relation == Relation::le ? Relation::ge : Relation::le;
        }
        rows.push_back(std::move(row));
    }
    LinearConstraints out;
    for (Relation group : {Relation::le, Relation::ge, Relation::eq})
        for (Row& row : rows)
            if (row.relation == group) {
                out.a.push_back(std::move(row.a));
                out.b.push_back(row.b);
                (group == Relation::le   ? out.le_count
                 : group == Relation::ge ? out.ge_count
                                         : out.eq_count)++;
            }
    return out;
}

dmat read_square_matrix(const CellMatrix& table, const char* shape_message) {
    const std::size_t n = table.RowsInStructure();
    if (n == 0 || table.ColumnsInStructure() != n)
        throw shape_message;
    dmat out(n, dvec(n));
    for (std::size_t i = 0; i < n; ++i)
        for (std::size_t j = 0; j < n; ++j)
            out[i][j] = read_entry(table(i, j));
    return out;
}

bool read_maximise(const CellMatrix& mode, bool fallback, const char* not_text_message,
                   const char* invalid_message) {
    std::string text = fallback ? "MAX" : "MIN";
    read_string(mode, not_text_message, text);
    text = to_upper(trim(text));
    if (text == "MAX")
        return true;
    if (text == "MIN")
        return false;
    throw invalid_message;
}

CellMatrix solution_table(const dvec& x, double objective) {
    CellMatrix result(x.size() + 2, 2);
    result(0, 0) = "Solution found";
    result(1, 0) = "X";
    result(1, 1) = "Objective function";
    for (std::size_t i = 0; i < x.size(); ++i)
        result(i + 2, 0) = x[i];
    result(2, 1) = objective;
    return result;
}

}  // namespace zentable
