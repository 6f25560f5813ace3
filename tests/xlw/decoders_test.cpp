#include <gtest/gtest.h>

#include "../support/tables.hpp"
#include "xlw/decoders.hpp"

namespace zentable {
namespace {

using testing::blank;
using testing::make_table;
using testing::thrown;

const std::string kMessage = "Input numPoints must be a positive integer";
const std::string kCallers = "string: " + kMessage;
const std::string kEmpty = "literal: Input data table is empty";
const std::string kHeaders = "literal: Headers for variable names must be strings";

TEST(ScalarDecoders, DefaultsTruncationAndTheCallersMessage) {
    int n = 5;
    read_int(CellMatrix(1, 1), kMessage, n);
    EXPECT_EQ(n, 5);
    read_int(make_table({{-2.7}}), kMessage, n);
    EXPECT_EQ(n, -2);
    EXPECT_EQ(thrown([&] { read_int(make_table({{"3"}}), kMessage, n); }), kCallers);
    EXPECT_EQ(thrown([&] { read_int(make_table({{1, 2}}), kMessage, n); }), kCallers);
    EXPECT_EQ(thrown([&] { read_int_required(CellMatrix(1, 1), kMessage, n); }), kCallers);

    double x = 0.25;
    read_double(CellMatrix(1, 1), kMessage, x);
    EXPECT_EQ(x, 0.25);
    EXPECT_EQ(thrown([&] { read_double(make_table({{true}}), kMessage, x); }), kCallers);
    EXPECT_EQ(thrown([&] { read_double_required(CellMatrix(1, 1), kMessage, x); }), kCallers);

    bool b = false;
    read_bool(make_table({{-0.5}}), kMessage, b);
    EXPECT_TRUE(b);
    EXPECT_EQ(thrown([&] { read_bool(make_table({{"TRUE"}}), kMessage, b); }), kCallers);

    std::string s = "default";
    read_string(make_table({{u"wide name"}}), kMessage, s);
    EXPECT_EQ(s, "wide name");
    EXPECT_EQ(thrown([&] { read_string(make_table({{3}}), kMessage, s); }), kCallers);

    std::string t = "default";
    read_text(CellMatrix(1, 1), kMessage, t);
    EXPECT_EQ(t, "default");
    for (auto [cell, text] : {std::pair<double, const char*>{1.5, "1.5"}, {3.0, "3"}}) {
        read_text(CellMatrix(cell), kMessage, t);
        EXPECT_EQ(t, text);
    }
    read_text(make_table({{true}}), kMessage, t);
    EXPECT_EQ(t, "TRUE");
    read_text_required(CellMatrix(1, 1), kMessage, t);
    EXPECT_EQ(t, "");
}

TEST(VectorDecoders, ShapesNamesAndStrictCells) {
    dvec v;
    read_double_vector(make_table({{1.0, 2.0, 3.0}}), kMessage, v);
    EXPECT_EQ(v, (dvec{1.0, 2.0, 3.0}));
    EXPECT_EQ(thrown([&] { read_double_vector(CellMatrix(2, 2), kMessage, v); }),
              "literal: Data must be in 1 row or 1 column");
    EXPECT_EQ(thrown([&] {
                  read_double_vector(make_table({{4.0}, {blank}}), kMessage, v);
              }),
              kCallers);
    read_double_vector_optional(CellMatrix(1, 1), kMessage, v);
    EXPECT_EQ(v, (dvec{1.0, 2.0, 3.0}));
    EXPECT_EQ(thrown([&] { read_double_vector_optional(CellMatrix(2, 2), kMessage, v); }),
              kCallers);

    std::string name;
    read_named_vector(make_table({{" Rate "}, {0.5}, {1.5}}), name, v);
    EXPECT_EQ(name, "Rate");
    EXPECT_EQ(v, (dvec{0.5, 1.5}));
    EXPECT_EQ(thrown([&] {
                  read_named_vector(make_table({{1.0, 2.0}}), name, v);
              }),
              "exception: non string cell asked to be a string");
    EXPECT_EQ(thrown([&] {
                  read_named_vector(make_table({{"a", "2"}}), name, v);
              }),
              "exception: non number cell asked to be a number");

    svec list;
    read_string_list(make_table({{" x1", u"x2\t", "  "}}), list);
    EXPECT_EQ(list, (svec{"x1", "x2", ""}));
    EXPECT_EQ(thrown([&] {
                  read_string_list(make_table({{"a"}, {1.0}}), list);
              }),
              "exception: non string cell asked to be a string");

    CellMatrix t = make_table({{1.0, true}, {3.0, "x"}});
    EXPECT_EQ(read_column_double(t, 0), (dvec{1.0, 3.0}));
    EXPECT_EQ(thrown([&] { read_row_double(t, 1); }),
              "exception: non number cell asked to be a number");
    EXPECT_EQ(read_row_text(t, 0), (svec{"1", "TRUE"}));
}

TEST(TableWithHeaders, MaskOrientationAndEmptyTables) {
    // A number stored as text, a boolean and a blank each spoil their row.
    NamedTable n = read_table_with_headers(make_table({{" x1 ", u"x2", "   "},
                                                       {1.0, 2.0, 3.0},
                                                       {4.0, "7", 6.0},
                                                       {7.0, 8.0, true},
                                                       {blank, 11.0, 12.0},
                                                       {13.0, 14.0, 15.0}}));
    EXPECT_EQ(n.names, (svec{"x1", "x2", ""}));
    EXPECT_EQ(n.data, (dmat{{1, 2, 3}, {4, 7, 6}, {7, 8, 1}, {0, 11, 12}, {13, 14, 15}}));
    EXPECT_EQ(n.valid, (bvec{true, false, false, false, true}));

    NamedTable rows = read_table_with_headers(make_table({{"a", 1.0, 2.0}, {"b", 4.0, "x"}}));
    EXPECT_EQ(rows.names, (svec{"a", "b"}));
    EXPECT_EQ(rows.data, (dmat{{1.0, 4.0}, {2.0, 0.0}}));
    EXPECT_EQ(rows.valid, (bvec{true, false}));

    // Both the first row and the first column are names: the row wins.
    NamedTable both = read_table_with_headers(make_table({{"a", "b"}, {"c", 5.0}}));
    EXPECT_EQ(both.names, (svec{"a", "b"}));
    EXPECT_EQ(both.data, (dmat{{0.0, 5.0}}));

    EXPECT_EQ(thrown([&] {
                  read_table_with_headers(make_table({{"a", 1.0}, {2.0, 3.0}}));
              }),
              kHeaders);
    EXPECT_EQ(thrown([&] { read_table_with_headers(make_table({{"a", "b"}})); }), kEmpty);
}

TEST(VectorWithHeader, ColumnsRowsAndFailures) {
    NamedVector y = read_vector_with_header(make_table({{" y "}, {1.0}, {"2"}}));
    EXPECT_EQ(y.name, "y");
    EXPECT_EQ(y.values, (dvec{1.0, 2.0}));
    EXPECT_EQ(y.valid, (bvec{true, false}));
    NamedVector w = read_vector_with_header(make_table({{u"w", 0.5, blank}}));
    EXPECT_EQ(w.values, (dvec{0.5, 0.0}));
    EXPECT_EQ(w.valid, (bvec{true, false}));

    EXPECT_EQ(thrown([&] { read_vector_with_header(CellMatrix(2, 2)); }),
              "literal: Input data table must be in one column or one row");
    EXPECT_EQ(thrown([&] {
                  read_vector_with_header(make_table({{1.0}, {2.0}}));
              }),
              "literal: Header for variable name must be a string");
    EXPECT_EQ(thrown([&] { read_vector_with_header(make_table({{"y"}})); }), kEmpty);
}

TEST(TableDecoders, UnmaskedAndRaggedColumns) {
    NamedTable n =
        read_table_numeric_headers_first_row(make_table({{"a", "b"}, {1.0, "2.5"}, {true, blank}}));
    EXPECT_EQ(n.data, (dmat{{1.0, 2.5}, {1.0, 0.0}}));
    EXPECT_EQ(n.valid, (bvec{true, true}));

    NamedColumns c = read_columns_dropping_non_numbers(
        make_table({{"a", " b", "c"}, {1.0, "x", blank}, {blank, 2.0, "y"}, {3.0, 4.0, true}}));
    EXPECT_EQ(c.names, (svec{"a", "b", "c"}));
    EXPECT_EQ(c.columns, (std::vector<dvec>{{1.0, 3.0}, {2.0, 4.0}, {}}));
    EXPECT_EQ(thrown([&] {
                  read_columns_dropping_non_numbers(make_table({{"a", 2.0}}));
              }),
              kHeaders);
}

TEST(TableDecoders, MixedTable) {
    MixedTable m = read_mixed_table(make_table({{"age", "city ", "income", u"flag"},
                                                {30.0, " Paris ", 1.5, "y"},
                                                {"12x", 7.0, "abc", true},
                                                {blank, blank, 2.0, 0.25}}));
    EXPECT_EQ(m.names, (svec{"age", "city", "income", "flag"}));
    EXPECT_EQ(m.column_types, "NCNC");
    EXPECT_EQ(m.column_index, (std::vector<int>{0, 0, 1, 1}));
    EXPECT_EQ(m.row_count, 3);
    EXPECT_EQ(m.numeric_rows, (dmat{{30.0, 1.5}, {12.0, 0.0}, {0.0, 2.0}}));
    EXPECT_EQ(m.text_rows, (std::vector<svec>{{"Paris", "y"}, {"7", "TRUE"}, {"", "0.25"}}));
    EXPECT_EQ(thrown([&] {
                  read_mixed_table(make_table({{"a", "b"}, {1.0, true}}));
              }),
              "literal: input data is bad");
}

TEST(TableDecoders, LabelledTableHeaderKindAndTextTable) {
    LabelledTable l = read_labelled_table(
        make_table({{99.0, " D1", "D2"}, {"S1 ", 1.0, 2.0}, {u"S2", "3", true}}));
    EXPECT_EQ(l.column_labels, (svec{"D1", "D2"}));
    EXPECT_EQ(l.row_labels, (svec{"S1", "S2"}));
    EXPECT_EQ(l.values, (dmat{{1.0, 2.0}, {3.0, 1.0}}));
    const std::string missing =
        "literal: Input table must have the first row as column labels and the first column as "
        "row labels";
    EXPECT_EQ(thrown([&] { read_labelled_table(make_table({{"", "D1"}, {1.0, 2.0}})); }), missing);
    EXPECT_EQ(thrown([&] { read_labelled_table(make_table({{"", "D1", "D2"}})); }), missing);

    EXPECT_EQ(header_kind(make_table({{1.0, 2.0}, {"a", "b"}})), 0);
    EXPECT_EQ(header_kind(make_table({{"a", u"b"}})), 1);
    EXPECT_EQ(header_kind(make_table({{"a", blank}})), 2);
    EXPECT_EQ(thrown([&] { header_kind(CellMatrix(0, 3)); }), kEmpty);

    TextTable t = read_table_text(make_table({{"colour", " size"}, {" red ", 1.0}, {blank, true}}));
    EXPECT_EQ(t.names, (svec{"colour", "size"}));
    EXPECT_EQ(t.columns, (std::vector<svec>{{"red", ""}, {"1", "TRUE"}}));
}

TEST(ReadXyw, KeepsOnlyCompleteRecordsInOrder) {
    CellMatrix x = make_table({{"x1", "x2"},
                               {1.0, 10.0},
                               {2.0, "20"},
                               {3.0, 30.0},
                               {4.0, 40.0},
                               {5.0, 50.0},
                               {6.0, 60.0}});
    CellMatrix y = make_table({{"y"}, {0.5}, {1.5}, {blank}, {3.5}, {4.5}, {5.5}});
    CellMatrix w = make_table({{u" w "}, {1.0}, {1.0}, {1.0}, {true}, {-2.0}, {0.0}});
    XYW d = read_xyw(x, y, w);
    EXPECT_EQ(d.x_names, (svec{"x1", "x2"}));
    EXPECT_EQ(d.y_name, "y");
    EXPECT_EQ(d.weight_name, "w");
    EXPECT_TRUE(d.has_weight);
    EXPECT_EQ(d.x, (dmat{{1.0, 10.0}, {5.0, 50.0}, {6.0, 60.0}}));
    EXPECT_EQ(d.y, (dvec{0.5, 4.5, 5.5}));
    EXPECT_EQ(d.weight, (dvec{1.0, -2.0, 0.0}));

    XYW u = read_xyw(x, y, CellMatrix(1, 1));
    EXPECT_FALSE(u.has_weight);
    EXPECT_EQ(u.weight_name, "weight");
    EXPECT_EQ(u.y, (dvec{0.5, 3.5, 4.5, 5.5}));
    EXPECT_EQ(u.weight, (dvec{1.0, 1.0, 1.0, 1.0}));

    // x with variables in rows, y along a row.
    XYW r = read_xyw(make_table({{"a", 1.0, 2.0}, {"b", 3.0, 4.0}}), make_table({{"y", 7.0, 8.0}}),
                     CellMatrix(0, 0));
    EXPECT_EQ(r.x, (dmat{{1.0, 3.0}, {2.0, 4.0}}));

    const std::string unequal =
        "literal: The numbers of observations in input data X, Y, and weight must be the same";
    EXPECT_EQ(thrown([&] { read_xyw(x, make_table({{"y"}, {1.0}}), CellMatrix(1, 1)); }), unequal);
    EXPECT_EQ(thrown([&] { read_xyw(x, y, make_table({{"w"}, {1.0}})); }), unequal);
}

TEST(ReadXyw, AMillionRows) {
    const std::size_t n = 1000000;
    CellMatrix x(n + 1, 2);
    CellMatrix y(n + 1, 1);
    x(0, 0) = "a";
    x(0, 1) = "b";
    y(0, 0) = "y";
    for (std::size_t i = 1; i <= n; ++i) {
        const double v = static_cast<double>(i);
        x(i, 0) = v;
        x(i, 1) = 2.0 * v;
        if (i % 1000 == 0) {
            x(i, 1) = "missing";
        }
        y(i, 0) = 3.0 * v + 1.0;
    }
    XYW d = read_xyw(x, y, CellMatrix(1, 1));
    ASSERT_EQ(d.x.size(), n - n / 1000);
    // Record k of the output is table row k + k / 999 + 1.
    for (std::size_t k = 0; k < d.x.size(); k += 4999) {
        const double i = static_cast<double>(k + k / 999 + 1);
        ASSERT_EQ(d.x[k], (dvec{i, 2.0 * i})) << k;
        ASSERT_EQ(d.y[k], 3.0 * i + 1.0) << k;
    }
}

}  // namespace
}  // namespace zentable
