#pragma once

#include <functional>
#include <string>

#include "xlw/cell_matrix.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

// The text of an expression spread down one column, its cells joined by a
// blank; throws the func argument's messages.
std::string read_expression(const CellMatrix& func);

// The data of a fit to an expression, as every solver of data reads them: x
// and y present ("No input data for X", "... for Y"), only complete records,
// and no negative weight.
XYW read_fit_data(const CellMatrix& x, const CellMatrix& y, const CellMatrix& weight);
void require_fit_x(const CellMatrix& x);
void check_fit_weights(const dvec& weight);

// function_eval(func, x): the expression at each row of a table of its inputs,
// under a head cell that holds the joined text.
CellMatrix function_eval(const CellMatrix& func, const CellMatrix& x);

// integral(func, from, to): one cell, the value or the text of a non-finite one.
CellMatrix integral(const CellMatrix& func, const CellMatrix& from, const CellMatrix& to);

// Tanh-sinh quadrature on [a, b], a <= b, with a fixed rule of 193 nodes that
// stops once its error estimate is below a tenth of target times (b - a) / 2.
double tanh_sinh(const std::function<double(double)>& f, double a, double b, double target);

}  // namespace zentable
