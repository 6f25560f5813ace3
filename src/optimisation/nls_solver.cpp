// The only file that includes QuantLib's optimisation headers: they are slow
// to compile, and only the few that the fit needs come in.
#include "optimisation/nls_solver.hpp"

#include <cmath>
#include <cstddef>
#include <exception>
#include <limits>
#include <memory>
#include <sstream>
#include <thread>
#include <utility>
#include <vector>

#include <ql/math/optimization/constraint.hpp>
#include <ql/math/optimization/costfunction.hpp>
#include <ql/math/optimization/endcriteria.hpp>
#include <ql/math/optimization/levenbergmarquardt.hpp>
#include <ql/math/optimization/lmdif.hpp>
#include <ql/math/optimization/problem.hpp>

#include "commands/notes.hpp"
#include "optimisation/expression_function.hpp"
#include "optimisation/function_eval.hpp"
#include "xlw/cell_conversions.hpp"

namespace QuantLib {

// Residuals sqrt(w) (f - y) of a compiled expression over the rows of a table.
class GenericCostFunction : public CostFunction {
  public:
    explicit GenericCostFunction(const zentable::LeastSquaresProblem& p)
        : rows_(p.rows), columns_(p.column_names.size(), zentable::dvec(p.rows.size())), y_(p.y) {
        for (std::size_t i = 0; i < p.rows.size(); ++i) {
            for (std::size_t c = 0; c < columns_.size(); ++c) {
                columns_[c][i] = p.rows[i][c];
            }
        }
        root_weight_.reserve(p.weight.size());
        for (double w : p.weight) {
            root_weight_.push_back(std::sqrt(w));
        }
        f_.reserve(2);
        f_.emplace_back(p.text, p.parameter_names, p.column_names);
        if (f_[0].rows_independent() && rows_.size() >= kParallelRows) {
            f_.emplace_back(p.text, p.parameter_names, p.column_names);
        }
    }

    Real value(const Array& parameters) const override {
        const Array r = values(parameters);
        Real sum = 0.0;
        for (Real e : r) {
            sum += e * e;
        }
        return sum;
    }

    Array values(const Array& parameters) const override {
        Array r(y_.size());
        residuals(parameters.begin(), r.begin());
        return r;
    }

    // values() into the caller's storage: the optimiser asks for them k + 1
    // times an iteration, and a fresh array of every row each time shows.
    // Each residual is on its own, so two copies of the expression, each
    // binding its own values, share the rows out to the same numbers.
    void residuals(const Real* parameters, Real* out) const {
        const std::size_t m = y_.size();
        if (f_.size() < 2) {
            f_[0].weighted_residuals(parameters, columns_, y_, root_weight_, 0, m, out);
            return;
        }
        const std::size_t half = m / 2;
        std::exception_ptr failure;
        std::thread second([&] {
            try {
                f_[1].weighted_residuals(parameters, columns_, y_, root_weight_, half, m, out);
            } catch (...) {
                failure = std::current_exception();
            }
        });
        try {
            f_[0].weighted_residuals(parameters, columns_, y_, root_weight_, 0, half, out);
        } catch (...) {
            second.join();
            throw;  // the failure of the earlier row, as one pass would give it
        }
        second.join();
        if (failure) {
            std::rethrow_exception(failure);
        }
    }

    zentable::dvec predict(const zentable::dvec& parameters) const {
        return f_[0].predict(parameters, rows_);
    }

  private:
    // Below this many rows a second thread costs more than it saves.
    static constexpr std::size_t kParallelRows = 1 << 14;
    std::vector<zentable::ParametricFunction> f_;
    const zentable::dmat& rows_;
    std::vector<zentable::dvec> columns_;  // the rows by column, as the inner loop reads them
    const zentable::dvec& y_;
    zentable::dvec root_weight_;
};

}  // namespace QuantLib

