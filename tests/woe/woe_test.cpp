#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "../support/tables.hpp"
#include "../xlw/table_builder.hpp"
#include "data/delimited_file.hpp"
#include "models/evaluation.hpp"
#include "woe/woe_bins.hpp"
#include "woe/woe_transform.hpp"
#include "woe/woe_xcat.hpp"
#include "woe/woe_xcont.hpp"
#include "xlw/cell_conversions.hpp"

namespace zentable {
namespace {

using testing::blank;
using testing::Cell;
using testing::make_table;
using testing::thrown_text;

const CellMatrix kOmitted(1, 1);

double number(const CellMatrix& t, std::size_t r, std::size_t c) {
    EXPECT_TRUE(t(r, c).IsANumber()) << "cell " << r << "," << c;
    return t(r, c).IsANumber() ? t(r, c).NumericValue() : NAN;
}

std::string text(const CellMatrix& t, std::size_t r, std::size_t c) {
    return t(r, c).IsString() ? t(r, c).StringValue() : "(not text)";
}

std::string temp_path(const std::string& name) {
    return ::testing::TempDir() + "woe_" + name;
}

std::string temp_file(const std::string& name, const std::string& contents) {
    const std::string path = temp_path(name);
    std::ofstream(path) << contents;
    return path;
}

// Pearson's chi-square of the 2 by 2 table {a, b; e, f}, the usual closed form.
double pearson_chi(double a, double b, double e, double f) {
    const double n = a + b + e + f, d = a * f - b * e;
    return n * d * d / ((a + b) * (e + f) * (a + e) * (b + f));
}

// x1 takes 1 to 12 and is missing in the last three records; x2 is constant.
// Bins of 4 records (rank groups of 12 into 3) hold 1, 2 and 3 events; the
// missing group holds 1 event and 2 non-events.
const double kY[15] = {1, 0, 0, 0, 1, 1, 0, 0, 1, 1, 1, 0, 1, 0, 0};

CellMatrix hand_x() {
    CellMatrix x(16, 2);
    x(0, 0) = "x1";
    x(0, 1) = "x2";
    for (int i = 0; i < 15; ++i) {
        if (i < 12)
            x(i + 1, 0) = i + 1;
        x(i + 1, 1) = 7;
    }
    return x;
}

CellMatrix hand_y() {
    return testing::column("bad", std::vector<double>(kY, kY + 15));
}

TEST(WoeXcontYbin, HandWorkedBinsWoeInformationValueAndReport) {
    const CellMatrix r = woe_xcont_ybin(hand_x(), hand_y(), CellMatrix(3.0), kOmitted, kOmitted,
                                        CellMatrix(3.0), kOmitted);
    EXPECT_EQ(text(r, 0, 0).rfind("woeXcontYbinModel->", 0), 0u);
    // Head: 15 records, 7 of level 1, 8 of level 0, none missing.
    EXPECT_EQ(text(r, 2, 0), "bad");
    EXPECT_EQ(number(r, 3, 1), 15);
    EXPECT_EQ(number(r, 4, 0), 1);
    EXPECT_EQ(number(r, 4, 1), 7);
    EXPECT_NEAR(number(r, 4, 2), 7.0 / 15, 1e-15);
    EXPECT_EQ(number(r, 5, 1), 8);
    EXPECT_EQ(text(r, 6, 0), "Missing");
    EXPECT_EQ(number(r, 6, 1), 0);
    EXPECT_EQ(text(r, 8, 0), "Summary of Importance of Variables");
    EXPECT_EQ(text(r, 10, 9), "Info Value");

    // Shares by bin: events 1/6, 2/6, 3/6; non-events 3/6, 2/6, 1/6.
    const double woe[3] = {std::log(1.0 / 3), 0.0, std::log(3.0)};
    const double iv = woe[0] * (1.0 / 6 - 3.0 / 6) + woe[2] * (3.0 / 6 - 1.0 / 6);
    EXPECT_NEAR(iv, 2.0 / 3 * std::log(3.0), 1e-15);
    // x1: 3 missing, 12 present; moments of 1..12 with divisor 12.
    EXPECT_EQ(text(r, 11, 1), "x1");
    EXPECT_EQ(number(r, 11, 2), 3);
    EXPECT_EQ(number(r, 11, 3), 12);
    EXPECT_NEAR(number(r, 11, 4), 6.5, 1e-15);
    EXPECT_NEAR(number(r, 11, 5), std::sqrt(143.0 / 12), 1e-14);
    EXPECT_EQ(number(r, 11, 6), 1);
    EXPECT_EQ(number(r, 11, 7), 12);
    EXPECT_NEAR(number(r, 11, 8), 1.0 / 3, 1e-15);
    EXPECT_NEAR(number(r, 11, 9), iv, 1e-14);
    // x2 is constant: one bin, so no evidence.
    EXPECT_EQ(number(r, 12, 2), 0);
    EXPECT_EQ(number(r, 12, 9), 0);

    EXPECT_EQ(text(r, 14, 0), "Weight of Evidence");
    const std::size_t b = 16;  // the block of x1
    EXPECT_EQ(text(r, b, 0), "x1");
    EXPECT_EQ(text(r, b + 1, 1), "xMin");
    EXPECT_EQ(text(r, b + 1, 12), "KS");
    const double x_min[3] = {1, 4, 8}, x_max[3] = {4, 8, 12};  // printed bins join
    const double ones[3] = {1, 2, 3};
    for (int k = 0; k < 3; ++k) {
        const std::size_t row = b + 2 + k;
        EXPECT_EQ(number(r, row, 0), k + 1);
        EXPECT_EQ(number(r, row, 1), x_min[k]);
        EXPECT_EQ(number(r, row, 2), x_max[k]);
        EXPECT_EQ(number(r, row, 3), 4);
        EXPECT_EQ(number(r, row, 4), ones[k]);
        EXPECT_EQ(number(r, row, 6), 4 - ones[k]);
        EXPECT_NEAR(number(r, row, 8), ones[k] * 100 / (4 - ones[k]), 1e-12);
        EXPECT_NEAR(number(r, row, 10), woe[k], 1e-14);
    }
    EXPECT_NEAR(number(r, b + 3, 12), 1.0 / 3, 1e-15);  // KS after bin 2: |3/6 - 5/6|
    // Missing: 1 event, 2 non-events, WOE ln((1/6) / (2/6)); blanks where no share applies.
    EXPECT_EQ(text(r, b + 5, 0), "Missing");
    EXPECT_EQ(number(r, b + 5, 3), 3);
    EXPECT_NEAR(number(r, b + 5, 8), 50, 1e-12);
    EXPECT_NEAR(number(r, b + 5, 10), std::log(0.5), 1e-14);
    for (int c : {1, 2, 5, 7, 11, 12})
        EXPECT_TRUE(r(b + 5, c).IsEmpty()) << c;
    EXPECT_EQ(text(r, b + 6, 0), "Total");
    EXPECT_EQ(number(r, b + 6, 3), 12);
    EXPECT_EQ(number(r, b + 6, 8), 100);
    EXPECT_NEAR(number(r, b + 6, 11), iv, 1e-14);
    // The constant x2: one bin over all 15 records, no missing row.
    EXPECT_EQ(text(r, b + 8, 0), "x2");
    EXPECT_EQ(number(r, b + 10, 3), 15);
    EXPECT_EQ(text(r, b + 11, 0), "Total");
    EXPECT_EQ(r.RowsInStructure(), b + 14);
    EXPECT_EQ(text(r, b + 13, 0), "End of output: Weight of Evidence");

    // The transform gives each record its bin's WOE; minNumRecords 3 lets the
    // 3 missing records have their own, the default 50 scores them 0.
    const CellMatrix t = woe_transform(CellMatrix(text(r, 0, 0)), hand_x());
    const CellMatrix small_missing =
        woe_xcont_ybin(hand_x(), hand_y(), CellMatrix(3.0), kOmitted, kOmitted, kOmitted, kOmitted);
    const CellMatrix t50 = woe_transform(CellMatrix(text(small_missing, 0, 0)), hand_x());
    EXPECT_EQ(text(t, 0, 0), "x1");
    for (int i = 0; i < 15; ++i) {
        const double expected = i < 12 ? woe[i / 4] : std::log(0.5);
        EXPECT_NEAR(number(t, i + 1, 0), expected, 1e-14) << i;
        EXPECT_NEAR(number(t50, i + 1, 0), i < 12 ? expected : 0.0, 1e-14) << i;
        EXPECT_EQ(number(t, i + 1, 1), 0);
    }
}

TEST(WoeXcontYbin, MergeDecisionsFollowTheChiSquareOfNeighbours) {
    // Both neighbour pairs have the same statistic, 32/60; merged, the first
    // pair {3, 5} against {3, 1} has 1.5.
    EXPECT_NEAR(pearson_chi(1, 3, 2, 2), 32.0 / 60, 1e-15);
    EXPECT_NEAR(pearson_chi(2, 2, 3, 1), 32.0 / 60, 1e-15);
    EXPECT_NEAR(pearson_chi(3, 5, 3, 1), 1.5, 1e-15);
    // Chi-square quantiles with 1 df from tables: 50% 0.454936, 70% 1.074194,
    // 90% 2.705543.
    const dmat bins = {{1, 4, 1, 3}, {5, 8, 2, 2}, {9, 12, 3, 1}};
    EXPECT_EQ(woe_merge_ybin(bins, 1.0, 100), bins);  // c is 0: nothing merges
    EXPECT_EQ(woe_merge_ybin(bins, 0.5, 100), bins);  // 0.533 >= 0.455
    // 0.533 < 1.074: the tie goes to the lower pair; then 1.5 >= 1.074.
    const dmat two = {{1, 8, 3, 5}, {9, 12, 3, 1}};
    EXPECT_EQ(woe_merge_ybin(bins, 0.3, 100), two);
    EXPECT_EQ(woe_merge_ybin(bins, 0.1, 100).size(), 1u);  // 1.5 < 2.706
    // maxNumBins bounds the result whatever pvalue says.
    EXPECT_EQ(woe_merge_ybin(bins, 1.0, 2), two);
    const dmat one = woe_table_ybin(woe_merge_ybin(bins, 1.0, 1));
    ASSERT_EQ(one.size(), 2u);
    EXPECT_EQ(one[0][kWoeValue], 0.0);  // ln(1)
    EXPECT_EQ(one[0][kWoeXMin], 1);
    EXPECT_EQ(one[0][kWoeXMax], 12);

    // A bin without events keeps a finite WOE of about -69.
    const dmat table = woe_table_ybin({{0, 1, 0, 5}, {2, 3, 5, 0}});
    EXPECT_NEAR(table[0][kWoeValue], std::log(1e-30), 1e-9);
    EXPECT_NEAR(table[1][kWoeValue], -std::log(1e-30), 1e-9);
    // No bins: one row of zeros.
    EXPECT_EQ(woe_table_ybin({}), dmat(1, dvec(12, 0.0)));
}

TEST(WoeXcontYcont, WelchMergeAndTableByHand) {
    // Bins {1, 2, 3} and {10, 11, 12} by x: means 2 and 11, sample sd 1 each.
    CellMatrix x(7, 1), y(7, 1);
    x(0, 0) = "x";
    y(0, 0) = "y";
    const double ys[6] = {1, 2, 3, 10, 11, 12};
    for (int i = 0; i < 6; ++i) {
        x(i + 1, 0) = i + 1;
        y(i + 1, 0) = ys[i];
    }
    // The variances are made unbiased once more: u = 1 * 3/2, q = 1, t = 9,
    // df = 1 / (0.25/2 + 0.25/2) = 4. Student's t with 4 df in closed form:
    // the two-sided p is 1 - 1.5 (s - s^3/3), s = t / sqrt(t^2 + 4).
    const double s = 9 / std::sqrt(85.0);
    const double p = 1 - 1.5 * (s - s * s * s / 3);
    EXPECT_NEAR(p, 0.00084383, 1e-8);
    const CellMatrix kept =
        woe_xcont_ycont(x, y, CellMatrix(2.0), CellMatrix(0.00085), kOmitted, kOmitted, kOmitted);
    EXPECT_EQ(text(kept, 2, 0), "Summary of Importance of Variables");
    EXPECT_EQ(text(kept, 4, 3), "Correlation-Square");
    // Block of x: rows 9 (name), 10 (header), 11 and 12 (bins), 13 (total).
    EXPECT_EQ(text(kept, 10, 9), "R-Square");
    EXPECT_EQ(number(kept, 11, 5), 2);
    EXPECT_EQ(number(kept, 12, 5), 11);
    EXPECT_NEAR(number(kept, 11, 6), 1, 1e-14);
    EXPECT_NEAR(number(kept, 11, 7), 6.0 / 39, 1e-15);       // %Cum_Y
    EXPECT_NEAR(number(kept, 11, 8), 2 * 100 / 6.5, 1e-12);  // lift
    EXPECT_TRUE(kept(11, 9).IsEmpty());
    // sy^2 = (3 (4 + 1) + 3 (121 + 1)) / 6 - 6.5^2 = 21.25; R-square 1 - 6 / (6 sy^2).
    EXPECT_EQ(text(kept, 13, 0), "Total");
    EXPECT_NEAR(number(kept, 13, 6), std::sqrt(21.25), 1e-13);
    EXPECT_NEAR(number(kept, 13, 9), 1 - 6 / 127.5, 1e-14);
    EXPECT_NEAR(number(kept, 5, 2), 1 - 6 / 127.5, 1e-14);
    // Correlation of x and y over the six records: 0.9063... squared.
    double sxy = 0, sxx = 0, syy = 0;
    for (int i = 0; i < 6; ++i) {
        sxy += (i + 1 - 3.5) * (ys[i] - 6.5);
        sxx += (i + 1 - 3.5) * (i + 1 - 3.5);
        syy += (ys[i] - 6.5) * (ys[i] - 6.5);
    }
    EXPECT_NEAR(number(kept, 5, 3), sxy * sxy / (sxx * syy), 1e-14);

    // Just below p the pair differs too little and merges.
    const CellMatrix merged =
        woe_xcont_ycont(x, y, CellMatrix(2.0), CellMatrix(0.00084), kOmitted, kOmitted, kOmitted);
    EXPECT_EQ(text(merged, 12, 0), "Total");
    EXPECT_NEAR(number(merged, 11, 5), 6.5, 1e-14);
    // Equal means give p 1, so any pvalue below 1 merges them; pvalue 1 keeps them.
    const dmat equal = {{1, 2, 3, 5, 1}, {3, 4, 3, 5, 2}};
    EXPECT_EQ(woe_merge_ycont(equal, 0.99, 100).size(), 1u);
    EXPECT_EQ(woe_merge_ycont(equal, 1.0, 100).size(), 2u);

    // The transform gives the bin's mean of y; a value between bins goes up.
    const CellMatrix t = woe_transform(CellMatrix(text(kept, 0, 0)),
                                       make_table({{"x"}, {0.5}, {3}, {3.5}, {99}, {"n/a"}}));
    const double expected[5] = {2, 2, 11, 11, 0};
    for (int i = 0; i < 5; ++i)
        EXPECT_NEAR(number(t, i + 1, 0), expected[i], 1e-14) << i;
}

TEST(WoeXcont, GroupingEqualsRankGroupsAndGroupSummary) {
    // Ties, weights and uneven groups: the fast grouping must give exactly
    // the bins of the two general routines.
    std::mt19937 gen(7);
    std::uniform_int_distribution<int> value(0, 40);
    std::uniform_real_distribution<double> weight(0.1, 3.0);
    dvec x, y, w;
    dmat records;
    for (int i = 0; i < 997; ++i) {
        x.push_back(value(gen) * 0.25);
        y.push_back(value(gen) % 2);
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

TEST(WoeXcat, CategoriesOrderedByRateMergedAndTransformed) {
    // B: 1 of 4 events, C: 1 of 2, A: 2 of 3. The number 1 and the text "1"
    // in g are one category.
    const CellMatrix x = make_table({{"c", "g"},
                                     {"A", 1},
                                     {"B", "1"},
                                     {"A", "2"},
                                     {"C", 2},
                                     {"B", 1},
                                     {"B", "1"},
                                     {"C", "2"},
                                     {"A", 1},
                                     {"B", 2}});
    const CellMatrix y = testing::column("y", {1, 0, 0, 1, 0, 1, 0, 1, 0});
    const CellMatrix r = woe_xcat_ybin(x, y, kOmitted, kOmitted, kOmitted);
    EXPECT_EQ(number(r, 3, 1), 9);
    EXPECT_EQ(number(r, 4, 1), 4);
    EXPECT_EQ(text(r, 7, 0), "Summary of Importance of Variables");
    EXPECT_EQ(text(r, 9, 3), "Info Value");
    EXPECT_EQ(text(r, 13, 0), "Weight of Evidence");
    EXPECT_EQ(text(r, 16, 1), "c");
    EXPECT_EQ(text(r, 16, 7), "Odds_ratio");
    const char* labels[3] = {"B", "C", "A"};
    const double woe[3] = {std::log((1.0 / 4) / (3.0 / 5)), std::log((1.0 / 4) / (1.0 / 5)),
                           std::log((2.0 / 4) / (1.0 / 5))};
    for (int k = 0; k < 3; ++k) {
        EXPECT_EQ(text(r, 17 + k, 1), labels[k]);
        EXPECT_NEAR(number(r, 17 + k, 9), woe[k], 1e-14);
    }
    EXPECT_EQ(text(r, 20, 0), "Total");
    // g: "1" holds 3 events of 5, "2" 1 of 4.
    EXPECT_EQ(text(r, 24, 1), "2");
    EXPECT_EQ(text(r, 25, 1), "1");
    EXPECT_EQ(number(r, 25, 2), 5);

    // With two bins at most, C and A (statistic 0.139) merge before B and C (0.375).
    EXPECT_NEAR(pearson_chi(1, 1, 2, 1), 2.5 / 18, 1e-15);
    EXPECT_NEAR(pearson_chi(1, 3, 1, 1), 0.375, 1e-15);
    const CellMatrix two = woe_xcat_ybin(x, y, kOmitted, CellMatrix(2.0), kOmitted);
    EXPECT_EQ(text(two, 18, 1), "C,A");
    EXPECT_NEAR(number(two, 18, 9), std::log((3.0 / 4) / (2.0 / 5)), 1e-14);
    // One bin holds every category: "ALL".
    const CellMatrix one = woe_xcat_ybin(x, y, kOmitted, CellMatrix(1.0), kOmitted);
    EXPECT_EQ(text(one, 17, 1), "ALL");

    // The transform: each label its bin's WOE, an unseen label 0.
    const CellMatrix data = make_table({{"g", "c"}, {1, "A"}, {"2", "Z"}, {3, "C"}});
    const CellMatrix t = woe_transform(CellMatrix(text(two, 0, 0)), data);
    EXPECT_EQ(text(t, 0, 0), "c");
    EXPECT_EQ(text(t, 0, 1), "g");
    EXPECT_NEAR(number(t, 1, 0), std::log((3.0 / 4) / (2.0 / 5)), 1e-14);
    EXPECT_EQ(number(t, 2, 0), 0);
    EXPECT_NEAR(number(t, 3, 0), std::log((3.0 / 4) / (2.0 / 5)), 1e-14);
    EXPECT_NEAR(number(t, 1, 1), std::log((3.0 / 4) / (2.0 / 5)), 1e-14);
    EXPECT_NEAR(number(t, 2, 1), std::log((1.0 / 4) / (3.0 / 5)), 1e-14);
    EXPECT_EQ(number(t, 3, 1), 0);

    // Continuous target: the bins hold the categories' means, ordered.
    const CellMatrix yc = testing::column("v", {5, 1, 7, 3, 2, 1, 5, 6, 4});
    const CellMatrix c = woe_xcat_ycont(x, yc, kOmitted, kOmitted, kOmitted);
    EXPECT_EQ(text(c, 4, 2), "R-Square");
    EXPECT_EQ(text(c, 11, 3), "%Cum_n");
    // B: 1, 2, 1, 4 (mean 2); C: 3, 5 (4); A: 5, 7, 6 (6).
    EXPECT_EQ(text(c, 12, 1), "B");
    EXPECT_NEAR(number(c, 12, 4), 2, 1e-14);
    EXPECT_EQ(text(c, 14, 1), "A");
    EXPECT_NEAR(number(c, 14, 4), 6, 1e-14);
    // R-square is 1 - W / (B + W): W sums n s^2 with the sample sds (squares
    // about the means 6, 2 and 2, each times n / (n - 1)), B the squares of
    // the bin means about the mean 34/9.
    const double within = 6.0 * 4 / 3 + 2.0 * 2 / 1 + 2.0 * 3 / 2;
    const double mean = 34.0 / 9;
    const double between =
        4 * (2 - mean) * (2 - mean) + 2 * (4 - mean) * (4 - mean) + 3 * (6 - mean) * (6 - mean);
    EXPECT_EQ(text(c, 15, 0), "Total");
    EXPECT_NEAR(number(c, 15, 8), 1 - within / (between + within), 1e-13);
    const CellMatrix tc = woe_transform(CellMatrix(text(c, 0, 0)), data);
    EXPECT_NEAR(number(tc, 1, 0), 6, 1e-14);
    EXPECT_EQ(number(tc, 2, 0), 0);
}

TEST(WoeFiles, FileFormsAgreeWithCellForms) {
    std::ostringstream csv;
    csv << "x1,x2,c,bad,w\n";
    std::mt19937 gen(3);
    std::uniform_real_distribution<double> u(0, 1);
    CellMatrix x(201, 2), c(201, 1), y(201, 1), w(201, 1);
    x(0, 0) = "x1";
    x(0, 1) = "x2";
    c(0, 0) = "c";
    y(0, 0) = "bad";
    w(0, 0) = "w";
    for (int i = 0; i < 200; ++i) {
        const double a = std::round(u(gen) * 1000) / 10, b = std::round(u(gen) * 100);
        const int bad = u(gen) < a / 120 ? 1 : 0;
        const char* label = i % 3 == 0 ? "p" : (i % 3 == 1 ? "q" : "r");
        const double weight = 1 + i % 4;
        csv << (i % 17 == 0 ? std::string("") : std::to_string(a)) << ","
            << (i % 23 == 0 ? std::string("NA") : std::to_string(b)) << "," << label << "," << bad
            << "," << weight << "\n";
        if (i % 17 != 0)
            x(i + 1, 0) = std::stod(std::to_string(a));
        if (i % 23 != 0)
            x(i + 1, 1) = std::stod(std::to_string(b));
        else
            x(i + 1, 1) = "NA";
        c(i + 1, 0) = label;
        y(i + 1, 0) = bad;
        w(i + 1, 0) = weight;
    }
    const std::string path = temp_file("data.csv", csv.str());
    const CellMatrix names = make_table({{"x1", "x2"}});
    auto same_report = [](const CellMatrix& a, const CellMatrix& b) {
        ASSERT_EQ(a.RowsInStructure(), b.RowsInStructure());
        ASSERT_EQ(a.ColumnsInStructure(), b.ColumnsInStructure());
        for (std::size_t i = 1; i < a.RowsInStructure(); ++i)
            for (std::size_t j = 0; j < a.ColumnsInStructure(); ++j) {
                ASSERT_EQ(a(i, j).IsANumber(), b(i, j).IsANumber()) << i << "," << j;
                if (a(i, j).IsANumber())
                    EXPECT_EQ(a(i, j).NumericValue(), b(i, j).NumericValue()) << i << "," << j;
                else
                    EXPECT_EQ(cell_to_text(a(i, j)), cell_to_text(b(i, j))) << i << "," << j;
            }
    };
    const CellMatrix bins(5.0), few(10.0);
    const CellMatrix sheet = woe_xcont_ybin(x, y, bins, kOmitted, kOmitted, few, w);
    const CellMatrix file = woe_xcont_ybin_from_file(path, names, CellMatrix("bad"), bins, kOmitted,
                                                     kOmitted, few, CellMatrix("w"), kOmitted);
    same_report(sheet, file);
    same_report(woe_xcont_ycont(x, y, bins, CellMatrix(0.2), kOmitted, few, w),
                woe_xcont_ycont_from_file(path, names, CellMatrix("bad"), bins, CellMatrix(0.2),
                                          kOmitted, few, CellMatrix("w"), kOmitted));
    same_report(woe_xcat_ybin(c, y, kOmitted, kOmitted, kOmitted),
                woe_xcat_ybin_from_file(path, CellMatrix("c"), CellMatrix("bad"), kOmitted,
                                        kOmitted, kOmitted, kOmitted));
    same_report(woe_xcat_ycont(c, w, CellMatrix(0.5), kOmitted, kOmitted),
                woe_xcat_ycont_from_file(path, CellMatrix("c"), CellMatrix("w"), CellMatrix(0.5),
                                         kOmitted, kOmitted, kOmitted));

    // Transformed in a file, the values are those of the cell form.
    const std::string out = temp_path("woe.csv");
    const CellMatrix message =
        woe_transform_from_file(CellMatrix(text(file, 0, 0)), names, path, out, kOmitted);
    EXPECT_EQ(text(message, 0, 0), "woe is sucessfully saved to " + out);
    const CellMatrix cells = woe_transform(CellMatrix(text(sheet, 0, 0)), x);
    std::ifstream written(out);
    std::string line;
    std::getline(written, line);
    EXPECT_EQ(line, "x1,x2");
    for (std::size_t i = 1; std::getline(written, line); ++i) {
        const svec fields = split_line(line, ',');
        ASSERT_EQ(fields.size(), 2u);
        for (std::size_t j = 0; j < 2; ++j)
            EXPECT_NEAR(std::stod(fields[j]), number(cells, i, j),
                        1e-15 * std::fabs(number(cells, i, j)) + 1e-300)
                << i;
    }
}

TEST(Woe, ArgumentAndModelFailures) {
    const CellMatrix x = hand_x(), y = hand_y();
    auto xcont = [&](const CellMatrix& bins, const CellMatrix& p, const CellMatrix& max,
                     const CellMatrix& min) {
        return thrown_text([&] { woe_xcont_ybin(x, y, bins, p, max, min, kOmitted); });
    };
    const CellMatrix three(3.0);
    EXPECT_EQ(xcont(three, CellMatrix(1.5), kOmitted, kOmitted),
              "Input pvalue must be a number between 0 and 1");
    // pvalue is decoded first.
    EXPECT_EQ(xcont(CellMatrix(0.0), CellMatrix(-1.0), kOmitted, kOmitted),
              "Input pvalue must be a number between 0 and 1");
    EXPECT_EQ(xcont(CellMatrix(0.0), kOmitted, kOmitted, kOmitted),
              "Input initialNumBins must be a positive integer");
    EXPECT_EQ(xcont(kOmitted, kOmitted, kOmitted, kOmitted),
              "Input initialNumBins must be a positive integer");
    EXPECT_EQ(xcont(three, kOmitted, CellMatrix(0.0), kOmitted),
              "Input maxNumBins must be a positive integer");
    EXPECT_EQ(xcont(three, kOmitted, kOmitted, CellMatrix("x")),
              "Input minNumRecords must be a positive integer");
    EXPECT_EQ(thrown_text([&] {
                  woe_xcont_ybin(x, testing::column("y", std::vector<double>(15, 2.0)), three,
                                 kOmitted, kOmitted, kOmitted, kOmitted);
              }),
              "Variable have 1 categories. It must be binary");
    EXPECT_EQ(thrown_text([&] {
                  woe_xcat_ybin(make_table({{"c"}, {"a"}, {"b"}}), testing::column("y", {1}),
                                kOmitted, kOmitted, kOmitted);
              }),
              "The numbers of observations in x and y must be the same");

    const std::string handle =
        text(woe_xcont_ybin(x, y, three, kOmitted, kOmitted, kOmitted, kOmitted), 0, 0);
    EXPECT_EQ(thrown_text([&] { woe_transform(CellMatrix("linearRegModel->1"), x); }),
              "Invalid WOE model");
    EXPECT_EQ(thrown_text([&] {
                  woe_transform(CellMatrix(handle), make_table({{"x1"}, {1}}));
              }),
              "Input variable x2 cannot be found in WOE transformation");
    EXPECT_EQ(thrown_text([&] {
                  woe_transform_from_file(CellMatrix(handle), CellMatrix("x1"), "same.csv",
                                          "same.csv", kOmitted);
              }),
              "input file and output file must be different");
}

}  // namespace
}  // namespace zentable
