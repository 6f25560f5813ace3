#include "data/table_commands.hpp"

#include <sys/stat.h>

#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "data/delimited_file.hpp"
#include "numeric/random.hpp"
#include "xlw/cell_conversions.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

namespace {

CellMatrix column_of_texts(const svec& texts) {
    CellMatrix out(texts.size(), 1);
    for (std::size_t i = 0; i < texts.size(); ++i) {
        out(i, 0) = texts[i];
    }
    return out;
}

void copy_row(const CellMatrix& from, std::size_t from_row, CellMatrix& to, std::size_t to_row) {
    for (std::size_t j = 0; j < from.ColumnsInStructure(); ++j) {
        to(to_row, j) = from(from_row, j);
    }
}

// 1-based column numbers of a table, in one row or one column: a number
// that is not a whole column of the table fails with the caller's message.
std::vector<std::size_t> read_column_numbers(const CellMatrix& table, std::size_t columns,
                                             const std::string& message) {
    dvec numbers;
    read_double_vector(table, message, numbers);
    std::vector<std::size_t> out;
    out.reserve(numbers.size());
    for (double number : numbers) {
        if (!(number >= 1.0 && number <= static_cast<double>(columns)) ||
            number != std::floor(number)) {
            throw message;
        }
        out.push_back(static_cast<std::size_t>(number) - 1);
    }
    return out;
}

// A folder opens as a file that reads as empty: it is no data file.
void require_file(const std::string& filename) {
    struct stat info {};
    if (::stat(filename.c_str(), &info) == 0 && S_ISDIR(info.st_mode)) {
        throw "Error: cannot open file " + filename;
    }
}

}  // namespace

CellMatrix variable_list(const std::string& filename, const CellMatrix& delimiter) {
    const char separator = read_delimiter(delimiter);
    require_file(filename);
    const svec names = read_head(filename, separator);
    // An empty file has no names; its head line is one empty text.
    return column_of_texts(names.empty() ? svec{""} : names);
}

CellMatrix data_info(const std::string& filename, const CellMatrix& delimiter) {
    const char separator = read_delimiter(delimiter);
    require_file(filename);
    const svec names = read_head(filename, separator);
    long long records = 0;
    {
        LineReader reader(filename);
        if (reader.read_record(separator)) {
            while (reader.read_record(separator)) {
                ++records;
            }
        }
    }
    CellMatrix r(5 + names.size(), 2);
    r(0, 0) = "Filename";
    r(0, 1) = filename;
    r(1, 0) = "Number of records";
    r(1, 1) = records;
    r(2, 0) = "Number of variables";
    r(2, 1) = names.size();
    r(4, 0) = "Variable";
    r(4, 1) = "Variable name";
    for (std::size_t v = 0; v < names.size(); ++v) {
        r(5 + v, 0) = v + 1;
        r(5 + v, 1) = names[v];
    }
    return r;
}

CellMatrix subset(const CellMatrix& inputData, const CellMatrix& indicator) {
    dvec indicators;
    constexpr const char* kIndicators = "Indicators must be integers 1 or 0 in subset()";
    read_double_vector(indicator, kIndicators, indicators);
    const std::size_t columns = inputData.ColumnsInStructure();
    if (indicators.size() > columns) {
        throw "Indicator for subsetting has more variables than subsetting data set";
    }
    std::vector<std::size_t> kept;
    for (std::size_t j = 0; j < indicators.size(); ++j) {
        if (std::isnan(indicators[j])) {
            throw kIndicators;  // a NaN has no sign
        }
        if (indicators[j] > 0.0) {
            kept.push_back(j);
        }
    }
    if (kept.empty()) {
        throw "No column is selected in subset()";
    }
    CellMatrix out(inputData.RowsInStructure(), kept.size());
    for (std::size_t i = 0; i < inputData.RowsInStructure(); ++i) {
        for (std::size_t j = 0; j < kept.size(); ++j) {
            out(i, j) = inputData(i, kept[j]);
        }
    }
    return out;
}

