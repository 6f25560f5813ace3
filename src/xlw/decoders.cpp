#include "xlw/decoders.hpp"

#include <array>
#include <cstdint>
#include <cstring>
#include <deque>
#include <limits>
#include <string_view>
#include <unordered_map>

#include "xlw/cell_conversions.hpp"
#include "xlw/xlf_exception.hpp"

namespace zentable {

namespace {

constexpr const char* kEmptyTable = "Input data table is empty";
constexpr const char* kHeadersNotStrings = "Headers for variable names must be strings";
constexpr const char* kHeaderNotString = "Header for variable name must be a string";
constexpr const char* kNotOneLine = "Input data table must be in one column or one row";
constexpr const char* kVectorShape = "Data must be in 1 row or 1 column";
constexpr const char* kBadMixedType = "input data is bad";
constexpr const char* kNoLabels =
    "Input table must have the first row as column labels and the first column as row labels";
constexpr const char* kNotString = "non string cell asked to be a string";

// The one cell of a scalar argument; any other shape is the caller's failure.
const CellValue& single_cell(const CellMatrix& table, const std::string& message) {
    if (table.RowsInStructure() != 1 || table.ColumnsInStructure() != 1) {
        throw message;
    }
    return table(0, 0);
}

int truncated_int(const CellValue& cell, const std::string& message) {
    if (!cell.IsANumber()) {
        throw message;
    }
    const double value = cell.NumericValue();
    // Bounds are exclusive by one so that -2147483648.5 still truncates in range;
    // a NaN fails both tests.
    constexpr double kBelow = static_cast<double>(std::numeric_limits<int>::min()) - 1.0;
    constexpr double kAbove = static_cast<double>(std::numeric_limits<int>::max()) + 1.0;
    if (!(value > kBelow && value < kAbove)) {
        throw message;
    }
    return static_cast<int>(value);
}

bool row_all_strings(const CellMatrix& table, std::size_t row) {
    const std::size_t columns = table.ColumnsInStructure();
    for (std::size_t j = 0; j < columns; ++j) {
        if (!table(row, j).IsString()) {
            return false;
        }
    }
    return true;
}

bool column_all_strings(const CellMatrix& table, std::size_t column) {
    const std::size_t rows = table.RowsInStructure();
    for (std::size_t i = 0; i < rows; ++i) {
        if (!table(i, column).IsString()) {
            return false;
        }
    }
    return true;
}

std::string name_of(const CellValue& cell) {
    return trim(cell.StringValue(), 0);
}

// trim with mode 0, as a view of the text.
std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t\n");
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(" \t\n") - first + 1);
}

bool has_no_cells(const CellMatrix& table) {
    return table.RowsInStructure() == 0 || table.ColumnsInStructure() == 0;
}

// A header line of names and the observations beside it. With variables in
// rows the table is read as its transpose. A cell that is not a number still
// gives cell_to_double's value, but spoils its observation.
NamedTable read_headed_table(const CellMatrix& table, bool variables_in_rows) {
    const std::size_t variables =
        variables_in_rows ? table.RowsInStructure() : table.ColumnsInStructure();
    const std::size_t lines =
        variables_in_rows ? table.ColumnsInStructure() : table.RowsInStructure();
    auto cell = [&](std::size_t observation, std::size_t variable) -> const CellValue& {
        return variables_in_rows ? table(variable, observation) : table(observation, variable);
    };

    NamedTable out;
    out.names.reserve(variables);
    for (std::size_t v = 0; v < variables; ++v) {
        out.names.push_back(name_of(cell(0, v)));
    }
    if (lines < 2) {
        throw kEmptyTable;
    }
    const std::size_t observations = lines - 1;
    out.data.reserve(observations);
    out.valid.assign(observations, true);
    for (std::size_t i = 0; i < observations; ++i) {
        dvec row(variables);
        for (std::size_t v = 0; v < variables; ++v) {
            const CellValue& c = cell(i + 1, v);
            if (c.IsANumber()) {
                row[v] = c.NumericValue();
            } else {
                row[v] = cell_to_double(c);
                out.valid[i] = false;
            }
        }
        out.data.push_back(std::move(row));
    }
    return out;
}

