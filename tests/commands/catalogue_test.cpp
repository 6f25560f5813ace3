#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "commands/catalogue.hpp"

namespace zentable {
namespace {

std::vector<std::string> words(const std::string& text) {
    std::istringstream in(text);
    std::vector<std::string> out;
    for (std::string word; in >> word;)
        out.push_back(word);
    return out;
}

// The registration order, kept apart from the table so that a function moved,
// dropped or renamed in the table shows up here.
const std::vector<std::string> kRegistrationOrder = words(
    "version function_list variable_list subset data_info data_lookup data_save data_load "
    "data_partition data_sort data_fill sort_file merge_tables rank_items split_str ranks "
    "ranks_from_file freq freq_from_file freq_2d freq_2d_from_file means means_from_file "
    "univariate univariate_from_file percentiles summary summary_from_file binning QQ_plot "
    "variable_corr_select poly_roots poly_prod Lagrange_interpolation "
    "three_moment_match_to_SLN set set_union set_intersection set_difference model_bin_eval "
    "model_bin_eval_from_file model_cont_eval model_cont_eval_from_file model_eval "
    "model_eval_from_file model_score model_score_node model_score_from_file "
    "model_save_scoring_code woe_xcont_ybin woe_xcont_ybin_from_file woe_xcont_ycont "
    "woe_xcont_ycont_from_file woe_xcat_ybin woe_xcat_ybin_from_file woe_xcat_ycont "
    "woe_xcat_ycont_from_file woe_transform woe_transform_from_file PCA factor_analysis "
    "linear_reg linear_reg_nz linear_reg_envelope linear_reg_envelope_from_file "
    "linear_reg_from_file linear_reg_forward_select linear_reg_forward_select_from_file "
    "linear_reg_score_from_coefs linear_reg_piecewise linear_reg_piecewise_from_file "
    "poly_reg pls_reg pls_reg_from_file logistic_reg logistic_reg_from_file "
    "logistic_reg_forward_select logistic_reg_forward_select_from_file "
    "logistic_reg_score_from_coefs ts_acf ts_pacf ts_ccf Box_white_noise_test "
    "Mann_Kendall_trend_test ADF_test ts_diff ts_sma lowess natural_cubic_spline garch "
    "stochastic_process stochastic_process_simulate Holt_Winters Holt_Winters_forecast "
    "HP_filter arima sarima arima_forecast sarima_forecast arima_simulate sarima_simulate "
    "arma_to_ma arma_to_ar acf_of_arma ddacf_of_arma detect_outlier LDA QDA Kaplan_Meier "
    "corresp_analysis naive_bayes_classifier naive_bayes_classifier_from_file tree "
    "tree_from_file tree_boosting_logistic_reg tree_boosting_logistic_reg_from_file "
    "tree_boosting_ls_reg tree_boosting_ls_reg_from_file k_means k_means_from_file cmds mds "
    "neural_net neural_net_from_file svm svm_from_file linear_prog quadratic_prog lcp "
    "nls_solver diff_evol_solver diff_evol_min_solver diff_evol_nls_solver "
    "transportation_solver assignment_solver netflow_solver maxflow_solver "
    "shortest_path_solver efficient_frontier Black_Litterman pole_placement matrix_random "
    "matrix_cov matrix_cov_from_file matrix_corr matrix_corr_from_file matrix_corr_from_cov "
    "matrix_cov_from_corr matrix_stdev_from_cov matrix_prod matrix_directprod "
    "matrix_elementprod matrix_plus matrix_minus matrix_I matrix_t matrix_diag matrix_tr "
    "matrix_inv matrix_pinv matrix_complex_pinv matrix_solver matrix_tridiagonal_solver "
    "matrix_pentadiagonal_solver matrix_Sylvester_solver matrix_chol matrix_sym_eigen "
    "matrix_eigen matrix_complex_eigen matrix_svd matrix_LU matrix_QR matrix_complex_QR "
    "matrix_Schur matrix_complex_Schur matrix_sweep matrix_det matrix_exp matrix_complex_exp "
    "matrix_distance matrix_freq matrix_from_vector matrix_to_vector "
    "matrix_decimal_to_fraction FFT IFFT gauss_legendre gauss_laguerre gauss_hermite "
    "integral function_eval prime_numbers Halton_numbers Sobol_numbers Latin_hypercube "
    "prob_normal prob_normal_inv prob_normal_table prob_t prob_t_inv prob_t_table prob_chi "
    "prob_chi_inv prob_chi_table prob_f prob_f_inv prob_f_table Cornish_Fisher_expansion");

TEST(Catalogue, HoldsAllFunctionsInRegistrationOrder) {
    const auto& functions = catalogue();
    ASSERT_EQ(functions.size(), 208u);
    ASSERT_EQ(kRegistrationOrder.size(), 208u);
    for (std::size_t i = 0; i < functions.size(); ++i)
        EXPECT_EQ(functions[i].excel_name, kRegistrationOrder[i]) << "at position " << i;

    std::set<std::string> distinct;
    for (const FunctionInfo& f : functions)
        distinct.insert(f.excel_name);
    EXPECT_EQ(distinct.size(), functions.size());
}

TEST(Catalogue, EntriesShareTheFixedFields) {
    for (const FunctionInfo& f : catalogue()) {
        SCOPED_TRACE(f.excel_name);
        EXPECT_EQ(f.library, "Zentable");
        EXPECT_EQ(f.entry_name, "xl" + f.excel_name);
        // One blank on each side, and a sentence between them.
        ASSERT_GE(f.help.size(), 3u);
        EXPECT_EQ(f.help.front(), ' ');
        EXPECT_EQ(f.help.back(), ' ');
        EXPECT_NE(f.help[1], ' ');
        EXPECT_NE(f.help[f.help.size() - 2], ' ');
        EXPECT_FALSE(f.is_volatile || f.thread_safe || f.macro || f.async);

        std::set<std::string> distinct;
        for (const ArgumentInfo& a : f.args) {
            EXPECT_FALSE(a.name.empty());
            EXPECT_FALSE(a.help.empty()) << a.name;
            EXPECT_TRUE(a.type == "XLF_OPER" || a.type == "B") << a.name;
            distinct.insert(a.name);
        }
        EXPECT_EQ(distinct.size(), f.args.size()) << "an argument name repeats";
    }
}

TEST(Catalogue, PlainNumbersAreTheRequiredDistributionArgumentsAndThoseOfBinning) {
    const std::vector<std::string> listed = words(
        "prob_normal.z prob_normal_inv.p prob_t.t prob_t.df prob_t_inv.p prob_t_inv.df prob_chi.c "
        "prob_chi.df prob_chi_inv.p prob_chi_inv.df prob_f.f prob_f.df1 prob_f.df2 prob_f_inv.p "
        "prob_f_inv.df1 prob_f_inv.df2 binning.lower binning.upper binning.numBins "
        "Cornish_Fisher_expansion.cl Cornish_Fisher_expansion.skewness "
        "Cornish_Fisher_expansion.kurtosis");
    const std::set<std::string> expected(listed.begin(), listed.end());
    std::set<std::string> plain_args;
    std::size_t count = 0;
    for (const FunctionInfo& f : catalogue())
        for (const ArgumentInfo& a : f.args)
            if (a.type == "B") {
                plain_args.insert(f.excel_name + "." + a.name);
                ++count;
            }
    EXPECT_EQ(count, 22u);
    EXPECT_EQ(plain_args, expected);
    // The optional non-centrality is decoded from a cell, so it cannot be a plain double.
    EXPECT_EQ(find_function("prob_chi")->args.at(2).type, "XLF_OPER");
    EXPECT_EQ(find_function("prob_chi_inv")->args.at(2).type, "XLF_OPER");
}

TEST(Catalogue, OptionalArgumentsNameTheirDefault) {
    std::size_t optional = 0;
    for (const FunctionInfo& f : catalogue())
        for (const ArgumentInfo& a : f.args) {
            SCOPED_TRACE(f.excel_name + " " + a.name);
            const std::size_t opt = a.help.find("Optional:");
            const std::size_t def = a.help.find("Default:");
            EXPECT_EQ(opt == std::string::npos, def == std::string::npos);
            if (opt == std::string::npos)
                continue;
            ++optional;
            EXPECT_LT(opt, def);
            EXPECT_LT(def + 9, a.help.size()) << "Default: names no value";
        }
    EXPECT_GT(optional, 0u);

    // Every weight and every delimiter may be left out.
    const std::set<std::string> always_optional = {"delimiter", "weight", "weightName",
                                                   "weightTest", "weightTestName"};
    for (const FunctionInfo& f : catalogue())
        for (const ArgumentInfo& a : f.args)
            if (always_optional.count(a.name)) {
                EXPECT_NE(a.help.find("Optional:"), std::string::npos)
                    << f.excel_name << " " << a.name;
            }
}

TEST(Catalogue, FortyTwoTakeATextAndBuiltCommandsTakeTheKindsTheirEntriesRegister) {
    // The signature decides how each argument arrives; it must agree with the
    // registered type ("B" for a plain number) and with the text-argument names.
    const std::set<std::string> text_names = {"filename", "infilename", "outfilename", "model"};
    std::size_t take_text = 0;
    for (const FunctionInfo& f : catalogue()) {
        take_text += std::any_of(f.args.begin(), f.args.end(),
                                 [&](const ArgumentInfo& a) { return text_names.count(a.name); });
        if (!f.is_built())
            continue;
        ASSERT_EQ(f.command.kinds.size(), f.args.size()) << f.excel_name;
        for (std::size_t i = 0; i < f.args.size(); ++i) {
            const ArgKind expected = f.args[i].type == "B"              ? ArgKind::number
                                     : text_names.count(f.args[i].name) ? ArgKind::text
                                                                        : ArgKind::table;
            EXPECT_EQ(f.command.kinds[i], expected) << f.excel_name << " " << f.args[i].name;
        }
    }
    EXPECT_EQ(take_text, 42u);
}

}  // namespace
}  // namespace zentable
