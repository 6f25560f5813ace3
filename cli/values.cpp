#include "values.hpp"

#include <cctype>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <vector>

#include "driver_error.hpp"
#include "xlw/cell_conversions.hpp"

namespace zentable::cli {

namespace {

bool iequals(const std::string& a, const char* b) {
    std::size_t i = 0;
    for (; i < a.size() && b[i]; ++i)
        if (std::toupper(static_cast<unsigned char>(a[i])) != b[i])
            return false;
    return i == a.size() && !b[i];
}

std::string unquote(const std::string& quoted) {
    std::string text;
    for (std::size_t i = 1; i + 1 < quoted.size(); ++i) {
        text += quoted[i];
        if (quoted[i] == '"' && quoted[i + 1] == '"')
            ++i;  // "" stands for one quote
    }
    return text;
}

bool is_quoted(const std::string& word) {
    return word.size() >= 2 && word.front() == '"' && word.back() == '"';
}

// A cell from a field of a data file: blanks around it do not count.
MJCellValue file_cell(const std::string& field) {
    const std::string text = trim(field, 0);
    if (text.empty())
        return MJCellValue();
    if (is_decimal_number(text))
        return MJCellValue(std::strtod(text.c_str(), nullptr));
    if (iequals(text, "TRUE"))
        return MJCellValue(true);
    if (iequals(text, "FALSE"))
        return MJCellValue(false);
    return MJCellValue(field);
}

char delimiter_for(const std::string& path, const std::string& first_line) {
    const auto dot = path.rfind('.');
    const std::string ext = dot == std::string::npos ? "" : path.substr(dot + 1);
    if (iequals(ext, "TSV") || iequals(ext, "TAB"))
        return '\t';
    if (first_line.find(',') == std::string::npos && first_line.find('\t') != std::string::npos)
        return '\t';
    return ',';
}

// Column letters and row digits of one A1 reference, zero-based.
bool parse_a1(const std::string& ref, std::size_t& row, std::size_t& column) {
    std::size_t i = 0;
    column = 0;
    while (i < ref.size() && std::isalpha(static_cast<unsigned char>(ref[i]))) {
        column = column * 26 + (std::toupper(static_cast<unsigned char>(ref[i])) - 'A' + 1);
        if (++i > 3)
            return false;
    }
    if (i == 0 || i == ref.size())
        return false;
    row = 0;
    for (std::size_t j = i; j < ref.size(); ++j) {
        if (!std::isdigit(static_cast<unsigned char>(ref[j])) || j - i > 7)
            return false;
        row = row * 10 + static_cast<std::size_t>(ref[j] - '0');
    }
    if (row == 0)
        return false;
    --row;
    --column;
    return true;
}

}  // namespace

bool is_identifier(const std::string& word) {
    if (word.empty() || std::isdigit(static_cast<unsigned char>(word[0])))
        return false;
    for (char c : word)
        if (!std::isalnum(static_cast<unsigned char>(c)) && c != '_')
            return false;
    return true;
}

bool is_decimal_number(const std::string& word) {
    std::size_t i = 0;
    const std::size_t n = word.size();
    if (i < n && (word[i] == '+' || word[i] == '-'))
        ++i;
    std::size_t digits = 0;
    while (i < n && std::isdigit(static_cast<unsigned char>(word[i])))
        ++i, ++digits;
    if (i < n && word[i] == '.') {
        ++i;
        while (i < n && std::isdigit(static_cast<unsigned char>(word[i])))
            ++i, ++digits;
    }
    if (digits == 0)
        return false;
    if (i < n && (word[i] == 'e' || word[i] == 'E')) {
        ++i;
        if (i < n && (word[i] == '+' || word[i] == '-'))
            ++i;
        std::size_t exponent = 0;
        while (i < n && std::isdigit(static_cast<unsigned char>(word[i])))
            ++i, ++exponent;
        if (exponent == 0)
            return false;
    }
    return i == n;
}

MJCellValue scalar_cell(const std::string& word) {
    if (word.empty())
        return MJCellValue();
    if (is_decimal_number(word))
        return MJCellValue(std::strtod(word.c_str(), nullptr));
    if (iequals(word, "TRUE"))
        return MJCellValue(true);
    if (iequals(word, "FALSE"))
        return MJCellValue(false);
    if (word.front() == '"') {
        if (!is_quoted(word))
            throw DriverError("unterminated text: " + word);
        return MJCellValue(unquote(word));
    }
    return MJCellValue(word);
}

CellMatrix parse_array_constant(const std::string& text) {
    if (text.size() < 2 || text.front() != '{' || text.back() != '}')
        throw DriverError("unterminated array constant: " + text);
    std::vector<std::vector<MJCellValue>> rows(1);
    std::string field;
    bool in_quotes = false;
    auto end_field = [&] {
        rows.back().push_back(scalar_cell(trim(field, 0)));
        field.clear();
    };
    for (std::size_t i = 1; i + 1 < text.size(); ++i) {
        const char c = text[i];
        if (in_quotes) {
            field += c;
            if (c == '"') {
                if (i + 2 < text.size() && text[i + 1] == '"') {
                    field += text[++i];
                } else {
                    in_quotes = false;
                }
            }
        } else if (c == '"') {
            field += c;
            in_quotes = true;
        } else if (c == ',') {
            end_field();
        } else if (c == ';') {
            end_field();
            rows.emplace_back();
        } else if (c == '{' || c == '}') {
            throw DriverError("unexpected '" + std::string(1, c) + "' in array constant: " + text);
        } else {
            field += c;
        }
    }
    if (in_quotes)
        throw DriverError("unterminated text in array constant: " + text);
    end_field();

    const std::size_t columns = rows[0].size();
    for (const auto& row : rows)
        if (row.size() != columns)
            throw DriverError("rows of an array constant must have equal lengths: " + text);
    CellMatrix table(rows.size(), columns);
    for (std::size_t i = 0; i < rows.size(); ++i)
        for (std::size_t j = 0; j < columns; ++j)
            table(i, j) = rows[i][j];
    return table;
}

CellMatrix read_cells_file(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in)
        throw DriverError("cannot open file " + path);
    std::stringstream buffer;
    buffer << in.rdbuf();
    const std::string content = buffer.str();
    const char delimiter = delimiter_for(path, content.substr(0, content.find('\n')));