// The cells from `first` on of a single row, or else of the first column,
// through the strict conversion.
void read_strict_line(const CellMatrix& table, std::size_t first, dvec& out) {
    const bool along_row = table.RowsInStructure() == 1;
    const std::size_t count = along_row ? table.ColumnsInStructure() : table.RowsInStructure();
    dvec values;
    values.reserve(count > first ? count - first : 0);
    for (std::size_t i = first; i < count; ++i) {
        values.push_back((along_row ? table(0, i) : table(i, 0)).NumericValue());
    }
    out = std::move(values);
}

void read_number_line(const CellMatrix& table, const std::string& message, dvec& out) {
    const bool along_row = table.RowsInStructure() == 1;
    const std::size_t count = along_row ? table.ColumnsInStructure() : table.RowsInStructure();
    dvec values;
    values.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const CellValue& cell = along_row ? table(0, i) : table(i, 0);
        if (!cell.IsANumber()) {
            throw message;
        }
        values.push_back(cell.NumericValue());
    }
    out = std::move(values);
}

}  // namespace

void read_int(const CellMatrix& table, const std::string& message, int& out) {
    const CellValue& cell = single_cell(table, message);
    if (cell.IsEmpty()) {
        return;
    }
    out = truncated_int(cell, message);
}

void read_int_required(const CellMatrix& table, const std::string& message, int& out) {
    out = truncated_int(single_cell(table, message), message);
}

void read_double(const CellMatrix& table, const std::string& message, double& out) {
    const CellValue& cell = single_cell(table, message);
    if (cell.IsEmpty()) {
        return;
    }
    if (!cell.IsANumber()) {
        throw message;
    }
    out = cell.NumericValue();
}

void read_double_required(const CellMatrix& table, const std::string& message, double& out) {
    const CellValue& cell = single_cell(table, message);
    if (!cell.IsANumber()) {
        throw message;
    }
    out = cell.NumericValue();
}

void read_bool(const CellMatrix& table, const std::string& message, bool& out) {
    const CellValue& cell = single_cell(table, message);
    if (cell.IsEmpty()) {
        return;
    }
    if (cell.IsBoolean()) {
        out = cell.BooleanValue();
    } else if (cell.IsANumber()) {
        out = cell.NumericValue() != 0.0;
    } else {
        throw message;
    }
}

void read_string(const CellMatrix& table, const std::string& message, std::string& out) {
    const CellValue& cell = single_cell(table, message);
    if (cell.IsEmpty()) {
        return;
    }
    if (!cell.IsString()) {
        throw message;
    }
    out = cell.StringValue();
}

void read_text(const CellMatrix& table, const std::string& message, std::string& out) {
    const CellValue& cell = single_cell(table, message);
    if (cell.IsEmpty()) {
        return;
    }
    out = cell_to_text(cell);
}

void read_text_required(const CellMatrix& table, const std::string& message, std::string& out) {
    out = cell_to_text(single_cell(table, message));
}

void read_double_vector(const CellMatrix& table, const std::string& message, dvec& out) {
    if (table.RowsInStructure() != 1 && table.ColumnsInStructure() != 1) {
        throw kVectorShape;
    }
    read_number_line(table, message, out);
}

void read_double_vector_optional(const CellMatrix& table, const std::string& message, dvec& out) {
    const std::size_t rows = table.RowsInStructure();
    const std::size_t columns = table.ColumnsInStructure();
    if (rows == 1 && columns == 1 && table(0, 0).IsEmpty()) {
        return;
    }
    if (rows != 1 && columns != 1) {
        throw message;
    }
    read_number_line(table, message, out);
}

void read_named_vector(const CellMatrix& table, std::string& name, dvec& out) {
    if (has_no_cells(table)) {
        throw XlfGeneralException(kNotString);
    }
    std::string header = name_of(table(0, 0));
    read_strict_line(table, 1, out);
    name = std::move(header);
}

