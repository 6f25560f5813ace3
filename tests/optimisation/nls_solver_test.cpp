#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "commands/notes.hpp"
#include "optimisation/nls_solver.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {
namespace {

// MGH09 of the NIST nonlinear suite from its first start: 406 evaluations
// through a long valley, so that any difference of settings would show.
LeastSquaresProblem mgh09() {
    LeastSquaresProblem p;
    p.text = "b1*(x^2+x*b2) / (x^2+x*b3+b4)";
    p.parameter_names = {"b1", "b2", "b3", "b4"};
    p.initial = {25, 39, 41.5, 39};
    p.column_names = {"x"};
    const dvec x = {4, 2, 1, 0.5, 0.25, 0.167, 0.125, 0.1, 0.0833, 0.0714, 0.0625};
    p.y = {0.1957, 0.1947, 0.1735, 0.16, 0.0844, 0.0627, 0.0456, 0.0342, 0.0323, 0.0235, 0.0246};
    for (double v : x) {
        p.rows.push_back({v});
    }
    p.weight.assign(x.size(), 1.0);
    return p;
}

void expect_same_fit(const LeastSquaresProblem& p) {
    const LeastSquaresFit direct = fit_least_squares(p);
    const LeastSquaresFit optimiser = fit_least_squares_by_optimiser(p);
    EXPECT_EQ(direct.estimates, optimiser.estimates);
    EXPECT_EQ(direct.sse, optimiser.sse);
    EXPECT_EQ(direct.criterion, optimiser.criterion);
}

// The direct call of lmdif, made to keep its work array, is the optimiser's
// own run: the same estimates, SSE and criterion to the last bit, unbounded,
// in a box that binds, and at the evaluation limit.
TEST(NlsSolver, DirectRunIsTheOptimisersRun) {
    LeastSquaresProblem p = mgh09();
    expect_same_fit(p);
    EXPECT_EQ(fit_least_squares(p).criterion, "StationaryFunctionValue");

    p.bounded = true;
    p.lower = {0, 0, 0, 1};  // b4 heads for 0.136: the bound binds
    p.upper = {100, 100, 100, 100};
    expect_same_fit(p);

    LeastSquaresProblem spike;
    spike.text = "a/(1+b*x)";
    spike.parameter_names = {"a", "b"};
    spike.initial = {1, 1};
    spike.column_names = {"x"};
    spike.rows = {{0}, {1}, {2}, {3}};
    spike.y = {1, 0, 0, 0};
    spike.weight = {1, 1, 1, 1};
    expect_same_fit(spike);
    const LeastSquaresFit limit = fit_least_squares(spike);
    EXPECT_EQ(limit.criterion, "MaxIterations");
    EXPECT_EQ(limit.evaluations, 1000);
}

// Past 2^14 rows two copies of the expression share the rows out between two
// threads. A local in the text keeps one copy on one thread; the numbers must
// not tell the two apart, nor a failure in the second half of the rows.
TEST(NlsSolver, RowsSharedOutGiveTheNumbersOfOnePass) {
    LeastSquaresProblem p;
    p.parameter_names = {"b1", "b2"};
    p.initial = {1, 0.1};
    p.column_names = {"x"};
    const std::size_t n = 20001;
    for (std::size_t i = 0; i < n; ++i) {
        const double x = static_cast<double>(i) / 1000.0;
        p.rows.push_back({x});
        p.y.push_back(3 * std::exp(-0.5 * x) + 0.01 * std::sin(7 * x));
    }
    p.weight.assign(n, 1.0);
    p.text = "b1*exp(-b2*x)";
    const LeastSquaresFit shared = fit_least_squares(p);
    p.text = "t := x; b1*exp(-b2*t)";
    const LeastSquaresFit one = fit_least_squares(p);
    EXPECT_EQ(shared.estimates, one.estimates);
    EXPECT_EQ(shared.sse, one.sse);
    EXPECT_EQ(shared.jacobian_factor, one.jacobian_factor);

    p.rows.back()[0] = -1;
    p.text = "b1*exp(-b2*x) + probchi(x, 2)";
    std::string failure;
    try {
        fit_least_squares(p);
    } catch (const std::string& text) {
        failure = text;
    } catch (const char* text) {
        failure = text;
    }
    EXPECT_EQ(failure, "x must be larger than or equal to 0 in chi-squared distribution");
}

// For a model linear in its parameters the forward differences are exact to
// rounding, and the upper triangle R of the work array has R'R = P'(X'X)P for
// a permutation P. Trace and determinant don't see P: reading the column-major
// array any other way breaks them.
TEST(NlsSolver, WorkArrayHoldsTheFactoredJacobianByRowsAndColumns) {
    LeastSquaresProblem p;
    p.text = "a + b*x";
    p.parameter_names = {"a", "b"};
    p.initial = {0, 0};
    p.column_names = {"x"};
    p.rows = {{1}, {2}, {4}, {7}};
    p.y = {1, 0, 5, 2};
    p.weight = {1, 1, 1, 1};
    const dmat& J = fit_least_squares(p).jacobian_factor;
    ASSERT_EQ(J.size(), 4u);
    ASSERT_EQ(J[0].size(), 2u);
    // X'X = [[4, 14], [14, 70]]: trace 74, determinant 84.
    const double r00 = J[0][0], r01 = J[0][1], r11 = J[1][1];
    EXPECT_NEAR(r00 * r00 + r01 * r01 + r11 * r11, 74.0, 74.0 * 1e-7);
    EXPECT_NEAR(r00 * r00 * r11 * r11, 84.0, 84.0 * 1e-7);
}

// The driver is told how the optimiser ended, through the note sink and not
// on any stream of the library's own.
TEST(NlsSolver, EndCriterionIsANote) {
    std::vector<std::string> notes;
    const ScopedNoteSink sink([&](const std::string& line) { notes.push_back(line); });
    CellMatrix func(1, 1);
    func(0, 0) = "a*x";
    CellMatrix params(1, 2);
    params(0, 0) = "a";
    params(0, 1) = 1.0;
    CellMatrix x(3, 1), y(3, 1);
    x(0, 0) = "x";
    y(0, 0) = "y";
    for (std::size_t i = 1; i < 3; ++i) {
        x(i, 0) = static_cast<double>(i);
        y(i, 0) = 2.0 * static_cast<double>(i);
    }
    nls_solver(func, params, x, y, CellMatrix());
    EXPECT_EQ(notes, (std::vector<std::string>{" Criteria :StationaryFunctionValue"}));
}

}  // namespace
}  // namespace zentable
