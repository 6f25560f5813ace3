#include "regression/forward_select.hpp"

#include <algorithm>
#include <cmath>

#include "data/delimited_file.hpp"
#include "models/evaluation.hpp"
#include "models/model_eval.hpp"
#include "numeric/distributions.hpp"
#include "numeric/symmetric_eigen.hpp"
#include "regression/linear_reg.hpp"
#include "regression/logistic_reg.hpp"
#include "regression/logistic_reg_model.hpp"
#include "regression/weighted_regression.hpp"
#include "xlw/cell_conversions.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

namespace {

constexpr const char* kLinear = "linear_reg_forward_select";
constexpr const char* kLogistic = "logistic_reg_forward_select";

struct SelectionArgs {
    double pvalue = 0.0;
    double steps = 0.0;  // truncated, at least 1; may exceed any int
    svec starts;
};

// pvalue, steps and startsWith, in that order, after x, y and weight.
SelectionArgs read_selection_args(const CellMatrix& pvalue, const CellMatrix& steps,
                                  const CellMatrix& startsWith) {
    SelectionArgs args;
    const bool one_number = pvalue.RowsInStructure() == 1 && pvalue.ColumnsInStructure() == 1 &&
                            pvalue(0, 0).IsANumber();
    args.pvalue = one_number ? pvalue(0, 0).NumericValue() : -1.0;
    if (!(args.pvalue >= 0.0 && args.pvalue <= 1.0))
        throw "pvalue must be between 0 and 1";
    const bool one_step =
        steps.RowsInStructure() == 1 && steps.ColumnsInStructure() == 1 && steps(0, 0).IsANumber();
    args.steps = one_step ? std::trunc(steps(0, 0).NumericValue()) : 0.0;
    if (!(args.steps >= 1.0))
        throw "steps must be a positive integer";
    if (!is_omitted(startsWith)) {
        // The list reader takes any shape down its first column; a block is
        // more likely a wrong range than a list, so it is refused here.
        if (startsWith.RowsInStructure() != 1 && startsWith.ColumnsInStructure() != 1)
            throw "startsWith variable names must be in one row or one column";
        read_string_list(startsWith, args.starts);
    }
    return args;
}

// The smaller of p and f + the smaller of steps and p.
std::size_t step_limit(std::size_t p, std::size_t f, double steps) {
    const double extra = std::min(steps, static_cast<double>(p));
    return std::min(p, f + static_cast<std::size_t>(extra));
}

dmat columns_of(const dmat& x, const std::vector<std::int32_t>& columns) {
    dmat out;
    out.reserve(x.size());
    for (const dvec& row : x) {
        dvec picked;
        picked.reserve(columns.size());
        for (std::int32_t c : columns)
            picked.push_back(row[c]);
        out.push_back(std::move(picked));
    }
    return out;
}

svec names_of(const svec& names, const std::vector<std::int32_t>& columns) {
    svec out;
    for (std::int32_t c : columns)
        out.push_back(names[c]);
    return out;
}

// The common head: finds the forced columns, or gives the one-cell table
// that ends the command normally, with no model filed.
bool find_forced(const svec& names, const dmat& x, const svec& starts,
                 const std::string& command_name, std::vector<std::int32_t>& forced,
                 CellMatrix& failure) {
    for (const std::string& name : starts) {
        const auto at = std::find(names.begin(), names.end(), name);
        if (at == names.end()) {
            failure = CellMatrix("startsWith variable " + name + " not in data set");
            return false;
        }
        forced.push_back(static_cast<std::int32_t>(at - names.begin()));
    }
    if (!forced.empty() && !dependency_matrix(columns_of(x, forced)).empty()) {
        failure = CellMatrix(command_name +
                             ": Some variables are linear combinations of other variables among "
                             "startsWith variables. Run matrix_corr() and matrix_sym_eign() to "
                             "find linear relationships");
        return false;
    }
    return true;
}

void write_step_head(CellMatrix& r, const char* title, const std::vector<const char*>& heads) {
    r(2, 0) = title;
    for (std::size_t c = 0; c < heads.size(); ++c)
        r(4, c) = heads[c];
}

CellMatrix forward_select_linear_run(const XYW& data, const SelectionArgs& args) {
    std::vector<std::int32_t> forced;
    CellMatrix failure;
    if (!find_forced(data.x_names, data.x, args.starts, kLinear, forced, failure))
        return failure;
    const std::size_t limit = step_limit(data.x_names.size(), forced.size(), args.steps);
    const LinearSelection sel =
        linear_forward_core(data.x, data.y, data.weight, args.pvalue, limit, forced);

    RegressionFit fit;
    fit.n = sel.n;
    fit.sum_weight = sel.sum_weight;
    fit.y_mean = sel.y_mean;
    fit.y_sd = sel.y_sd;
    fit.r_square = sel.final_r_square;
    fit.coefs = sel.coefs;
    fit.std_errors = sel.std_errors;
    fit.t_values = sel.t_values;
    fit.p_values = sel.p_values;
    const svec names = names_of(data.x_names, sel.selected);
    // The analysis of variance and the estimates are linear_reg's report of
    // the selected model, moved down below the steps.
    const CellMatrix fitted = report_linear_reg(names, fit, kLinear);

    const std::size_t s = names.size();
    const std::size_t shift = 4 + s;
    CellMatrix r(2 * s + 28, 6);
    r(0, 0) = fitted(0, 0).StringValue();
    write_step_head(
        r, "Summary of Linear Regression Forward Selection",
        {"Step", "Variable Selected", "Partial R-Square", "R-Square", "F Value", "P Value"});
    for (std::size_t i = 0; i < s; ++i) {
        r(5 + i, 0) = static_cast<int>(i + 1);
        r(5 + i, 1) = names[i];
        r(5 + i, 2) = sel.r_square[i] - (i ? sel.r_square[i - 1] : 0.0);
        r(5 + i, 3) = sel.r_square[i];
        r(5 + i, 4) = sel.f_value[i];
        r(5 + i, 5) = sel.p_value[i];
    }
    // linear_reg's report holds texts, numbers and empty cells only.
    for (std::size_t row = 1; row < fitted.RowsInStructure(); ++row)
        for (std::size_t c = 0; c < 6; ++c) {
            const CellValue& cell = fitted(row, c);
            if (cell.IsAString())
                r(row + shift, c) = cell.StringValue();
            else if (cell.IsANumber())
                r(row + shift, c) = cell.NumericValue();
        }
    return r;
}

CellMatrix forward_select_logistic_run(const XYW& data, const SelectionArgs& args) {
    std::vector<std::int32_t> forced;
    CellMatrix failure;
    if (!find_forced(data.x_names, data.x, args.starts, kLogistic, forced, failure))
        return failure;
    dvec coded = data.y;
    const dvec levels = binary_recode(coded);
    const std::size_t limit = step_limit(data.x_names.size(), forced.size(), args.steps);
    const LogisticSelection sel =
        logistic_forward_core(data.x, coded, data.weight, args.pvalue, limit, forced);
    const LogisticFit& fit = sel.fit;

    const svec names = names_of(data.x_names, sel.selected);
    const handle_c<logisticRegModel> model(new logisticRegModel(names, fit.coefs, levels));
    const std::string handle = logisticRegModelHandle_to_string(model);
    // All of x and the user's y, as logistic_reg evaluates its own model.
    BinaryEval eval;
    model_binary_association(handle, data.x_names, data.x, coded, data.weight, eval);

    const std::size_t s = names.size();
    const std::size_t top = 4 + s;
    const int n = static_cast<int>(data.x.size());
    const int k = static_cast<int>(s) + 1;
    CellMatrix r(2 * s + 33, 6);
    r(0, 0) = handle;
    write_step_head(r, "Summary of Logistic Regression Forward Selection",
                    {"Step", "Variable Selected", "Score Chi-Square", "P Value"});
    for (std::size_t i = 0; i < s; ++i) {
        r(5 + i, 0) = static_cast<int>(i + 1);
        r(5 + i, 1) = names[i];
        r(5 + i, 2) = sel.score[i];
        r(5 + i, 3) = sel.p_value[i];
    }
    r(top + 2, 0) = "Model Performance";
    r(top + 4, 0) = data.y_name;
    r(top + 4, 1) = "Total Frequency";
    r(top + 5, 0) = "ALL";
    r(top + 5, 1) = n;
    r(top + 6, 0) = levels[1];
    r(top + 6, 1) = fit.n1;
    r(top + 7, 0) = levels[0];
    r(top + 7, 1) = n - fit.n1;
    if (data.has_weight) {
        r(top + 4, 2) = "Total Weight";
        r(top + 5, 2) = fit.w0 + fit.w1;
        r(top + 6, 2) = fit.w1;
        r(top + 7, 2) = fit.w0;
    }
    r(top + 8, 0) = "Probability Modeled is for " + data.y_name;
    r(top + 8, 1) = levels[1];
    r(top + 9, 0) = "Number of Parameters";
    r(top + 9, 1) = k;
    write_model_fit_rows(r, top + 11, n, k, fit.ll0, fit.ll);
    write_association_rows(r, top + 18, eval);

    r(top + 23, 0) = "Model Parameter Estimates";
    const char* headers[] = {"#",      "Variable", "Estimate", "Standard Error", "Wald Chi-Square",
                             "P Value"};
    for (int c = 0; c < 6; ++c)
        r(top + 25, c) = headers[c];
    // The intercept is last in the vectors and first in the table.
    for (std::size_t row = 0; row <= s; ++row) {
        const std::size_t v = row == 0 ? s : row - 1;
        r(top + 26 + row, 0) = static_cast<int>(row);
        r(top + 26 + row, 1) = row == 0 ? std::string("Intercept") : names[v];
        r(top + 26 + row, 2) = fit.coefs[v];
        r(top + 26 + row, 3) = fit.std_errors[v];
        r(top + 26 + row, 4) = fit.wald[v];
        r(top + 26 + row, 5) = fit.p_values[v];
    }
    r(top + 28 + s, 0) = std::string("End of output: ") + kLogistic;
    return r;
}

// The score statistic of column j beside the current model: g and h from the
// log-likelihood over all of x, c the current model's Hessian.
double score_of(std::size_t j, const LogLikelihood& at, const dmat& c,
                const std::vector<std::int32_t>& selected, bool screen) {
    const std::size_t p = at.gradient.size() - 1;
    const std::size_t m = c.size() + 1;
    const dmat& h = at.hessian;
    dmat a(m, dvec(m));
    dvec u(m);
    a[0][0] = h[j][j];
    u[0] = at.gradient[j];
    for (std::size_t i = 0; i < selected.size(); ++i) {
        a[0][i + 1] = a[i + 1][0] = h[j][selected[i]];
        u[i + 1] = at.gradient[selected[i]];
    }
    a[0][m - 1] = a[m - 1][0] = h[j][p];
    u[m - 1] = at.gradient[p];
    for (std::size_t r = 0; r + 1 < m; ++r)
        for (std::size_t q = 0; q + 1 < m; ++q)
            a[r + 1][q + 1] = c[r][q];
    if (screen)
        for (double e : symmetricEigen(a).values)
            if (e >= -kZeroTolerance && e <= kZeroTolerance)
                return 0.0;
    const dmat ai = inverse(a);
    double sum = 0.0, largest = 0.0;
    for (std::size_t r = 0; r < m; ++r)
        for (std::size_t q = 0; q < m; ++q) {
            const double term = u[r] * ai[r][q] * u[q];
            sum += term;
            largest = std::max(largest, std::fabs(term));
        }
    // What is left after the terms cancel to rounding is no evidence.
    if (std::fabs(sum) <= largest * kRankTolerance)
        return 0.0;
    return -sum;
}

}  // namespace