namespace zentable {

namespace {

using QuantLib::Array;
using QuantLib::EndCriteria;
using QuantLib::Real;

constexpr const char* kParamsShape =
    "Input params must have 2 columns or 4 columns: parameter name, initial value, minimum value "
    "(optional), maximum value (optional)";

// The optimiser's settings, the same for every fit.
constexpr Real kEpsfcn = 1e-8;
constexpr Real kXtol = 1e-8;
constexpr Real kGtol = 1e-8;
EndCriteria end_criteria() {
    return EndCriteria(1000, 100, 1e-8, 1e-8, 1e-8);
}

Array to_array(const dvec& v) {
    Array a(v.size());
    std::copy(v.begin(), v.end(), a.begin());
    return a;
}

std::unique_ptr<QuantLib::Constraint> make_constraint(const LeastSquaresProblem& p) {
    if (p.bounded) {
        return std::make_unique<QuantLib::NonhomogeneousBoundaryConstraint>(to_array(p.lower),
                                                                            to_array(p.upper));
    }
    return std::make_unique<QuantLib::NoConstraint>();
}

std::string name_of(EndCriteria::Type type) {
    std::ostringstream out;
    out << type;
    return out.str();
}

LeastSquaresFit fit_from(const QuantLib::Problem& problem, EndCriteria::Type type) {
    LeastSquaresFit fit;
    const Array& x = problem.currentValue();
    fit.estimates.assign(x.begin(), x.end());
    fit.sse = problem.functionValue();
    fit.criterion = name_of(type);
    return fit;
}

// The optimiser's minimize, step by step with its own settings (mode 1, factor
// 1, the evaluation limit its end criteria's iteration count, their function
// tolerance as ftol), so that lmdif's work array can be kept when it returns.
LeastSquaresFit fit_least_squares(const LeastSquaresProblem& p,
                                  QuantLib::GenericCostFunction& cost) {
    const std::unique_ptr<QuantLib::Constraint> constraint = make_constraint(p);
    QuantLib::Problem problem(cost, *constraint, to_array(p.initial));
    const EndCriteria criteria = end_criteria();

    problem.reset();
    Array x = problem.currentValue();
    const Array start_residuals = problem.costFunction().values(x);
    const int m = static_cast<int>(start_residuals.size());
    const int n = static_cast<int>(x.size());
    if (n <= 0) {
        throw "no variables given";
    }
    if (m < n) {
        throw "less functions (" + std::to_string(m) + ") than available variables (" +
            std::to_string(n) + ")";
    }
    const auto um = static_cast<std::size_t>(m);
    const auto un = static_cast<std::size_t>(n);
    dvec xx(x.begin(), x.end());
    dvec fvec(um);
    dvec diag(un);
    dvec fjac(um * un);
    std::vector<int> ipvt(un);
    dvec qtf(un), wa1(un), wa2(un), wa3(un), wa4(um);
    int info = 0;
    int nfev = 0;
    // The box is only tested, never projected: a point outside it is given the
    // residuals of the start, which is why the start must lie inside.
    const QuantLib::MINPACK::LmdifCostFunction residuals = [&](int, int size, Real* at, Real* out,
                                                               int*) {
        Array point(at, at + size);
        if (problem.constraint().test(point)) {
            cost.residuals(at, out);
        } else {
            std::copy(start_residuals.begin(), start_residuals.end(), out);
        }
    };
    QuantLib::MINPACK::lmdif(m, n, xx.data(), fvec.data(), criteria.functionEpsilon(), kXtol, kGtol,
                             static_cast<int>(criteria.maxIterations()), kEpsfcn, diag.data(), 1,
                             1.0, 0, &info, &nfev, fjac.data(), m, ipvt.data(), qtf.data(),
                             wa1.data(), wa2.data(), wa3.data(), wa4.data(), residuals,
                             QuantLib::MINPACK::LmdifCostFunction());
    if (info == 0) {
        throw "MINPACK: improper input parameters";
    }
    // The optimiser's reading of lmdif's outcome: a too small ftol (6) is no
    // criterion, reaching the evaluation limit overrides whatever else held.
    EndCriteria::Type type = info != 6 ? EndCriteria::StationaryFunctionValue : EndCriteria::None;
    criteria.checkMaxIterations(static_cast<QuantLib::Size>(nfev), type);
    if (info == 7) {
        throw "MINPACK: xtol is too small. no further improvement in the approximate solution x "
              "is possible.";
    }
    if (info == 8) {
        throw "MINPACK: gtol is too small. fvec is orthogonal to the columns of the jacobian to "
              "machine precision.";
    }
    std::copy(xx.begin(), xx.end(), x.begin());
    problem.setCurrentValue(x);
    problem.setFunctionValue(problem.costFunction().value(x));

    LeastSquaresFit fit = fit_from(problem, type);
    fit.evaluations = nfev;
    // Column-major with leading dimension m: element (i, j) at i + j m.
    fit.jacobian_factor.assign(um, dvec(un));
    for (std::size_t j = 0; j < un; ++j) {
        for (std::size_t i = 0; i < um; ++i) {
            fit.jacobian_factor[i][j] = fjac[i + j * um];
        }
    }
    return fit;
}

}  // namespace

LeastSquaresFit fit_least_squares(const LeastSquaresProblem& p) {
    QuantLib::GenericCostFunction cost(p);
    return fit_least_squares(p, cost);
}

LeastSquaresFit fit_least_squares_by_optimiser(const LeastSquaresProblem& p) {
    QuantLib::GenericCostFunction cost(p);
    const std::unique_ptr<QuantLib::Constraint> constraint = make_constraint(p);
    QuantLib::Problem problem(cost, *constraint, to_array(p.initial));
    QuantLib::LevenbergMarquardt optimiser(kEpsfcn, kXtol, kGtol);
    const EndCriteria::Type type = optimiser.minimize(problem, end_criteria());
    return fit_from(problem, type);
}

dvec standard_errors(const dmat& jacobian_factor, double rmse) {
    const dmat cov = inverse(mat_mul(transpose(jacobian_factor), jacobian_factor));
    dvec se(cov.size());
    for (std::size_t j = 0; j < cov.size(); ++j) {
        se[j] = std::sqrt(cov[j][j]) * rmse;
    }
    return se;
}

namespace {

// Gives the header of y, which the problem itself doesn't need.
std::string read_problem_data(const CellMatrix& x, const CellMatrix& y, const CellMatrix& weight,
                              LeastSquaresProblem& p) {
    XYW d = read_fit_data(x, y, weight);
    p.column_names = std::move(d.x_names);
    p.rows = std::move(d.x);
    p.y = std::move(d.y);
    p.weight = std::move(d.weight);
    return d.y_name;
}

void read_params(const CellMatrix& params, LeastSquaresProblem& p) {
    const std::size_t columns = params.ColumnsInStructure();
    if (columns != 2 && columns != 4) {
        throw kParamsShape;
    }
    // Cells read as the other solvers read their bounds: a text reads as its
    // number, a blank as 0.
    const auto numbers = [&](std::size_t column) {
        dvec out;
        for (std::size_t i = 0; i < params.RowsInStructure(); ++i) {
            out.push_back(cell_to_double(params(i, column)));
        }
        return out;
    };
    p.parameter_names = read_column_text(params, 0);
    p.initial = numbers(1);
    p.bounded = columns == 4;
    if (!p.bounded) {
        return;
    }
    p.lower = numbers(2);
    p.upper = numbers(3);
    // A start on a bound is inside: the optimiser's own test is inclusive.
    for (std::size_t i = 0; i < p.initial.size(); ++i) {
        if (p.initial[i] < p.lower[i] || p.initial[i] > p.upper[i]) {
            throw "The initial value for variable " + std::to_string(i + 1) + ", " +
                p.parameter_names[i] + " must be between the minimum and maximum values";
        }
    }
}

CellMatrix lay_out(const LeastSquaresProblem& p, const std::string& y_name,
                   const LeastSquaresFit& fit, double rmse, const dvec& se, const dvec& predicted) {
    const std::size_t k = p.parameter_names.size();
    const std::size_t n = p.y.size();
    const std::size_t nx = p.column_names.size();
    CellMatrix r(12 + k + n, std::max<std::size_t>(4, nx + 3));
    r(0, 0) = "Nonlinear Least Squares Solver";
    r(2, 0) = "Number of Records";
    r(2, 1) = static_cast<double>(n);
    r(3, 0) = "Number of Parameters";
    r(3, 1) = static_cast<double>(k);
    r(4, 0) = "SSE";
    r(4, 1) = fit.sse;
    r(5, 0) = "RMSE";
    r(5, 1) = rmse;
    r(7, 0) = "Parameter Estimates";
    r(8, 0) = "#";
    r(8, 1) = "Variable";
    r(8, 2) = "Estimate";
    r(8, 3) = "Standard Error";
    for (std::size_t j = 0; j < k; ++j) {
        r(9 + j, 0) = static_cast<double>(j + 1);
        r(9 + j, 1) = p.parameter_names[j];
        r(9 + j, 2) = fit.estimates[j];
        r(9 + j, 3) = se[j];
    }
    const std::size_t head = 11 + k;
    r(head - 1, 0) = "Observations";
    r(head, 0) = "#";
    for (std::size_t c = 0; c < nx; ++c) {
        r(head, 1 + c) = p.column_names[c];
    }
    r(head, 1 + nx) = y_name;
    r(head, 2 + nx) = y_name + " Predicted";
    for (std::size_t i = 0; i < n; ++i) {
        const std::size_t row = head + 1 + i;
        r(row, 0) = static_cast<double>(i + 1);
        for (std::size_t c = 0; c < nx; ++c) {
            r(row, 1 + c) = p.rows[i][c];
        }
        r(row, 1 + nx) = p.y[i];
        r(row, 2 + nx) = predicted[i];
    }
    return r;
}

}  // namespace

CellMatrix nls_solver(const CellMatrix& func, const CellMatrix& params, const CellMatrix& x,
                      const CellMatrix& y, const CellMatrix& weight) {
    LeastSquaresProblem p;
    p.text = read_expression(func);
    const std::string y_name = read_problem_data(x, y, weight, p);
    read_params(params, p);

    QuantLib::GenericCostFunction cost(p);
    const LeastSquaresFit fit = fit_least_squares(p, cost);
    report_note(" Criteria :" + fit.criterion);
    const std::size_t n = p.y.size();
    const std::size_t k = p.initial.size();
    // An exact fit through as many rows as parameters leaves no degree of
    // freedom: its RMSE is infinite, also when the SSE comes out exactly 0.
    const double rmse = n == k ? std::numeric_limits<double>::infinity()
                               : std::sqrt(fit.sse / static_cast<double>(n - k));
    const dvec se = standard_errors(fit.jacobian_factor, rmse);
    const dvec predicted = cost.predict(fit.estimates);
    return lay_out(p, y_name, fit, rmse, se, predicted);
}

}  // namespace zentable
