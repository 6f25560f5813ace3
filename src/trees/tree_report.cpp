#include "trees/tree_report.hpp"

#include <cmath>

#include "regression/logistic_fit.hpp"

namespace zentable {

void write_anova_block(CellMatrix& r, const ContEval& eval, int nv) {
    r(2, 0) = "Analysis of Variance";
    r(4, 0) = "Number of Records";
    r(4, 1) = eval.n;
    r(5, 0) = "Number of Variables";
    r(5, 1) = nv;
    r(6, 0) = "R-Square";
    r(6, 1) = eval.r_square;
    r(7, 0) = "Adj R-Square";
    r(7, 1) = eval.adj_r_square;
    write_cont_eval_rows(r, eval);
}

void count_events(const dvec& coded, const dvec& weight, BinaryPerformance& p) {
    p.n = static_cast<int>(coded.size());
    p.n1 = 0;
    p.w = 0.0;
    p.w1 = 0.0;
    for (std::size_t i = 0; i < coded.size(); ++i) {
        p.w += weight[i];
        if (coded[i] > 0.5) {
            ++p.n1;
            p.w1 += weight[i];
        }
    }
}

void write_binary_block(CellMatrix& r, const BinaryPerformance& p, const BinaryEval& eval) {
    const int n = p.n;
    r(2, 0) = "Model Performance";
    r(4, 0) = p.y_name;
    r(4, 1) = "Freq";
    r(4, 2) = "Percent";
    r(4, 3) = "Weight";
    r(4, 4) = "Weight Percent";
    r(5, 0) = "ALL";
    r(5, 1) = n;
    r(5, 2) = 1;
    r(5, 3) = p.w;
    r(5, 4) = 1;
    r(6, 0) = p.levels[1];
    r(6, 1) = p.n1;
    r(6, 2) = static_cast<double>(p.n1) / n;
    r(6, 3) = p.w1;
    r(6, 4) = p.w1 / p.w;
    r(7, 0) = p.levels[0];
    r(7, 1) = n - p.n1;
    r(7, 2) = static_cast<double>(n - p.n1) / n;
    r(7, 3) = p.w - p.w1;
    r(7, 4) = (p.w - p.w1) / p.w;
    r(8, 0) = "Number of Variables";
    r(8, 1) = p.candidates;

    write_model_fit_rows(r, 10, n, p.nv + 1, p.ll0, p.ll1);

    write_association_rows(r, 17, eval);
}

std::size_t importance_variable(const dvec& importance_row) {
    return static_cast<std::size_t>(importance_row[0] + 0.01);
}

void write_importance(CellMatrix& r, std::size_t row, const dmat& importance, const svec& names) {
    r(row, 0) = "#";
    r(row, 1) = "Variable";
    r(row, 2) = "Relative Importance";
    for (std::size_t i = 0; i < importance.size(); ++i) {
        r(row + 1 + i, 0) = static_cast<int>(i + 1);
        r(row + 1 + i, 1) = names[importance_variable(importance[i])];
        r(row + 1 + i, 2) = importance[i][1];
    }
}

}  // namespace zentable
