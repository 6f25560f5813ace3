#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "../support/tables.hpp"
#include "models/evaluation.hpp"
#include "woe/woe_bins.hpp"
#include "woe/woe_transform.hpp"
#include "woe/woe_xcont.hpp"
#include "xlw/cell_conversions.hpp"

namespace zentable {
namespace {

const CellMatrix kOmitted(1, 1);

void expect_same_cells(const CellMatrix& a, const CellMatrix& b, std::size_t first_row) {
    ASSERT_EQ(a.RowsInStructure(), b.RowsInStructure());
    ASSERT_EQ(a.ColumnsInStructure(), b.ColumnsInStructure());
    for (std::size_t i = first_row; i < a.RowsInStructure(); ++i)
        for (std::size_t j = 0; j < a.ColumnsInStructure(); ++j) {
            ASSERT_EQ(a(i, j).IsANumber(), b(i, j).IsANumber()) << i << "," << j;
            if (a(i, j).IsANumber())
                EXPECT_EQ(a(i, j).NumericValue(), b(i, j).NumericValue()) << i << "," << j;
            else
                EXPECT_EQ(cell_to_text(a(i, j)), cell_to_text(b(i, j))) << i << "," << j;
        }
}

TEST(WoeXcont, GroupingEqualsRankGroupsAndGroupSummary) {
    // Ties, weights and uneven groups: the radix-sorted grouping must give
    // exactly the bins of the two general routines.
    std::mt19937 gen(7);
    std::uniform_int_distribution<int> value(-20, 20);
    std::uniform_real_distribution<double> weight(0.1, 3.0);
    dvec x, y, w;
    dmat records;
    for (int i = 0; i < 997; ++i) {
        x.push_back(value(gen) * 0.25);
        y.push_back(value(gen) % 2 != 0 ? 1 : 0);
        w.push_back(weight(gen));
        records.push_back({x.back(), y.back(), w.back()});
    }
    for (int groups : {1, 3, 10, 50}) {
        dmat summary;
        group_summary(rank_groups(records, 1, groups, 1), {4}, {1, 2}, 3, false, summary);
        const std::vector<RankedGroup> fast = rank_x_groups(x, y, w, groups);
        ASSERT_EQ(fast.size(), summary.size() - 1) << groups;
        for (std::size_t g = 0; g < fast.size(); ++g) {
            const dvec& row = summary[g + 1];  // class, type, count, weight, x: 5, y: 5
            EXPECT_EQ(fast[g].count, row[2]);
            EXPECT_EQ(fast[g].weight, row[3]);
            EXPECT_EQ(fast[g].x_min, row[5]);
            EXPECT_EQ(fast[g].x_max, row[6]);
            EXPECT_EQ(fast[g].y_sum, row[9]);
            EXPECT_EQ(ycont_bins_of(fast)[g][4], row[13]);
        }
    }
}

TEST(WoeXcont, EqualMeansMergeBelowPvalueOne) {
    // Equal means give the pair p 1: any pvalue below 1 merges them.
    const dmat equal = {{1, 2, 3, 5, 1, 3, 2}, {3, 4, 3, 5, 2, 3, 8}};
    EXPECT_EQ(woe_merge_ycont(equal, 0.99, 100).size(), 1u);
    EXPECT_EQ(woe_merge_ycont(equal, 1.0, 100).size(), 2u);
}

TEST(WoeXcont, TwoThreadsBinAsOne) {
    // 2 variables of 2^17 records reach the size at which the variables are
    // binned on two threads; each must come out as when binned alone.
    const std::size_t n = std::size_t{1} << 17;
    std::mt19937 gen(11);
    std::uniform_real_distribution<double> u(0, 1);
    CellMatrix both(n + 1, 2), first(n + 1, 1), second(n + 1, 1), y(n + 1, 1);
    both(0, 0) = first(0, 0) = "a";
    both(0, 1) = second(0, 0) = "b";
    y(0, 0) = "bad";
    for (std::size_t i = 1; i <= n; ++i) {
        const double a = std::round(u(gen) * 500), b = u(gen);
        both(i, 0) = first(i, 0) = a;
        if (i % 97 != 0)
            both(i, 1) = second(i, 0) = b;
        y(i, 0) = u(gen) < 0.2 + 0.5 * b ? 1.0 : 0.0;
    }
    const CellMatrix bins(20.0), p(0.05);
    auto handle = [](const CellMatrix& report) { return CellMatrix(report(0, 0).StringValue()); };
    const CellMatrix joint = woe_xcont_ybin(both, y, bins, p, kOmitted, kOmitted, kOmitted);
    const CellMatrix t = woe_transform(handle(joint), both);
    const CellMatrix ta = woe_transform(
        handle(woe_xcont_ybin(first, y, bins, p, kOmitted, kOmitted, kOmitted)), first);
    const CellMatrix tb = woe_transform(
        handle(woe_xcont_ybin(second, y, bins, p, kOmitted, kOmitted, kOmitted)), second);
    for (std::size_t i = 1; i <= n; i += 37) {
        EXPECT_EQ(t(i, 0).NumericValue(), ta(i, 0).NumericValue()) << i;
        EXPECT_EQ(t(i, 1).NumericValue(), tb(i, 0).NumericValue()) << i;
    }
}

TEST(WoeXcont, FileFormsAgreeWithCellForms) {
    // Blanks in x1, text in x2, weights: the file reader flags each field as
    // the cell decoder flags each cell.
    std::ostringstream csv;
    csv << "x1,x2,bad,w\n";
    std::mt19937 gen(3);
    std::uniform_real_distribution<double> u(0, 1);
    CellMatrix x(201, 2), y(201, 1), w(201, 1);
    x(0, 0) = "x1";
    x(0, 1) = "x2";
    y(0, 0) = "bad";
    w(0, 0) = "w";
    for (int i = 0; i < 200; ++i) {
        const double a = std::round(u(gen) * 1000) / 8, b = std::round(u(gen) * 100);
        const int bad = u(gen) < a / 150 ? 1 : 0;
        const double weight = 1 + i % 4;
        csv << (i % 17 == 0 ? std::string("") : number_to_text(a)) << ","
            << (i % 23 == 0 ? std::string("NA") : number_to_text(b)) << "," << bad << "," << weight
            << "\n";
        if (i % 17 != 0)
            x(i + 1, 0) = a;
        if (i % 23 == 0)
            x(i + 1, 1) = "NA";
        else
            x(i + 1, 1) = b;
        y(i + 1, 0) = bad;
        w(i + 1, 0) = weight;
    }
    const std::string path = ::testing::TempDir() + "woe_data.csv";
    std::ofstream(path) << csv.str();
    const CellMatrix names = testing::table_with_header({"x1", "x2"}, {});
    const CellMatrix bins(5.0), few(10.0), p(0.2);
    expect_same_cells(woe_xcont_ybin(x, y, bins, kOmitted, kOmitted, few, w),
                      woe_xcont_ybin_from_file(path, names, CellMatrix("bad"), bins, kOmitted,
                                               kOmitted, few, CellMatrix("w"), kOmitted),
                      1);
    expect_same_cells(woe_xcont_ycont(x, y, bins, p, kOmitted, few, w),
                      woe_xcont_ycont_from_file(path, names, CellMatrix("bad"), bins, p, kOmitted,
                                                few, CellMatrix("w"), kOmitted),
                      1);
}

}  // namespace
}  // namespace zentable