CellMatrix data_lookup(const CellMatrix& keys, const CellMatrix& dataTable,
                       const CellMatrix& columnIndexesForOutput) {
    const std::size_t data_columns = dataTable.ColumnsInStructure();
    const std::size_t data_rows = dataTable.RowsInStructure();
    svec data_names(data_columns);
    for (std::size_t j = 0; j < data_columns && data_rows > 0; ++j) {
        data_names[j] = trim(cell_to_text(dataTable(0, j)));
    }
    std::vector<std::size_t> key_columns;
    for (std::size_t j = 0; j < keys.ColumnsInStructure() && keys.RowsInStructure() > 0; ++j) {
        const std::string name = trim(cell_to_text(keys(0, j)));
        const auto it = std::find(data_names.begin(), data_names.end(), name);
        if (it == data_names.end()) {
            throw "key '" + name + "' in the input 'keys' is not in the input 'dataTable'";
        }
        key_columns.push_back(static_cast<std::size_t>(it - data_names.begin()));
    }

    std::vector<std::size_t> output;
    if (is_omitted(columnIndexesForOutput)) {
        for (std::size_t j = 0; j < data_columns; ++j) {
            output.push_back(j);
        }
    } else {
        if (columnIndexesForOutput.RowsInStructure() != 1 &&
            columnIndexesForOutput.ColumnsInStructure() != 1) {
            throw "The input 'columnIndexesForOutput' must be in one row or one column";
        }
        output =
            read_column_numbers(columnIndexesForOutput, data_columns,
                                "The input indexes in 'columnIndexesForOutput' must be from 1 to " +
                                    std::to_string(data_columns));
    }

    // Each key row is a list of texts, each led by its length so that no
    // text can run into the next. The first row of dataTable with a key wins.
    auto key_of = [&key_columns](const CellMatrix& table, std::size_t row,
                                 const std::vector<std::size_t>& columns) {
        std::string key;
        for (std::size_t k = 0; k < key_columns.size(); ++k) {
            const std::string text = cell_to_text(table(row, columns[k]));
            key += std::to_string(text.size());
            key += ':';
            key += text;
        }
        return key;
    };
    std::unordered_map<std::string, std::size_t> first_row;
    first_row.reserve(data_rows);
    for (std::size_t i = 1; i < data_rows; ++i) {
        first_row.emplace(key_of(dataTable, i, key_columns), i);
    }

    std::vector<std::size_t> own_columns(key_columns.size());
    for (std::size_t k = 0; k < own_columns.size(); ++k) {
        own_columns[k] = k;
    }
    const std::size_t key_rows = keys.RowsInStructure();
    CellMatrix out(std::max<std::size_t>(key_rows, 1), output.size());
    for (std::size_t j = 0; j < output.size(); ++j) {
        out(0, j) = dataTable(0, output[j]);
    }
    for (std::size_t i = 1; i < key_rows; ++i) {
        const auto found = first_row.find(key_of(keys, i, own_columns));
        for (std::size_t j = 0; j < output.size(); ++j) {
            if (found != first_row.end()) {
                out(i, j) = dataTable(found->second, output[j]);
            } else {
                out(i, j) = "";
            }
        }
    }
    return out;
}

CellMatrix data_save(const CellMatrix& inputData, const std::string& filename,
                     const CellMatrix& delimiter) {
    write_table(filename, inputData, read_delimiter(delimiter));
    return CellMatrix("Data is saved to " + filename);
}

CellMatrix data_load(const std::string& filename, const CellMatrix& varNames,
                     const CellMatrix& numRecords, const CellMatrix& delimiter) {
    svec names;
    if (!is_omitted(varNames)) {
        // The list decoder itself reads any other shape down its first column.
        if (varNames.RowsInStructure() != 1 && varNames.ColumnsInStructure() != 1) {
            throw "variable names must be in one row or one column";
        }
        read_string_list(varNames, names);
    }
    constexpr const char* kRecords = "Input numRecords must be a positive integer";
    int limit = 0;
    if (!is_omitted(numRecords)) {
        read_int_required(numRecords, kRecords, limit);
        if (limit <= 0) {
            throw kRecords;
        }
    }
    const char separator = read_delimiter(delimiter);
    require_file(filename);
    if (names.empty()) {
        names = read_head(filename, separator);
    }
    const std::vector<svec> rows = read_field_table(filename, names, separator, limit);

    CellMatrix out(1 + rows.size(), names.size());
    for (std::size_t j = 0; j < names.size(); ++j) {
        out(0, j) = names[j];
    }
    for (std::size_t i = 0; i < rows.size(); ++i) {
        for (std::size_t j = 0; j < names.size(); ++j) {
            double value = 0.0;
            if (parse_file_number(rows[i][j], separator, value)) {
                out(i + 1, j) = value;
            } else {
                out(i + 1, j) = rows[i][j];
            }
        }
    }
    return out;
}

