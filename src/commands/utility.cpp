#include "commands/utility.hpp"

#include <string>
#include <vector>

#include "commands/catalogue.hpp"
#include "xlw/cell_conversions.hpp"

namespace zentable {

namespace {

const char* const kVersion = "2.00";

struct Section {
    const char* numeral;
    const char* heading;
    std::vector<const char*> names;
};

// Kept by hand, as users know it: it is not the registration table. Some
// registered functions are left out, and four names differ from what is
// registered.
const std::vector<Section>& listed_sections() {
    static const std::vector<Section> sections = {
        {"I", "Utility Functions", {"version", "function_list"}},
        {"II",
         "Data Manipulation Functions",
         {"variable_list", "subset", "data_lookup", "data_save", "data_save_tex", "data_load",
          "data_partition", "data_sort", "data_fill", "sort_file", "merge_tables", "rank_items"}},
        {"III",
         "Basic Statistical Functions",
         {"ranks",
          "ranks_from_file",
          "freq",
          "freq_from_file",
          "freq_2d",
          "freq_2d_from_file",
          "means",
          "means_from_file",
          "univariate",
          "univariate_from_file",
          "percentiles",
          "summary",
          "summary_from_file",
          "binning",
          "QQ_plot",
          "variable_corr_select",
          "poly_roots",
          "poly_prod",
          "Lagrange_interpolation",
          "three_moment_match_to_SLN",
          "set",
          "set_union",
          "set_intersection",
          "set_difference"}},
        {"IV",
         "Modeling Functions for All Models",
         {"model_bin_eval", "model_bin_eval_from_file", "model_cont_eval",
          "model_cont_eval_from_file", "model_eval", "model_eval_from_file", "model_score",
          "model_score_from_file", "model_save_scoring_code"}},
        {"V",
         "Weight of Evidence (WOE) Functions",
         {"woe_xcont_ybin", "woe_xcont_ybin_from_file", "woe_xcont_ycont",
          "woe_xcont_ycont_from_file", "woe_xcat_ybin", "woe_xcat_ybin_from_file", "woe_xcat_ycont",
          "woe_xcat_ycont_from_file", "woe_transform", "woe_transform_from_file"}},
        {"VI",
         "Principal Component Analysis and Factor Analysis Functions",
         {"PCA", "factor_analysis"}},
        {"VII",
         "Linear Regression Functions",
         {"linear_reg", "linear_reg_from_file", "linear_reg_forward_select",
          "linear_reg_forward_select_from_file", "linear_reg_score_from_coefs",
          "linear_reg_piecewise", "linear_reg_piecewise_from_file", "poly_reg"}},
        {"VIII", "Partial Least Square Regression Functions", {"pls_reg", "pls_reg_from_file"}},
        {"IX",
         "Logistic Regression Functions",
         {"logistic_reg", "logistic_reg_from_file", "logistic_reg_forward_select",
          "logistic_reg_forward_select_from_file", "logistic_reg_score_from_coefs"}},
        {"X",
         "Time Series Analysis Functions",
         {"ts_acf",
          "ts_pacf",
          "ts_ccf",
          "Box_white_noise_test",
          "Mann_Kendall_trend_test",
          "ADF_test",
          "ts_diff",
          "ts_sma",
          "lowess",
          "natural_cubic_spline",
          "garch",
          "stochastic_process",
          "stochastic_processs_simulate",
          "Holt_Winters",
          "Holt_Winters_forecast",
          "HP_filter",
          "arima",
          "sarima",
          "arima_forecast",
          "sarima_forecast",
          "arima_simulate",
          "sarima_simulate",
          "arma_to_ma",
          "arma_to_ar",
          "acf_of_arma"}},
        {"XI", "Linear and Quadratic Discriminant Analysis Functions", {"LDA", "QDA"}},
        {"XII", "Survival Analysis Functions", {"Kaplan_Meier"}},
        {"XIII", "Correspondence Analysis Functions", {"corresp_analysis"}},
        {"XIV",
         "Naive Bayes Classifier Functions",
         {"naive_bayes_classifier", "naive_bayes_classifier_from_file"}},
        {"XV",
         "Tree-based Model Functions",
         {"tree", "tree_from_file", "tree_boosting_logistic_reg",
          "tree_boosting_logistic_reg_from_file", "tree_boosting_ls",
          "tree_boosting_ls_from_file"}},
        {"XVI",
         "Clustering and Segmentation Functions",
         {"k_means", "k_means_from_file", "cmds", "mds"}},
        {"XVII", "Neural Network Model Functions", {"neural_net", "neural_net_from_file"}},
        {"XVIII", "Support Vector Machine (SVM) Model Functions", {"svm", "svm_from_file"}},
        {"XIX",
         "Optimization Functions",
         {"linear_prog", "quadratic_prog", "lcp", "nls_solver", "diff_evol_solver",
          "diff_evol_min_solver", "diff_evol_nls_solver", "transportation_solver",
          "assignment_solver", "netflow_solver", "maxflow_solver", "shortest_path_solver"}},
        {"XX", "Portfolio Optimization Functions", {"efficient_frontier", "Black_Litterman"}},
        {"XXI", "Control Theory Functions", {"pole_placement"}},
        {"XXII",
         "Matrix Functions",
         {"matrix_random",
          "matrix_cov",
          "matrix_cov_from_file",
          "matrix_corr",
          "matrix_corr_from_file",
          "matrix_corr_from_cov",
          "matrix_cov_from_corr",
          "matrix_stdev_from_cov",
          "matrix_prod",
          "matrix_directprod",
          "matrix_elementprod",
          "matrix_plus",
          "matrix_minus",
          "matrix_I",
          "matrix_t",
          "matrix_diag",
          "matrix_tr",
          "matrix_inv",
          "matrix_pinv",
          "matrix_complex_pinv",
          "matrix_solver",
          "matrix_tridiagonal_solver",
          "matrix_pentadiagonal_solver",
          "matrix_chol",
          "matrix_sym_eigen",
          "matrix_eigen",
          "matrix_complex_eigen",
          "matrix_svd",
          "matrix_LU",
          "matrix_QR",
          "matrix_complex_QR",
          "matrix_Schur",
          "matrix_complex_Schur",
          "matrix_sweep",
          "matrix_det",
          "matrix_exp",
          "matrix_complex_exp",
          "matrix_distance",
          "matrix_freq",
          "matrix_from_vector",
          "matrix_to_vector",
          "matrix_decimal_to_fraction"}},
        {"XXIII", "Fast Fourier Transform Functions", {"FFT", "IFFT"}},
        {"XXIV",
         "Numerical Integration Functions",
         {"gauss_legendre", "gauss_laguerre", "gauss_hermite", "integral", "function_eval",
          "prime_numbers", "Halton_numbers", "Sobol_numbers", "Latin_hypercube"}},
        {"XXV",
         "Probability Functions",
         {"prob_normal", "prob_normal_inv", "prob_normal_table", "prob_t", "prob_t_inv",
          "prob_t_table", "prob_chi", "prob_chi_inv", "prob_chi_table", "prob_f", "prob_f_inv",
          "prob_f_table", "Cornish_Fisher_expansion"}},
    };
    return sections;
}

// A listed name's sentence: the registered function's help, or for the names
// that differ from the registration, the help of the function they stand for.
std::string description_of(const std::string& listed) {
    if (listed == "data_save_tex")
        return "Saves a table as a LaTeX tabular text file";
    std::string registered = listed;
    if (listed == "stochastic_processs_simulate")
        registered = "stochastic_process_simulate";
    if (listed == "tree_boosting_ls")
        registered = "tree_boosting_ls_reg";
    if (listed == "tree_boosting_ls_from_file")
        registered = "tree_boosting_ls_reg_from_file";
    const FunctionInfo* f = find_function(registered);
    return f ? trim(f->help, 0) : std::string();
}

}  // namespace

CellMatrix version() {
    return CellMatrix(std::string("Zentable ") + kVersion + " is built on " + __DATE__ + " " +
                      __TIME__);
}

CellMatrix function_list() {
    const auto& sections = listed_sections();
    std::size_t rows = 1;
    for (const Section& s : sections)
        rows += s.names.size() + 2;

    CellMatrix table(rows, 3);
    table(0, 0) = std::string("Zentable ") + kVersion;
    table(0, 1) = "Function List";
    std::size_t row = 1;
    for (const Section& s : sections) {
        table(row, 0) = s.numeral;
        table(row, 1) = s.heading;
        ++row;
        int number = 1;
        for (const char* name : s.names) {
            table(row, 0) = number++;
            table(row, 1) = std::string(name) + "()";
            table(row, 2) = description_of(name);
            ++row;
        }
        ++row;  // a blank row closes each section
    }
    return table;
}

}  // namespace zentable