    std::vector<std::vector<MJCellValue>> rows;
    std::vector<MJCellValue> row;
    std::string field;
    bool in_quotes = false, any_field = false;
    auto end_field = [&] {
        row.push_back(file_cell(field));
        field.clear();
        any_field = true;
    };
    auto end_row = [&] {
        if (any_field || !field.empty())
            end_field();
        if (!row.empty())
            rows.push_back(std::move(row));
        row.clear();
        any_field = false;
    };
    for (std::size_t i = 0; i < content.size(); ++i) {
        const char c = content[i];
        if (in_quotes) {
            if (c == '"' && i + 1 < content.size() && content[i + 1] == '"') {
                field += '"';
                ++i;
            } else if (c == '"') {
                in_quotes = false;
            } else {
                field += c;
            }
        } else if (c == '"') {
            in_quotes = true;
        } else if (c == delimiter) {
            end_field();
        } else if (c == '\n') {
            end_row();
        } else if (c != '\r') {
            field += c;
        }
    }
    if (in_quotes)
        throw DriverError("unterminated quoted field in " + path);
    end_row();

    std::size_t columns = 0;
    for (const auto& r : rows)
        columns = std::max(columns, r.size());
    CellMatrix table(rows.size(), columns);
    for (std::size_t i = 0; i < rows.size(); ++i)
        for (std::size_t j = 0; j < rows[i].size(); ++j)
            table(i, j) = rows[i][j];
    return table;
}

bool parse_a1_range(const std::string& text, CellRange& r) {
    const auto colon = text.find(':');
    if (!parse_a1(text.substr(0, colon), r.first_row, r.first_column))
        return false;
    if (colon == std::string::npos) {
        r.last_row = r.first_row;
        r.last_column = r.first_column;
    } else if (!parse_a1(text.substr(colon + 1), r.last_row, r.last_column)) {
        return false;
    }
    return r.last_row >= r.first_row && r.last_column >= r.first_column;
}

CellMatrix range_of(const std::string& name, const std::string& range, const CellMatrix& table) {
    CellRange r;
    if (!parse_a1_range(range, r))
        throw DriverError("not a range in A1 notation: " + name + "!" + range);
    const std::size_t rows = table.RowsInStructure(), columns = table.ColumnsInStructure();
    if (r.last_row >= rows || r.last_column >= columns)
        throw DriverError("range " + name + "!" + range + " is outside " + name + ", which is " +
                          std::to_string(rows) + " by " + std::to_string(columns));
    CellMatrix cut(r.last_row - r.first_row + 1, r.last_column - r.first_column + 1);
    for (std::size_t i = r.first_row; i <= r.last_row; ++i)
        for (std::size_t j = r.first_column; j <= r.last_column; ++j)
            cut(i - r.first_row, j - r.first_column) = table(i, j);
    return cut;
}

CellMatrix parse_value(const std::string& raw, const Results* results) {
    const std::string word = trim(raw, 0);
    if (word.empty() || word == "_")
        return CellMatrix(1, 1);
    if (word.front() == '{')
        return parse_array_constant(word);
    if (word.front() == '@') {
        std::string path = trim(word.substr(1), 0);
        if (is_quoted(path))
            path = unquote(path);
        if (path.empty())
            throw DriverError("a file name must follow @");
        return read_cells_file(path);
    }
    if (results) {
        const auto bang = word.find('!');
        const auto found = results->find(word.substr(0, bang));
        if (found != results->end()) {
            if (bang == std::string::npos)
                return found->second;
            return range_of(found->first, word.substr(bang + 1), found->second);
        }
        if (bang != std::string::npos && bang > 0 && is_identifier(word.substr(0, bang)))
            throw DriverError("no earlier result is named " + word.substr(0, bang));
    }
    CellMatrix cell(1, 1);
    cell(0, 0) = scalar_cell(word);
    return cell;
}

}  // namespace zentable::cli
