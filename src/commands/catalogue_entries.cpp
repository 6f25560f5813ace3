#include "commands/catalogue.hpp"
#include "commands/charts.hpp"
#include "commands/utility.hpp"
#include "data/sets.hpp"
#include "data/sorting.hpp"
#include "data/table_commands.hpp"
#include "learners/discriminant.hpp"
#include "learners/naive_bayes.hpp"
#include "learners/neural_net.hpp"
#include "learners/svm.hpp"
#include "models/model_eval.hpp"
#include "models/scoring.hpp"
#include "multivariate/k_means.hpp"
#include "multivariate/kaplan_meier.hpp"
#include "multivariate/pca.hpp"
#include "multivariate/scaling.hpp"
#include "numeric/fft.hpp"
#include "numeric/gauss_quadrature.hpp"
#include "numeric/latin_hypercube.hpp"
#include "numeric/matrix_algebra.hpp"
#include "numeric/matrix_factor.hpp"
#include "numeric/matrix_random.hpp"
#include "numeric/matrix_reshape.hpp"
#include "numeric/matrix_stats.hpp"
#include "numeric/polynomials.hpp"
#include "numeric/prob_functions.hpp"
#include "numeric/sequences.hpp"
#include "optimisation/diff_evol.hpp"
#include "optimisation/function_eval.hpp"
#include "optimisation/lcp.hpp"
#include "optimisation/linear_prog.hpp"
#include "optimisation/netflow.hpp"
#include "optimisation/nls_solver.hpp"
#include "regression/forward_select.hpp"
#include "regression/linear_reg.hpp"
#include "regression/linear_reg_variants.hpp"
#include "regression/logistic_reg.hpp"
#include "stats/binning.hpp"
#include "stats/freq.hpp"
#include "stats/freq_2d.hpp"
#include "stats/means.hpp"
#include "stats/percentiles.hpp"
#include "stats/ranks.hpp"
#include "stats/summary.hpp"
#include "stats/variable_corr_select.hpp"
#include "timeseries/adf_test.hpp"
#include "timeseries/arima.hpp"
#include "timeseries/arma_transforms.hpp"
#include "timeseries/box_test.hpp"
#include "timeseries/correlograms.hpp"
#include "timeseries/filters.hpp"
#include "timeseries/garch.hpp"
#include "timeseries/holt_winters.hpp"
#include "timeseries/lowess.hpp"
#include "timeseries/mann_kendall.hpp"
#include "timeseries/stochastic_process.hpp"
#include "trees/tree.hpp"
#include "trees/tree_boosting.hpp"
#include "woe/woe_transform.hpp"
#include "woe/woe_xcat.hpp"
#include "woe/woe_xcont.hpp"