LinearSelection linear_forward_core(const dmat& x, const dvec& y, const dvec& weight, double pvalue,
                                    std::size_t limit, const std::vector<std::int32_t>& forced) {
    const Moments mo = weighted_moments(x, y, weight);
    const std::size_t p = mo.x_mean.size();
    dmat m(p + 1, dvec(p + 1));
    for (std::size_t i = 0; i < p; ++i) {
        for (std::size_t j = 0; j < p; ++j)
            m[i][j] = mo.corr_xx[i][j];
        m[i][p] = m[p][i] = mo.corr_xy[i];
    }
    m[p][p] = 1.0;

    LinearSelection sel;
    sel.n = static_cast<int>(x.size());
    sel.sum_weight = mo.sum_weight;
    sel.y_mean = mo.y_mean;
    sel.y_sd = mo.y_sd;
    std::vector<std::int32_t> candidate(p);
    for (std::size_t j = 0; j < p; ++j)
        candidate[j] = static_cast<std::int32_t>(j);
    auto partial = [&](std::size_t j) { return m[j][p] * m[j][p] / m[j][j] / m[p][p]; };

    double r2 = 0.0;
    for (std::size_t t = 1; t <= limit; ++t) {
        const double dfe = sel.n - static_cast<double>(t) - 1;
        const bool is_forced = t <= forced.size();
        std::int32_t chosen = -1;
        double pr = 0.0;
        if (is_forced) {
            chosen = forced[t - 1];
            pr = partial(chosen);
        } else {
            for (std::int32_t j : candidate) {
                // A column the sweep has reduced to nothing lies in the span
                // of those selected.
                if (j < 0 || (m[j][j] >= -kZeroTolerance && m[j][j] <= kZeroTolerance))
                    continue;
                const double candidate_pr = partial(j);
                if (candidate_pr > pr) {
                    pr = candidate_pr;
                    chosen = j;
                }
            }
        }
        const double f = dfe * (pr / (1 - pr));
        const double pv = t_two_sided_p_value(std::sqrt(f), dfe);
        if (!is_forced && (chosen < 0 || pv > pvalue || pr <= 0))
            break;
        sel.selected.push_back(chosen);
        r2 = (1 - r2) * pr + r2;
        sel.r_square.push_back(r2);
        sel.f_value.push_back(f);
        sel.p_value.push_back(pv);
        candidate[chosen] = -1;
        m = sweep(m, ivec{chosen});
    }
    sel.final_r_square = r2;

    const std::size_t s = sel.selected.size();
    const double df = sel.n - static_cast<double>(s) - 1;
    const double b = std::sqrt((1 - r2) / df);
    const double sy = mo.y_sd;
    double intercept = mo.y_mean;
    for (std::size_t a = 0; a < s; ++a) {
        const std::size_t i = sel.selected[a];
        const double beta = m[i][p];
        const double se = std::sqrt(m[i][i]) * b;
        const double t = beta / se;
        sel.coefs.push_back(beta * sy / mo.x_sd[i]);
        sel.std_errors.push_back(se * sy / mo.x_sd[i]);
        sel.t_values.push_back(t);
        sel.p_values.push_back(t_two_sided_p_value(t, df));
        intercept -= sel.coefs[a] * mo.x_mean[i];
    }
    double acc = 1.0;
    for (std::size_t a = 0; a < s; ++a)
        for (std::size_t c = 0; c < s; ++c) {
            const std::size_t i = sel.selected[a], k = sel.selected[c];
            acc += (mo.x_mean[i] / mo.x_sd[i]) * (mo.x_mean[k] / mo.x_sd[k]) * m[i][k];
        }
    // Divided by n, unlike linear_reg's intercept error on the same fit.
    const double intercept_se = std::sqrt(acc / sel.n) * b * sy;
    const double intercept_t = intercept / intercept_se;
    sel.coefs.push_back(intercept);
    sel.std_errors.push_back(intercept_se);
    sel.t_values.push_back(intercept_t);
    sel.p_values.push_back(t_two_sided_p_value(intercept_t, df));
    return sel;
}