void read_string_list(const CellMatrix& table, svec& out) {
    svec names;
    if (!has_no_cells(table)) {
        // A single row is read along it; anything else down its first column.
        const bool along_row = table.RowsInStructure() == 1;
        const std::size_t count = along_row ? table.ColumnsInStructure() : table.RowsInStructure();
        names.reserve(count);
        for (std::size_t i = 0; i < count; ++i) {
            names.push_back(name_of(along_row ? table(0, i) : table(i, 0)));
        }
    }
    out = std::move(names);
}

dvec read_column_double(const CellMatrix& table, std::size_t column) {
    const std::size_t rows = table.RowsInStructure();
    dvec out;
    out.reserve(rows);
    for (std::size_t i = 0; i < rows; ++i) {
        out.push_back(table(i, column).NumericValue());
    }
    return out;
}

dvec read_row_double(const CellMatrix& table, std::size_t row) {
    const std::size_t columns = table.ColumnsInStructure();
    dvec out;
    out.reserve(columns);
    for (std::size_t j = 0; j < columns; ++j) {
        out.push_back(table(row, j).NumericValue());
    }
    return out;
}

svec read_column_text(const CellMatrix& table, std::size_t column) {
    const std::size_t rows = table.RowsInStructure();
    svec out;
    out.reserve(rows);
    for (std::size_t i = 0; i < rows; ++i) {
        out.push_back(cell_to_text(table(i, column)));
    }
    return out;
}

svec read_row_text(const CellMatrix& table, std::size_t row) {
    const std::size_t columns = table.ColumnsInStructure();
    svec out;
    out.reserve(columns);
    for (std::size_t j = 0; j < columns; ++j) {
        out.push_back(cell_to_text(table(row, j)));
    }
    return out;
}

NamedTable read_table_with_headers(const CellMatrix& table) {
    if (has_no_cells(table)) {
        throw kEmptyTable;
    }
    // When both the first row and the first column are names, the row wins.
    if (row_all_strings(table, 0)) {
        return read_headed_table(table, false);
    }
    if (column_all_strings(table, 0)) {
        return read_headed_table(table, true);
    }
    throw kHeadersNotStrings;
}

NamedLine::NamedLine(const CellMatrix& table) : table_(table) {
    const std::size_t rows = table.RowsInStructure();
    const std::size_t columns = table.ColumnsInStructure();
    if (rows > 1 && columns > 1) {
        throw kNotOneLine;
    }
    if (rows == 0 || columns == 0) {
        throw kEmptyTable;
    }
    along_row_ = rows == 1 && columns > 1;
    const CellValue& head = table(0, 0);
    if (!head.IsString()) {
        throw kHeaderNotString;
    }
    name_ = name_of(head);
    size_ = (along_row_ ? columns : rows) - 1;
    if (size_ == 0) {
        throw kEmptyTable;
    }
}

NamedVector read_vector_with_header(const CellMatrix& table) {
    const NamedLine line(table);
    NamedVector out;
    out.name = line.name();
    out.values.reserve(line.size());
    out.valid.assign(line.size(), true);
    for (std::size_t i = 0; i < line.size(); ++i) {
        const CellValue& c = line[i];
        if (c.IsANumber()) {
            out.values.push_back(c.NumericValue());
        } else {
            out.values.push_back(cell_to_double(c));
            out.valid[i] = false;
        }
    }
    return out;
}

