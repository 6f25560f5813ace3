#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <random>
#include <sstream>
#include <string>

#include "../support/stream_rule.hpp"
#include "../support/tables.hpp"
#include "data/delimited_file.hpp"

namespace zentable {
namespace {

using testing::thrown_text;

std::string temp_file(const std::string& name, const std::string& content) {
    const std::string path = ::testing::TempDir() + name;
    std::ofstream(path, std::ios::binary) << content;
    return path;
}

std::string slurp(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

CellMatrix text_cell(const std::string& text) {
    return CellMatrix(text);
}

CellMatrix row_of(const std::vector<std::string>& names) {
    CellMatrix t(1, names.size());
    for (std::size_t j = 0; j < names.size(); ++j)
        t(0, j) = names[j];
    return t;
}

std::string random_field(std::mt19937& gen) {
    static const char* const pieces[] = {"0",
                                         "1",
                                         "7",
                                         "9",
                                         "00",
                                         "12345678901234567890",
                                         ".",
                                         ".",
                                         "e",
                                         "E",
                                         "e-",
                                         "e+",
                                         "+",
                                         "-",
                                         " ",
                                         "  ",
                                         "\t",
                                         "x",
                                         "0x",
                                         "1p3",
                                         "inf",
                                         "nan",
                                         "INF",
                                         "NaN",
                                         "infinity",
                                         "a",
                                         "Z",
                                         ",",
                                         "d",
                                         "308",
                                         "309",
                                         "400",
                                         "-400",
                                         "-320",
                                         "5e-324",
                                         "1e400",
                                         "1.7976931348623157e308",
                                         "\r",
                                         "\v",
                                         "%",
                                         "_",
                                         "e0",
                                         "4.9406564584124654e-324",
                                         "2.2250738585072011e-308",
                                         "0.1",
                                         "3.14159",
                                         "1e22",
                                         "9007199254740993"};
    const int n = std::uniform_int_distribution<int>(1, 6)(gen);
    std::string field;
    for (int i = 0; i < n; ++i)
        field += pieces[std::uniform_int_distribution<std::size_t>(0, std::size(pieces) - 1)(gen)];
    return field;
}

TEST(IsNumber, AgreesWithTheStreamRuleAndAtofOnGeneratedFields) {
    std::mt19937 gen(2026);
    std::vector<std::string> fields = {"1.5",
                                       " 1.5",
                                       "1.5 ",
                                       "1e400",
                                       "-1e400",
                                       "1e-400",
                                       "0x1A",
                                       "inf",
                                       "nan",
                                       "",
                                       " ",
                                       "+.5",
                                       "-.5e-3",
                                       "1.",
                                       ".",
                                       "e5",
                                       "1e",
                                       "1e+",
                                       "+-1",
                                       "\t\n 42",
                                       "1,5",
                                       "007",
                                       "-0",
                                       "1.2.3",
                                       "4.9406564584124654e-324",
                                       "2.4703282292062328e-324"};
    for (int i = 0; i < 200000; ++i)
        fields.push_back(random_field(gen));
    // Well-formed decimals of every length, point position and exponent, where
    // rounding is hardest to get right.
    for (int i = 0; i < 200000; ++i) {
        std::string digits;
        const int n = std::uniform_int_distribution<int>(1, 24)(gen);
        for (int d = 0; d < n; ++d)
            digits += static_cast<char>('0' + gen() % 10);
        const int point = std::uniform_int_distribution<int>(0, n)(gen);
        std::string f =
            (gen() % 3 == 0 ? "-" : "") + digits.substr(0, point) + "." + digits.substr(point);
        if (gen() % 2)
            f += "e" + std::to_string(std::uniform_int_distribution<int>(-40, 40)(gen));
        fields.push_back(f);
    }

    int numbers = 0;
    for (const std::string& f : fields) {
        double value = -12345.0;
        const bool ours = parse_number(f, value);
        ASSERT_EQ(ours, stream_rule(f)) << "field [" << f << "]";
        ASSERT_EQ(is_number(f), ours) << "field [" << f << "]";
        if (ours) {
            ++numbers;
            const double expected = std::atof(f.c_str());
            ASSERT_EQ(std::memcmp(&value, &expected, sizeof value), 0)
                << "field [" << f << "] gives " << value << ", atof " << expected;
        }
    }
    EXPECT_GT(numbers, 10000);  // the generator reaches both answers often
    EXPECT_FALSE(is_number("1.5 "));
    EXPECT_TRUE(is_number(" 1.5"));
    EXPECT_FALSE(is_number("1e400"));
    EXPECT_TRUE(is_number("1e-400"));
}

TEST(Delimiter, FormsAndFailures) {
    EXPECT_EQ(read_delimiter(CellMatrix(1, 1)), ',');
    EXPECT_EQ(read_delimiter(CellMatrix(0, 0)), ',');
    for (const char* tab : {"\\t", "\\T", "\\tab", "\\Tab", "\\TAB", "t", "tea"})
        EXPECT_EQ(read_delimiter(text_cell(tab)), '\t') << tab;
    for (const char* blank : {"\\s", "\\S", "\\space", "\\Space", "\\SPACE", "s"})
        EXPECT_EQ(read_delimiter(text_cell(blank)), ' ') << blank;
    EXPECT_EQ(read_delimiter(text_cell(";")), ';');
    EXPECT_EQ(read_delimiter(text_cell("|x")), '|');
    EXPECT_EQ(read_delimiter(text_cell("\\tAB")), '\\');  // only the listed spellings fold
    EXPECT_EQ(thrown_text([] { read_delimiter(text_cell("")); }), "delimiter must be a char");
    EXPECT_EQ(thrown_text([] { read_delimiter(CellMatrix(2.0)); }), "delimiter must be a char");
    EXPECT_EQ(thrown_text([] { read_delimiter(CellMatrix(1, 2)); }), "delimiter must be a char");
}

TEST(SplitLine, DelimitersNewlinesAndBlankRuns) {
    using v = std::vector<std::string>;
    EXPECT_EQ(split_line("a,,b\n\n", ','), (v{"a", "", "b"}));
    EXPECT_EQ(split_line("a,b,\n", ','), (v{"a", "b", ""}));
    EXPECT_EQ(split_line("\n", ','), (v{""}));
    EXPECT_EQ(split_line("a,b\r\n", ','), (v{"a", "b"}));
    EXPECT_EQ(split_line("\"a,b\",\"c\"\"d\" , e\n", ','), (v{"a,b", "c\"d ", " e"}));
    EXPECT_EQ(split_line("   a  b   c  \n", ' '), (v{"a", "b", "c"}));
    EXPECT_EQ(split_line("a\tb", '\t'), (v{"a", "b"}));
    EXPECT_EQ(split_line("model.xml", '.'), (v{"model", "xml"}));
    EXPECT_EQ(split_line(std::string(150000, ','), ',').size(), 100000u);
}

TEST(LineReader, ReadsLinesOfAnyLength) {
    const std::string longest(300000, '7');
    const std::string path = temp_file("long.csv", "a\n" + longest + "\nlast");
    LineReader reader(path);
    EXPECT_STREQ(reader.read_line(), "a\n");
    const char* line = reader.read_line();
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(reader.length(), longest.size() + 1);
    EXPECT_EQ(std::string(line, reader.length()), longest + "\n");
    EXPECT_STREQ(reader.read_line(), "last");
    EXPECT_EQ(reader.read_line(), nullptr);
    EXPECT_EQ(thrown_text([] { LineReader missing("/no/such/file.csv"); }),
              "Error: cannot open file /no/such/file.csv");
}

TEST(ReadXywFromFile, KeepsCompleteRecordsAndNamesItsFailures) {
    // Head names are trimmed; a CRLF line end leaves its last field a number;
    // "1.5 " is missing but " 1.5" a number; other columns may hold anything.
    const std::string path = temp_file("xyw.csv",
                                       " x1 ,x2,note, y ,w\n1, 1.5,ok,10,1\r\n2,1.5 "
                                       ",bad,20,1\n3,2.5,,30,2\n4,x,,40,1\n5,3.5,,50,x\n"
                                       "6,4,z,60,0.5\n");
    const XYW d =
        read_xyw_from_file(path, row_of({"x1", " x2"}), text_cell("y"), CellMatrix(1, 1), ',');
    EXPECT_EQ(d.x_names, (svec{"x1", "x2"}));
    EXPECT_EQ(d.y_name, "y");
    EXPECT_EQ(d.weight_name, "weight");
    EXPECT_FALSE(d.has_weight);
    ASSERT_EQ(d.x.size(), 4u);
    EXPECT_EQ(d.x[0], (dvec{1, 1.5}));
    EXPECT_EQ(d.x[1], (dvec{3, 2.5}));
    EXPECT_EQ(d.x[2], (dvec{5, 3.5}));
    EXPECT_EQ(d.y, (dvec{10, 30, 50, 60}));
    EXPECT_EQ(d.weight, (dvec{1, 1, 1, 1}));

    // With the weight in use, a weight that is text goes.
    const XYW w = read_xyw_from_file(path, row_of({"x1"}), text_cell("y"), text_cell("w"), ',');
    EXPECT_TRUE(w.has_weight);
    EXPECT_EQ(w.y, (dvec{10, 20, 30, 40, 60}));
    EXPECT_EQ(w.weight, (dvec{1, 1, 2, 1, 0.5}));

    const CellMatrix none(1, 1);
    // A short line stops the reading with its number, a final empty line too.
    const std::string short_path = temp_file("short.csv", "a,b,c\n1,2,3\n4,5\n");
    EXPECT_EQ(thrown_text([&] {
                  read_xyw_from_file(short_path, row_of({"a"}), text_cell("c"), none, ',');
              }),
              "Error: data line 2 has 2 fields, which is less than expected in " + short_path);
    const std::string blank_end = temp_file("blank_end.csv", "a,b\n1,2\n\n");
    EXPECT_EQ(thrown_text(
                  [&] { read_xyw_from_file(blank_end, row_of({"a"}), text_cell("b"), none, ','); }),
              "Error: data line 2 has 1 fields, which is less than expected in " + blank_end);

    // The blank delimiter takes runs of blanks as one.
    const std::string blanks = temp_file("blanks.txt", "  x    y\n 1   2\n3 4\n");
    const XYW b = read_xyw_from_file(blanks, row_of({"x"}), text_cell("y"), none, ' ');
    EXPECT_EQ(b.y, (dvec{2, 4}));
}

TEST(Readers, ColumnsTablesTextsAndWholeTables) {
    const std::string path = temp_file(
        "readers.csv", "id,score,grade,city\n1,2.5,A, Paris \n2,,B,Oslo\n3,x,C,Rome\n4,4,D,Lima\n");
    const NumericColumns columns = read_numeric_columns(path, {"score", "id"}, ',');
    EXPECT_EQ(columns.values[0], (dvec{2.5, 4}));
    EXPECT_EQ(columns.values[1], (dvec{1, 2, 3, 4}));
    EXPECT_EQ(columns.records, 4);

    const NamedTable limited = read_numeric_table(path, {"id", "score"}, ',', 3);
    ASSERT_EQ(limited.data.size(), 3u);
    EXPECT_EQ(limited.valid, (bvec{true, false, false}));
    EXPECT_EQ(limited.data[1], (dvec{2, 0}));

    const auto texts = read_text_columns(path, {"city"}, ',');
    EXPECT_EQ(texts[0], (svec{"Paris", "Oslo", "Rome", "Lima"}));
    const auto fields = read_field_table(path, {"grade", "city"}, ',', 2);
    EXPECT_EQ(fields, (std::vector<svec>{{"A", "Paris"}, {"B", "Oslo"}}));

    const MixedTable whole = read_whole_table(path, ',');
    EXPECT_EQ(whole.column_types, "NNCC");
    EXPECT_EQ(whole.row_count, 4);
    EXPECT_EQ(whole.numeric_rows[2], (dvec{3, 0}));  // "x" reads through atof
    EXPECT_EQ(whole.text_rows[0], (svec{"A", "Paris"}));
    const std::string ragged = temp_file("ragged.csv", "a,b\n1,2\n3\n");
    EXPECT_EQ(thrown_text([&] { read_whole_table(ragged, ','); }),
              "Error: data line 2 (1 fields) must have the same size as head (2 fields)");
    const std::string ragged_first = temp_file("ragged1.csv", "a,b\n1,2,3\n");
    EXPECT_EQ(thrown_text([&] { read_whole_table(ragged_first, ','); }),
              "Error: data line 1 (3 fields) must have the same size as head (2 fields)");

    const ClassAndNumbers both = read_two_name_lists(path, {"grade"}, {"score"}, ',');
    EXPECT_EQ(both.classes.at(0).at(3), "D");
    EXPECT_EQ(both.valid, (bvec{true, false, false, true}));

    EXPECT_EQ(read_head(path, ','), (svec{"id", "score", "grade", "city"}));
    EXPECT_EQ(find_variable({"a", "b", "a"}, "a"), 0u);
    EXPECT_EQ(thrown_text([] { find_variable_in_data({"a"}, "b"); }),
              "Error: cannot find the variable (b) in data set");
}

TEST(Writers, AppendColumnsAndWriteTables) {
    const std::string in = temp_file("append_in.csv", "a,b\n1,2\n3,4\r\n5,6");
    const std::string out = ::testing::TempDir() + "append_out.csv";
    append_vector(in, out, {0.1, 2.0 / 3.0}, "score", ',');
    // A CRLF line end goes with the newline, not into the copied last field.
    EXPECT_EQ(slurp(out), "a,b,score\n1,2,0.1\n3,4,0.6666666666666666\n5,6,\n");
    append_matrix(in, out, {{1, 2}, {3, 4}, {5, 6}}, {"p", "q"}, ';');
    EXPECT_EQ(slurp(out), "a,b;p;q\n1,2;1;2\n3,4;3;4\n5,6;5;6\n");
    EXPECT_EQ(thrown_text([&] { append_vector("/no/such.csv", out, {}, "s", ','); }),
              "Error: cannot open input file /no/such.csv");
    EXPECT_EQ(thrown_text([&] { append_vector(in, "/no/such/dir/out.csv", {}, "s", ','); }),
              "Error: cannot open output file /no/such/dir/out.csv");
    EXPECT_EQ(thrown_text([&] { append_matrix("/no/such.csv", out, {}, {}, ','); }),
              "Error: cannot open file /no/such.csv");

    CellMatrix table(2, 3);
    table(0, 0) = "name";
    table(0, 1) = true;
    table(1, 0) = 1.0 / 3.0;
    table(1, 2) = 1e20;
    const std::string saved = ::testing::TempDir() + "saved.txt";
    write_table(saved, table, '\t');
    EXPECT_EQ(slurp(saved), "name\tTRUE\t\n0.3333333333333333\t\t1e+20\n");
    EXPECT_EQ(thrown_text([&] { write_table("/no/such/dir/t.csv", table, ','); }),
              "Error: open file /no/such/dir/t.csv failed!");
}

}  // namespace
}  // namespace zentable

namespace zentable {
namespace {

// Files past a few megabytes are read in two halves at once: the records must
// come back in file order and a short line must keep its number.
TEST(ReadXywFromFile, LargeFilesReadInHalvesKeepOrderAndLineNumbers) {
    std::string content = "i,twice,note,y\n";
    const int records = 500000;
    for (int i = 1; i <= records; ++i) {
        const bool missing = i % 1000 == 0;  // a text y drops the record
        content += std::to_string(i) + "," + std::to_string(2 * i) + ",n," +
                   (missing ? std::string("na") : std::to_string(i) + ".5") + "\n";
    }
    ASSERT_GT(content.size(), 9u << 20);
    const std::string path = temp_file("large.csv", content);
    const XYW d =
        read_xyw_from_file(path, row_of({"twice", "i"}), text_cell("y"), CellMatrix(1, 1), ',');
    ASSERT_EQ(d.x.size(), static_cast<std::size_t>(records - records / 1000));
    std::size_t k = 0;
    for (int i = 1; i <= records; ++i) {
        if (i % 1000 == 0)
            continue;
        ASSERT_EQ(d.x[k], (dvec{2.0 * i, 1.0 * i})) << "record " << i;
        ASSERT_EQ(d.y[k], i + 0.5);
        ++k;
    }

    const NumericColumns ys = read_numeric_columns(path, {"y"}, ',');
    EXPECT_EQ(ys.records, records);
    EXPECT_EQ(ys.values[0], d.y);

    // A quoted note of many lines across the middle of the file: the second
    // half, begun inside it, is read again from the end of the first.
    std::string quoted = content;
    const std::size_t centre = quoted.find('\n', quoted.size() / 2 - 60000) + 1;
    const std::size_t note = quoted.find(",n,", centre) + 1;
    std::string lines = "\"";
    for (int i = 0; i < 6000; ++i)
        lines += "a line of the note, with a comma\n";
    quoted.replace(note, 1, lines + "\"");
    const XYW q = read_xyw_from_file(temp_file("large_quoted.csv", quoted), row_of({"twice", "i"}),
                                     text_cell("y"), CellMatrix(1, 1), ',');
    EXPECT_EQ(q.x, d.x);
    EXPECT_EQ(q.y, d.y);

    // A short line far into the second half, and a NUL that ends a line's text.
    std::string broken = content;
    const std::size_t at = broken.find("\n450000,");
    broken.replace(at + 1, broken.find('\n', at + 1) - at - 1, std::string("450000,9\0,n,1", 13));
    const std::string broken_path = temp_file("large_short.csv", broken);
    EXPECT_EQ(
        thrown_text([&] {
            read_xyw_from_file(broken_path, row_of({"i"}), text_cell("y"), CellMatrix(1, 1), ',');
        }),
        "Error: data line 450000 has 2 fields, which is less than expected in " + broken_path);
}

}  // namespace
}  // namespace zentable