LogisticSelection logistic_forward_core(const dmat& x, const dvec& y, const dvec& weight,
                                        double pvalue, std::size_t limit,
                                        const std::vector<std::int32_t>& forced) {
    LogisticSelection sel;
    LogisticFit& fit = sel.fit;
    double total = 0.0, events = 0.0;
    count_target(y, weight, fit, total, events);
    const double g0 = std::log(events / (total - events));
    const std::size_t p = x.empty() ? 0 : x[0].size();

    fit.coefs = {g0};
    dmat current_hessian;
    std::vector<std::int32_t> candidate(p);
    for (std::size_t j = 0; j < p; ++j)
        candidate[j] = static_cast<std::int32_t>(j);

    for (std::size_t t = 1; t <= limit; ++t) {
        const std::size_t s = sel.selected.size();
        dvec at(p + 1, 0.0);
        for (std::size_t a = 0; a < s; ++a)
            at[sel.selected[a]] = fit.coefs[a];
        at[p] = fit.coefs[s];
        const LogLikelihood full = logistic_loglik(x, y, weight, at);
        if (t == 1) {
            current_hessian = {{full.hessian[p][p]}};
            fit.ll = full.value;
        }

        const bool is_forced = t <= forced.size();
        std::int32_t chosen = -1;
        double score = 0.0;
        if (is_forced) {
            chosen = forced[t - 1];
            score = score_of(chosen, full, current_hessian, sel.selected, false);
        } else {
            for (std::int32_t j : candidate) {
                if (j < 0)
                    continue;
                const double candidate_score =
                    score_of(j, full, current_hessian, sel.selected, true);
                if (candidate_score > score) {
                    score = candidate_score;
                    chosen = j;
                }
            }
        }
        const double pv = gammq(0.5, score * 0.5);
        if (!is_forced &&
            (chosen < 0 || (score >= -kZeroTolerance && score <= kZeroTolerance) || pv > pvalue))
            break;
        sel.selected.push_back(chosen);
        sel.score.push_back(score);
        sel.p_value.push_back(pv);
        candidate[chosen] = -1;

        // Each refit starts afresh from the intercept-only point.
        const std::size_t k = sel.selected.size();
        dvec start(k + 1, 0.0);
        start[k] = g0;
        const LogLikelihood refit =
            logistic_newton(columns_of(x, sel.selected), y, weight, start, fit.coefs);
        fit.ll = refit.value;
        current_hessian = refit.hessian;
    }
    fit.ll0 = intercept_only_loglik(total, events);
    add_wald_tests(current_hessian, fit);
    return sel;
}

