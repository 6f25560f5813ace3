#include "stats/ranks.hpp"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "stats_testing.hpp"

namespace zentable {
namespace {

using testing::blank;
using testing::cells_of;
using testing::failure_text;
using testing::make_table;
using Row = std::vector<std::string>;

const CellMatrix kOmitted(1, 1);

std::vector<std::string> column_of(const CellMatrix& t) {
    std::vector<std::string> out;
    for (const Row& row : cells_of(t))
        out.push_back(row.at(0));
    return out;
}

TEST(Ranks, FamiliarRanksTiesAndMissingRecords) {
    // rank = trunc(position * 4 / 5) + 1: positions 1..4 give 1..4.
    const CellMatrix x = make_table({{"v"}, {30.0}, {10.0}, {20.0}, {40.0}});
    EXPECT_EQ(column_of(ranks(x, CellMatrix(4.0), kOmitted)),
              (Row{"s:v", "n:3", "n:1", "n:2", "n:4"}));
    EXPECT_EQ(column_of(ranks(x, CellMatrix(4.0), CellMatrix(-1.0))),
              (Row{"s:v", "n:2", "n:4", "n:3", "n:1"}));
    // Two groups: trunc(2 p / 5) + 1 is 1, 1, 2, 2 for p = 1..4.
    EXPECT_EQ(column_of(ranks(x, CellMatrix(2.0), CellMatrix(1.0))),
              (Row{"s:v", "n:2", "n:1", "n:1", "n:2"}));

    // Valid values 5, 1, 5, 3, 5: sorted 1, 3, 5, 5, 5. The 5s hold positions
    // 3 to 5, mean 4: trunc(4 * 5 / 6) + 1 = 4. 1 -> trunc(5 / 6) + 1 = 1;
    // 3 -> trunc(10 / 6) + 1 = 2. The text and the blank do not count in n.
    const CellMatrix tied = make_table({{"v"}, {5.0}, {"x"}, {1.0}, {5.0}, {blank}, {3.0}, {5.0}});
    EXPECT_EQ(column_of(ranks(tied, CellMatrix(5.0), kOmitted)),
              (Row{"s:v", "n:4", "s:.", "n:1", "n:4", "s:.", "n:2", "n:4"}));
    // From the top the 5s hold positions 1 to 3, mean 2: trunc(10 / 6) + 1 = 2.
    EXPECT_EQ(column_of(ranks(tied, CellMatrix(5.0), CellMatrix(-1.0))),
              (Row{"s:v", "n:2", "s:.", "n:5", "n:2", "s:.", "n:4", "n:2"}));
}

TEST(Ranks, InputFailures) {
    const CellMatrix x = make_table({{"v"}, {1.0}});
    const CellMatrix two = CellMatrix(2.0);
    EXPECT_EQ(failure_text([&] { ranks(kOmitted, two, kOmitted); }),
              "Error: input data is missing");
    EXPECT_EQ(failure_text([&] {
                  ranks(make_table({{"a", "b"}, {1.0, 2.0}}), two, kOmitted);
              }),
              "Error: input data must be in one column");
    for (const CellMatrix& bad : {CellMatrix(0.0), CellMatrix(-3.0), kOmitted})
        EXPECT_EQ(failure_text([&] { ranks(x, bad, kOmitted); }),
                  "Input numBins must be a positive integer");
    EXPECT_EQ(failure_text([&] { ranks(x, two, CellMatrix(2.0)); }), "Input order must be 1 or -1");
}

TEST(RanksFromFile, AppendsTheRanksAndWillNotWriteOverItsInput) {
    const std::string in =
        testing::temp_file("ranks_in.csv", "v,id\n5,1\nx,2\n1,3\n5,4\n,5\n3,6\n5,7\n");
    const std::string out = ::testing::TempDir() + "stats_ranks_out.csv";
    std::remove(out.c_str());
    const CellMatrix result = ranks_from_file(CellMatrix("v"), in, CellMatrix("rank"), out,
                                              CellMatrix(5.0), kOmitted, kOmitted);
    EXPECT_EQ(column_of(result), (Row{"s:The ranks rank have been appended in the file " + out}));
    // The ranks of the same records as cells (above): 4 . 1 4 . 2 4.
    EXPECT_EQ(testing::file_text(out),
              "v,id,rank\n5,1,4\nx,2,nan\n1,3,1\n5,4,4\n,5,nan\n3,6,2\n5,7,4\n");

    EXPECT_EQ(failure_text([&] {
                  ranks_from_file(CellMatrix("v"), in, CellMatrix("r"), in, CellMatrix(2.0),
                                  kOmitted, kOmitted);
              }),
              "Input file and output file must be different");
    EXPECT_EQ(testing::file_text(in), "v,id\n5,1\nx,2\n1,3\n5,4\n,5\n3,6\n5,7\n");
}

}  // namespace
}  // namespace zentable