CellMatrix data_partition(const CellMatrix& inputData, const CellMatrix& partition,
                          const CellMatrix& part, const CellMatrix& seed) {
    dvec fractions;
    read_double_vector(partition, "partition must be numbers in one row or one column", fractions);
    if (fractions.size() < 2) {
        throw "The number of partitions must be larger than 1";
    }
    double sum = 0.0;
    for (double fraction : fractions) {
        sum += fraction;
    }
    if (!is_zero(sum - 1.0)) {
        throw "Sum of partitions must be 1";
    }
    int chosen = 0;
    read_int_required(part, "part must be a part of partition", chosen);
    if (chosen <= 0) {
        throw "part must be larger than 0";
    }
    if (static_cast<std::size_t>(chosen) > fractions.size()) {
        throw "part must be less than or equal to the number of partitions";
    }
    constexpr const char* kSeed = "Input seed must be a non-negative integer";
    int start = 0;
    read_int_required(seed, kSeed, start);
    if (start < 0) {
        throw kSeed;
    }

    double lower = 0.0;
    for (int p = 0; p < chosen - 1; ++p) {
        lower += fractions[static_cast<std::size_t>(p)];
    }
    const double upper = lower + fractions[static_cast<std::size_t>(chosen - 1)];

    const std::size_t rows = inputData.RowsInStructure();
    std::vector<std::size_t> kept;
    MersenneTwister generator(static_cast<unsigned long>(start));
    for (std::size_t i = 1; i < rows; ++i) {
        const double u = uniform_draw(generator);
        if (lower < u && u <= upper) {
            kept.push_back(i);
        }
    }
    CellMatrix out(rows == 0 ? 0 : 1 + kept.size(), inputData.ColumnsInStructure());
    if (rows > 0) {
        copy_row(inputData, 0, out, 0);
    }
    for (std::size_t i = 0; i < kept.size(); ++i) {
        copy_row(inputData, kept[i], out, i + 1);
    }
    return out;
}

CellMatrix data_fill(const CellMatrix& inputData, const CellMatrix& value) {
    if (value.RowsInStructure() != 1 || value.ColumnsInStructure() != 1) {
        throw "the input value must be in one cell";
    }
    CellMatrix out(inputData.RowsInStructure(), inputData.ColumnsInStructure());
    for (std::size_t i = 0; i < inputData.RowsInStructure(); ++i) {
        for (std::size_t j = 0; j < inputData.ColumnsInStructure(); ++j) {
            const CellValue& cell = inputData(i, j);
            out(i, j) = cell.IsEmpty() ? value(0, 0) : cell;
        }
    }
    return out;
}

namespace {

std::size_t read_key_column(const CellMatrix& key, const std::string& name, std::size_t columns,
                            const std::string& table) {
    const std::string positive = name + " must be a positive integer";
    int number = 0;
    read_int_required(key, positive, number);
    if (number <= 0) {
        throw positive;
    }
    if (static_cast<std::size_t>(number) > columns) {
        throw name + " cannot larger than the number of columns in " + table;
    }
    return static_cast<std::size_t>(number) - 1;
}

}  // namespace