NamedCodes read_coded_vector_with_header(const CellMatrix& table) {
    const NamedLine line(table);
    NamedCodes out;
    out.name = line.name();
    out.codes.reserve(line.size());
    // Views into the cells' own texts, or into `made` for the texts of other
    // cells, each made once: the text of a number costs a stream. A deque
    // never moves what it holds.
    std::unordered_map<std::string_view, int> code_of_text;
    std::unordered_map<std::uint64_t, int> code_of_number;  // by the bits, so -0 is not 0
    std::deque<std::string> made;
    auto code_of = [&](std::string_view text) {
        const auto found = code_of_text.find(text);
        if (found != code_of_text.end()) {
            return found->second;
        }
        const int code = static_cast<int>(out.texts.size());
        out.texts.emplace_back(text);
        code_of_text.emplace(text, code);
        return code;
    };
    auto code_of_made = [&](const CellValue& c) {
        const std::string text = trim(cell_to_text(c), 0);
        const auto found = code_of_text.find(text);
        if (found != code_of_text.end()) {
            return found->second;
        }
        made.push_back(text);
        return code_of(made.back());
    };
    // Cells that share one text hand out one string: a few recent strings
    // remembered by address spare the hashing of their texts.
    struct Recent {
        const std::string* text = nullptr;
        int code = 0;
    };
    std::array<Recent, 64> recent{};
    for (std::size_t i = 0; i < line.size(); ++i) {
        const CellValue& c = line[i];
        if (c.IsAString()) {
            const std::string& text = c.StringValue();
            Recent& slot = recent[(reinterpret_cast<std::uintptr_t>(&text) >> 5) % recent.size()];
            if (slot.text != &text) {
                slot.text = &text;
                slot.code = code_of(trimmed(text));
            }
            out.codes.push_back(slot.code);
        } else if (c.IsANumber()) {
            const double value = c.NumericValue();
            std::uint64_t bits;
            std::memcpy(&bits, &value, sizeof bits);
            auto found = code_of_number.find(bits);
            if (found == code_of_number.end()) {
                found = code_of_number.emplace(bits, code_of_made(c)).first;
            }
            out.codes.push_back(found->second);
        } else {
            out.codes.push_back(code_of_made(c));
        }
    }
    return out;
}

NamedTable read_table_numeric_headers_first_row(const CellMatrix& table) {
    if (has_no_cells(table)) {
        throw kEmptyTable;
    }
    if (!row_all_strings(table, 0)) {
        throw kHeadersNotStrings;
    }
    NamedTable out = read_headed_table(table, false);
    // No cell spoils an observation here.
    out.valid.assign(out.data.size(), true);
    return out;
}

namespace {

NamedColumns read_named_columns(const CellMatrix& table, bool keep_missing) {
    if (has_no_cells(table)) {
        throw kEmptyTable;
    }
    if (!row_all_strings(table, 0)) {
        throw kHeadersNotStrings;
    }
    const std::size_t rows = table.RowsInStructure();
    const std::size_t columns = table.ColumnsInStructure();
    NamedColumns out;
    out.names.reserve(columns);
    for (std::size_t j = 0; j < columns; ++j) {
        out.names.push_back(name_of(table(0, j)));
    }
    if (rows < 2) {
        throw kEmptyTable;
    }
    out.columns.resize(columns);
    for (auto& column : out.columns) {
        column.reserve(rows - 1);
    }
    for (std::size_t i = 1; i < rows; ++i) {
        for (std::size_t j = 0; j < columns; ++j) {
            const CellValue& cell = table(i, j);
            if (cell.IsANumber()) {
                out.columns[j].push_back(cell.NumericValue());
            } else if (keep_missing) {
                out.columns[j].push_back(std::numeric_limits<double>::quiet_NaN());
            }
        }
    }
    return out;
}

}  // namespace

NamedColumns read_columns_dropping_non_numbers(const CellMatrix& table) {
    return read_named_columns(table, false);
}

NamedColumns read_columns_missing_as_nan(const CellMatrix& table) {
    return read_named_columns(table, true);
}

MixedTable read_mixed_table(const CellMatrix& table) {
    if (has_no_cells(table)) {
        throw kEmptyTable;
    }
    if (!row_all_strings(table, 0)) {
        throw kHeadersNotStrings;
    }
    const std::size_t rows = table.RowsInStructure();
    const std::size_t columns = table.ColumnsInStructure();
    MixedTable out;
    out.names.reserve(columns);
    for (std::size_t j = 0; j < columns; ++j) {
        out.names.push_back(name_of(table(0, j)));
    }
    if (rows < 2) {
        throw kEmptyTable;
    }

    // The first data row alone types each column.
    out.column_types.reserve(columns);
    out.column_index.reserve(columns);
    int numeric = 0;
    int categorical = 0;
    for (std::size_t j = 0; j < columns; ++j) {
        const CellValue& cell = table(1, j);
        if (cell.IsANumber()) {
            out.column_types.push_back('N');
            out.column_index.push_back(numeric++);
        } else if (cell.IsString()) {
            out.column_types.push_back('C');
            out.column_index.push_back(categorical++);
        } else {
            throw kBadMixedType;
        }
    }

    const std::size_t observations = rows - 1;
    out.row_count = static_cast<int>(observations);
    out.numeric_rows.reserve(observations);
    out.text_rows.reserve(observations);
    for (std::size_t i = 1; i < rows; ++i) {
        dvec numbers(static_cast<std::size_t>(numeric));
        svec texts(static_cast<std::size_t>(categorical));
        for (std::size_t j = 0; j < columns; ++j) {
            const CellValue& cell = table(i, j);
            const auto at = static_cast<std::size_t>(out.column_index[j]);
            if (out.column_types[j] == 'N') {
                numbers[at] = cell_to_double(cell);
            } else {
                texts[at] = trim(cell_to_text(cell), 0);
            }
        }
        out.numeric_rows.push_back(std::move(numbers));
        out.text_rows.push_back(std::move(texts));
    }
    return out;
}