namespace zentable {

namespace {

// Help texts that many entries share, so that one argument reads the same in
// every dialog that shows it.
constexpr const char* kDelimiter =
    "Character that separates the fields of the file: a character, or \\t for a tab, \\s for a "
    "blank. Optional: omit for a comma. Default: ,";
constexpr const char* kFilename =
    "Path of the delimited data file, whose first line names the variables";
constexpr const char* kX =
    "Table of the x variables, with their names in the first row or the first column";
constexpr const char* kY = "Column of the y variable with its name in the first cell";
constexpr const char* kWeight =
    "Column of record weights with its name in the first cell. Optional: omit for equal weights. "
    "Default: 1.0 for every record";
constexpr const char* kXNames = "Names of the x variables in the file, in one row or one column";
constexpr const char* kYName = "Name of the y variable in the file";
constexpr const char* kWeightName =
    "Name of the weight variable in the file. Optional: omit for equal weights. Default: 1.0 for "
    "every record";
constexpr const char* kVarNames = "Names of the variables in the file, in one row or one column";
constexpr const char* kLambda =
    "Ridge constants on the standardised scale, one for all x or one for each. Optional: omit for "
    "least squares. Default: none";
constexpr const char* kModel =
    "Handle of a stored model, as the first cell of its report shows it, or the path of a PMML "
    "file (.xml) of a linear model";
constexpr const char* kDataWithHeaders = "Table of data with the variable names in the first row";
constexpr const char* kColumnData = "One column of values with its name in the first cell";
constexpr const char* kSeries = "Column of the series with its name in the first cell";
constexpr const char* kMatrix = "Matrix of numbers";
constexpr const char* kMatrix1 = "First matrix of numbers, or a single number";
constexpr const char* kMatrix2 = "Second matrix of numbers, or a single number";
constexpr const char* kMatrixReal = "Real part of the complex matrix";
constexpr const char* kMatrixImag =
    "Imaginary part of the complex matrix, of the same size as matrixReal";
constexpr const char* kSquareMatrix = "Square matrix of numbers";
constexpr const char* kPValue =
    "Significance level between 0 and 1: neighbouring bins that do not differ at this level are "
    "merged. Optional: omit to merge by maxNumBins alone. Default: 1";
constexpr const char* kInitialNumBins =
    "Number of equal-frequency bins to start from, a positive integer";
constexpr const char* kMaxNumBins =
    "Largest number of bins to keep, a positive integer. Optional: omit for no limit. Default: "
    "2147483647";
constexpr const char* kMinNumRecords =
    "Least number of records with x missing for the Missing group to be scored by its own value "
    "(its WOE, or its mean of y); a smaller group is shown in the report but scored as 0. A "
    "positive integer. Optional: omit for 50. Default: 50";
constexpr const char* kCategoricalX =
    "Table of categorical x variables with their names in the first row; each cell is taken as "
    "its text, and empty cells form a category of their own, shown as (empty)";
constexpr const char* kContinuousX =
    "Table of continuous x variables with their names in the first row; a missing cell counts "
    "as missing for its variable alone";
constexpr const char* kBinaryY =
    "Column of the binary target, two distinct values, with its name in the first cell";
constexpr const char* kContinuousY =
    "Column of the continuous target with its name in the first cell";
constexpr const char* kSteps =
    "Largest number of variables to select beyond startsWith, a positive integer";
constexpr const char* kEntryPValue =
    "Significance level between 0 and 1 that a variable must reach to enter";
constexpr const char* kStartsWith =
    "Names of variables that enter first, in this order and without a test, in one row or one "
    "column. Optional: omit to start from the intercept alone. Default: none";
constexpr const char* kCoefs =
    "Two columns: variable names, with Intercept for the constant, and their coefficients";
constexpr const char* kTreeConfig =
    "Two columns of settings and values: METHOD (LS, GINI or ENTROPY), NUMTERMINALS, MINSIZE, "
    "MINCHILD and MAXLEVEL, each optional, defaults LS, 4, 50, 30 and 3. Optional: omit for all "
    "the defaults. Default: none";
constexpr const char* kBoostingConfig =
    "Two columns of settings and values: LEARNRATE, NUMTREES, NUMTERMINALS, MINSIZE, MINCHILD and "
    "MAXLEVEL, each optional, defaults 0.1, 100, 4, 50, 30 and 3. Optional: omit for all the "
    "defaults. Default: none";
constexpr const char* kMaxLag =
    "Largest lag, a positive integer. Optional: omit for 10. Default: 10";
constexpr const char* kAr =
    "AR coefficients for lags 1, 2 and so on, in one row or one column. Optional: omit for none. "
    "Default: none";
constexpr const char* kMa =
    "MA coefficients for lags 1, 2 and so on, in one row or one column. Optional: omit for none. "
    "Default: none";
constexpr const char* kSigma = "Standard deviation of the noise. Optional: omit for 1. Default: 1";
constexpr const char* kD =
    "Order of differencing, a non-negative integer. Optional: omit for 0. "
    "Default: 0";
constexpr const char* kSeasonalPeriod =
    "Number of points in a season, a non-negative integer. Optional: omit for 0. Default: 0";
constexpr const char* kSeasonalAR =
    "Seasonal AR coefficients for lags s, 2s and so on, in one row or one column. Optional: omit "
    "for none. Default: none";
constexpr const char* kSeasonalD =
    "Order of seasonal differencing, a non-negative integer. Optional: omit for 0. Default: 0";
constexpr const char* kSeasonalMA =
    "Seasonal MA coefficients for lags s, 2s and so on, in one row or one column. Optional: omit "
    "for none. Default: none";
constexpr const char* kFunc =
    "Expression of the function in one column, sub-expressions separated by semicolons; the "
    "cells are joined with a blank";
constexpr const char* kBounds =
    "One row per variable: its name, its lower bound and its upper bound";
constexpr const char* kMaxNumGenerations =
    "Number of generations of the evolution, a positive integer. Optional: omit for 200. "
    "Default: 200";
constexpr const char* kEvolutionSeed =
    "Seed of the random number generator, a non-negative integer; 0 uses the timer. Optional: "
    "omit for 100. Default: 100";
constexpr const char* kMinOrMax =
    "MIN or MAX, in any case. Optional: omit to minimise. Default: MIN";
constexpr const char* kNumPointsQuadrature = "Number of points, an integer larger than 1";
constexpr const char* kNumbers = "Number of points to generate, a positive integer";
constexpr const char* kDimension =
    "Number of dimensions, a positive integer. Optional: omit for 1. Default: 1";

}  // namespace

const std::vector<FunctionInfo>& catalogue() {
    static const std::vector<FunctionInfo> functions = {
        // Utility
        function("version",
                 "Returns the name and version of the add-in with the date and time of its build",
                 {}, command<&version>()),
        function("function_list",
                 "Lists the functions of the add-in by section, with a line on each", {},
                 command<&function_list>()),

        // Data handling
        function("variable_list",
                 "Lists the variable names of the head line of a delimited data file, one per row",
                 {oper("filename", kFilename), oper("delimiter", kDelimiter)},
                 command<&variable_list>()),
        function("subset",
                 "Keeps the columns of a table whose indicator is positive, with all of its rows",
                 {oper("inputData", "Table whose columns are to be selected"),
                  oper("indicator",
                       "One indicator per column, in one row or one column: 1 keeps the column, 0 "
                       "drops it; columns beyond the indicators are dropped")},
                 command<&subset>()),
        function(
            "data_info", "Reports the number of records and the variables of a delimited data file",
            {oper("filename", kFilename), oper("delimiter", kDelimiter)}, command<&data_info>()),
        function(
            "data_lookup",
            "Looks up each row of keys in a data table by the columns they share and returns "
            "the chosen columns of the first matching row",
            {oper("keys",
                  "Table of key values with the key column names in the first row; each name "
                  "must be a column of dataTable"),
             oper("dataTable", "Table to search, with its column names in the first row"),
             oper("columnIndexesForOutput",
                  "Column numbers of dataTable, from 1, to return for each row of keys, in one "
                  "row or one column. Optional: omit for every column. Default: all columns")},
            command<&data_lookup>()),
        function("data_save", "Writes a table to a delimited text file, one line per row",
                 {oper("inputData", "Table to write; numbers are written to 16 significant digits"),
                  oper("filename", "Path of the file to write; an existing file is replaced"),
                  oper("delimiter", kDelimiter)},
                 command<&data_save>()),
        function(
            "data_load",
            "Reads variables of a delimited data file into a table with the names in the first "
            "row",
            {oper("filename", kFilename),
             oper("varNames",
                  "Names of the variables to read, in one row or one column. Optional: omit "
                  "for every variable. Default: all variables"),
             oper("numRecords",
                  "Number of records to read from the start of the file, a positive integer. "
                  "Optional: omit for every record. Default: all records"),
             oper("delimiter", kDelimiter)},
            command<&data_load>()),
        function("data_partition",
                 "Draws the rows of one part of a random partition of a table, with its header row",
                 {oper("inputData", "Table to partition, with its header in the first row"),
                  oper("partition",
                       "Fractions of the parts, at least two, adding up to 1, in one row or one "
                       "column"),
                  oper("part", "Number of the part to return, from 1 to the number of fractions"),
                  oper("seed",
                       "Seed of the random number generator, a non-negative integer; 0 uses the "
                       "timer, and one seed gives parts that cover the table without overlap")},
                 command<&data_partition>()),
        function("data_sort",
                 "Sorts the rows of a table by key columns, each in ascending or descending order",
                 {oper("inputData", "Table to sort, with its column names in the first row"),
                  oper("keys",
                       "Two columns: the names of the key columns in order of precedence, and 1 "
                       "for ascending or -1 for descending order")},
                 command<&data_sort>()),
        function("data_fill", "Fills the empty cells of a table with a value",
                 {oper("inputData", "Table whose empty cells are to be filled"),
                  oper("value", "Value to put in every empty cell, in one cell")},
                 command<&data_fill>()),
        function(
            "sort_file",
            "Sorts the records of a delimited data file by key variables and writes them under "
            "the head line",
            {oper("filename", "Path of the delimited data file to sort"),
             oper("keys",
                  "Two columns: the names of the key variables in order of precedence, and 1 "
                  "for ascending or -1 for descending order"),
             oper("outfilename",
                  "Path of the sorted file, in one cell. Optional: omit to rewrite the input "
                  "file. Default: filename"),
             oper("delimiter", kDelimiter)},
            command<&sort_file>()),
        function("merge_tables",
                 "Joins the rows of two tables on equal numeric keys, each row of the first with "
                 "the first match in the second, and returns the chosen columns of both",
                 {oper("table1", "First table, without a header row"),
                  oper("table2", "Second table, without a header row"),
                  oper("key1", "Column number of the key in table1, from 1"),
                  oper("key2", "Column number of the key in table2, from 1"),
                  oper("output1",
                       "Column numbers of table1 to return, from 1, in one row or one column"),
                  oper("output2",
                       "Column numbers of table2 to return, from 1, in one row or one column")},
                 command<&merge_tables>()),
        function("rank_items",
                 "Returns the items whose ranks by key lie between two ranks, in order of rank",
                 {oper("keys", "Column of the numbers by which the items are ranked"),
                  oper("items", "Column of item names as text, of the same size as keys"),
                  oper("rankFrom",
                       "First rank to return, a positive integer not above the number of items"),
                  oper("rankTo",
                       "Last rank to return, not below rankFrom. Optional: omit for the item of "
                       "rankFrom alone. Default: rankFrom"),
                  oper("order",
                       "1 ranks the largest key first, -1 the smallest. Optional: omit for the "
                       "largest first. Default: 1")},
                 command<&rank_items>()),
        function(
            "split_str", "Splits a text at a delimiter into a column of trimmed pieces",
            {oper("text", "Text to split, in one cell"),
             oper("delimiter",
                  "Character that separates the pieces: a character, or \\t for a tab, \\s for "
                  "a blank. Optional: omit for a comma. Default: ,")},
            command<&split_str>()),

        // Descriptive statistics
        function("ranks",
                 "Gives each record the rank group of its value when the values are cut into "
                 "groups of equal size",
                 {oper("inputData", kColumnData),
                  oper("numBins", "Number of rank groups, a positive integer"),
                  oper("order",
                       "1 ranks from the smallest value up, -1 from the largest down. Optional: "
                       "omit for the smallest first. Default: 1")},
                 command<&ranks>()),
        function(
            "ranks_from_file",
            "Appends the rank group of a variable of a delimited data file as a new column of "
            "a copy of the file",
            {oper("varName", "Name of the variable to rank"), oper("filename", kFilename),
             oper("rankVarName", "Name of the new column of rank groups"),
             oper("outfilename", "Path of the file to write: the input with the ranks appended"),
             oper("numBins", "Number of rank groups, a positive integer"),
             oper("order",
                  "1 ranks from the smallest value up, -1 from the largest down. Optional: "
                  "omit for the smallest first. Default: 1"),
             oper("delimiter", kDelimiter)},
            command<&ranks_from_file>()),
        function(
            "freq",
            "Counts the distinct values of each variable of a table, with their fractions and "
            "cumulative counts",
            {oper("inputData", kDataWithHeaders),
             oper("includeMissing",
                  "1 counts empty cells in a Missing row and in the totals, 0 leaves them out. "
                  "Optional: omit to leave them out. Default: 0")},
            command<&freq>()),
        function("freq_from_file",
                 "Counts the distinct values of variables of a delimited data file, with their "
                 "fractions and cumulative counts",
                 {oper("filename", kFilename), oper("varNames", kVarNames),
                  oper("delimiter", kDelimiter),
                  oper("includeMissing",
                       "1 counts empty fields in a Missing row and in the totals, 0 leaves them "
                       "out. Optional: omit to leave them out. Default: 0")},
                 command<&freq_from_file>()),
        function("freq_2d",
                 "Cross-tabulates two variables, as a two-way table or as a list of pairs",
                 {oper("x1", "First variable, one column with its name in the first cell"),
                  oper("x2",
                       "Second variable, one column of the size of x1 with its name in the first "
                       "cell"),
                  oper("format",
                       "TABLE for a two-way table, LIST for one row per pair of values. Optional: "
                       "omit for a table. Default: TABLE"),
                  oper("output",
                       "Up to four letters Y or N that show or hide Freq, Percent, RowPct and "
                       "ColPct, in this order. Optional: omit for all four. Default: YYYY")},
                 command<&freq_2d>()),
        function("freq_2d_from_file",
                 "Cross-tabulates two variables of a delimited data file, as a two-way table or as "
                 "a list of pairs",
                 {oper("filename", kFilename), oper("x1Name", "Name of the first variable"),
                  oper("x2Name", "Name of the second variable"),
                  oper("format",
                       "TABLE for a two-way table, LIST for one row per pair of values. Optional: "
                       "omit for a table. Default: TABLE"),
                  oper("output",
                       "Up to four letters Y or N that show or hide Freq, Percent, RowPct and "
                       "ColPct, in this order. Optional: omit for all four. Default: YYYY"),
                  oper("delimiter", kDelimiter)},
                 command<&freq_2d_from_file>()),
        function("means",
                 "Computes the count, sum, mean, population standard deviation, minimum and "
                 "maximum of each variable",
                 {oper("inputData",
                       "Table of variables with their names in the first row; a cell that is not a "
                       "number counts as missing for its variable")},
                 command<&means>()),
        function("means_from_file",
                 "Computes the count, sum, mean, population standard deviation, minimum and "
                 "maximum of variables of a delimited data file",
                 {oper("filename", kFilename), oper("varNames", kVarNames),
                  oper("delimiter", kDelimiter)},
                 command<&means_from_file>()),
        function("univariate",
                 "Computes the count, sum, mean, sample standard deviation, percentiles and five "
                 "smallest and largest values of each variable",
                 {oper("inputData",
                       "Table of variables with their names in the first row; a cell that is not a "
                       "number counts as missing for its variable")},
                 command<&univariate>()),
        function("univariate_from_file",
                 "Computes the count, sum, mean, sample standard deviation, percentiles and five "
                 "smallest and largest values of variables of a delimited data file",
                 {oper("filename", kFilename), oper("varNames", kVarNames),
                  oper("delimiter", kDelimiter)},
                 command<&univariate_from_file>()),
        function("percentiles",
                 "Computes percentiles of a variable without interpolation, over all values or by "
                 "class",
                 {oper("x", "One column or row of numbers with its name in the first cell"),
                  oper("p", "Probabilities between 0 and 1, in one row or one column"),
                  oper("classVar",
                       "Class of each value of x, of the same size as x. Optional: omit for one "
                       "group. Default: all values in one group")},
                 command<&percentiles>()),
        function("summary",
                 "Computes weighted statistics of analysis variables in the groups of class "
                 "variables",
                 {oper("classVars", "Table of class variables with their names in the first row"),
                  oper("x",
                       "Table of analysis variables with their names in the first row; a cell "
                       "that is not a number is missing for its variable"),
                  oper("weight", kWeight),
                  oper("nway",
                       "1 for the groups of all class variables together, 0 for the groups of "
                       "every subset of them. Optional: omit for all together. Default: 1"),
                  oper("output",
                       "Statistics to show, among Sum, Avg, Stdev, Min and Max, in one row or one "
                       "column. Optional: omit for all five. Default: Sum, Avg, Stdev, Min, Max")},
                 command<&summary>()),
        function("summary_from_file",
                 "Computes weighted statistics of analysis variables of a delimited data file in "
                 "the groups of class variables",
                 {oper("filename", kFilename),
                  oper("classVarNames", "Names of the class variables, in one row or one column"),
                  oper("xNames", "Names of the analysis variables, in one row or one column"),
                  oper("weightName", kWeightName),
                  oper("nway",
                       "1 for the groups of all class variables together, 0 for the groups of "
                       "every subset of them. Optional: omit for all together. Default: 1"),
                  oper("delimiter", kDelimiter)},
                 command<&summary_from_file>()),
        function(
            "binning", "Counts the values of a variable in bins of equal width between two bounds",
            {oper("inputData", kColumnData),
             plain("lower", "Lower bound of the first bin; smaller values fall in the first bin"),
             plain("upper", "Upper bound of the last bin; larger values fall in the last bin"),
             plain("numBins", "Number of bins")},
            command<&binning>()),
        function(
            "QQ_plot",
            "Pairs the sorted values of a variable with the standard normal quantiles of their "
            "probability levels, for a normal QQ plot",
            {oper("inputData", kColumnData)}, command<&QQ_plot>(), qq_chart()),
        function("variable_corr_select",
                 "Finds the pairs of x variables whose correlation reaches a cut-off and keeps, of "
                 "each pair, the variable closer to y",
                 {oper("x", kX), oper("y", kY),
                  oper("corrCutOff",
                       "Absolute correlation between 0 and 1 at or above which a pair is reported"),
                  oper("weight", kWeight)},
                 command<&variable_corr_select>()),
        function("poly_roots",
                 "Finds the real and complex roots of a polynomial from its coefficients",
                 {oper("coefs",
                       "Coefficients c0, c1, up to cn of the powers 0 to n, in one row or one "
                       "column")},
                 command<&poly_roots>()),
        function(
            "poly_prod", "Multiplies two polynomials given by their coefficients",
            {oper("a",
                  "Coefficients of the first polynomial from the power 0 up, in one row or one "
                  "column"),
             oper("b",
                  "Coefficients of the second polynomial from the power 0 up, in one row or "
                  "one column")},
            command<&poly_prod>()),
        function("Lagrange_interpolation",
                 "Finds the coefficients of the polynomial through given points by Lagrange "
                 "interpolation, with its text such as 1 - 2.5*x + 3*x^2",
                 {oper("x", "One column of the x values of the points"),
                  oper("y", "One column of the y values of the points, of the size of x")},
                 command<&Lagrange_interpolation>()),
        function("three_moment_match_to_SLN",
                 "Finds the shifted lognormal distribution whose first three raw moments match "
                 "given ones",
                 {oper("m1", "First raw moment, the mean"), oper("m2", "Second raw moment"),
                  oper("m3", "Third raw moment")},
                 command<&three_moment_match_to_SLN>()),
        function("set",
                 "Lists the distinct values of a table in sorted order, texts before numbers",
                 {oper("matrix", "Table of values; a number and a text are different elements")},
                 command<&set>()),
        function("set_union", "Lists the values that are in either of two sets, in sorted order",
                 {oper("set1", "First set, a table of values"),
                  oper("set2", "Second set, a table of values")},
                 command<&set_union>()),
        function("set_intersection",
                 "Lists the values that are in both of two sets, in sorted order",
                 {oper("set1", "First set, a table of values"),
                  oper("set2", "Second set, a table of values")},
                 command<&set_intersection>()),
        function("set_difference",
                 "Lists the values of the first set that are not in the second, in sorted order",
                 {oper("set1", "First set, a table of values"),
                  oper("set2", "Second set, a table of values")},
                 command<&set_difference>()),

        // Model evaluation and scoring
        function(
            "model_bin_eval",
            "Evaluates predictions of a binary target by association statistics and a gains "
            "chart",
            {oper("yActual", "Column of actual values, 0 or 1, with its name in the first cell"),
             oper("yPredicted",
                  "Column of predicted probabilities with its name in the first cell"),
             oper("numBins", "Number of groups of the gains chart, a positive integer"),
             oper("weight", kWeight)},
            command<&model_bin_eval>(), evaluation_chart()),
        function("model_bin_eval_from_file",
                 "Evaluates predictions of a binary target in a delimited data file by association "
                 "statistics and a gains chart",
                 {oper("filename", kFilename),
                  oper("yActualName", "Name of the variable of actual values, 0 or 1"),
                  oper("yPredictedName", "Name of the variable of predicted probabilities"),
                  oper("numBins", "Number of groups of the gains chart, a positive integer"),
                  oper("weightName", kWeightName), oper("delimiter", kDelimiter)},
                 command<&model_bin_eval_from_file>(), evaluation_chart()),
        function(
            "model_cont_eval",
            "Evaluates predictions of a continuous target by an analysis of variance and a "
            "gains chart",
            {oper("yActual", "Column of actual values with its name in the first cell"),
             oper("yPredicted", "Column of predicted values with its name in the first cell"),
             oper("numParams", "Number of parameters of the model, intercept included, at least 2"),
             oper("numBins", "Number of groups of the gains chart, a positive integer"),
             oper("weight", kWeight)},
            command<&model_cont_eval>(), evaluation_chart()),
        function(
            "model_cont_eval_from_file",
            "Evaluates predictions of a continuous target in a delimited data file by an "
            "analysis of variance and a gains chart",
            {oper("filename", kFilename),
             oper("yActualName", "Name of the variable of actual values"),
             oper("yPredictedName", "Name of the variable of predicted values"),
             oper("numParams", "Number of parameters of the model, intercept included, at least 2"),
             oper("numBins", "Number of groups of the gains chart, a positive integer"),
             oper("weightName", kWeightName), oper("delimiter", kDelimiter)},
            command<&model_cont_eval_from_file>(), evaluation_chart()),
        function("model_eval",
                 "Scores data with a stored model and evaluates the predictions against the actual "
                 "values",
                 {oper("model", kModel),
                  oper("x", "Table of the model's variables with their names in the first row"),
                  oper("y", "Column of actual values with its name in the first cell"),
                  oper("numBins", "Number of groups of the gains chart, a positive integer"),
                  oper("weight", kWeight)},
                 command<&model_eval>(), evaluation_chart()),
        function("model_eval_from_file",
                 "Scores a delimited data file with a stored model and evaluates the predictions "
                 "against the actual values",
                 {oper("model", kModel), oper("filename", kFilename),
                  oper("yName", "Name of the variable of actual values"),
                  oper("numBins", "Number of groups of the gains chart, a positive integer"),
                  oper("weightName", kWeightName), oper("delimiter", kDelimiter)},
                 command<&model_eval_from_file>(), evaluation_chart()),
        function("model_score", "Scores data with a stored model, one prediction for each row",
                 {oper("model", kModel),
                  oper("x",
                       "Table of data with the variable names in the first row; a row with a "
                       "missing value is scored as .")},
                 command<&model_score>()),
        function("model_score_node",
                 "Returns the terminal node that each row of data reaches in each tree of a "
                 "logistic boosting tree model",
                 {oper("model", "Handle of a stored logistic regression boosting tree model"),
                  oper("x", kDataWithHeaders)},
                 command<&model_score_node>()),
        function("model_score_from_file",
                 "Scores the records of a delimited data file with a stored model and appends the "
                 "scores to a copy of the file",
                 {oper("model", kModel), oper("infilename", "Path of the data file to score"),
                  oper("scoreName", "Name of the new column of scores"),
                  oper("outfilename", "Path of the file to write, other than infilename"),
                  oper("delimiter", kDelimiter)},
                 command<&model_score_from_file>()),
        function(
            "model_save_scoring_code",
            "Writes a stored model as scoring code in SAS or C, or as PMML for a linear model, "
            "by the extension of the file",
            {oper("model", kModel),
             oper("filename",
                  "Path of the file to write: the extension XML gives PMML, C, CPP, H or JAVA "
                  "give C, any other SAS")}),

        // Weight of evidence
        function(
            "woe_xcont_ybin",
            "Bins continuous variables against a binary target, merging neighbouring bins, "
            "with weights of evidence and information values, and stores the binning. Records "
            "with x missing form a Missing group, a bin of its own in the totals, the shares and "
            "the information value; the cumulative shares and the KS run over the ordered bins",
            {oper("x", kContinuousX), oper("y", kBinaryY), oper("initialNumBins", kInitialNumBins),
             oper("pvalue", kPValue), oper("maxNumBins", kMaxNumBins),
             oper("minNumRecords", kMinNumRecords), oper("weight", kWeight)},
            command<&woe_xcont_ybin>(), woe_chart()),
        function("woe_xcont_ybin_from_file",
                 "Bins continuous variables of a delimited data file against a binary target, "
                 "merging neighbouring bins, with weights of evidence and information values, and "
                 "stores the binning. Records with x missing form a Missing group, a bin of its "
                 "own in the totals, the shares and the information value; the cumulative shares "
                 "and the KS run over the ordered bins",
                 {oper("filename", kFilename), oper("xNames", kXNames),
                  oper("yName", "Name of the binary target in the file"),
                  oper("initialNumBins", kInitialNumBins), oper("pvalue", kPValue),
                  oper("maxNumBins", kMaxNumBins), oper("minNumRecords", kMinNumRecords),
                  oper("weightName", kWeightName), oper("delimiter", kDelimiter)},
                 command<&woe_xcont_ybin_from_file>(), woe_chart()),
        function("woe_xcont_ycont",
                 "Bins continuous variables against a continuous target, merging neighbouring "
                 "bins, with the mean target of each bin, and stores the binning. Records with x "
                 "missing form a Missing group, a bin of its own in the totals and the R-square; "
                 "the cumulative shares run over the ordered bins",
                 {oper("x", kContinuousX), oper("y", kContinuousY),
                  oper("initialNumBins", kInitialNumBins), oper("pvalue", kPValue),
                  oper("maxNumBins", kMaxNumBins), oper("minNumRecords", kMinNumRecords),
                  oper("weight", kWeight)},
                 command<&woe_xcont_ycont>()),
        function("woe_xcont_ycont_from_file",
                 "Bins continuous variables of a delimited data file against a continuous target, "
                 "merging neighbouring bins, with the mean target of each bin, and stores the "
                 "binning. Records with x missing form a Missing group, a bin of its own in the "
                 "totals and the R-square; the cumulative shares run over the ordered bins",
                 {oper("filename", kFilename), oper("xNames", kXNames),
                  oper("yName", "Name of the continuous target in the file"),
                  oper("initialNumBins", kInitialNumBins), oper("pvalue", kPValue),
                  oper("maxNumBins", kMaxNumBins), oper("minNumRecords", kMinNumRecords),
                  oper("weightName", kWeightName), oper("delimiter", kDelimiter)},
                 command<&woe_xcont_ycont_from_file>()),
        function("woe_xcat_ybin",
                 "Groups the categories of variables against a binary target, merging groups of "
                 "similar rate, with weights of evidence and information values, and stores the "
                 "grouping",
                 {oper("x", kCategoricalX), oper("y", kBinaryY), oper("pvalue", kPValue),
                  oper("maxNumBins", kMaxNumBins),
                  oper("weight",
                       "Column of record weights with its name in the first cell; counts are of "
                       "records whatever the weights. Optional: omit for equal weights. Default: "
                       "1.0 for every record")},
                 command<&woe_xcat_ybin>(), woe_chart()),
        function("woe_xcat_ybin_from_file",
                 "Groups the categories of variables of a delimited data file against a binary "
                 "target, with weights of evidence and information values, and stores the grouping",
                 {oper("filename", kFilename), oper("xNames", kXNames),
                  oper("yName", "Name of the binary target in the file"), oper("pvalue", kPValue),
                  oper("maxNumBins", kMaxNumBins), oper("weightName", kWeightName),
                  oper("delimiter", kDelimiter)},
                 command<&woe_xcat_ybin_from_file>(), woe_chart()),
        function("woe_xcat_ycont",
                 "Groups the categories of variables against a continuous target, merging groups "
                 "of similar mean, and stores the grouping",
                 {oper("x", kCategoricalX), oper("y", kContinuousY), oper("pvalue", kPValue),
                  oper("maxNumBins", kMaxNumBins),
                  oper("weight",
                       "Column of record weights with its name in the first cell; counts are of "
                       "records whatever the weights. Optional: omit for equal weights. Default: "
                       "1.0 for every record")},
                 command<&woe_xcat_ycont>()),
        function("woe_xcat_ycont_from_file",
                 "Groups the categories of variables of a delimited data file against a "
                 "continuous target, merging groups of similar mean, and stores the grouping",
                 {oper("filename", kFilename), oper("xNames", kXNames),
                  oper("yName", "Name of the continuous target in the file"),
                  oper("pvalue", kPValue), oper("maxNumBins", kMaxNumBins),
                  oper("weightName", kWeightName), oper("delimiter", kDelimiter)},
                 command<&woe_xcat_ycont_from_file>()),
        function(
            "woe_transform",
            "Replaces each variable of a table by the weight of evidence or the mean target "
            "of its bin under a stored binning",
            {oper("woeModel", "Handle of a stored weight of evidence binning"),
             oper("inputData", "Table of the binned variables with their names in the first row")},
            command<&woe_transform>()),
        function("woe_transform_from_file",
                 "Writes the weight of evidence or the mean target of the bins of variables of a "
                 "delimited data file under a stored binning",
                 {oper("woeModel", "Handle of a stored weight of evidence binning"),
                  oper("xNames", "Names of the variables to transform, in one row or one column"),
                  oper("infilename", "Path of the data file to transform"),
                  oper("outfilename", "Path of the file to write, other than infilename"),
                  oper("delimiter", kDelimiter)},
                 command<&woe_transform_from_file>()),

        // Principal components and factors
        function("PCA",
                 "Finds the principal components of data or of a covariance or correlation matrix",
                 {oper("inputData",
                       "Table of numbers, with or without variable names in the first row, or a "
                       "square matrix"),
                  oper("covOrCorr",
                       "COV to analyse the covariance matrix, CORR the correlation matrix, MATRIX "
                       "the input itself. Optional: omit for the covariance matrix. Default: COV")},
                 command<&PCA>()),
        function(
            "factor_analysis",
            "Extracts principal factors of data or of a covariance or correlation matrix, with "
            "their loadings",
            {oper("inputData",
                  "Table of numbers, with or without variable names in the first row, or a "
                  "square matrix"),
             oper("numFactors",
                  "Number of factors, a positive integer not above the number of variables"),
             oper("covOrCorr",
                  "COV to analyse the covariance matrix, CORR the correlation matrix, MATRIX "
                  "the input itself. Optional: omit for the covariance matrix. Default: COV")},
            command<&factor_analysis>()),

        // Linear regression
        function("linear_reg",
                 "Fits a weighted least-squares linear regression, or a ridge regression when "
                 "lambda is given, and files the model",
                 {oper("x", kX), oper("y", kY), oper("weight", kWeight), oper("lambda", kLambda)},
                 command<&linear_reg>()),
        function("linear_reg_nz",
                 "Fits a weighted linear or ridge regression on the records whose y is not zero, "
                 "and files the model",
                 {oper("x", kX), oper("y", kY), oper("weight", kWeight), oper("lambda", kLambda)},
                 command<&linear_reg_nz>()),
        function("linear_reg_envelope",
                 "Fits a linear or ridge regression of x on a moving envelope of the non-zero y, "
                 "its mean plus a number of standard deviations, and files the model",
                 {oper("x", kX), oper("y", kY),
                  oper("numPoints", "Number of points in the moving window, a positive integer"),
                  oper("numStdev", "Number of standard deviations added to the moving mean of y"),
                  oper("weight", kWeight), oper("lambda", kLambda)},
                 command<&linear_reg_envelope>()),
        function("linear_reg_envelope_from_file",
                 "Fits a linear regression on a moving envelope of the non-zero y of a delimited "
                 "data file and writes the envelope and its forecast to a file",
                 {oper("infilename", "Path of the data file to read"),
                  oper("numPoints", "Number of points in the moving window, a positive integer"),
                  oper("numStdev", "Number of standard deviations added to the moving mean of y"),
                  oper("stepSize", "Step of the forecast grid, a positive integer"),
                  oper("numForecast", "Number of points to forecast, a non-negative integer"),
                  oper("outfilename", "Path of the file to write, other than infilename"),
                  oper("delimiter", kDelimiter),
                  oper("digits",
                       "Number of decimals of the numbers written, a non-negative integer. "
                       "Optional: omit for 2. Default: 2")},
                 command<&linear_reg_envelope_from_file>()),
        function("linear_reg_from_file",
                 "Fits a weighted least-squares or ridge linear regression on a delimited data "
                 "file, and files the model",
                 {oper("filename", kFilename), oper("xNames", kXNames), oper("yName", kYName),
                  oper("weightName", kWeightName), oper("lambda", kLambda),
                  oper("delimiter", kDelimiter)},
                 command<&linear_reg_from_file>()),
        function("linear_reg_forward_select",
                 "Selects the x variables of a linear regression one at a time by forward "
                 "selection, and files the final model",
                 {oper("x", kX), oper("y", kY), oper("pvalue", kEntryPValue), oper("steps", kSteps),
                  oper("startsWith", kStartsWith), oper("weight", kWeight)},
                 command<&linear_reg_forward_select>()),
        function(
            "linear_reg_forward_select_from_file",
            "Selects the x variables of a linear regression on a delimited data file one at a "
            "time by forward selection, and files the final model",
            {oper("filename", kFilename), oper("xNames", kXNames), oper("yName", kYName),
             oper("pvalue", kEntryPValue), oper("steps", kSteps), oper("startsWith", kStartsWith),
             oper("weightName", kWeightName), oper("delimiter", kDelimiter)},
            command<&linear_reg_forward_select_from_file>()),
        function("linear_reg_score_from_coefs",
                 "Scores data with the coefficients of a linear model given in a table",
                 {oper("coefs", kCoefs), oper("inputData", kDataWithHeaders)},
                 command<&linear_reg_score_from_coefs>()),
        function("linear_reg_piecewise",
                 "Fits, for each x variable alone, two joined lines with the smallest squared "
                 "error, and files the model",
                 {oper("x", kX), oper("y", kY),
                  oper("weight",
                       "Column of record weights with its name in the first cell; accepted "
                       "without effect on the fit. Optional: omit for equal weights. Default: 1.0 "
                       "for every record")}),
        function("linear_reg_piecewise_from_file",
                 "Fits, for each x variable of a delimited data file alone, two joined lines with "
                 "the smallest squared error, and files the model",
                 {oper("filename", kFilename), oper("xNames", kXNames), oper("yName", kYName),
                  oper("weightName", kWeightName), oper("delimiter", kDelimiter)}),
        function("poly_reg",
                 "Fits a weighted polynomial regression of y on the powers of one x variable, and "
                 "files the model",
                 {oper("x", "One column of the x variable with its name in the first cell"),
                  oper("y", kY),
                  oper("numDegree",
                       "Degree of the polynomial, a positive integer below the number of records"),
                  oper("weight", kWeight),
                  oper("lambda",
                       "Ridge constants on the standardised scale, one for all powers or one for "
                       "each. Optional: omit for least squares. Default: none")}),
        function("pls_reg",
                 "Fits a weighted partial least squares regression with a given number of "
                 "components, and files the model",
                 {oper("x", kX), oper("y", kY),
                  oper("ncc",
                       "Number of components, a positive integer not above the number of x "
                       "variables"),
                  oper("weight", kWeight)}),
        function("pls_reg_from_file",
                 "Fits a weighted partial least squares regression on a delimited data file, and "
                 "files the model",
                 {oper("filename", kFilename), oper("xNames", kXNames), oper("yName", kYName),
                  oper("ncc",
                       "Number of components, a positive integer not above the number of x "
                       "variables"),
                  oper("weightName", kWeightName), oper("delimiter", kDelimiter)}),

        // Logistic regression
        function("logistic_reg",
                 "Fits a weighted binary logistic regression by maximum likelihood, and files the "
                 "model",
                 {oper("x", kX), oper("y", kBinaryY), oper("weight", kWeight)},
                 command<&logistic_reg>()),
        function("logistic_reg_from_file",
                 "Fits a weighted binary logistic regression on a delimited data file by maximum "
                 "likelihood, and files the model",
                 {oper("filename", kFilename), oper("xNames", kXNames),
                  oper("yName", "Name of the binary y variable in the file"),
                  oper("weightName", kWeightName), oper("delimiter", kDelimiter)},
                 command<&logistic_reg_from_file>()),
        function("logistic_reg_forward_select",
                 "Selects the x variables of a logistic regression one at a time by score tests, "
                 "and files the final model",
                 {oper("x", kX), oper("y", kBinaryY), oper("pvalue", kEntryPValue),
                  oper("steps", kSteps), oper("startsWith", kStartsWith), oper("weight", kWeight)},
                 command<&logistic_reg_forward_select>()),
        function(
            "logistic_reg_forward_select_from_file",
            "Selects the x variables of a logistic regression on a delimited data file one at "
            "a time by score tests, and files the final model",
            {oper("filename", kFilename), oper("xNames", kXNames),
             oper("yName", "Name of the binary y variable in the file"),
             oper("pvalue", kEntryPValue), oper("steps", kSteps), oper("startsWith", kStartsWith),
             oper("weightName", kWeightName), oper("delimiter", kDelimiter)},
            command<&logistic_reg_forward_select_from_file>()),
        function("logistic_reg_score_from_coefs",
                 "Scores data with the coefficients of a logistic model given in a table, one "
                 "probability for each row",
                 {oper("coefs", kCoefs), oper("inputData", kDataWithHeaders)},
                 command<&logistic_reg_score_from_coefs>()),

        // Time series
        function("ts_acf", "Computes the autocorrelations of a series up to a lag",
                 {oper("x", kSeries), oper("maxLag", kMaxLag)}, command<&ts_acf>()),
        function("ts_pacf", "Computes the partial autocorrelations of a series up to a lag",
                 {oper("x", kSeries), oper("maxLag", kMaxLag)}, command<&ts_pacf>()),
        function("ts_ccf", "Computes the cross-correlations of two series at lags of either sign",
                 {oper("x", kSeries),
                  oper("y",
                       "Column of the second series, of the length of x, with its name in the "
                       "first cell"),
                  oper("maxLag", kMaxLag)},
                 command<&ts_ccf>()),
        function("Box_white_noise_test",
                 "Tests whether a series is white noise by the Box-Ljung or Box-Pierce statistic",
                 {oper("x", kSeries),
                  oper("maxLag",
                       "Number of autocorrelations in the statistic, a positive integer below the "
                       "number of points. Optional: omit for 1. Default: 1"),
                  oper("method",
                       "BOX_LJUNG or BOX_PIERCE. Optional: omit for Box-Ljung. Default: BOX_LJUNG"),
                  oper("numParams",
                       "Number of fitted parameters taken from the degrees of freedom, a "
                       "non-negative integer below maxLag. Optional: omit for 0. Default: 0")},
                 command<&Box_white_noise_test>()),
        function("Mann_Kendall_trend_test",
                 "Tests a series for a monotonic trend by the Mann-Kendall test",
                 {oper("x", kSeries),
                  oper("frequency",
                       "Number of points in a period, a positive integer. Optional: omit for 1. "
                       "Default: 1")},
                 command<&Mann_Kendall_trend_test>()),
        function("ADF_test", "Tests a series for a unit root by the augmented Dickey-Fuller test",
                 {oper("x", kSeries),
                  oper("maxLag",
                       "Number of lagged differences in the regression, a non-negative integer. "
                       "Optional: omit for the whole part of 12 (n / 100)^0.25. Default: 12 (n / "
                       "100)^0.25"),
                  oper("timeTerms",
                       "Deterministic terms: nc for none, c a constant, ct a constant and a trend, "
                       "ctt also the squared trend. Optional: omit for ct. Default: ct")},
                 command<&ADF_test>()),
        function("ts_diff", "Differences a series at a lag, a number of times",
                 {oper("x", kSeries),
                  oper("lag",
                       "Lag of the difference, a positive integer. Optional: omit for 1. "
                       "Default: 1"),
                  oper("order",
                       "Number of times to difference, a positive integer. Optional: omit for 1. "
                       "Default: 1")},
                 command<&ts_diff>()),
        function(
            "ts_sma", "Computes the simple moving average of a series",
            {oper("x", kSeries), oper("n", "Number of points in the average, a positive integer")},
            command<&ts_sma>()),
        function(
            "lowess", "Smooths y against x by locally weighted polynomial regression",
            {oper("x", "Column of the x values with its name in the first cell"),
             oper("y", "Column of the y values, of the size of x, with its name in the first cell"),
             oper("xForSmoothing",
                  "Column of the x values at which to smooth, with its name in the first "
                  "cell. Optional: omit for x. Default: x"),
             oper("fraction",
                  "Fraction of the points in each local window, between 0 and 1. Optional: "
                  "omit for 2/3. Default: 0.6666666666666666"),
             oper("degree",
                  "Degree of the local polynomials: 0 a moving average, 1 locally linear, 2 "
                  "locally quadratic. Optional: omit for 1. Default: 1")},
            command<&lowess>()),
        function(
            "natural_cubic_spline", "Interpolates between knots by a natural cubic spline",
            {oper("xKnots", "Column of the x values of the knots with its name in the first cell"),
             oper("yKnots",
                  "Column of the y values of the knots, of the size of xKnots, with its name "
                  "in the first cell"),
             oper("x",
                  "Column of the x values to interpolate at, with its name in the first "
                  "cell")},
            command<&natural_cubic_spline>()),
        function("garch",
                 "Fits a GARCH(1, 1) model of the variance of returns by maximum likelihood",
                 {oper("returns", "Column of returns with its name in the first cell"),
                  oper("initialOmega",
                       "Start value of omega, non-negative. Optional: omit for 0.00001. Default: "
                       "0.00001"),
                  oper("initialAlpha",
                       "Start value of alpha, non-negative. Optional: omit for 0.1. Default: 0.1"),
                  oper("initialBeta",
                       "Start value of beta, non-negative, with alpha + beta at most 1. Optional: "
                       "omit for 0.85. Default: 0.85")},
                 command<&garch>()),
        function("stochastic_process",
                 "Fits a normal, lognormal or shifted lognormal process to a path by maximum "
                 "likelihood",
                 {oper("x", "Column of the path with its name in the first cell"),
                  oper("process", "NORMAL, LOGNORMAL or SHIFTEDLOGNORMAL")},
                 command<&stochastic_process>()),
        function("stochastic_process_simulate",
                 "Simulates a path of a normal, lognormal or shifted lognormal process",
                 {oper("process", "N (NORMAL), LN (LOGNORMAL) or SLN (SHIFTEDLOGNORMAL)"),
                  oper("numPoints", "Number of points of the path, a positive integer"),
                  oper("initialValue", "First value of the path"),
                  oper("mu", "Drift of the process. Optional: omit for 0. Default: 0"),
                  oper("sigma",
                       "Volatility of the process, non-negative. Optional: omit for 1. Default: 1"),
                  oper("shift",
                       "Shift of the shifted lognormal process. Optional: omit for 0. Default: 0"),
                  oper("seed",
                       "Seed of the random number generator, a non-negative integer; 0 uses the "
                       "timer. Optional: omit for the timer. Default: 0")},
                 command<&stochastic_process_simulate>()),
        function("Holt_Winters",
                 "Fits Holt-Winters exponential smoothing to a series and forecasts it",
                 {oper("x",
                       "Column of the series with its name in the first cell; empty cells are "
                       "missing"),
                  oper("type",
                       "1 for local level smoothing, 2 with a trend, 3 with a trend and additive "
                       "seasonality. Optional: omit for 1. Default: 1"),
                  oper("frequency",
                       "Number of points in a season, a positive integer. Optional: omit for 1. "
                       "Default: 1"),
                  oper("numForecast",
                       "Number of points to forecast, a non-negative integer. Optional: omit for "
                       "10. Default: 10"),
                  oper("excludeList",
                       "Numbers that mark missing values in x. Optional: omit for none. Default: "
                       "none"),
                  oper("force",
                       "1 falls back to a simpler type when no stable fit is found, 0 fails. "
                       "Optional: omit to fail. Default: 0")},
                 command<&Holt_Winters>()),
        function("Holt_Winters_forecast",
                 "Smooths and forecasts a series by Holt-Winters smoothing with given parameters",
                 {oper("x",
                       "Column of the series with its name in the first cell; empty cells are "
                       "missing"),
                  oper("params",
                       "Smoothing parameters: alpha; alpha and beta; or alpha, beta and gamma"),
                  oper("initialTrend", "Trend at the start. Optional: omit for 0. Default: 0"),
                  oper("initialSeasonalIndices",
                       "Seasonal indices at the start, one per point of a season. Optional: omit "
                       "for none. Default: none"),
                  oper("numForecast",
                       "Number of points to forecast, a non-negative integer. Optional: omit for "
                       "0. Default: 0"),
                  oper("excludeList",
                       "Numbers that mark missing values in x. Optional: omit for none. Default: "
                       "none")},
                 command<&Holt_Winters_forecast>()),
        function(
            "HP_filter", "Splits a series into trend and cycle by the Hodrick-Prescott filter",
            {oper("x", kSeries), oper("lambda", "Smoothing constant of the trend, non-negative")},
            command<&HP_filter>()),
        function("arima",
                 "Fits an ARIMA model to a series by conditional least squares, with standard "
                 "errors and forecasts",
                 {oper("x", kSeries),
                  oper("hasMean",
                       "TRUE when the model has a mean, which needs d of 0. Optional: omit for a "
                       "mean. Default: TRUE"),
                  oper("p",
                       "Order of the AR part, a non-negative integer. Optional: omit for 0. "
                       "Default: 0"),
                  oper("d", kD),
                  oper("q",
                       "Order of the MA part, a non-negative integer. Optional: omit for 0. "
                       "Default: 0"),
                  oper("numForecast",
                       "Number of points to forecast, a non-negative integer. Optional: omit for "
                       "0. Default: 0"),
                  oper("lowerAndUpperBound",
                       "Two columns of lower and upper bounds, one row per parameter: the mean, "
                       "the AR and the MA coefficients. Optional: omit for automatic bounds. "
                       "Default: mean(x) - 5 sd(x) to mean(x) + 5 sd(x) for the mean, -10 to 10 "
                       "for a coefficient"),
                  oper("maxNumGenerations", kMaxNumGenerations), oper("seed", kEvolutionSeed),
                  oper("showDetails",
                       "TRUE adds the trail of the search. Optional: omit to leave it out. "
                       "Default: FALSE")},
                 command<&arima>()),
        function("sarima",
                 "Fits a seasonal ARIMA model to a series by conditional least squares, with "
                 "standard errors and forecasts",
                 {oper("x", kSeries),
                  oper("hasMean",
                       "TRUE when the model has a mean, which needs d and seasonalD of 0. "
                       "Optional: omit for a mean. Default: TRUE"),
                  oper("p",
                       "Order of the AR part, a non-negative integer. Optional: omit for 0. "
                       "Default: 0"),
                  oper("d", kD),
                  oper("q",
                       "Order of the MA part, a non-negative integer. Optional: omit for 0. "
                       "Default: 0"),
                  oper("seasonalPeriod", kSeasonalPeriod),
                  oper("seasonalP",
                       "Order of the seasonal AR part, a non-negative integer. Optional: omit for "
                       "0. Default: 0"),
                  oper("seasonalD", kSeasonalD),
                  oper("seasonalQ",
                       "Order of the seasonal MA part, a non-negative integer. Optional: omit for "
                       "0. Default: 0"),
                  oper("numForecast",
                       "Number of points to forecast, a non-negative integer. Optional: omit for "
                       "0. Default: 0"),
                  oper("lowerAndUpperBound",
                       "Two columns of lower and upper bounds, one row per parameter: the mean, "
                       "the AR, MA, seasonal AR and seasonal MA coefficients. Optional: omit for "
                       "automatic bounds. Default: mean(x) - 5 sd(x) to mean(x) + 5 sd(x) for the "
                       "mean, -10 to 10 for a coefficient"),
                  oper("maxNumGenerations", kMaxNumGenerations), oper("seed", kEvolutionSeed),
                  oper("showDetails",
                       "TRUE adds the trail of the search. Optional: omit to leave it out. "
                       "Default: FALSE")},
                 command<&sarima>()),
        function("arima_forecast", "Forecasts a series by an ARIMA model with given coefficients",
                 {oper("x", kSeries),
                  oper("numForecast", "Number of points to forecast, a positive integer"),
                  oper("mean", "Mean of the process. Optional: omit for 0. Default: 0"),
                  oper("ar", kAr), oper("d", kD), oper("ma", kMa), oper("sigma", kSigma)},
                 command<&arima_forecast>()),
        function(
            "sarima_forecast",
            "Forecasts a series by a seasonal ARIMA model with given coefficients",
            {oper("x", kSeries),
             oper("numForecast", "Number of points to forecast, a positive integer"),
             oper("mean", "Mean of the process. Optional: omit for 0. Default: 0"), oper("ar", kAr),
             oper("d", kD), oper("ma", kMa), oper("seasonalPeriod", kSeasonalPeriod),
             oper("seasonalAR", kSeasonalAR), oper("seasonalD", kSeasonalD),
             oper("seasonalMA", kSeasonalMA), oper("sigma", kSigma)},
            command<&sarima_forecast>()),
        function("arima_simulate", "Simulates a path of an ARIMA process with given coefficients",
                 {oper("numPoints", "Number of points to simulate, a positive integer"),
                  oper("mean", "Optional: mean of the process. Default: 0"), oper("ar", kAr),
                  oper("d", kD), oper("ma", kMa), oper("sigma", kSigma),
                  oper("seed",
                       "Seed of the random number generator, a non-negative integer; 0 uses the "
                       "timer. Optional: omit for the timer. Default: 0")},
                 command<&arima_simulate>()),
        function(
            "sarima_simulate",
            "Simulates a path of a seasonal ARIMA process with given coefficients",
            {oper("numPoints", "Number of points to simulate, a positive integer"),
             oper("mean", "Mean of the process. Optional: omit for 0. Default: 0"), oper("ar", kAr),
             oper("d", kD), oper("ma", kMa), oper("seasonalPeriod", kSeasonalPeriod),
             oper("seasonalAR", kSeasonalAR), oper("seasonalD", kSeasonalD),
             oper("seasonalMA", kSeasonalMA), oper("sigma", kSigma),
             oper("seed",
                  "Seed of the random number generator, a non-negative integer; 0 uses the "
                  "timer. Optional: omit for the timer. Default: 0")},
            command<&sarima_simulate>()),
        function(
            "arma_to_ma", "Expands an ARMA process into the weights of its pure MA form",
            {oper("ar", kAr), oper("ma", kMa),
             oper("maxLag",
                  "Number of MA weights, a positive integer. Optional: omit for 10. Default: 10")},
            command<&arma_to_ma>()),
        function(
            "arma_to_ar", "Expands an ARMA process into the weights of its pure AR form",
            {oper("ar", kAr), oper("ma", kMa),
             oper("maxLag",
                  "Number of AR weights, a positive integer. Optional: omit for 10. Default: 10")},
            command<&arma_to_ar>()),
        function("acf_of_arma", "Computes the theoretical autocorrelations of an ARMA process",
                 {oper("ar", kAr), oper("ma", kMa), oper("sigma", kSigma), oper("maxLag", kMaxLag)},
                 command<&acf_of_arma>()),
        function("ddacf_of_arma",
                 "Computes the theoretical autocovariances of an ARMA process at the lags it needs",
                 {oper("ar", kAr), oper("ma", kMa), oper("sigma", kSigma)},
                 command<&ddacf_of_arma>()),
        function("detect_outlier",
                 "Flags the points of a series that lie too many standard deviations from the mean "
                 "of the points before them",
                 {oper("x", "Series of numbers without a header, in one row or one column"),
                  oper("numPoints",
                       "Number of earlier points to compare with, an integer larger than 1"),
                  oper("numStdDev",
                       "Number of standard deviations beyond which a point is an outlier, "
                       "positive")},
                 command<&detect_outlier>()),

        // Classifiers and survival
        function(
            "LDA",
            "Fits a linear discriminant analysis of the classes of y on numeric x, with the "
            "pooled within-class covariance (divisor: weight sum less the number of classes) and "
            "priors the weighted class proportions, and files the model",
            {oper("x", kX), oper("y", "Column of the class labels with its name in the first cell"),
             oper("weight", kWeight)},
            command<&LDA>()),
        function(
            "QDA",
            "Fits a quadratic discriminant analysis of the classes of y on numeric x, with one "
            "covariance per class (divisor: the class's weight sum less 1) and priors the "
            "weighted class proportions, and files the model",
            {oper("x", kX), oper("y", "Column of the class labels with its name in the first cell"),
             oper("weight", kWeight)},
            command<&QDA>()),
        function("Kaplan_Meier",
                 "Estimates the survival function by the Kaplan-Meier method, with confidence "
                 "limits and points for plotting",
                 {oper("time",
                       "Column of the times of event or censoring with its name in the first cell"),
                  oper("status",
                       "Column of 1 for an event and 0 for censoring, with its name in the first "
                       "cell"),
                  oper("classVar",
                       "Column of the subgroup of each record with its name in the first cell. "
                       "Optional: omit for one group. Default: one group named All"),
                  oper("labelForCensor",
                       "Text that marks censored points for plotting. Optional: omit for +. "
                       "Default: +")},
                 command<&Kaplan_Meier>()),
        function("corresp_analysis",
                 "Finds the principal inertias and the row and column coordinates of a "
                 "contingency table by correspondence analysis",
                 {oper("contingencyTable",
                       "Table of counts with the column labels in the first row and the row "
                       "labels in the first column"),
                  oper("numDims",
                       "Number of dimensions of the coordinates, a positive integer. Optional: "
                       "omit for 2. Default: 2")}),
        function("naive_bayes_classifier",
                 "Fits a naive Bayes classifier of the classes of y on numeric and categorical x, "
                 "and files the model. Priors are the weighted class proportions; a normal "
                 "density takes each class's weighted mean and variance (divisor: the class's "
                 "weight sum less 1); counts of values get add-one (Laplace) smoothing, so that a "
                 "value unseen in a class never rules it out",
                 {oper("x",
                       "Table of x variables with their names in the first row; a column whose "
                       "first value is text is categorical"),
                  oper("y", "Column of the class labels with its name in the first cell"),
                  oper("model",
                       "How numeric x enter: GAUSSIAN for a normal density in each class, "
                       "CATEGORICAL for counts of their values. Optional: omit for normal "
                       "densities. Default: GAUSSIAN"),
                  oper("weight", kWeight)},
                 command<&naive_bayes_classifier>()),
        function("naive_bayes_classifier_from_file",
                 "Fits a naive Bayes classifier of the classes of y on variables of a delimited "
                 "data file, as naive_bayes_classifier does, and files the model; the first "
                 "record says which variables are numeric",
                 {oper("filename", kFilename), oper("xNames", kXNames),
                  oper("yName", "Name of the class variable in the file"),
                  oper("model",
                       "How numeric x enter: GAUSSIAN for a normal density in each class, "
                       "CATEGORICAL for counts of their values. Optional: omit for normal "
                       "densities. Default: GAUSSIAN"),
                  oper("weightName", kWeightName), oper("delimiter", kDelimiter)},
                 command<&naive_bayes_classifier_from_file>()),

        // Trees
        function("tree", "Grows a regression or classification tree, and files the model",
                 {oper("x", kX), oper("y", kY), oper("treeConfig", kTreeConfig),
                  oper("weight", kWeight)},
                 command<&tree>()),
        function("tree_from_file",
                 "Grows a regression or classification tree on a delimited data file, and files "
                 "the model",
                 {oper("filename", kFilename), oper("xNames", kXNames), oper("yName", kYName),
                  oper("treeConfig", kTreeConfig), oper("weightName", kWeightName),
                  oper("delimiter", kDelimiter)},
                 command<&tree_from_file>()),
        function("tree_boosting_logistic_reg",
                 "Fits gradient boosted trees for a binary target under the logistic loss, and "
                 "files the model",
                 {oper("x", kX), oper("y", kBinaryY), oper("boostingTreeConfig", kBoostingConfig),
                  oper("weight", kWeight)},
                 command<&tree_boosting_logistic_reg>()),
        function("tree_boosting_logistic_reg_from_file",
                 "Fits gradient boosted trees for a binary target of a delimited data file under "
                 "the logistic loss, and files the model",
                 {oper("filename", kFilename), oper("xNames", kXNames),
                  oper("yName", "Name of the binary y variable in the file"),
                  oper("boostingTreeConfig", kBoostingConfig), oper("weightName", kWeightName),
                  oper("delimiter", kDelimiter)},
                 command<&tree_boosting_logistic_reg_from_file>()),
        function("tree_boosting_ls_reg",
                 "Fits gradient boosted regression trees under the squared error loss, and files "
                 "the model",
                 {oper("x", kX), oper("y", kY), oper("boostingTreeConfig", kBoostingConfig),
                  oper("weight", kWeight)},
                 command<&tree_boosting_ls_reg>()),
        function("tree_boosting_ls_reg_from_file",
                 "Fits gradient boosted regression trees on a delimited data file under the "
                 "squared error loss, and files the model",
                 {oper("filename", kFilename), oper("xNames", kXNames), oper("yName", kYName),
                  oper("boostingTreeConfig", kBoostingConfig), oper("weightName", kWeightName),
                  oper("delimiter", kDelimiter)},
                 command<&tree_boosting_ls_reg_from_file>()),

        // Clustering and scaling
        function("k_means", "Partitions records into clusters by the k-means method",
                 {oper("x", kDataWithHeaders),
                  oper("numClusters", "Number of clusters, a positive integer"),
                  oper("seed",
                       "Seed of the initial assignment, an integer. Optional: omit for 100. "
                       "Default: 100"),
                  oper("showAssignments",
                       "1 lists the cluster of each record, 0 does not. Optional: omit to leave "
                       "them out. Default: 0")},
                 command<&k_means>()),
        function("k_means_from_file",
                 "Partitions the records of a delimited data file into clusters by the k-means "
                 "method",
                 {oper("filename", kFilename), oper("varNames", kVarNames),
                  oper("numClusters", "Number of clusters, a positive integer"),
                  oper("seed",
                       "Seed of the initial assignment, an integer. Optional: omit for 100. "
                       "Default: 100"),
                  oper("delimiter", kDelimiter),
                  oper("showAssignments",
                       "1 lists the cluster of each record, 0 does not. Optional: omit to leave "
                       "them out. Default: 0")},
                 command<&k_means_from_file>()),
        function("cmds",
                 "Places points in a space of few dimensions by classical multidimensional scaling",
                 {oper("distanceMatrix", "Square matrix of the distances between the points"),
                  oper("dim", "Number of dimensions of the result, a positive integer")},
                 command<&cmds>()),
        function("mds",
                 "Places points in a space of few dimensions by iterative multidimensional scaling",
                 {oper("distanceMatrix", "Square matrix of the distances between the points"),
                  oper("dim", "Number of dimensions of the result, a positive integer"),
                  oper("maxIteration", "Number of iterations, a positive integer"),
                  oper("seed",
                       "Seed of the random start, a non-negative integer; 0 uses the timer. "
                       "Optional: omit for the timer. Default: 0")},
                 command<&mds>()),

        // Neural network and support vector machine
        function(
            "neural_net",
            "Trains a feed-forward neural network for a continuous or binary target, and files "
            "the model",
            {oper("x", kX), oper("y", kY),
             oper("model",
                  "LS for least squares on a continuous target, ML for maximum likelihood on "
                  "a binary target, in upper case"),
             oper("numHiddenNodes",
                  "Number of nodes of each hidden layer, in one row or one column"),
             oper("epochs",
                  "Number of training epochs, a positive integer. Optional: omit for 20. "
                  "Default: 20"),
             oper("seed",
                  "Seed of the initial weights, an integer. Optional: omit for 100. Default: "
                  "100"),
             oper("weight", kWeight),
             oper("xTest",
                  "Table of test x variables with their names in the first row. Optional: "
                  "omit to test on the training data. Default: x"),
             oper("yTest",
                  "Column of the test y variable with its name in the first cell. Optional: "
                  "omit to test on the training data. Default: y"),
             oper("weightTest",
                  "Column of test record weights with its name in the first cell. Optional: "
                  "omit for equal weights. Default: 1.0 for every record")},
            command<&neural_net>()),
        function("neural_net_from_file",
                 "Trains a feed-forward neural network on a delimited data file, and files the "
                 "model",
                 {oper("filename", kFilename), oper("xNames", kXNames), oper("yName", kYName),
                  oper("model",
                       "LS for least squares on a continuous target, ML for maximum likelihood on "
                       "a binary target, in upper case"),
                  oper("numHiddenNodes",
                       "Number of nodes of each hidden layer, in one row or one column"),
                  oper("epochs",
                       "Number of training epochs, a positive integer. Optional: omit for 20. "
                       "Default: 20"),
                  oper("seed",
                       "Seed of the initial weights, an integer. Optional: omit for 100. Default: "
                       "100"),
                  oper("weightName", kWeightName),
                  oper("testFileName",
                       "Path of the delimited test data file. Optional: omit to test on the "
                       "training data. Default: filename"),
                  oper("xTestNames",
                       "Names of the x variables in the test file. Optional: omit to test on the "
                       "training data. Default: xNames"),
                  oper("yTestName",
                       "Name of the y variable in the test file. Optional: omit to test on the "
                       "training data. Default: yName"),
                  oper("weightTestName",
                       "Name of the weight variable in the test file. Optional: omit for equal "
                       "weights. Default: 1.0 for every record"),
                  oper("delimiter", kDelimiter)},
                 command<&neural_net_from_file>()),
        function(
            "svm",
            "Trains a support vector machine for classification or regression, and files the "
            "model",
            {oper("directory",
                  "Existing working directory for the data and model files, which must stay "
                  "for later scoring"),
             oper("x", kDataWithHeaders), oper("y", kY),
             oper("svmType", "SVC for classification or SVR for epsilon regression"),
             oper("kernelType", "LINEAR, POLYNOMIAL, RBF or SIGMOID"),
             oper("C", "Penalty, non-negative. Optional: omit for 1. Default: 1"),
             oper("epsilon",
                  "Epsilon of the SVR loss, non-negative. Optional: omit for 0.1. Default: 0.1"),
             oper("degree",
                  "Degree of the polynomial kernel, a positive integer. Optional: omit for 3. "
                  "Default: 3"),
             oper("gamma",
                  "Gamma of the kernel, positive. Optional: omit for 1 / number of "
                  "variables. Default: 1 / number of variables"),
             oper("coef0", "Constant of the kernel. Optional: omit for 0. Default: 0"),
             oper("seed",
                  "Seed of the random generator of the training, an integer. Optional: omit "
                  "for 100. Default: 100"),
             oper("doScaling",
                  "1 scales the variables before training, 0 does not. Optional: omit to "
                  "scale. Default: 1")},
            command<&svm>()),
        function(
            "svm_from_file",
            "Trains a support vector machine on a delimited data file for classification or "
            "regression, and files the model",
            {oper("directory",
                  "Existing working directory for the data and model files, which must stay "
                  "for later scoring"),
             oper("filename", kFilename), oper("xNames", kXNames), oper("yName", kYName),
             oper("svmType", "SVC for classification or SVR for epsilon regression"),
             oper("kernelType", "LINEAR, POLYNOMIAL, RBF or SIGMOID"),
             oper("C", "Penalty, non-negative. Optional: omit for 1. Default: 1"),
             oper("epsilon",
                  "Epsilon of the SVR loss, non-negative. Optional: omit for 0.1. Default: 0.1"),
             oper("degree",
                  "Degree of the polynomial kernel, a positive integer. Optional: omit for 3. "
                  "Default: 3"),
             oper("gamma",
                  "Gamma of the kernel, positive. Optional: omit for 1 / number of "
                  "variables. Default: 1 / number of variables"),
             oper("coef0", "Constant of the kernel. Optional: omit for 0. Default: 0"),
             oper("seed",
                  "Seed of the random generator of the training, an integer. Optional: omit "
                  "for 100. Default: 100"),
             oper("doScaling",
                  "1 scales the variables before training, 0 does not. Optional: omit to "
                  "scale. Default: 1"),
             oper("delimiter", kDelimiter)},
            command<&svm_from_file>()),

        // Optimisation
        function(
            "linear_prog",
            "Maximises or minimises a linear function of non-negative variables under linear "
            "constraints by the simplex method",
            {oper("c", "Coefficients of the objective, in one row or one column"),
             oper("constraints",
                  "One row per constraint: the coefficients, an operator <=, >= or =, and the "
                  "right-hand side"),
             oper("maxOrMin", "MAX or MIN, in any case. Optional: omit to maximise. Default: MAX")},
            command<&linear_prog>()),
        function("quadratic_prog",
                 "Minimises or maximises a quadratic function of non-negative variables under "
                 "linear constraints",
                 {oper("c", "Coefficients of the linear term, in one row or one column"),
                  oper("H", "Square matrix of the quadratic term 0.5 x^T H x"),
                  oper("constraints",
                       "One row per constraint: the coefficients, an operator <=, >= or =, and the "
                       "right-hand side"),
                  oper("minOrMax", kMinOrMax)},
                 command<&quadratic_prog>()),
        function(
            "lcp",
            "Solves the linear complementarity problem w = m z + q, w and z non-negative, w' z "
            "= 0, by Lemke's method",
            {oper("m", "Square matrix of the problem"),
             oper("q", "Column vector with one row per row of m")},
            command<&lcp>()),
        function("nls_solver",
                 "Fits the parameters of an expression to data by weighted nonlinear least squares",
                 {oper("func", kFunc),
                  oper("params",
                       "Parameter names and initial values in two columns, with minimum and "
                       "maximum values in two more if they are bounded"),
                  oper("x", kDataWithHeaders), oper("y", kY), oper("weight", kWeight)},
                 command<&nls_solver>()),
        function("diff_evol_solver",
                 "Minimises an expression over a box of its variables by differential evolution",
                 {oper("func", kFunc), oper("lowerAndUpperBound", kBounds),
                  oper("maxNumGenerations", kMaxNumGenerations), oper("seed", kEvolutionSeed)},
                 command<&diff_evol_solver>()),
        function("diff_evol_min_solver",
                 "Minimises the weighted sum of an expression over the rows of a data table by "
                 "differential evolution",
                 {oper("func", kFunc), oper("lowerAndUpperBound", kBounds),
                  oper("x", kDataWithHeaders), oper("weight", kWeight),
                  oper("maxNumGenerations", kMaxNumGenerations), oper("seed", kEvolutionSeed)},
                 command<&diff_evol_min_solver>()),
        function("diff_evol_nls_solver",
                 "Fits the parameters of an expression to data by weighted least squares through "
                 "differential evolution",
                 {oper("func", kFunc), oper("lowerAndUpperBound", kBounds),
                  oper("x", kDataWithHeaders), oper("y", kY), oper("weight", kWeight),
                  oper("maxNumGenerations", kMaxNumGenerations), oper("seed", kEvolutionSeed)},
                 command<&diff_evol_nls_solver>()),
        function("transportation_solver",
                 "Finds the shipments from sources to destinations that meet supplies and demands "
                 "at the least or the largest total cost",
                 {oper("costs",
                       "Table of unit costs with the destinations in the first row and the sources "
                       "in the first column"),
                  oper("supplies",
                       "Supply of each source, in the order of the rows of costs, in one row or "
                       "one column"),
                  oper("demands",
                       "Demand of each destination, in the order of the columns of costs, in one "
                       "row or one column"),
                  oper("minOrMax", kMinOrMax)}),
        function("assignment_solver",
                 "Assigns agents to tasks one to one at the least or the largest total cost",
                 {oper("costs",
                       "Table of costs with the tasks in the first row and the agents in the first "
                       "column"),
                  oper("minOrMax", kMinOrMax)}),
        function("netflow_solver",
                 "Finds the flows on the arcs of a network that meet the net supplies of its nodes "
                 "at the least or the largest cost",
                 {oper("arcCapacityAndCost",
                       "One row per arc in 5 columns: from node, to node, lower bound, upper "
                       "bound, cost"),
                  oper("nodeNetSupplies",
                       "Net supply of nodes, outflow less inflow, in 2 columns: node, net supply. "
                       "Optional: omit for none. Default: 0 for every node"),
                  oper("minOrMax", kMinOrMax)},
                 command<&netflow_solver>()),
        function(
            "maxflow_solver",
            "Finds the largest flow from a start node to an end node of a network",
            {oper("arcCapacity",
                  "One row per arc in 4 columns: from node, to node, lower bound, upper bound"),
             oper("startNode", "Node where the flow starts"),
             oper("endNode", "Node where the flow ends")},
            command<&maxflow_solver>()),
        function("shortest_path_solver",
                 "Finds the shortest path from a start node to an end node of a network",
                 {oper("arcDistance", "One row per arc in 3 columns: from node, to node, distance"),
                  oper("startNode", "Node where the path starts"),
                  oper("endNode", "Node where the path ends")},
                 command<&shortest_path_solver>()),
        function(
            "efficient_frontier", "Traces the mean-variance efficient frontier of a set of assets",
            {oper("expectedReturns", "Expected return of each asset, in one row or one column"),
             oper("covMatrix", "Square covariance matrix of the returns of the assets"),
             oper("numPoints",
                  "Number of portfolios along the frontier, an integer larger than 1. "
                  "Optional: omit for 20. Default: 20"),
             oper("allowShortSales",
                  "1 allows negative weights, 0 keeps every weight non-negative. Optional: "
                  "omit for no short sales. Default: 0")}),
        function("Black_Litterman",
                 "Blends the equilibrium returns of a market with an investor's views into "
                 "posterior expected returns by the Black-Litterman model",
                 {oper("covMatrix", "Square covariance matrix of the returns of the assets"),
                  oper("marketWeights",
                       "Market capitalisation weight of each asset, in one row or one column"),
                  oper("pickMatrix",
                       "One row per view and one column per asset: the weights of the assets in "
                       "the view"),
                  oper("viewReturns", "Expected return of each view, in one row or one column"),
                  oper("riskAversion",
                       "Risk aversion of the market. Optional: omit for 2.5. Default: 2.5"),
                  oper("tau",
                       "Scale of the uncertainty of the equilibrium returns. Optional: omit for "
                       "0.05. Default: 0.05"),
                  oper("viewCov",
                       "Square covariance matrix of the errors of the views. Optional: omit for "
                       "the diagonal of tau P Sigma P^T. Default: diagonal of tau P Sigma P^T")}),
        function("pole_placement",
                 "Finds the state feedback gain that places the closed-loop poles of a linear "
                 "system where they are wanted",
                 {oper("A", "Square state matrix of the system"),
                  oper("B", "Input matrix of the system, with the rows of A"),
                  oper("polesReal", "Real parts of the wanted poles, in one row or one column"),
                  oper("polesImag",
                       "Imaginary parts of the wanted poles, in the order of polesReal. Optional: "
                       "omit for real poles. Default: 0 for every pole")}),

        // Matrices
        function(
            "matrix_random", "Draws a matrix of random numbers from a distribution",
            {oper("nrows", "Number of rows, a positive integer"),
             oper("ncols", "Number of columns, a positive integer"),
             oper("dist",
                  "UNIFORM, NORMAL or DISCRETE_UNIFORM. Optional: omit for UNIFORM. Default: "
                  "UNIFORM"),
             oper("corr",
                  "Correlation matrix of the columns of a NORMAL draw, ncols by ncols. "
                  "Optional: omit for independent columns. Default: the identity"),
             oper("lower",
                  "Least integer of a DISCRETE_UNIFORM draw. Optional: omit for 0. Default: 0"),
             oper("upper",
                  "Largest integer of a DISCRETE_UNIFORM draw. Optional: omit for 1. Default: 1"),
             oper("seed",
                  "Seed of the random number generator, a non-negative integer; 0 uses the "
                  "timer. Optional: omit for the timer. Default: 0")},
            command<&matrix_random>()),
        function(
            "matrix_cov", "Computes the covariance matrix of the columns of data, with divisor n",
            {oper("inputData", "Table of numbers with or without variable names in the first row")},
            command<&matrix_cov>()),
        function("matrix_cov_from_file",
                 "Computes the covariance matrix of variables of a delimited data file, with "
                 "divisor n",
                 {oper("filename", kFilename), oper("varNames", kVarNames),
                  oper("delimiter", kDelimiter)},
                 command<&matrix_cov_from_file>()),
        function(
            "matrix_corr", "Computes the correlation matrix of the columns of data",
            {oper("inputData", "Table of numbers with or without variable names in the first row")},
            command<&matrix_corr>()),
        function("matrix_corr_from_file",
                 "Computes the correlation matrix of variables of a delimited data file",
                 {oper("filename", kFilename), oper("varNames", kVarNames),
                  oper("delimiter", kDelimiter)},
                 command<&matrix_corr_from_file>()),
        function("matrix_corr_from_cov", "Converts a covariance matrix to a correlation matrix",
                 {oper("matrix", "Square covariance matrix")}, command<&matrix_corr_from_cov>()),
        function("matrix_cov_from_corr",
                 "Converts a correlation matrix and standard deviations to a covariance matrix",
                 {oper("matrix", "Square correlation matrix"),
                  oper("stdevs",
                       "Non-negative standard deviation of each variable, in one row or one "
                       "column")},
                 command<&matrix_cov_from_corr>()),
        function("matrix_stdev_from_cov",
                 "Computes the standard deviations, the square roots of the diagonal, of a "
                 "covariance matrix",
                 {oper("matrix", "Square covariance matrix")}, command<&matrix_stdev_from_cov>()),
        function("matrix_prod", "Multiplies two matrices, or scales a matrix by a number",
                 {oper("matrix1", kMatrix1), oper("matrix2", kMatrix2)}, command<&matrix_prod>()),
        function("matrix_directprod", "Computes the direct (Kronecker) product of two matrices",
                 {oper("matrix1", "First matrix of numbers"),
                  oper("matrix2", "Second matrix of numbers")},
                 command<&matrix_directprod>()),
        function("matrix_elementprod",
                 "Multiplies two matrices of the same size element by element",
                 {oper("matrix1", "First matrix of numbers"),
                  oper("matrix2", "Second matrix of numbers, of the size of matrix1")},
                 command<&matrix_elementprod>()),
        function("matrix_plus", "Adds two matrices of the same size",
                 {oper("matrix1", "First matrix of numbers"),
                  oper("matrix2", "Second matrix of numbers, of the size of matrix1")},
                 command<&matrix_plus>()),
        function("matrix_minus",
                 "Subtracts the second matrix from the first, both of the same size",
                 {oper("matrix1", "First matrix of numbers"),
                  oper("matrix2", "Second matrix of numbers, of the size of matrix1")},
                 command<&matrix_minus>()),
        function("matrix_I", "Returns the identity matrix of a dimension",
                 {oper("dim", "Number of rows and columns, a positive integer")},
                 command<&matrix_I>()),
        function("matrix_t", "Transposes a matrix", {oper("matrix", kMatrix)},
                 command<&matrix_t>()),
        function("matrix_diag",
                 "Makes a diagonal matrix from a vector, or from the diagonal of a square matrix",
                 {oper("matrix", "Vector or square matrix of numbers")}, command<&matrix_diag>()),
        function("matrix_tr", "Computes the trace of a square matrix",
                 {oper("matrix", kSquareMatrix)}, command<&matrix_tr>()),
        function("matrix_inv", "Inverts a square matrix by Gauss-Jordan elimination",
                 {oper("matrix", kSquareMatrix)}, command<&matrix_inv>()),
        function("matrix_pinv", "Computes the Moore-Penrose pseudo-inverse of a matrix",
                 {oper("matrix", kMatrix)}, command<&matrix_pinv>()),
        function("matrix_complex_pinv", "Computes the pseudo-inverse of a complex matrix",
                 {oper("matrixReal", kMatrixReal), oper("matrixImag", kMatrixImag)},
                 command<&matrix_complex_pinv>()),
        function("matrix_solver", "Solves the linear system A X = B",
                 {oper("A", "Square matrix of coefficients"),
                  oper("B", "Right-hand sides, with the rows of A")},
                 command<&matrix_solver>()),
        function(
            "matrix_tridiagonal_solver", "Solves a tridiagonal linear system",
            {oper("A",
                  "Three columns, one row per equation i: the coefficients of x(i-1), x(i) and "
                  "x(i+1); the first cell of the first row and the last cell of the last row "
                  "are not read"),
             oper("B", "Right-hand sides, with the rows of A; each column is solved")},
            command<&matrix_tridiagonal_solver>()),
        function("matrix_pentadiagonal_solver", "Solves a pentadiagonal linear system",
                 {oper("A",
                       "Five columns, one row per equation i: the coefficients of x(i-2), x(i-1), "
                       "x(i), x(i+1) and x(i+2); the cells of columns 1 and 2 before the first "
                       "row they reach, and of columns 4 and 5 after the last, are not read"),
                  oper("B", "Right-hand sides, with the rows of A; each column is solved")},
                 command<&matrix_pentadiagonal_solver>()),
        function(
            "matrix_Sylvester_solver", "Solves the Sylvester equation A X + X B = C",
            {oper("A", "Square matrix with the rows of C"),
             oper("B", "Square matrix with the columns of C"), oper("C", "Right-hand side matrix")},
            command<&matrix_Sylvester_solver>()),
        function("matrix_chol",
                 "Computes the lower Cholesky factor of a symmetric positive semi-definite matrix",
                 {oper("matrix", "Symmetric positive semi-definite matrix")},
                 command<&matrix_chol>()),
        function("matrix_sym_eigen",
                 "Computes the eigenvalues and eigenvectors of a symmetric matrix",
                 {oper("matrix", "Symmetric matrix of numbers")}, command<&matrix_sym_eigen>()),
        function("matrix_eigen",
                 "Computes the eigenvalues and eigenvectors of a general real square matrix: the "
                 "eigenvalues by real part, largest first, as Real part and Imag part columns; "
                 "then the unit eigenvectors in columns as a Real part and an Imag part block",
                 {oper("matrix", kSquareMatrix)}, command<&matrix_eigen>()),
        function("matrix_complex_eigen",
                 "Computes the eigenvalues and eigenvectors of a complex square matrix, laid out "
                 "as by matrix_eigen",
                 {oper("matrixReal", kMatrixReal), oper("matrixImag", kMatrixImag)},
                 command<&matrix_complex_eigen>()),
        function("matrix_svd",
                 "Computes the singular value decomposition A = U W V^T of a matrix: under that "
                 "heading the blocks U, W (the diagonal matrix of the singular values, largest "
                 "first) and V",
                 {oper("matrix", kMatrix)}, command<&matrix_svd>()),
        function("matrix_LU", "Computes the LU decomposition P A = L U of a square matrix",
                 {oper("matrix", kSquareMatrix)}, command<&matrix_LU>()),
        function("matrix_QR", "Computes the QR decomposition A = Q R of a square matrix",
                 {oper("matrix", kSquareMatrix)}, command<&matrix_QR>()),
        function("matrix_complex_QR",
                 "Computes the QR decomposition A = Q R of a complex square matrix",
                 {oper("matrixReal", kMatrixReal), oper("matrixImag", kMatrixImag)},
                 command<&matrix_complex_QR>()),
        function("matrix_Schur", "Computes the Schur decomposition A = Q R Q^H of a square matrix",
                 {oper("matrix", kSquareMatrix)}, command<&matrix_Schur>()),
        function("matrix_complex_Schur",
                 "Computes the Schur decomposition A = Q R Q^H of a complex square matrix",
                 {oper("matrixReal", kMatrixReal), oper("matrixImag", kMatrixImag)},
                 command<&matrix_complex_Schur>()),
        function(
            "matrix_sweep", "Applies the sweep operator to a matrix over a list of pivots",
            {oper("matrix", kMatrix),
             oper("pivotIndexes",
                  "Distinct pivot indexes, counted from 1, in the order of sweeping. Optional: "
                  "omit to sweep every diagonal entry. Default: all")},
            command<&matrix_sweep>()),
        function("matrix_det", "Computes the determinant of a square matrix",
                 {oper("matrix", kSquareMatrix)}, command<&matrix_det>()),
        function("matrix_exp", "Computes the exponential of a square matrix",
                 {oper("matrix", kSquareMatrix)}, command<&matrix_exp>()),
        function("matrix_complex_exp", "Computes the exponential of a complex square matrix",
                 {oper("matrixReal",
                       "Real part of the square complex matrix. Optional: omit for zeros. Default: "
                       "0"),
                  oper("matrixImag",
                       "Imaginary part of the square complex matrix. Optional: omit for zeros. "
                       "Default: 0")},
                 command<&matrix_complex_exp>()),
        function("matrix_distance", "Computes the Minkowski distances between the rows of data",
                 {oper("inputData", "Table of numbers, one point per row"),
                  oper("p",
                       "Power of the Minkowski distance, a number at or above 1, or Euclidean, "
                       "Manhattan or Chebyshev. Optional: omit for Euclidean. Default: 2")},
                 command<&matrix_distance>()),
        function("matrix_freq",
                 "Counts the distinct values among all cells of a matrix: columns Value, Freq, "
                 "Percent, CumFreq and CumPercent; numbers ascending, then texts, then Missing",
                 {oper("matrix", "Table of values"),
                  oper("includeMissing",
                       "1 counts empty cells, 0 leaves them out. Optional: omit to leave them out. "
                       "Default: 0")},
                 command<&matrix_freq>()),
        function("matrix_from_vector", "Reshapes a vector into a matrix, by rows or by columns",
                 {oper("vector", "Numbers in one row or one column"),
                  oper("numRows", "Number of rows, a positive integer"),
                  oper("numCols", "Number of columns, a positive integer"),
                  oper("byRowOrCol",
                       "ROW fills the matrix row by row, COL column by column. Optional: omit for "
                       "COL. Default: COL")},
                 command<&matrix_from_vector>()),
        function("matrix_to_vector", "Reads a matrix into one column, by rows or by columns",
                 {oper("matrix", kMatrix),
                  oper("byRowOrCol",
                       "ROW reads the matrix row by row, COL column by column. Optional: omit for "
                       "COL. Default: COL")},
                 command<&matrix_to_vector>()),
        function("matrix_decimal_to_fraction",
                 "Writes the numbers of a matrix as fractions where a small denominator is exact",
                 {oper("matrix", kMatrix)}, command<&matrix_decimal_to_fraction>()),

        // Transforms, quadrature and sequences
        function("FFT", "Computes the discrete Fourier transform of a vector or a matrix",
                 {oper("xReal", "Real part of the input, a vector or a matrix"),
                  oper("xImag",
                       "Imaginary part of the input, of the size of xReal. Optional: omit for real "
                       "input. Default: 0")},
                 command<&FFT>()),
        function("IFFT", "Computes the inverse discrete Fourier transform of a vector or a matrix",
                 {oper("xReal", "Real part of the input, a vector or a matrix"),
                  oper("xImag",
                       "Imaginary part of the input, of the size of xReal. Optional: omit for real "
                       "input. Default: 0")},
                 command<&IFFT>()),
        function(
            "gauss_legendre",
            "Computes the abscissas and weights of Gauss-Legendre quadrature on an interval",
            {oper("numPoints", kNumPointsQuadrature), oper("lower", "Lower end of the interval"),
             oper("upper", "Upper end of the interval, above lower")},
            command<&gauss_legendre>()),
        function("gauss_laguerre",
                 "Computes the abscissas and weights of Gauss-Laguerre quadrature",
                 {oper("numPoints", kNumPointsQuadrature)}, command<&gauss_laguerre>()),
        function("gauss_hermite", "Computes the abscissas and weights of Gauss-Hermite quadrature",
                 {oper("numPoints", kNumPointsQuadrature)}, command<&gauss_hermite>()),
        function("integral", "Integrates a function of one variable between two bounds",
                 {oper("func", "Expression of the function of one variable, in one column"),
                  oper("from", "Lower bound of the integral"),
                  oper("to", "Upper bound of the integral")},
                 command<&integral>()),
        function("function_eval", "Evaluates an expression at each row of a table of arguments",
                 {oper("func", kFunc),
                  oper("x",
                       "Table of the arguments with the variable names in the first row, one row "
                       "per evaluation")},
                 command<&function_eval>()),
        function("prime_numbers", "Lists the first prime numbers",
                 {oper("numPrimeNumbers", "Number of primes to list, a positive integer")},
                 command<&prime_numbers>()),
        function("Halton_numbers", "Generates points of the Halton low-discrepancy sequence",
                 {oper("numbers", kNumbers), oper("dimension", kDimension)},
                 command<&Halton_numbers>()),
        function("Sobol_numbers", "Generates points of the Sobol low-discrepancy sequence",
                 {oper("numbers", kNumbers),
                  oper("dimension",
                       "Number of dimensions, a positive integer up to 1111. Optional: omit for 1. "
                       "Default: 1")},
                 command<&Sobol_numbers>()),
        function("Latin_hypercube",
                 "Draws points by improved distributed Latin hypercube sampling, with their Latin "
                 "squares",
                 {oper("numbers", kNumbers),
                  oper("dimension", "Number of dimensions, a positive integer"),
                  oper("seed",
                       "Seed of the random number generator, a non-negative integer; 0 uses the "
                       "timer. Optional: omit for 100. Default: 100"),
                  oper("symbol",
                       "Text that marks a point in the Latin squares. Optional: omit for X. "
                       "Default: X")},
                 command<&Latin_hypercube>()),

        // Probability
        function("prob_normal", "Returns the standard normal distribution function at z",
                 {plain("z", "Value at which to evaluate the distribution function")},
                 command<&prob_normal>()),
        function("prob_normal_inv", "Returns the standard normal quantile of a probability",
                 {plain("p", "Probability; 0 and 1 give -26 and 26 times the square root of 2")},
                 command<&prob_normal_inv>()),
        function("prob_normal_table", "Tabulates the standard normal distribution function", {},
                 command<&prob_normal_table>()),
        function("prob_t", "Returns the Student t distribution function at t",
                 {plain("t", "Value at which to evaluate the distribution function"),
                  plain("df", "Degrees of freedom, positive")},
                 command<&prob_t>()),
        function("prob_t_inv", "Returns the Student t quantile of a probability",
                 {plain("p", "Probability between 0 and 1"),
                  plain("df", "Degrees of freedom, positive")},
                 command<&prob_t_inv>()),
        function("prob_t_table", "Tabulates percentiles of the Student t distribution", {},
                 command<&prob_t_table>()),
        function("prob_chi",
                 "Returns the chi-squared distribution function at c, central or non-central",
                 {plain("c", "Non-negative value at which to evaluate the distribution function"),
                  plain("df", "Degrees of freedom, positive"),
                  oper("nc",
                       "Non-centrality, non-negative. Optional: omit for the central distribution. "
                       "Default: 0")},
                 command<&prob_chi>()),
        function(
            "prob_chi_inv",
            "Returns the chi-squared quantile of a probability, central or non-central",
            {plain("p", "Probability between 0 and 1"), plain("df", "Degrees of freedom, positive"),
             oper("nc",
                  "Non-centrality, non-negative. Optional: omit for the central distribution. "
                  "Default: 0")},
            command<&prob_chi_inv>()),
        function("prob_chi_table", "Tabulates percentiles of the chi-squared distribution",
                 {oper("nc",
                       "Non-centrality, non-negative. Optional: omit for the central distribution. "
                       "Default: 0")},
                 command<&prob_chi_table>()),
        function("prob_f", "Returns the F distribution function at f",
                 {plain("f", "Value at which to evaluate the distribution function"),
                  plain("df1", "Degrees of freedom of the numerator, positive"),
                  plain("df2", "Degrees of freedom of the denominator, positive")},
                 command<&prob_f>()),
        function("prob_f_inv", "Returns the F quantile of a probability",
                 {plain("p", "Probability between 0 and 1"),
                  plain("df1", "Degrees of freedom of the numerator, positive"),
                  plain("df2", "Degrees of freedom of the denominator, positive")},
                 command<&prob_f_inv>()),
        function("prob_f_table", "Tabulates percentiles of the F distribution at one probability",
                 {oper("p", "Probability between 0 and 1. Optional: omit for 0.95. Default: 0.95")},
                 command<&prob_f_table>()),
        function("Cornish_Fisher_expansion",
                 "Adjusts a normal percentile for skewness and kurtosis by the Cornish-Fisher "
                 "expansion",
                 {plain("cl", "Confidence level, strictly between 0 and 1"),
                  plain("skewness", "Skewness of the distribution"),
                  plain("kurtosis", "Excess kurtosis of the distribution")},
                 command<&Cornish_Fisher_expansion>()),
    };
    return functions;
}

}  // namespace zentable