CellMatrix merge_tables(const CellMatrix& table1, const CellMatrix& table2, const CellMatrix& key1,
                        const CellMatrix& key2, const CellMatrix& output1,
                        const CellMatrix& output2) {
    const std::size_t k1 = read_key_column(key1, "key1", table1.ColumnsInStructure(), "table1");
    const std::size_t k2 = read_key_column(key2, "key2", table2.ColumnsInStructure(), "table2");
    const std::vector<std::size_t> out1 = read_column_numbers(
        output1, table1.ColumnsInStructure(), "output columns must be from columns of table1");
    const std::vector<std::size_t> out2 = read_column_numbers(
        output2, table2.ColumnsInStructure(), "output columns must be from columns of table2");

    // The first row of each key, found once: the same match as a search of
    // table2 from its start for every row of table1. A NaN equals nothing.
    std::unordered_map<double, std::size_t> first_row;
    first_row.reserve(table2.RowsInStructure());
    for (std::size_t i = 0; i < table2.RowsInStructure(); ++i) {
        const double key = table2(i, k2).NumericValue();
        if (!std::isnan(key)) {
            first_row.emplace(key, i);
        }
    }
    std::vector<std::pair<std::size_t, std::size_t>> matches;
    for (std::size_t i = 0; i < table1.RowsInStructure(); ++i) {
        const auto found = first_row.find(table1(i, k1).NumericValue());
        if (found != first_row.end()) {
            matches.emplace_back(i, found->second);
        }
    }
    if (matches.empty()) {
        throw "No key of table1 is found in table2";
    }
    CellMatrix out(matches.size(), out1.size() + out2.size());
    for (std::size_t m = 0; m < matches.size(); ++m) {
        for (std::size_t j = 0; j < out1.size(); ++j) {
            out(m, j) = table1(matches[m].first, out1[j]);
        }
        for (std::size_t j = 0; j < out2.size(); ++j) {
            out(m, out1.size() + j) = table2(matches[m].second, out2[j]);
        }
    }
    return out;
}

CellMatrix rank_items(const CellMatrix& keys, const CellMatrix& items, const CellMatrix& rankFrom,
                      const CellMatrix& rankTo, const CellMatrix& order) {
    if (keys.ColumnsInStructure() != 1) {
        throw "keys must be in one column";
    }
    if (items.ColumnsInStructure() != 1) {
        throw "items must be in one column";
    }
    if (keys.RowsInStructure() != items.RowsInStructure()) {
        throw "keys and items must have the same size";
    }
    const std::size_t size = items.RowsInStructure();
    svec names(size);
    dvec values(size);
    for (std::size_t i = 0; i < size; ++i) {
        if (!items(i, 0).IsString()) {
            throw "non string cell asked to be a string";
        }
        names[i] = items(i, 0).StringValue();
        values[i] = keys(i, 0).NumericValue();
    }
    constexpr const char* kFrom = "Input rankFrom must be a positive integer";
    int from = 0;
    read_int_required(rankFrom, kFrom, from);
    if (from <= 0) {
        throw kFrom;
    }
    if (static_cast<std::size_t>(from) > size) {
        throw "Input rankFrom cannot be larger than the size of items";
    }
    constexpr const char* kTo = "Input rankTo must be larger or equal to rankFrom";
    int to = from;
    read_int(rankTo, kTo, to);
    if (to < from) {
        throw kTo;
    }
    constexpr const char* kOrder = "Input order must be 1 or -1";
    int direction = 1;
    read_int(order, kOrder, direction);
    if (direction != 1 && direction != -1) {
        throw kOrder;
    }

    // Equal keys keep the items' order.
    std::vector<std::size_t> ranked(size);
    for (std::size_t i = 0; i < size; ++i) {
        ranked[i] = i;
    }
    std::stable_sort(ranked.begin(), ranked.end(), [&](std::size_t a, std::size_t b) {
        return direction == 1 ? values[a] > values[b] : values[a] < values[b];
    });
    const std::size_t last = std::min(static_cast<std::size_t>(to), size);
    CellMatrix out(last - static_cast<std::size_t>(from) + 1, 1);
    for (std::size_t r = static_cast<std::size_t>(from); r <= last; ++r) {
        out(r - static_cast<std::size_t>(from), 0) = names[ranked[r - 1]];
    }
    return out;
}

CellMatrix split_str(const CellMatrix& text, const CellMatrix& delimiter) {
    constexpr const char* kText = "Input text must be text string";
    if (text.RowsInStructure() != 1 || text.ColumnsInStructure() != 1 || !text(0, 0).IsString()) {
        throw kText;
    }
    const char separator = read_delimiter(delimiter);
    const std::string& whole = text(0, 0).StringValue();
    svec pieces = split_line(whole, separator);
    // A delimiter at the end closes the last piece; it opens no new one.
    if (!pieces.empty() && separator != ' ' && !whole.empty() && whole.back() == separator) {
        pieces.pop_back();
    }
    if (pieces.empty()) {
        pieces.emplace_back();  // the empty text is one empty piece
    }
    for (std::string& piece : pieces) {
        piece = trim(piece);
    }
    return column_of_texts(pieces);
}

}  // namespace zentable
