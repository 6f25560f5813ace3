#include "regression/linear_reg.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "regression/linear_reg_model.hpp"
#include "xlw/cell_conversions.hpp"
#include "xlw/decoders.hpp"
#include "xlw/report.hpp"

namespace zentable {

namespace {

bool all_unit(const dvec& weight) {
    return std::all_of(weight.begin(), weight.end(), [](double w) { return w == 1.0; });
}

std::string signed_term(double value, const char* positive, const char* negative) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, value > 0 ? positive : negative, std::fabs(value));
    return buffer;
}

}  // namespace

dvec read_lambda(const CellMatrix& lambda, std::size_t p) {
    dvec values;
    if (is_omitted(lambda))
        return values;
    read_double_vector(lambda, "", values);
    if (values.size() != 1 && values.size() != p)
        throw "The size of ridge constants lambda must be either 1 or the same size as x";
    for (double v : values)
        if (v < 0)
            throw "The ridge constants lambda for ridge regression must be non-negative";
    if (values.size() == 1)
        values.assign(p, values[0]);
    return values;
}

CellMatrix linear_reg(const CellMatrix& x, const CellMatrix& y, const CellMatrix& weight,
                      const CellMatrix& lambda) {
    const XYW data = read_xyw(x, y, weight);
    const std::size_t p = data.x_names.size();
    const dvec ridge = read_lambda(lambda, p);
    if (data.x.size() <= p)
        throw "Cannot perform linear regression when the number of data points is less than or "
              "equal to the number of variables";
    return run_linear_reg(data.x_names, data.x, data.y, data.weight, ridge, "linear_reg");
}

CellMatrix run_linear_reg(const std::vector<std::string>& names, const dmat& x, const dvec& y,
                          const dvec& weight, const dvec& lambda, const std::string& command_name) {
    const int n = static_cast<int>(x.size());
    const Moments moments = weighted_moments(x, y, weight);
    // A lambda, even of zeros, means the user asked for the fit whatever the rank.
    if (lambda.empty()) {
        // With unit weights the fit's moments are the rank test's own: one pass less.
        const dmat dep = all_unit(weight) ? dependency_matrix(moments) : dependency_matrix(x);
        if (!dep.empty())
            return report_dependencies(names, dep, command_name);
    }
    return report_linear_reg(names, fit_from_moments(moments, n, lambda), command_name);
}

CellMatrix report_dependencies(const std::vector<std::string>& names, const dmat& dep,
                               const std::string& command_name) {
    const std::size_t p = names.size();
    const std::size_t count = dep[0].size();
    CellMatrix result(count + 1, 1);
    result(0, 0) = command_name +
                   ": input data matrix is not full rank. Some variables are linear combinations "
                   "of other variables. Run matrix_corr() and matrix_sym_eign() to find linear "
                   "relationships";
    const double t = kRankTolerance * max_abs(dep);
    for (std::size_t c = 0; c < count; ++c) {
        std::string text;
        for (std::size_t i = 0; i < p; ++i)
            if (std::fabs(dep[i][c]) > t)
                text += signed_term(dep[i][c], " + %g * ", " - %g * ") + names[i];
        if (std::fabs(dep[p][c]) > t)
            text += signed_term(dep[p][c], " + %g", " - %g");
        text += " = 0";
        result(c + 1, 0) = text;
    }
    return result;
}

CellMatrix report_linear_reg(const std::vector<std::string>& names, const RegressionFit& fit,
                             const std::string& command_name) {
    const std::size_t p = names.size();
    const int n = fit.n;
    const int k = static_cast<int>(p) + 1;
    const RegressionStats st =
        regression_stats(n, k, fit.sum_weight, fit.r_square, fit.y_mean, fit.y_sd);

    LinearRegStats stats;
    stats.n = n;
    stats.k = k;
    stats.sum_weight = fit.sum_weight;
    stats.y_mean = fit.y_mean;
    stats.y_mean_again = fit.y_mean;
    stats.sst = st.sst;
    stats.ssr = st.ssr;
    stats.sse = st.sse;
    stats.rmse = st.rmse;
    stats.coeff_var = st.coeff_var;
    stats.r_square = fit.r_square;
    stats.adj_r_square = st.adj_r_square;
    stats.f_value = st.f_value;
    stats.p_value = st.p_value;
    handle_c<linearRegModel> model(
        new linearRegModel(stats, names, fit.coefs, fit.std_errors, fit.t_values, fit.p_values));

    CellMatrix r(k + 23, 6);
    r(0, 0) = std::string(linearRegModelHandle_to_string(model));
    r(2, 0) = "Analysis of Variance";
    r(4, 0) = "Number of Records";
    r(4, 1) = n;
    r(5, 0) = "Number of Parameters";
    r(5, 1) = k;
    r(6, 0) = "R-Square";
    r(6, 1) = fit.r_square;
    r(7, 0) = "Adj R-Square";
    r(7, 1) = st.adj_r_square;

    write_variance_rows(r, 9, n, k, st.ssr, st.sse, st.sst, st.f_value, st.p_value);

    r(14, 0) = "RMSE";
    r(14, 1) = st.rmse;
    r(15, 0) = "Y Mean";
    r(15, 1) = fit.y_mean;
    r(16, 0) = "Coeff Var";
    r(16, 1) = st.coeff_var;

    r(18, 0) = "Model Parameter Estimates";
    const char* headers[] = {"#", "Variable", "Estimate", "Standard Error", "t Value", "P Value"};
    for (int c = 0; c < 6; ++c)
        r(20, c) = headers[c];
    // The intercept is last in the vectors and first in the table.
    for (std::size_t row = 0; row <= p; ++row) {
        const std::size_t v = row == 0 ? p : row - 1;
        r(21 + row, 0) = static_cast<int>(row);
        r(21 + row, 1) = row == 0 ? std::string("Intercept") : names[v];
        r(21 + row, 2) = fit.coefs[v];
        r(21 + row, 3) = fit.std_errors[v];
        r(21 + row, 4) = fit.t_values[v];
        r(21 + row, 5) = fit.p_values[v];
    }
    r(k + 22, 0) = "End of output: " + command_name;
    return r;
}

}  // namespace zentable
