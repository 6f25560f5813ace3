#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "../support/render.hpp"
#include "../xlw/table_builder.hpp"
#include "stats/freq_2d.hpp"
#include "xlw/cell_conversions.hpp"

namespace zentable {
namespace {

using testing::blank;
using testing::make_table;
using testing::thrown;

// Reports here close with their command's line, checked by every render.
std::string render(const CellMatrix& t) {
    return testing::render_report(t, "freq_2d");
}

const CellMatrix kOmitted(1, 1);

const CellMatrix kG = make_table({{"g"}, {"a"}, {"b"}, {"a"}, {"b"}, {"a"}});
const CellMatrix kK = make_table({{"k"}, {1}, {1}, {2}, {2}, {2}});

TEST(Freq2d, TableStacksEveryStatisticWithMargins) {
    // a: 1 of k=1, 2 of k=2; b: 1 and 1; so rows 3 and 2, columns 2 and 3, of 5.
    EXPECT_EQ(render(freq_2d(kG, kK, kOmitted, kOmitted)),
              "'Frequency table of g by k'||||\n"
              "||||\n"
              "||'k'||\n"
              "'g'||1|2|'Total'\n"
              "'a'|'Freq'|1|2|3\n"
              "|'Percent'|0.2|0.4|0.6\n"
              "|'RowPct'|0.3333333333333333|0.6666666666666666|1\n"
              "|'ColPct'|0.5|0.6666666666666666|0.6\n"
              "'b'|'Freq'|1|1|2\n"
              "|'Percent'|0.2|0.2|0.4\n"
              "|'RowPct'|0.5|0.5|1\n"
              "|'ColPct'|0.5|0.3333333333333333|0.4\n"
              "'Total'|'Freq'|2|3|5\n"
              "|'Percent'|0.4|0.6|1\n"
              "|'RowPct'|0.4|0.6|1\n"
              "|'ColPct'|1|1|1\n");
    // Letters not given hide their statistic; case does not matter.
    EXPECT_EQ(render(freq_2d(kK, kG, CellMatrix("table"), CellMatrix("nY"))),
              "'Frequency table of k by g'||||\n"
              "||||\n"
              "||'g'||\n"
              "'k'||'a'|'b'|'Total'\n"
              "1|'Percent'|0.2|0.2|0.4\n"
              "2|'Percent'|0.4|0.2|0.6\n"
              "'Total'|'Percent'|0.6|0.4|1\n");
}

TEST(Freq2d, ListHasOneRowPerPairWithRunningCounts) {
    EXPECT_EQ(render(freq_2d(kG, kK, CellMatrix("List"), CellMatrix("N"))),
              "'Frequency table of g by k'|||||\n"
              "|||||\n"
              "'g'|'k'|'Freq'|'Percent'|'CumFreq'|'CumPercent'\n"
              "'a'|1|1|0.2|1|0.2\n"
              "'a'|2|2|0.4|3|0.6\n"
              "'b'|1|1|0.2|4|0.8\n"
              "'b'|2|1|0.2|5|1\n");
}

// 60 records over 4 x 5 values, with blanks in both: every record is counted once.
TEST(Freq2d, CountsSumToTheRecordsWithMissingAsALastLevel) {
    const std::size_t n = 60;
    CellMatrix x1(n + 1, 1), x2(n + 1, 1);
    x1(0, 0) = "x1";
    x2(0, 0) = "x2";
    for (std::size_t i = 1; i <= n; ++i) {
        if (i % 7 != 0) {
            x1(i, 0) = static_cast<double>((i * i) % 4);
        }
        if (i % 11 != 0) {
            x2(i, 0) = std::string(1, static_cast<char>('p' + (3 * i) % 5));
        }
    }
    const CellMatrix t = freq_2d(x1, x2, kOmitted, CellMatrix("Y"));
    // Values 0 and 1 only (squares mod 4), then Missing; p to t, then Missing.
    ASSERT_EQ(t.RowsInStructure(), 4u + 4u + 2u);  // with the closing line
    ASSERT_EQ(t.ColumnsInStructure(), 2u + 6u + 1u);
    EXPECT_EQ(t(6, 0).StringValue(), "Missing");
    EXPECT_EQ(t(3, 7).StringValue(), "Missing");
    double body = 0.0;
    for (std::size_t i = 4; i < 7; ++i) {
        double row = 0.0;
        for (std::size_t j = 2; j < 8; ++j) {
            row += t(i, j).NumericValue();
        }
        EXPECT_EQ(row, t(i, 8).NumericValue());
        body += row;
    }
    EXPECT_EQ(body, n);
    EXPECT_EQ(t(7, 8).NumericValue(), n);
    // Records with x1 missing: i = 7, 14, ..., 56.
    EXPECT_EQ(t(6, 8).NumericValue(), 8.0);

    const CellMatrix list = freq_2d(x1, x2, CellMatrix("LIST"), kOmitted);
    const std::size_t last = list.RowsInStructure() - 3;  // above the closing line
    double freq = 0.0;
    for (std::size_t i = 3; i <= last; ++i) {
        freq += list(i, 2).NumericValue();
    }
    EXPECT_EQ(freq, n);
    EXPECT_EQ(list(last, 4).NumericValue(), n);
    EXPECT_EQ(list(last, 5).NumericValue(), 1.0);
}

TEST(Freq2d, Failures) {
    auto call = [](const CellMatrix& a, const CellMatrix& b, const CellMatrix& format,
                   const CellMatrix& output) {
        return thrown([&] { freq_2d(a, b, format, output); });
    };
    EXPECT_EQ(call(kOmitted, kK, kOmitted, kOmitted), "string: there is no input data for x1");
    EXPECT_EQ(call(kG, make_table({{"k"}}), kOmitted, kOmitted),
              "string: there is no input data for x2");
    EXPECT_EQ(call(make_table({{"g", "h"}, {1, 2}}), kK, kOmitted, kOmitted),
              "string: Input data for x1 must be in one column");
    EXPECT_EQ(call(kG, make_table({{3}, {1}}), kOmitted, kOmitted),
              "string: Header for variable name x2 must be a string");
    EXPECT_EQ(call(kG, make_table({{"k"}, {1}}), kOmitted, kOmitted),
              "literal: Input data x1 and x2 must have the same size");
    EXPECT_EQ(call(kG, kK, CellMatrix("GRID"), kOmitted), "literal: Valid format is TABLE or LIST");
    EXPECT_EQ(call(kG, kK, make_table({{"TABLE", "LIST"}}), kOmitted),
              "string: Input format must be in one cell");
    EXPECT_EQ(call(kG, kK, kOmitted, CellMatrix("YYYYY")),
              "literal: The length of the control output string must be less than or equal to 4");
    EXPECT_EQ(call(kG, kK, kOmitted, make_table({{"Y"}, {"N"}})),
              "string: Control output must be in one cell");
    EXPECT_EQ(thrown([] {
                  freq_2d_from_file("f.csv", kOmitted, CellMatrix("k"), kOmitted, kOmitted,
                                    kOmitted);
              }),
              "string: Input x1Name must be a variable name in one cell");
}

TEST(Freq2d, FileTwinGivesTheSameTable) {
    const std::string path = ::testing::TempDir() + "freq_2d_twin.csv";
    std::ofstream(path) << "k\tg\tz\n1\ta\t0\n1\tb\t0\n2\ta\t0\n2\tb\t0\n2\ta\t0\n\ta\t0\n";
    const CellMatrix g = make_table({{"g"}, {"a"}, {"b"}, {"a"}, {"b"}, {"a"}, {"a"}});
    const CellMatrix k = make_table({{"k"}, {1}, {1}, {2}, {2}, {2}, {blank}});
    for (const char* format : {"TABLE", "LIST"}) {
        EXPECT_EQ(
            render(freq_2d_from_file(path, CellMatrix("k"), CellMatrix("g"), CellMatrix(format),
                                     CellMatrix("YNYY"), CellMatrix("\\t"))),
            render(freq_2d(k, g, CellMatrix(format), CellMatrix("YNYY"))));
    }
}

}  // namespace
}  // namespace zentable
