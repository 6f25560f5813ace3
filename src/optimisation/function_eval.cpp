#include "optimisation/function_eval.hpp"

#include <array>
#include <cmath>
#include <limits>
#include <utility>

#include "optimisation/expression_function.hpp"
#include "xlw/cell_conversions.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

namespace {

constexpr const char* kFuncEmpty = "Input func is empty";
constexpr const char* kFuncColumns = "Input func must be in one column";
constexpr const char* kFromNumber = "Input from must be a number";
constexpr const char* kToNumber = "Input to must be a number";

struct Node {
    double x;
    double w;
};
constexpr std::size_t kNodes = 193;
// Where each level starts in the table; level 0 starts after the centre node.
constexpr std::array<std::size_t, 8> kLevelStart = {1, 4, 7, 13, 25, 49, 97, 193};

// x = tanh(pi/2 sinh t), w = pi/2 cosh t / cosh^2(pi/2 sinh t), worked in long
// double so that each stored double is the nearest one to the true node.
Node node_at(long double t) {
    const long double half_pi = 1.570796326794896619231321691639751442L;
    const long double u = half_pi * std::sinh(t);
    const long double cosh_u = std::cosh(u);
    return {static_cast<double>(std::tanh(u)),
            static_cast<double>(half_pi * std::cosh(t) / (cosh_u * cosh_u))};
}

std::array<Node, kNodes> make_nodes() {
    std::array<Node, kNodes> nodes{};
    nodes[0] = node_at(0.0L);
    std::size_t k = 1;
    for (int t = 1; t <= 3; ++t) {
        nodes[k++] = node_at(t);
    }
    // Level l >= 1 holds the odd multiples of 2^-l below 3.
    long double step = 1.0L;
    for (std::size_t level = 1; level < 7; ++level) {
        step /= 2;
        for (long double t = step; t < 3.0L; t += 2 * step) {
            nodes[k++] = node_at(t);
        }
    }
    return nodes;
}

const std::array<Node, kNodes>& nodes() {
    static const std::array<Node, kNodes> table = make_nodes();
    return table;
}

double level_sum(const std::function<double(double)>& f, std::size_t level, double c, double d) {
    const auto& table = nodes();
    double sum = 0.0;
    for (std::size_t k = kLevelStart[level]; k < kLevelStart[level + 1]; ++k) {
        const double offset = c * table[k].x;
        sum += table[k].w * (f(offset + d) + f(d - offset));
    }
    return sum;
}

}  // namespace

double tanh_sinh(const std::function<double(double)>& f, double a, double b, double target) {
    const double c = 0.5 * (b - a);
    const double d = 0.5 * (a + b);
    target *= c;
    double estimate = nodes()[0].w * f(d);
    estimate += level_sum(f, 0, c, d);
    double h = 1.0;
    double current_delta = std::numeric_limits<double>::max();
    for (std::size_t level = 1; level < 7; ++level) {
        h *= 0.5;
        const double contribution = h * level_sum(f, level, c, d);
        const double previous_delta = current_delta;
        current_delta = std::abs(0.5 * estimate - contribution);
        estimate = 0.5 * estimate + contribution;
        if (level == 1) {
            continue;
        }
        if (current_delta == 0.0) {
            break;
        }
        // The error falls quadratically once the rule converges: then the next
        // level's delta is about the square of this one.
        const double r = std::log(current_delta) / std::log(previous_delta);
        const double error = r > 1.9 && r < 2.1 ? current_delta * current_delta : current_delta;
        if (error < 0.1 * target) {
            break;
        }
    }
    return c * estimate;
}

// A long expression spreads over several cells of a column; a blank joins them
// so that a line break never glues two tokens together.
std::string read_expression(const CellMatrix& func) {
    if (is_omitted(func)) {
        throw kFuncEmpty;
    }
    if (func.ColumnsInStructure() != 1) {
        throw kFuncColumns;
    }
    std::string text;
    for (std::size_t i = 0; i < func.RowsInStructure(); ++i) {
        if (i > 0) {
            text += ' ';
        }
        text += cell_to_text(func(i, 0));
    }
    return text;
}

CellMatrix function_eval(const CellMatrix& func, const CellMatrix& x) {
    const std::string text = read_expression(func);
    const NamedTable table = read_table_numeric_headers_first_row(x);
    const GenericFunction f(text, "x", table.names, false);
    CellMatrix result(table.data.size() + 1, 1);
    result(0, 0) = text;
    for (std::size_t i = 0; i < table.data.size(); ++i) {
        result(i + 1, 0) = f(table.data[i]);
    }
    return result;
}

CellMatrix integral(const CellMatrix& func, const CellMatrix& from, const CellMatrix& to) {
    const std::string text = read_expression(func);
    double a = 0.0;
    double b = 0.0;
    read_double_required(from, kFromNumber, a);
    read_double_required(to, kToNumber, b);
    const bool reversed = a > b;
    if (reversed) {
        std::swap(a, b);
    }
    const GenericIntegralFunction f(text);
    double value = tanh_sinh([&f](double t) { return f(t); }, a, b, 1e-6);
    if (reversed) {
        value = -value;
    }
    CellMatrix result(1, 1);
    if (std::isnan(value)) {
        result(0, 0) = "Error: variable values are out of the domain boundary in integral";
    } else if (value == std::numeric_limits<double>::infinity()) {
        result(0, 0) = "Error: infinity in integral";
    } else if (value == -std::numeric_limits<double>::infinity()) {
        result(0, 0) = "Error: negative infinity in integral";
    } else {
        result(0, 0) = value;
    }
    return result;
}

void require_fit_x(const CellMatrix& x) {
    if (is_omitted(x)) {
        throw "No input data for X";
    }
}

void check_fit_weights(const dvec& weight) {
    for (double w : weight) {
        if (w < 0) {
            throw "The input weight must be non-negative";
        }
    }
}

XYW read_fit_data(const CellMatrix& x, const CellMatrix& y, const CellMatrix& weight) {
    require_fit_x(x);
    if (is_omitted(y)) {
        throw "No input data for Y";
    }
    XYW d = read_xyw(x, y, weight);
    check_fit_weights(d.weight);
    return d;
}

}  // namespace zentable
