#include "values.hpp"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "commands/progress.hpp"
#include "data/delimited_file.hpp"
#include "driver_error.hpp"
#include "xlw/cell_conversions.hpp"

namespace zentable::cli {

namespace {

bool iequals(std::string_view a, const char* b) {
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

char delimiter_for(const std::string& path, const std::string& first_line) {
    const auto dot = path.rfind('.');
    const std::string ext = dot == std::string::npos ? "" : path.substr(dot + 1);
    if (iequals(ext, "TSV") || iequals(ext, "TAB"))
        return '\t';
    if (first_line.find(',') == std::string::npos && first_line.find('\t') != std::string::npos)
        return '\t';
    // R's write.csv2 and spreadsheets in many countries: ";" between fields,
    // and a decimal comma in the numbers.
    const auto count = [&](char c) { return std::count(first_line.begin(), first_line.end(), c); };
    if (first_line.find('\t') == std::string::npos && count(';') > count(','))
        return ';';
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

// The bytes of a file in one block backed by large pages: for a file of
// millions of lines the first touch of small pages costs more than reading.
enum class StandardInput { unread, table, script };
StandardInput standard_input_use = StandardInput::unread;

// The bytes of standard input, read whole the first time a table wants them.
const std::string& standard_input_text() {
    static std::string text;
    if (standard_input_use == StandardInput::script)
        throw DriverError("@- cannot read standard input: the script is read from it");
    if (standard_input_use == StandardInput::unread) {
        std::ostringstream all;
        all << std::cin.rdbuf();
        text = all.str();
        standard_input_use = StandardInput::table;
    }
    return text;
}

class FileText {
  public:
    explicit FileText(const std::string& path) {
        if (path == "-") {
            text_ = standard_input_text();
            return;
        }
        std::ifstream in(path, std::ios::binary);
        if (!in)
            throw DriverError("cannot open file " + path);
        in.seekg(0, std::ios::end);
        const std::streamoff size = in.tellg();
        in.seekg(0, std::ios::beg);
        const std::size_t bytes = size > 0 ? static_cast<std::size_t>(size) : 0;
        block_ = std::make_unique<CellArena>(bytes + 1);
        char* data = static_cast<char*>(block_->take(bytes + 1));
        // In blocks, so that the progress line can tell how far a big file is.
        constexpr std::size_t kBlock = std::size_t(1) << 26;
        std::size_t got = 0;
        while (got < bytes && in) {
            in.read(data + got, static_cast<std::streamsize>(std::min(kBlock, bytes - got)));
            got += static_cast<std::size_t>(in.gcount());
            progress::report(progress::Unit::bytes, static_cast<double>(in.gcount()),
                             static_cast<double>(bytes));
        }
        text_ = std::string_view(data, got);
    }
    std::string_view text() const { return text_; }

  private:
    std::unique_ptr<CellArena> block_;
    std::string_view text_;
};

// A quote opens a quoted field only at the field's start, after blanks, as
// the file layer reads it: one inside a text (5'3") is a character.
bool opens_quote(const std::string& field_so_far, bool quoted) {
    return !quoted && std::all_of(field_so_far.begin(), field_so_far.end(),
                                  [](char c) { return c == ' ' || c == '\t'; });
}

// Calls on_field(text) for each field of the file's text in order, and
// on_row() after each line that has one; a line with no field is no row, but
// a line of two quotes is one empty field (a missing value in a file of one
// column). Quotes enclose text in which the delimiter and line ends are plain
// characters, "" inside them is one quote, and a carriage return outside them
// is dropped. Most fields have none of these and are handed out as spans of
// the text, with no copy.
template <class OnField, class OnRow>
void walk_fields(std::string_view s, char delimiter, const std::string& path, OnField&& on_field,
                 OnRow&& on_row) {
    std::size_t start = 0;
    bool copying = false, in_quotes = false, any_field = false, quoted = false;
    std::string copy;
    auto end_field = [&](std::size_t end) {
        on_field(copying ? std::string_view(copy) : std::string_view(s).substr(start, end - start));
        copying = false;
        quoted = false;
        any_field = true;
    };
    auto end_row = [&](std::size_t end) {
        if (any_field || quoted || (copying ? !copy.empty() : end > start))
            end_field(end);
        if (any_field)
            on_row();
        any_field = false;
    };
    for (std::size_t i = 0; i < s.size(); ++i) {
        const char c = s[i];
        if (!in_quotes && c == delimiter) {
            end_field(i);
            start = i + 1;
        } else if (!in_quotes && c == '\n') {
            end_row(i);
            start = i + 1;
        } else if (c == '"' || (c == '\r' && !in_quotes) || copying) {
            if (!copying) {
                copy.assign(s, start, i - start);
                copying = true;
            }
            if (in_quotes && c == '"' && i + 1 < s.size() && s[i + 1] == '"') {
                copy += '"';
                ++i;
            } else if (c == '"' && in_quotes) {
                in_quotes = false;
            } else if (c == '"' && opens_quote(copy, quoted)) {
                in_quotes = true;
                quoted = true;
            } else if (c != '\r' || in_quotes) {
                copy += c;
            }
        }
    }
    if (in_quotes)
        throw DriverError("unterminated quoted field in " + path);
    end_row(s.size());
}

std::string_view trimmed(std::string_view text) {
    const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\n'; };
    while (!text.empty() && blank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && blank(text.back()))
        text.remove_suffix(1);
    return text;
}

// The text cells of a file: a text that repeats shares one text among its
// cells. Past a few thousand distinct texts a column is one of names or keys,
// whose texts do not repeat, and no more are kept.
class TextCells {
  public:
    void set(CellValue& cell, std::string_view field) {
        std::string text(field);
        const auto found = kept_.find(text);
        if (found != kept_.end()) {
            cell = found->second;
            return;
        }
        cell = text;
        if (kept_.size() < kMostKept)
            kept_.emplace(std::move(text), MJCellValue()).first->second = cell;
    }

  private:
    static constexpr std::size_t kMostKept = 4096;
    std::unordered_map<std::string, MJCellValue> kept_;
};

// A cell from a field of a data file: blanks around it do not count.
void set_file_cell(CellValue& cell, std::string_view field, char delimiter, TextCells& texts) {
    std::string_view text = trimmed(field);
    if (text.empty())
        return;
    std::string with_point;
    if (delimiter == ';' && !is_decimal_number(text)) {
        with_point = decimal_comma_as_point(text);
        if (!with_point.empty() && is_decimal_number(with_point))
            text = with_point;
    }
    if (is_decimal_number(text)) {
        // from_chars rounds correctly, as strtod does, but takes no plus sign
        // and leaves an overflow unset, where strtod gives an infinity.
        double value = 0.0;
        const std::string_view digits = text.front() == '+' ? text.substr(1) : text;
        if (std::from_chars(digits.data(), digits.data() + digits.size(), value).ec != std::errc())
            value = std::strtod(std::string(text).c_str(), nullptr);
        cell = value;
    } else if (iequals(text, "TRUE")) {
        cell = true;
    } else if (iequals(text, "FALSE")) {
        cell = false;
    } else {
        texts.set(cell, field);
    }
}

}  // namespace

void claim_standard_input_for_script() {
    standard_input_use = StandardInput::script;
}

bool is_identifier(const std::string& word) {
    if (word.empty() || std::isdigit(static_cast<unsigned char>(word[0])))
        return false;
    for (char c : word)
        if (!std::isalnum(static_cast<unsigned char>(c)) && c != '_')
            return false;
    return true;
}

bool is_decimal_number(std::string_view word) {
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

// Two walks over the text: the first sizes the table, the second fills it.
// A table of millions of cells built through rows of temporary cells spends
// most of its time allocating them.
// A table read from a file with a head row of names: an empty name gets
// one, and an empty last column (a delimiter at the end of every line) goes.
CellMatrix named_columns(CellMatrix table) {
    const std::size_t rows = table.RowsInStructure(), columns = table.ColumnsInStructure();
    if (rows < 2 || columns == 0)
        return table;
    bool last_empty = columns > 1;
    for (std::size_t i = 0; i < rows && last_empty; ++i)
        last_empty = table(i, columns - 1).IsEmpty();
    if (last_empty) {
        CellMatrix narrower(rows, columns - 1);
        for (std::size_t i = 0; i < rows; ++i)
            for (std::size_t j = 0; j + 1 < columns; ++j)
                narrower(i, j) = table(i, j);
        return named_columns(std::move(narrower));
    }
    bool names = false;
    for (std::size_t j = 0; j < columns; ++j) {
        if (table(0, j).IsString())
            names = true;
        else if (!table(0, j).IsEmpty())
            return table;
    }
    if (names)
        for (std::size_t j = 0; j < columns; ++j)
            if (table(0, j).IsEmpty())
                table(0, j) = unnamed_column(j);
    return table;
}

CellMatrix read_cells_file(const std::string& path) {
    const FileText file(path);
    std::string_view content = file.text();
    if (content.substr(0, 3) == "\xEF\xBB\xBF")
        content.remove_prefix(3);
    const char delimiter = delimiter_for(path, std::string(content.substr(0, content.find('\n'))));
    std::size_t rows = 0, columns = 0, column = 0;
    walk_fields(
        content, delimiter, path, [&](std::string_view) { ++column; },
        [&] {
            ++rows;
            columns = std::max(columns, column);
            column = 0;
        });
    CellMatrix table(rows, columns);
    std::size_t row = 0;
    TextCells texts;
    walk_fields(
        content, delimiter, path,
        [&](std::string_view field) {
            set_file_cell(table(row, column++), field, delimiter, texts);
        },
        [&] {
            ++row;
            column = 0;
        });
    return named_columns(std::move(table));
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