LabelledTable read_labelled_table(const CellMatrix& table) {
    const std::size_t rows = table.RowsInStructure();
    const std::size_t columns = table.ColumnsInStructure();
    if (rows < 2 || columns < 2) {
        throw kNoLabels;
    }
    for (std::size_t j = 1; j < columns; ++j) {
        if (!table(0, j).IsString()) {
            throw kNoLabels;
        }
    }
    for (std::size_t i = 1; i < rows; ++i) {
        if (!table(i, 0).IsString()) {
            throw kNoLabels;
        }
    }
    LabelledTable out;
    out.column_labels.reserve(columns - 1);
    for (std::size_t j = 1; j < columns; ++j) {
        out.column_labels.push_back(trim(cell_to_text(table(0, j)), 0));
    }
    out.row_labels.reserve(rows - 1);
    out.values.reserve(rows - 1);
    for (std::size_t i = 1; i < rows; ++i) {
        out.row_labels.push_back(trim(cell_to_text(table(i, 0)), 0));
        dvec row(columns - 1);
        for (std::size_t j = 1; j < columns; ++j) {
            row[j - 1] = cell_to_double(table(i, j));
        }
        out.values.push_back(std::move(row));
    }
    return out;
}

dmat read_numeric_matrix(const CellMatrix& table) {
    const std::size_t rows = table.RowsInStructure();
    const std::size_t columns = table.ColumnsInStructure();
    dmat out;
    out.reserve(rows);
    for (std::size_t i = 0; i < rows; ++i) {
        dvec row(columns);
        for (std::size_t j = 0; j < columns; ++j) {
            row[j] = table(i, j).NumericValue();
        }
        out.push_back(std::move(row));
    }
    return out;
}

int header_kind(const CellMatrix& table) {
    if (table.RowsInStructure() < 1) {
        throw kEmptyTable;
    }
    bool all_numbers = true;
    bool all_strings = true;
    const std::size_t columns = table.ColumnsInStructure();
    for (std::size_t j = 0; j < columns; ++j) {
        const CellValue& cell = table(0, j);
        all_numbers = all_numbers && cell.IsANumber();
        all_strings = all_strings && cell.IsString();
    }
    if (all_numbers) {
        return 0;
    }
    return all_strings ? 1 : 2;
}

TextTable read_table_text(const CellMatrix& table) {
    if (has_no_cells(table)) {
        throw kEmptyTable;
    }
    if (!row_all_strings(table, 0)) {
        throw kHeadersNotStrings;
    }
    const std::size_t rows = table.RowsInStructure();
    const std::size_t columns = table.ColumnsInStructure();
    TextTable out;
    out.names.reserve(columns);
    for (std::size_t j = 0; j < columns; ++j) {
        out.names.push_back(name_of(table(0, j)));
    }
    if (rows < 2) {
        throw kEmptyTable;
    }
    out.columns.resize(columns);
    for (auto& column : out.columns) {
        column.reserve(rows - 1);
    }
    for (std::size_t i = 1; i < rows; ++i) {
        for (std::size_t j = 0; j < columns; ++j) {
            out.columns[j].push_back(trim(cell_to_text(table(i, j)), 0));
        }
    }
    return out;
}

}  // namespace zentable
