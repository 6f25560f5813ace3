#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <sstream>
#include <string>

#include "../support/tables.hpp"
#include "../xlw/table_builder.hpp"
#include "models/scoring.hpp"
#include "regression/linear_reg.hpp"

namespace zentable {
namespace {

using testing::thrown_text;

using testing::make_table;

std::string slurp(const std::string& path) {
    std::ifstream in(path);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

// y = 1 + 2 a - 3 b exactly, so the fitted coefficients are known.
std::string fit_exact_model() {
    const CellMatrix x = make_table({{"a", "b"}, {1, 0}, {2, 1}, {0, 3}, {4, 2}, {3, 5}});
    const CellMatrix y = make_table({{"y"}, {3}, {2}, {-8}, {3}, {-8}});
    return linear_reg(x, y, CellMatrix(1, 1), CellMatrix(1, 1))(0, 0).StringValue();
}

double expected(double a, double b) {
    return 1 + 2 * a - 3 * b;
}

TEST(ModelScore, LinesColumnsUpByNameAndMarksIncompleteRows) {
    const std::string model = fit_exact_model();
    // Extra and reordered columns, a text cell in a column the model does not
    // use, a duplicated name (the first counts), and a blank cell.
    const CellMatrix x = make_table({{"id", "b", "extra", "a", "b"},
                                     {1, 2, 7, 0.5, 100},
                                     {2, -1, "text", 3, 100},
                                     {3, 4, 9, 10, 100},
                                     {4, 0.25, 1, testing::blank, 100}});
    const CellMatrix r = model_score(model, x);
    ASSERT_EQ(r.RowsInStructure(), 5u);
    ASSERT_EQ(r.ColumnsInStructure(), 1u);
    EXPECT_EQ(r(0, 0).StringValue(), "Y Predicted");
    EXPECT_NEAR(r(1, 0).NumericValue(), expected(0.5, 2), 1e-9);
    EXPECT_EQ(r(2, 0).StringValue(), ".");
    EXPECT_NEAR(r(3, 0).NumericValue(), expected(10, 4), 1e-9);
    EXPECT_EQ(r(4, 0).StringValue(), ".");

    // The class before "-" is matched with case, as are the variable names.
    std::string lower = model;
    for (char& c : lower)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    EXPECT_EQ(thrown_text([&] {
                  model_score(lower, make_table({{"a", "b"}, {1, 1}}));
              }),
              "Invalid model");
    EXPECT_EQ(thrown_text([&] {
                  model_score(model, make_table({{"A", "b"}, {1, 1}}));
              }),
              "The variable (a) in model cannot be found in data matrix");
}

TEST(ModelScore, ModelsThatCannotAnswer) {
    const CellMatrix x = make_table({{"a"}, {1}});
    EXPECT_EQ(thrown_text([&] { model_score("nothingModel->3", x); }), "Invalid model");
    EXPECT_EQ(thrown_text([&] { model_score("", x); }), "Invalid model");
    EXPECT_EQ(thrown_text([&] { model_score("linearRegModel->999999999", x); }),
              "Error: could not find \"linearRegModel->999999999\" for linearRegModel; please "
              "rebuild the model.");
    EXPECT_EQ(thrown_text([&] { model_score("treeModel.XmL", x); }).rfind("Reading a PMML", 0), 0u);
    EXPECT_EQ(thrown_text([&] { model_score("ldaModel->1", x); }),
              "ldaModel models cannot be scored in this build");
    EXPECT_EQ(thrown_text([&] { model_score("svmModel->1", x); }),
              "svmModel models cannot be scored in this build");
    EXPECT_EQ(thrown_text([&] { model_score_node(fit_exact_model(), x); }),
              "model_score_node works only for logisticRegBoostingTreeModel");

    const ModelScores s = score_by_model(fit_exact_model(), {"b", "a"}, {{1, 2}, {0, 0}});
    EXPECT_EQ(s.class_name, "linearRegModel");
    EXPECT_EQ(s.type, "CONT");
    EXPECT_EQ(s.parameter_count, 3);
    EXPECT_TRUE(s.levels.empty());
    ASSERT_EQ(s.predictions.size(), 2u);
    EXPECT_NEAR(s.predictions[0], expected(2, 1), 1e-9);
    EXPECT_NEAR(s.predictions[1], expected(0, 0), 1e-9);
}

TEST(ModelScoreFromFile, AppendsTheScoreAndADotForInvalidLines) {
    const std::string model = fit_exact_model();
    const std::string in = ::testing::TempDir() + "score_in.csv";
    const std::string out = ::testing::TempDir() + "score_out.csv";
    std::ofstream(in) << "b;a;note\n1;2;7\n0;x;8\n0.5;0.5;9\n";
    const CellMatrix r = model_score_from_file(model, in, CellMatrix("yhat"), out, CellMatrix(";"));
    EXPECT_EQ(r(0, 0).StringValue(), "The score yhat has been appended in the file " + out);
    const ModelScores s = score_by_model(model, {"b", "a"}, {{1, 2}, {0.5, 0.5}});
    EXPECT_NEAR(s.predictions[0], 2.0, 1e-9);
    EXPECT_NEAR(s.predictions[1], 0.5, 1e-9);
    std::ostringstream text;
    text.precision(16);
    text << "b;a;note;yhat\n1;2;7;" << s.predictions[0] << "\n0;x;8;.\n0.5;0.5;9;"
         << s.predictions[1] << "\n";
    EXPECT_EQ(slurp(out), text.str());
    EXPECT_EQ(thrown_text(
                  [&] { model_score_from_file(model, in, CellMatrix("s"), in, CellMatrix(1, 1)); }),
              "input file and output file must be different");
    EXPECT_EQ(thrown_text([&] {
                  model_score_from_file(model, "/no/such.csv", CellMatrix("s"), out,
                                        CellMatrix(1, 1));
              }),
              "Error: cannot open file /no/such.csv");
}

}  // namespace
}  // namespace zentable
