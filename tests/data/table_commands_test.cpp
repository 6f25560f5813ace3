#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "data/sorting.hpp"
#include "data/table_commands.hpp"
#include "xlw/cell_conversions.hpp"

namespace zentable {
namespace {

CellMatrix make_columns(const std::vector<double>& numbers) {
    CellMatrix row(1, numbers.size());
    for (std::size_t j = 0; j < numbers.size(); ++j) {
        row(0, j) = numbers[j];
    }
    return row;
}

// Cells equal in kind and payload.
void expect_same_cells(const CellMatrix& actual, const CellMatrix& expected) {
    ASSERT_EQ(actual.RowsInStructure(), expected.RowsInStructure());
    ASSERT_EQ(actual.ColumnsInStructure(), expected.ColumnsInStructure());
    for (std::size_t i = 0; i < actual.RowsInStructure(); ++i) {
        for (std::size_t j = 0; j < actual.ColumnsInStructure(); ++j) {
            const CellValue& a = actual(i, j);
            const CellValue& e = expected(i, j);
            ASSERT_EQ(a.kind(), e.kind()) << i << "," << j;
            EXPECT_EQ(cell_to_text(a), cell_to_text(e)) << i << "," << j;
        }
    }
}

TEST(DataPartition, EachPartIsTheSelectionOfTheReferenceGeneratorAndThePartsCoverTheTable) {
    const std::size_t records = 2000;
    CellMatrix table(records + 1, 2);
    table(0, 0) = "id";
    table(0, 1) = "tag";
    for (std::size_t i = 1; i <= records; ++i) {
        table(i, 0) = static_cast<double>(i);
        table(i, 1) = "r" + std::to_string(i);
    }
    const double fractions[] = {0.5, 0.3, 0.2};
    CellMatrix partition(1, 3);
    for (int p = 0; p < 3; ++p) {
        partition(0, static_cast<std::size_t>(p)) = fractions[p];
    }
    for (unsigned seed : {5489u, 20261125u}) {
        std::multiset<double> seen;
        double lower = 0.0;
        for (int p = 0; p < 3; ++p) {
            const double upper = lower + fractions[p];
            std::mt19937 reference(seed);
            std::vector<double> expected;
            for (std::size_t i = 1; i <= records; ++i) {
                const double u = (reference() + 0.5) * 2.3283064365386963e-10;
                if (lower < u && u <= upper) {
                    expected.push_back(static_cast<double>(i));
                }
            }
            const CellMatrix part =
                data_partition(table, partition, CellMatrix(p + 1.0), CellMatrix(double(seed)));
            ASSERT_EQ(part.RowsInStructure(), expected.size() + 1);
            EXPECT_EQ(part(0, 0).StringValue(), "id");
            for (std::size_t r = 0; r < expected.size(); ++r) {
                ASSERT_EQ(part(r + 1, 0).NumericValue(), expected[r]);
                seen.insert(expected[r]);
            }
            lower = upper;
        }
        ASSERT_EQ(seen.size(), records);
        EXPECT_EQ(std::set<double>(seen.begin(), seen.end()).size(), records);
    }
}

// A small table of numbers and texts drawn from few values, so that keys repeat.
CellMatrix random_table(std::mt19937& random, std::size_t rows, std::size_t columns, bool mixed,
                        double offset = 0.0) {
    std::uniform_int_distribution<int> value(0, 11);
    CellMatrix table(rows, columns);
    for (std::size_t i = 0; i < rows; ++i) {
        for (std::size_t j = 0; j < columns; ++j) {
            const int v = value(random);
            if (mixed && v % 3 == 0) {
                table(i, j) = std::to_string(v / 3);
            } else {
                table(i, j) = offset + v / 2;
            }
        }
    }
    return table;
}

TEST(MergeTables, TheIndexGivesTheFirstMatchOfASearchFromTheStart) {
    std::mt19937 random(11);
    const CellMatrix table1 = random_table(random, 300, 3, false);
    const CellMatrix table2 = random_table(random, 40, 3, false, 3.0);
    const CellMatrix result = merge_tables(table1, table2, CellMatrix(2.0), CellMatrix(3.0),
                                           make_columns({3, 1}), make_columns({1, 2, 3}));
    std::vector<std::vector<double>> expected;
    for (std::size_t i = 0; i < table1.RowsInStructure(); ++i) {
        for (std::size_t k = 0; k < table2.RowsInStructure(); ++k) {
            if (table2(k, 2).NumericValue() == table1(i, 1).NumericValue()) {
                expected.push_back({table1(i, 2).NumericValue(), table1(i, 0).NumericValue(),
                                    table2(k, 0).NumericValue(), table2(k, 1).NumericValue(),
                                    table2(k, 2).NumericValue()});
                break;
            }
        }
    }
    ASSERT_EQ(result.RowsInStructure(), expected.size());
    ASSERT_LT(expected.size(), table1.RowsInStructure());  // some rows unmatched
    for (std::size_t r = 0; r < expected.size(); ++r) {
        for (std::size_t j = 0; j < 5; ++j) {
            ASSERT_EQ(result(r, j).NumericValue(), expected[r][j]);
        }
    }
}

TEST(DataLookup, TheIndexGivesTheFirstRowWhoseKeyTextsMatch) {
    std::mt19937 random(12);
    CellMatrix data = random_table(random, 30, 4, true);
    CellMatrix keys = random_table(random, 120, 2, true);
    const char* data_names[] = {"a", "k2", "b", "k1"};
    for (std::size_t j = 0; j < 4; ++j) {
        data(0, j) = data_names[j];
    }
    keys(0, 0) = "k1";
    keys(0, 1) = "k2";
    const CellMatrix result = data_lookup(keys, data, make_columns({3, 1}));

    CellMatrix expected(keys.RowsInStructure(), 2);
    expected(0, 0) = "b";
    expected(0, 1) = "a";
    std::size_t misses = 0;
    for (std::size_t i = 1; i < keys.RowsInStructure(); ++i) {
        std::size_t k = 1;
        while (k < data.RowsInStructure() &&
               !(cell_to_text(data(k, 3)) == cell_to_text(keys(i, 0)) &&
                 cell_to_text(data(k, 1)) == cell_to_text(keys(i, 1)))) {
            ++k;
        }
        if (k < data.RowsInStructure()) {
            expected(i, 0) = data(k, 2);
            expected(i, 1) = data(k, 0);
        } else {
            expected(i, 0) = "";
            expected(i, 1) = "";
            ++misses;
        }
    }
    EXPECT_GT(misses, 0u);
    expect_same_cells(result, expected);
}

// The order of the keys themselves, compared one by one, with no codes.
bool reference_less(const std::vector<SortKey>& keys, std::size_t a, std::size_t b) {
    for (const SortKey& key : keys) {
        bool before = false, after = false;
        if (key.numeric) {
            const double x = key.values[a], y = key.values[b];
            const bool x_nan = std::isnan(x), y_nan = std::isnan(y);
            before = (!x_nan && y_nan) || (!x_nan && !y_nan && x < y);
            after = (x_nan && !y_nan) || (!x_nan && !y_nan && y < x);
        } else {
            before = std::string(key.texts[a]) < std::string(key.texts[b]);
            after = std::string(key.texts[b]) < std::string(key.texts[a]);
        }
        if (key.descending) {
            std::swap(before, after);
        }
        if (before || after) {
            return before;
        }
    }
    return false;
}

TEST(SortedRows, TheCodedSortGivesTheStableOrderOfTheKeys) {
    // Texts that share long prefixes and differ in high bytes; numbers with
    // both zeros, infinities and NaNs of both signs.
    const std::vector<std::string> words = {"",
                                            "a",
                                            "ab",
                                            "abcdefgh",
                                            "abcdefghi",
                                            "abcdefgha",
                                            "abcdefgh\x01",
                                            "b",
                                            "\xC3\xA9t\xC3\xA9",
                                            "Z"};
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    const std::vector<double> numbers = {0.0, -0.0, 1.5, -1.5, inf, -inf, nan, -nan, 1e-300, 2};
    std::mt19937 random(13);
    std::uniform_int_distribution<std::size_t> pick(0, 9);
    for (int layout = 0; layout < 8; ++layout) {
        // One layout large enough to be sorted in two halves and merged.
        const std::size_t rows = layout == 5 ? 100000 : 3000;
        std::vector<SortKey> keys(3);
        for (std::size_t k = 0; k < 3; ++k) {
            keys[k].numeric = ((layout >> k) & 1) != 0;
            keys[k].descending = ((layout + static_cast<int>(k)) % 3) == 0;
            for (std::size_t i = 0; i < rows; ++i) {
                if (keys[k].numeric) {
                    keys[k].values.push_back(numbers[pick(random)]);
                } else {
                    keys[k].texts.emplace_back(words[pick(random)]);
                }
            }
        }
        std::vector<std::size_t> expected(rows);
        for (std::size_t i = 0; i < rows; ++i) {
            expected[i] = i;
        }
        std::stable_sort(expected.begin(), expected.end(),
                         [&](std::size_t a, std::size_t b) { return reference_less(keys, a, b); });
        EXPECT_EQ(sorted_rows(keys, rows), expected) << "layout " << layout;
    }
}

TEST(AtofValue, IsAtofOfTheText) {
    std::vector<std::string> texts = {"",
                                      "5",
                                      " 5",
                                      "+3",
                                      "-0",
                                      "1e400",
                                      "-1e400",
                                      "0x1p3",
                                      "1.5abc",
                                      "nan",
                                      "-inf",
                                      ".5",
                                      "-.5e-3",
                                      "1e-320",
                                      "abc",
                                      "0.1",
                                      "00012",
                                      "1e",
                                      "4.9406564584124654e-324",
                                      "1.7976931348623157e308"};
    std::mt19937_64 random(14);
    for (int i = 0; i < 2000; ++i) {
        double x = 0.0;
        const std::uint64_t bits = random();
        std::memcpy(&x, &bits, sizeof x);
        char text[40];
        std::snprintf(text, sizeof text, i % 2 ? "%.17g" : "%.6g", x);
        texts.emplace_back(text);
    }
    for (const std::string& text : texts) {
        const double expected = std::atof(text.c_str());
        const double actual = atof_value(text);
        if (std::isnan(expected)) {
            EXPECT_TRUE(std::isnan(actual)) << text;
        } else {
            EXPECT_EQ(std::memcmp(&expected, &actual, sizeof actual), 0) << text;
        }
    }
}

TEST(DataFill, AnErrorCellIsLeftAlone) {
    CellMatrix table(1, 2);
    table(0, 0) = CellValue::ErrorCode{7};
    const CellMatrix filled = data_fill(table, CellMatrix(0.0));
    EXPECT_TRUE(filled(0, 0).IsError());
    EXPECT_EQ(filled(0, 1).NumericValue(), 0.0);
}

}  // namespace
}  // namespace zentable