CellMatrix linear_reg_forward_select(const CellMatrix& x, const CellMatrix& y,
                                     const CellMatrix& pvalue, const CellMatrix& steps,
                                     const CellMatrix& startsWith, const CellMatrix& weight) {
    const XYW data = read_xyw(x, y, weight);
    return forward_select_linear_run(data, read_selection_args(pvalue, steps, startsWith));
}

CellMatrix linear_reg_forward_select_from_file(const std::string& filename,
                                               const CellMatrix& xNames, const CellMatrix& yName,
                                               const CellMatrix& pvalue, const CellMatrix& steps,
                                               const CellMatrix& startsWith,
                                               const CellMatrix& weightName,
                                               const CellMatrix& delimiter) {
    const char separator = read_delimiter(delimiter);
    const XYW data = read_xyw_from_file(filename, xNames, yName, weightName, separator);
    return forward_select_linear_run(data, read_selection_args(pvalue, steps, startsWith));
}

CellMatrix logistic_reg_forward_select(const CellMatrix& x, const CellMatrix& y,
                                       const CellMatrix& pvalue, const CellMatrix& steps,
                                       const CellMatrix& startsWith, const CellMatrix& weight) {
    const XYW data = read_xyw(x, y, weight);
    return forward_select_logistic_run(data, read_selection_args(pvalue, steps, startsWith));
}

CellMatrix logistic_reg_forward_select_from_file(const std::string& filename,
                                                 const CellMatrix& xNames, const CellMatrix& yName,
                                                 const CellMatrix& pvalue, const CellMatrix& steps,
                                                 const CellMatrix& startsWith,
                                                 const CellMatrix& weightName,
                                                 const CellMatrix& delimiter) {
    const char separator = read_delimiter(delimiter);
    const XYW data = read_xyw_from_file(filename, xNames, yName, weightName, separator);
    return forward_select_logistic_run(data, read_selection_args(pvalue, steps, startsWith));
}

}  // namespace zentable
