#include <gtest/gtest.h>

#include <string>

#include "../support/tables.hpp"
#include "models/scoring.hpp"
#include "regression/linear_reg.hpp"
#include "regression/logistic_reg.hpp"

namespace zentable {
namespace {

using testing::column;
using testing::table_with_header;

// Besides the predictions, evaluation reads what the dispatch says of the
// model: the type picks the binary or continuous report, the levels code y,
// the parameter count gives the degrees of freedom. None is shown as such.
TEST(ScoreByModel, TypeLevelsAndParameterCountByClass) {
    const CellMatrix none(1, 1);
    // y = 1 + 2 a - 3 b exactly.
    const CellMatrix x = table_with_header({"a", "b"}, {{1, 0}, {2, 1}, {0, 3}, {4, 2}, {3, 5}});
    const std::string line =
        linear_reg(x, column("y", {3, 2, -8, 3, -8}), none, none)(0, 0).StringValue();
    const ModelScores s = score_by_model(line, {"b", "a"}, {{1, 2}, {0, 0}});
    EXPECT_EQ(s.class_name, "linearRegModel");
    EXPECT_EQ(s.type, "CONT");
    EXPECT_EQ(s.parameter_count, 3);
    EXPECT_TRUE(s.levels.empty());
    ASSERT_EQ(s.predictions.size(), 2u);
    EXPECT_NEAR(s.predictions[0], 2.0, 1e-12);
    EXPECT_NEAR(s.predictions[1], 1.0, 1e-12);

    // Levels 1 and 2; a logistic model sets no parameter count.
    const std::string logit = logistic_reg(table_with_header({"x"}, {{0}, {0}, {0}, {1}, {1}, {1}}),
                                           column("y", {1, 2, 1, 2, 2, 1}), none)(0, 0)
                                  .StringValue();
    const ModelScores b = score_by_model(logit, {"x"}, {{0}});
    EXPECT_EQ(b.class_name, "logisticRegModel");
    EXPECT_EQ(b.type, "BIN");
    EXPECT_EQ(b.levels, (dvec{1, 2}));
    EXPECT_EQ(b.parameter_count, 0);
    EXPECT_NEAR(b.predictions[0], 1.0 / 3, 1e-6);
}

}  // namespace
}  // namespace zentable
