// Files as R, pandas, databases and spreadsheets write them. Each variant of
// one small data set must read as the plain file does, through both routes:
// the file layer that the _from_file commands use, and @file in the driver.

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <string>
#include <vector>

#include "data/delimited_file.hpp"
#include "values.hpp"
#include "xlw/cell_conversions.hpp"

namespace zentable::cli {
namespace {

const std::string kPlain = "id,name,x,y\n1,Smith,1.5,10\n2,Lee,,20\n3,Ng,3.25,\n";

std::string file_of(const std::string& name, const std::string& content) {
    const std::string path = ::testing::TempDir() + name;
    std::ofstream(path, std::ios::binary) << content;
    return path;
}

// A cell as text with its kind, so that tables compare cell by cell.
std::string shown(const CellValue& cell) {
    if (cell.IsEmpty())
        return "(empty)";
    return (cell.IsANumber() ? "n:" : "t:") + cell_to_text(cell);
}

std::vector<std::string> cells_from(const CellMatrix& table, std::size_t first_column) {
    std::vector<std::string> out;
    for (std::size_t i = 0; i < table.RowsInStructure(); ++i)
        for (std::size_t j = first_column; j < table.ColumnsInStructure(); ++j)
            out.push_back(shown(table(i, j)));
    return out;
}

struct LayerView {
    dmat numbers;
    bvec valid;
    std::vector<svec> texts;
};

LayerView through_file_layer(const std::string& path, char delimiter) {
    const NamedTable table = read_numeric_table(path, {"x", "y"}, delimiter);
    return {table.data, table.valid, read_text_columns(path, {"id", "name"}, delimiter)};
}

void expect_same_as_plain(const std::string& variant, const std::string& content, char delimiter,
                          std::size_t first_column = 0) {
    SCOPED_TRACE(variant);
    const std::string plain = file_of("plain.csv", kPlain);
    const std::string path = file_of(variant + ".csv", content);
    EXPECT_EQ(cells_from(read_cells_file(path), first_column),
              cells_from(read_cells_file(plain), 0));
    const LayerView expected = through_file_layer(plain, ',');
    const LayerView actual = through_file_layer(path, delimiter);
    EXPECT_EQ(actual.numbers, expected.numbers);
    EXPECT_EQ(actual.valid, expected.valid);
    EXPECT_EQ(actual.texts, expected.texts);
}

TEST(FileRules, EveryVariantReadsAsThePlainFile) {
    // The plain file itself: an empty last field is a missing value, not a
    // short line.
    const LayerView plain = through_file_layer(file_of("plain.csv", kPlain), ',');
    EXPECT_EQ(plain.valid, (bvec{true, false, false}));

    expect_same_as_plain("crlf", "id,name,x,y\r\n1,Smith,1.5,10\r\n2,Lee,,20\r\n3,Ng,3.25,\r\n",
                         ',');
    expect_same_as_plain("bom", "\xEF\xBB\xBF" + kPlain, ',');
    expect_same_as_plain("quoted",
                         "\"id\",\"name\",\"x\",\"y\"\n1,\"Smith\",1.5,10\n2,\"Lee\",,20\n"
                         "3,\"Ng\",3.25,\n",
                         ',');
    expect_same_as_plain("trailing", "id,name,x,y,\n1,Smith,1.5,10,\n2,Lee,,20,\n3,Ng,3.25,,\n",
                         ',');
    expect_same_as_plain("semicolons", "id;name;x;y\n1;Smith;1,5;10\n2;Lee;;20\n3;Ng;3,25;\n", ';');
    // R's write.csv with its row names under an empty head field.
    const std::string row_names =
        "\"\",\"id\",\"name\",\"x\",\"y\"\n\"1\",1,\"Smith\",1.5,10\n\"2\",2,\"Lee\",NA,20\n"
        "\"3\",3,\"Ng\",3.25,NA\n";
    const std::string path = file_of("row_names.csv", row_names);
    EXPECT_EQ(read_head(path, ','), (svec{"X1", "id", "name", "x", "y"}));
    const CellMatrix cells = read_cells_file(path);
    EXPECT_EQ(cell_to_text(cells(0, 0)), "X1");
    const LayerView layer = through_file_layer(path, ',');
    EXPECT_EQ(layer.valid, plain.valid);
    EXPECT_EQ(layer.texts, plain.texts);
}

TEST(FileRules, QuotedFieldsHoldDelimitersLineBreaksAndQuotes) {
    const std::string path = file_of(
        "hard.csv",
        "id,name,x,y\n1,\"Smith, John\",1.5,10\n2,\"Lee \"\"Jr\"\"\",,20\n3,\"Ng\nsecond line\","
        "3.25,\n");
    const LayerView layer = through_file_layer(path, ',');
    EXPECT_EQ(layer.texts[1], (svec{"Smith, John", "Lee \"Jr\"", "Ng\nsecond line"}));
    EXPECT_EQ(layer.numbers, through_file_layer(file_of("plain.csv", kPlain), ',').numbers);
    const CellMatrix cells = read_cells_file(path);
    ASSERT_EQ(cells.RowsInStructure(), 4u);
    EXPECT_EQ(cell_to_text(cells(3, 1)), "Ng\nsecond line");
    EXPECT_EQ(cells(3, 2).NumericValue(), 3.25);
    // A quote inside an unquoted text is a character, on both routes; an open
    // quote at the end of the file is a failure in words.
    const std::string stray = file_of("stray.csv", "id,name,x,y\n1,5'3\" tall,1.5,10\n");
    EXPECT_EQ(read_text_columns(stray, {"name"}, ',')[0], (svec{"5'3\" tall"}));
    const CellMatrix stray_cells = read_cells_file(stray);
    EXPECT_EQ(cell_to_text(stray_cells(1, 1)), "5'3\" tall");
    EXPECT_EQ(stray_cells(1, 2).NumericValue(), 1.5);
    const std::string open = file_of("open.csv", "a,b\n1,\"never closed\n");
    try {
        read_text_columns(open, {"b"}, ',');
        ADD_FAILURE() << "an open quote must fail";
    } catch (const std::string& text) {
        EXPECT_EQ(text, "unterminated quoted field in " + open);
    }
}

}  // namespace
}  // namespace zentable::cli
