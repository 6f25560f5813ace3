#include "data/delimited_file.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <fstream>
#include <iterator>
#include <memory>
#include <thread>

#include <sys/stat.h>

#include "commands/progress.hpp"
#include "xlw/cell_conversions.hpp"

namespace zentable {

namespace {

constexpr std::size_t kMaxFields = 100000;
constexpr std::size_t kFirstBufferSize = 1024;
constexpr std::size_t kBlockSize = 1 << 20;

bool is_space(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}
bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

// Line ends as LF or CRLF: the CR is no part of the last field.
std::string_view without_newlines(std::string_view line) {
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r'))
        line.remove_suffix(1);
    return line;
}

bool is_blank(char c) {
    return c == ' ' || c == '\t';
}

// Where a quote may open a field: at its start, after blanks other than the
// delimiter. A quote anywhere else (5'3") is a plain character.
std::size_t quote_start(std::string_view line, std::size_t i, char delimiter) {
    while (i < line.size() && is_blank(line[i]) && line[i] != delimiter)
        ++i;
    return i < line.size() && line[i] == '"' ? i : std::string_view::npos;
}

// Splits a record that holds a quote. A quoted field's text, without its
// quotes and with each doubled quote as one, is written to `unquoted`, whose
// room is reserved first so that the views into it stay valid.
void split_quoted(std::string_view line, char delimiter, Fields& fields, std::size_t limit) {
    fields.unquoted.clear();
    fields.unquoted.reserve(line.size());
    const std::size_t n = line.size();
    std::size_t i = 0;
    if (delimiter == ' ')
        while (i < n && line[i] == ' ')
            ++i;
    while (fields.size() < limit) {
        const std::size_t open = quote_start(line, i, delimiter);
        if (open == std::string_view::npos) {
            const std::size_t start = i;
            while (i < n && line[i] != delimiter)
                ++i;
            fields.push_back(line.substr(start, i - start));
        } else {
            const std::size_t first = fields.unquoted.size();
            for (i = open + 1; i < n; ++i) {
                if (line[i] == '"') {
                    if (i + 1 < n && line[i + 1] == '"')
                        ++i;
                    else
                        break;
                }
                fields.unquoted += line[i];
            }
            // Text after the closing quote belongs to the field as written.
            for (++i; i < n && line[i] != delimiter; ++i)
                fields.unquoted += line[i];
            fields.push_back(
                std::string_view(fields.unquoted).substr(first, fields.unquoted.size() - first));
        }
        if (i >= n)
            return;
        ++i;  // the delimiter
        if (delimiter == ' ') {
            while (i < n && line[i] == ' ')
                ++i;
            if (i >= n)
                return;
        }
    }
}

// The fields of a line as views into it, the vector reused from line to line
// so that the record loops allocate nothing per field. `limit` fields at most.
// A quote sends the line to the slower split that removes quotes.
void split_fields(std::string_view line, char delimiter, Fields& fields, std::size_t limit) {
    fields.clear();
    line = without_newlines(line);
    const std::size_t n = line.size();
    if (delimiter == ' ') {
        std::size_t i = 0;
        while (i < n && line[i] == ' ')
            ++i;
        while (i < n && fields.size() < limit) {
            const std::size_t start = i;
            while (i < n && line[i] != ' ') {
                if (line[i] == '"') {
                    fields.clear();
                    split_quoted(line, delimiter, fields, limit);
                    return;
                }
                ++i;
            }
            fields.push_back(line.substr(start, i - start));
            while (i < n && line[i] == ' ')
                ++i;
        }
        return;
    }
    std::size_t start = 0;
    for (std::size_t i = 0; i < n && fields.size() < limit; ++i) {
        const char c = line[i];
        if (c == delimiter) {
            fields.push_back(line.substr(start, i - start));
            start = i + 1;
        } else if (c == '"') {
            fields.clear();
            split_quoted(line, delimiter, fields, limit);
            return;
        }
    }
    // A trailing delimiter gives a last, empty field, as does an empty line.
    if (fields.size() < limit)
        fields.push_back(line.substr(start));
}

// Whether a record ends inside a quoted field, so that the next line
// continues it.
bool ends_in_open_quote(std::string_view record, char delimiter) {
    const std::size_t n = record.size();
    std::size_t i = 0;
    while (i < n) {
        const std::size_t open = quote_start(record, i, delimiter);
        if (open != std::string_view::npos) {
            for (i = open + 1;; ++i) {
                if (i >= n)
                    return true;
                if (record[i] == '"') {
                    if (i + 1 < n && record[i + 1] == '"')
                        ++i;
                    else
                        break;
                }
            }
        }
        while (i < n && record[i] != delimiter)
            ++i;
        ++i;
    }
    return false;
}

std::string trimmed(std::string_view field) {
    return trim(std::string(field), 0);
}

// atof of a field that is not a number, for the places that keep its value.
double atof_of(std::string_view field) {
    return std::atof(std::string(field).c_str());
}

std::string cannot_find(const std::string& wanted, const char* where) {
    return "Error: cannot find the variable (" + wanted + ") in " + where;
}

// Splits a record up to the field at `needed`; false when it has no such
// field, with every field of the line split for the count.
bool split_record(std::string_view line, char delimiter, std::size_t needed, Fields& fields) {
    split_fields(line, delimiter, fields, needed + 1);
    if (fields.size() > needed)
        return true;
    split_fields(line, delimiter, fields);
    return false;
}

std::string short_line_text(long long line_number, std::size_t fields,
                            const std::string& filename) {
    return "Error: data line " + std::to_string(line_number) + " has " + std::to_string(fields) +
           " fields, which is less than expected in " + filename;
}

// An open data file with its head line read and split.
struct DataFile {
    LineReader reader;
    svec head;
    Fields fields;
    bool last_unnamed = false;  // the head ends in an empty name

    DataFile(const std::string& filename, char delimiter) : reader(filename) {
        if (const char* line = reader.read_record(delimiter)) {
            split_fields(std::string_view(line, reader.length()), delimiter, fields);
            head.reserve(fields.size());
            for (std::string_view f : fields) {
                head.push_back(trimmed(f));
                last_unnamed = head.back().empty();
                if (last_unnamed)
                    head.back() = unnamed_column(head.size() - 1);
            }
        }
    }

    std::vector<std::size_t> columns_of(const svec& names) const {
        std::vector<std::size_t> columns;
        columns.reserve(names.size());
        for (const std::string& name : names)
            columns.push_back(find_variable(head, name));
        return columns;
    }

    // Splits the next record; false at the end of the file. A record with no
    // field at `needed` stops the reading with its line number.
    bool next(char delimiter, std::size_t needed, long long line_number) {
        const char* line = reader.read_record(delimiter);
        if (!line)
            return false;
        if (!split_record(std::string_view(line, reader.length()), delimiter, needed, fields))
            throw short_line_text(line_number, fields.size(), reader.filename());
        return true;
    }
};

std::size_t largest(const std::vector<std::size_t>& columns) {
    return columns.empty() ? 0 : *std::max_element(columns.begin(), columns.end());
}

std::string single_name(const CellMatrix& table, const std::string& too_many,
                        const std::string& not_text) {
    if (table.RowsInStructure() * table.ColumnsInStructure() != 1)
        throw too_many;
    if (!table(0, 0).IsString())
        throw not_text;
    return trim(table(0, 0).StringValue(), 0);
}

std::string number_text16(double value) {
    char buffer[40];
    std::snprintf(buffer, sizeof buffer, "%.16g", value);
    return buffer;
}

}  // namespace

char read_delimiter(const CellMatrix& delimiter) {
    const std::string message = "delimiter must be a char";
    std::string text = ",";
    if (is_omitted(delimiter))
        return ',';
    read_string(delimiter, message, text);
    if (text.empty())
        throw message;
    if (text == "\\t" || text == "\\T" || text == "\\tab" || text == "\\Tab" || text == "\\TAB")
        text = "t";
    if (text == "\\s" || text == "\\S" || text == "\\space" || text == "\\Space" ||
        text == "\\SPACE")
        text = "s";
    if (text[0] == 's')
        return ' ';
    if (text[0] == 't')
        return '\t';
    return text[0];
}

bool parse_number(std::string_view field, double& value) {
    const char* const end = field.data() + field.size();
    const char* p = field.data();
    while (p < end && is_space(*p))
        ++p;
    const char* const start = p;
    const bool negative = p < end && *p == '-';
    if (p < end && (*p == '+' || *p == '-'))
        ++p;

    // Scan the decimal grammar, gathering the digits on the way; up to 19
    // significant ones fit the mantissa exactly.
    std::uint64_t mantissa = 0;
    int significant = 0, fraction_digits = 0;
    const char* const digits_start = p;
    while (p < end && is_digit(*p)) {
        mantissa = mantissa * 10 + static_cast<std::uint64_t>(*p++ - '0');
        significant += mantissa != 0;
    }
    std::size_t digits = static_cast<std::size_t>(p - digits_start);
    if (p < end && *p == '.') {
        const char* const fraction_start = ++p;
        while (p < end && is_digit(*p)) {
            mantissa = mantissa * 10 + static_cast<std::uint64_t>(*p++ - '0');
            significant += mantissa != 0;
        }
        fraction_digits = static_cast<int>(p - fraction_start);
        digits += static_cast<std::size_t>(fraction_digits);
    }
    if (digits == 0)
        return false;
    const bool exact = significant <= 19;
    long exponent = 0;
    if (p < end && (*p == 'e' || *p == 'E')) {
        ++p;
        const bool negative_exponent = p < end && *p == '-';
        if (p < end && (*p == '+' || *p == '-'))
            ++p;
        std::size_t exponent_digits = 0;
        while (p < end && is_digit(*p)) {
            if (exponent < 100000)
                exponent = exponent * 10 + (*p - '0');
            ++p, ++exponent_digits;
        }
        if (exponent_digits == 0)
            return false;
        if (negative_exponent)
            exponent = -exponent;
    }
    if (p != end)
        return false;

    // Both the digits and the power of ten are exact doubles, so one division
    // or product rounds correctly: the value atof gives.
    static const double kPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                     1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                     1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
    const long power = exponent - fraction_digits;
    if (exact && mantissa <= (std::uint64_t{1} << 53) && power >= -22 && power <= 22) {
        const double m = static_cast<double>(mantissa);
        value = power >= 0 ? m * kPowers[power] : m / kPowers[-power];
        if (negative)
            value = -value;
        return true;
    }

    const char* first = *start == '+' ? start + 1 : start;
    const auto result = std::from_chars(first, end, value);
    if (result.ec == std::errc() && result.ptr == end)
        return true;
    // Out of range: an overflow is no number to a stream; an underflow is,
    // with the tiny value atof gives.
    value = std::strtod(std::string(start, end).c_str(), nullptr);
    return !std::isinf(value);
}

bool is_number(std::string_view field) {
    double value;
    return parse_number(field, value);
}

std::string decimal_comma_as_point(std::string_view field) {
    const std::size_t comma = field.find(',');
    if (comma == std::string_view::npos || field.find(',', comma + 1) != std::string_view::npos ||
        field.find('.') != std::string_view::npos)
        return "";
    std::string with_point(field);
    with_point[comma] = '.';
    return with_point;
}

bool parse_file_number(std::string_view field, char delimiter, double& value) {
    if (parse_number(field, value))
        return true;
    if (delimiter != ';')
        return false;
    const std::string with_point = decimal_comma_as_point(field);
    return !with_point.empty() && parse_number(with_point, value);
}

std::string unnamed_column(std::size_t column) {
    return "X" + std::to_string(column + 1);
}

void split_fields(std::string_view record, char delimiter, Fields& fields) {
    split_fields(record, delimiter, fields, kMaxFields);
}

std::vector<std::string> split_line(const std::string& line, char delimiter) {
    Fields views;
    split_fields(line, delimiter, views);
    return std::vector<std::string>(views.begin(), views.end());
}

LineReader::LineReader(const std::string& filename, long long begin, long long end)
    : filename_(filename),
      file_(std::fopen(filename.c_str(), "r")),
      offset_(begin),
      end_(end),
      at_file_start_(begin == 0) {
    if (!file_)
        throw "Error: cannot open file " + filename;
    if (begin > 0 && std::fseek(file_, static_cast<long>(begin), SEEK_SET) != 0) {
        std::fclose(file_);
        throw "Error: cannot open file " + filename;
    }
    // A file smaller than a block gets a block of its own size (never empty).
    struct stat info {};
    const bool regular = ::fstat(::fileno(file_), &info) == 0 && S_ISREG(info.st_mode);
    file_size_ = regular ? static_cast<long long>(info.st_size) : 0;
    const long long remaining = regular ? file_size_ - begin : static_cast<long long>(kBlockSize);
    block_size_ = static_cast<std::size_t>(
        std::clamp<long long>(remaining + 1, 1, static_cast<long long>(kBlockSize)));
    block_.reset(new char[block_size_]);
    line_.resize(kFirstBufferSize);
}

LineReader::~LineReader() {
    std::fclose(file_);
}

bool LineReader::fill_block() {
    block_begin_ = 0;
    block_end_ = std::fread(block_.get(), 1, block_size_, file_);
    progress::report(progress::Unit::bytes, static_cast<double>(block_end_),
                     static_cast<double>(file_size_));
    return block_end_ > 0;
}

// Appends the next line to the buffer from `at`; false at the end of the file.
bool LineReader::take_line(std::size_t at) {
    std::size_t length = at;
    for (;;) {
        if (block_begin_ == block_end_ && !fill_block())
            break;
        if (at_file_start_) {
            at_file_start_ = false;
            static const char kByteOrderMark[] = "\xEF\xBB\xBF";
            if (block_end_ >= 3 && std::memcmp(block_.get(), kByteOrderMark, 3) == 0) {
                block_begin_ = 3;
                offset_ += 3;
            }
        }
        const char* start = block_.get() + block_begin_;
        const std::size_t available = block_end_ - block_begin_;
        const void* newline = std::memchr(start, '\n', available);
        const std::size_t take =
            newline ? static_cast<std::size_t>(static_cast<const char*>(newline) - start) + 1
                    : available;
        while (length + take + 1 > line_.size())
            line_.resize(line_.size() * 2);
        std::memcpy(line_.data() + length, start, take);
        length += take;
        block_begin_ += take;
        if (newline)
            break;
    }
    if (length == at)
        return false;
    offset_ += static_cast<long long>(length - at);
    line_[length] = '\0';
    length_ = at + std::strlen(line_.data() + at);
    return true;
}

const char* LineReader::read_line() {
    if (end_ >= 0 && offset_ >= end_)
        return nullptr;
    return take_line(0) ? line_.data() : nullptr;
}

const char* LineReader::read_record(char delimiter) {
    if (!read_line())
        return nullptr;
    if (!std::memchr(line_.data(), '"', length_))
        return line_.data();
    while (ends_in_open_quote(std::string_view(line_.data(), length_), delimiter))
        if (!take_line(length_))
            throw "unterminated quoted field in " + filename_;
    return line_.data();
}

std::size_t record_end(std::string_view text, std::size_t start, char delimiter) {
    std::size_t end = start;
    bool quoted = false;
    for (;;) {
        const void* newline = std::memchr(text.data() + end, '\n', text.size() - end);
        const std::size_t line_end =
            newline ? static_cast<std::size_t>(static_cast<const char*>(newline) - text.data()) + 1
                    : text.size();
        quoted = quoted || std::memchr(text.data() + end, '"', line_end - end) != nullptr;
        end = line_end;
        if (!quoted || !ends_in_open_quote(text.substr(start, end - start), delimiter))
            return end;
        if (end == text.size())
            return std::string_view::npos;
    }
}

namespace {

long long file_size(const std::string& filename) {
    std::FILE* file = std::fopen(filename.c_str(), "r");
    if (!file)
        return -1;
    long long size = -1;
    if (std::fseek(file, 0, SEEK_END) == 0)
        size = std::ftell(file);
    std::fclose(file);
    return size;
}

// The offset of the first record after the head.
long long data_start(const std::string& filename, char delimiter) {
    LineReader reader(filename);
    reader.read_record(delimiter);
    return reader.offset();
}

// The offset of the first line that starts at or after `at`.
long long line_start_from(const std::string& filename, long long at) {
    LineReader reader(filename, at - 1);
    reader.read_line();  // the rest of the line that holds byte at - 1
    return reader.offset();
}

}  // namespace

svec read_file_variable_names(const CellMatrix& names, const std::string& missing_message) {
    if (is_omitted(names))
        throw missing_message;
    if (names.RowsInStructure() != 1 && names.ColumnsInStructure() != 1)
        throw "variable names must be in one row or one column";
    svec out;
    read_string_list(names, out);
    return out;
}

svec read_head(const std::string& filename, char delimiter) {
    return DataFile(filename, delimiter).head;
}

std::size_t find_variable(const svec& names, const std::string& wanted) {
    const auto it = std::find(names.begin(), names.end(), wanted);
    if (it == names.end())
        throw cannot_find(wanted, "data file");
    return static_cast<std::size_t>(it - names.begin());
}

std::size_t find_variable_in_data(const svec& names, const std::string& wanted) {
    const auto it = std::find(names.begin(), names.end(), wanted);
    if (it == names.end())
        throw cannot_find(wanted, "data set");
    return static_cast<std::size_t>(it - names.begin());
}

namespace {

constexpr long long kParallelBytes = 8 << 20;

// What reading one stretch of a data file came to: its line count, and the
// first short line, counted from the stretch's first line, or a failure.
struct Stretch {
    long long lines = 0;
    long long end_offset = 0;  // where the stretch's last record ended
    long long short_line = 0;
    std::size_t short_line_fields = 0;
    std::exception_ptr failure;
};

// Calls `use(fields)` for each record of the lines in [begin, end), split up
// to the field at `needed`. A short line stops the stretch.
template <class Use>
void read_stretch(const std::string& filename, long long begin, long long end, char delimiter,
                  std::size_t needed, Stretch& stretch, Use use) {
    try {
        LineReader reader(filename, begin, end);
        Fields fields;
        while (const char* line = reader.read_record(delimiter)) {
            ++stretch.lines;
            if (!split_record(std::string_view(line, reader.length()), delimiter, needed, fields)) {
                stretch.short_line = stretch.lines;
                stretch.short_line_fields = fields.size();
                return;
            }
            use(fields);
        }
        stretch.end_offset = reader.offset();
    } catch (...) {
        stretch.failure = std::current_exception();
    }
}

// Reads the records of a data file into parts, each a Stretch with what
// `use(fields, part)` gathers. A large file is read in two halves at once, one
// for each core; the parts come back in file order and a failure names its
// line as counted from the top of the file.
template <class Part, class Use>
std::vector<Part> read_records(const std::string& filename, char delimiter, std::size_t needed,
                               const Part& empty_part, Use use) {
    const long long data_begin = data_start(filename, delimiter);
    const long long size = file_size(filename);
    // Room for the records guessed from the first record's length, so that
    // the columns grow without copies; untouched room costs no memory.
    const long long first_record = line_start_from(filename, data_begin + 1) - data_begin;
    auto guess = [&](long long bytes) {
        return first_record > 0 ? static_cast<std::size_t>(bytes / first_record * 5 / 4 + 16) : 16;
    };
    auto read_part = [&](long long begin, long long end, Part& part) {
        read_stretch(filename, begin, end, delimiter, needed, part,
                     [&](const Fields& fields) { use(fields, part); });
    };
    // The first part gets room for all records: the others are appended to it.
    std::vector<Part> parts;
    if (size - data_begin < kParallelBytes) {
        parts.assign(1, empty_part);
        parts[0].expect(guess(size - data_begin));
        read_part(data_begin, -1, parts[0]);
    } else {
        const long long middle = line_start_from(filename, data_begin + (size - data_begin) / 2);
        parts.assign(2, empty_part);
        parts[0].expect(guess(size - data_begin));
        parts[1].expect(guess(size - middle));
        std::thread second([&] { read_part(middle, -1, parts[1]); });
        read_part(data_begin, middle, parts[0]);
        second.join();
        // A quoted field with line breaks can straddle the middle: the first
        // half then reads past it, and the second half, begun inside the
        // field, is read again from where the first ended.
        const Part& first = parts[0];
        if (!first.failure && first.short_line == 0 && first.end_offset != middle) {
            parts[1] = empty_part;
            parts[1].expect(guess(size - first.end_offset));
            read_part(first.end_offset, -1, parts[1]);
        }
    }
    long long lines_before = 0;
    for (Part& part : parts) {
        if (part.failure)
            std::rethrow_exception(part.failure);
        if (part.short_line > 0)
            throw short_line_text(lines_before + part.short_line, part.short_line_fields, filename);
        lines_before += part.lines;
    }
    return parts;
}

template <class T>
void append_moved(std::vector<T>& to, std::vector<T>& from) {
    to.reserve(to.size() + from.size());
    std::move(from.begin(), from.end(), std::back_inserter(to));
}

struct XywPart : Stretch {
    dmat x;
    dvec y, weight;

    void expect(std::size_t records) {
        x.reserve(records);
        y.reserve(records);
        weight.reserve(records);
    }
};

}  // namespace

XYW read_xyw_from_file(const std::string& filename, const CellMatrix& x_names,
                       const CellMatrix& y_name, const CellMatrix& weight_name, char delimiter) {
    XYW out;
    if (is_omitted(x_names))
        throw std::string("Error: independent variable names (x_names) are missing");
    read_string_list(x_names, out.x_names);
    if (is_omitted(y_name))
        throw std::string("Error: dependent variable name (y_name) is missing");
    out.y_name = single_name(y_name, "Error: only one dependent variable name (y_name) is allowed",
                             "Error: dependent variable name (y_name) is not a string");
    out.has_weight = !is_omitted(weight_name);
    out.weight_name =
        out.has_weight
            ? single_name(weight_name, "Error: only one weight variable name (w_name) is allowed",
                          "Error: weight variable name (w_name) is not a string")
            : "weight";

    const svec head = read_head(filename, delimiter);
    std::vector<std::size_t> x_columns;
    for (const std::string& name : out.x_names)
        x_columns.push_back(find_variable(head, name));
    const std::size_t y_column = find_variable(head, out.y_name);
    const bool has_weight = out.has_weight;
    const std::size_t w_column = has_weight ? find_variable(head, out.weight_name) : 0;
    const std::size_t needed = std::max({largest(x_columns), y_column, w_column});

    const std::size_t p = x_columns.size();
    std::vector<XywPart> parts = read_records<XywPart>(
        filename, delimiter, needed, XywPart{}, [&](const Fields& fields, XywPart& part) {
            dvec row(p);
            for (std::size_t j = 0; j < p; ++j)
                if (!parse_file_number(fields[x_columns[j]], delimiter, row[j]))
                    return;
            double y = 0.0, w = 1.0;
            if (!parse_file_number(fields[y_column], delimiter, y))
                return;
            if (has_weight && !parse_file_number(fields[w_column], delimiter, w))
                return;
            part.x.push_back(std::move(row));
            part.y.push_back(y);
            part.weight.push_back(w);
        });
    out.x = std::move(parts[0].x);
    out.y = std::move(parts[0].y);
    out.weight = std::move(parts[0].weight);
    for (std::size_t i = 1; i < parts.size(); ++i) {
        append_moved(out.x, parts[i].x);
        append_moved(out.y, parts[i].y);
        append_moved(out.weight, parts[i].weight);
    }
    return out;
}

NumericColumns read_numeric_columns(const std::string& filename, const svec& names,
                                    char delimiter) {
    const svec head = read_head(filename, delimiter);
    std::vector<std::size_t> columns;
    for (const std::string& name : names)
        columns.push_back(find_variable(head, name));

    struct Part : Stretch {
        std::vector<dvec> values;

        void expect(std::size_t records) {
            for (dvec& v : values)
                v.reserve(records);
        }
    };
    Part empty_part;
    empty_part.values.resize(columns.size());
    std::vector<Part> parts = read_records(
        filename, delimiter, largest(columns), empty_part, [&](const Fields& fields, Part& part) {
            double value;
            for (std::size_t j = 0; j < columns.size(); ++j)
                if (parse_file_number(fields[columns[j]], delimiter, value))
                    part.values[j].push_back(value);
        });
    NumericColumns out;
    out.values = std::move(parts[0].values);
    out.records = parts[0].lines;
    for (std::size_t i = 1; i < parts.size(); ++i) {
        out.records += parts[i].lines;
        for (std::size_t j = 0; j < columns.size(); ++j)
            append_moved(out.values[j], parts[i].values[j]);
    }
    return out;
}

NamedTable read_numeric_table(const std::string& filename, const svec& names, char delimiter,
                              long long record_limit) {
    const svec head = read_head(filename, delimiter);
    std::vector<std::size_t> columns;
    for (const std::string& name : names)
        columns.push_back(find_variable(head, name));
    // A field that is not a number keeps atof's value and spoils its record.
    auto read_row = [&](const Fields& fields, dmat& data, bvec& valid) {
        dvec row(columns.size());
        bool complete = true;
        for (std::size_t j = 0; j < columns.size(); ++j) {
            const std::string_view field = fields[columns[j]];
            if (!parse_file_number(field, delimiter, row[j])) {
                row[j] = atof_of(field);
                complete = false;
            }
        }
        data.push_back(std::move(row));
        valid.push_back(complete);
    };

    NamedTable out;
    out.names = names;
    if (record_limit > 0) {
        DataFile file(filename, delimiter);
        for (long long line = 1;
             line <= record_limit && file.next(delimiter, largest(columns), line); ++line)
            read_row(file.fields, out.data, out.valid);
        return out;
    }
    struct Part : Stretch {
        dmat data;
        bvec valid;

        void expect(std::size_t records) {
            data.reserve(records);
            valid.reserve(records);
        }
    };
    std::vector<Part> parts = read_records(
        filename, delimiter, largest(columns), Part{},
        [&](const Fields& fields, Part& part) { read_row(fields, part.data, part.valid); });
    out.data = std::move(parts[0].data);
    out.valid = std::move(parts[0].valid);
    for (std::size_t i = 1; i < parts.size(); ++i) {
        append_moved(out.data, parts[i].data);
        out.valid.insert(out.valid.end(), parts[i].valid.begin(), parts[i].valid.end());
    }
    return out;
}

std::vector<svec> read_text_columns(const std::string& filename, const svec& names,
                                    char delimiter) {
    DataFile file(filename, delimiter);
    const std::vector<std::size_t> columns = file.columns_of(names);
    std::vector<svec> out(names.size());
    for (long long line = 1; file.next(delimiter, largest(columns), line); ++line)
        for (std::size_t j = 0; j < columns.size(); ++j)
            out[j].push_back(trimmed(file.fields[columns[j]]));
    return out;
}

std::vector<svec> read_field_table(const std::string& filename, const svec& names, char delimiter,
                                   long long record_limit) {
    DataFile file(filename, delimiter);
    const std::vector<std::size_t> columns = file.columns_of(names);
    std::vector<svec> out;
    for (long long line = 1; (record_limit <= 0 || line <= record_limit) &&
                             file.next(delimiter, largest(columns), line);
         ++line) {
        svec row;
        row.reserve(columns.size());
        for (std::size_t column : columns)
            row.push_back(trimmed(file.fields[column]));
        out.push_back(std::move(row));
    }
    return out;
}

namespace {

// Removes the last column of a table read from a file: the empty-named one
// that a delimiter at the end of every line makes.
void drop_last_column(MixedTable& table) {
    table.names.pop_back();
    if (table.column_types.empty())  // no records, so no types
        return;
    const char type = table.column_types.back();
    const auto at = static_cast<std::size_t>(table.column_index.back());
    table.column_types.pop_back();
    table.column_index.pop_back();
    for (std::size_t i = 0; i < table.numeric_rows.size(); ++i) {
        if (type == 'N')
            table.numeric_rows[i].erase(table.numeric_rows[i].begin() +
                                        static_cast<std::ptrdiff_t>(at));
        else
            table.text_rows[i].erase(table.text_rows[i].begin() + static_cast<std::ptrdiff_t>(at));
    }
}

}  // namespace

MixedTable read_whole_table(const std::string& filename, char delimiter) {
    DataFile file(filename, delimiter);
    MixedTable out;
    out.names = file.head;
    const std::size_t width = file.head.size();
    int numeric = 0, categorical = 0;
    long long line_number = 0;
    bool last_holds_nothing = file.last_unnamed;
    while (const char* line = file.reader.read_record(delimiter)) {
        ++line_number;
        split_fields(std::string_view(line, file.reader.length()), delimiter, file.fields);
        // A trailing delimiter on a line under a head without one.
        if (file.fields.size() == width + 1 && trimmed(file.fields.back()).empty())
            file.fields.pop_back();
        if (last_holds_nothing && width > 0 && file.fields.size() == width)
            last_holds_nothing = trimmed(file.fields.back()).empty();
        if (file.fields.size() != width)
            throw "Error: data line " + std::to_string(line_number) + " (" +
                std::to_string(file.fields.size()) + " fields) must have the same size as head (" +
                std::to_string(width) + " fields)";
        if (line_number == 1) {
            for (std::string_view field : file.fields) {
                double value;
                const bool number = parse_file_number(field, delimiter, value);
                out.column_types.push_back(number ? 'N' : 'C');
                out.column_index.push_back(number ? numeric++ : categorical++);
            }
        }
        dvec numbers(static_cast<std::size_t>(numeric));
        svec texts(static_cast<std::size_t>(categorical));
        for (std::size_t j = 0; j < width; ++j) {
            const std::string_view field = file.fields[j];
            const auto at = static_cast<std::size_t>(out.column_index[j]);
            if (out.column_types[j] == 'N') {
                if (!parse_file_number(field, delimiter, numbers[at]))
                    numbers[at] = atof_of(field);
            } else {
                texts[at] = trimmed(field);
            }
        }
        out.numeric_rows.push_back(std::move(numbers));
        out.text_rows.push_back(std::move(texts));
    }
    out.row_count = static_cast<int>(line_number);
    if (last_holds_nothing && width > 0)
        drop_last_column(out);
    return out;
}

ClassAndNumbers read_two_name_lists(const std::string& filename, const svec& class_names,
                                    const svec& x_names, char delimiter) {
    std::vector<std::size_t> class_columns, x_columns;
    {
        const DataFile file(filename, delimiter);
        class_columns = file.columns_of(class_names);
        x_columns = file.columns_of(x_names);
    }
    const std::size_t needed = std::max(largest(class_columns), largest(x_columns));
    struct Part : Stretch {
        ClassAndNumbers records;

        void expect(std::size_t count) {
            for (svec& column : records.classes)
                column.reserve(count);
            records.x.reserve(count);
            records.valid.reserve(count);
        }
    };
    Part empty_part;
    empty_part.records.classes.resize(class_columns.size());
    std::vector<Part> parts = read_records(
        filename, delimiter, needed, empty_part, [&](const Fields& fields, Part& part) {
            for (std::size_t c = 0; c < class_columns.size(); ++c)
                part.records.classes[c].push_back(trimmed(fields[class_columns[c]]));
            dvec x(x_columns.size());
            bool complete = true;
            for (std::size_t j = 0; j < x_columns.size(); ++j) {
                const std::string_view field = fields[x_columns[j]];
                if (!parse_file_number(field, delimiter, x[j])) {
                    x[j] = atof_of(field);
                    complete = false;
                }
            }
            part.records.x.push_back(std::move(x));
            part.records.valid.push_back(complete);
        });
    ClassAndNumbers out = std::move(parts[0].records);
    for (std::size_t i = 1; i < parts.size(); ++i) {
        for (std::size_t c = 0; c < class_columns.size(); ++c)
            append_moved(out.classes[c], parts[i].records.classes[c]);
        append_moved(out.x, parts[i].records.x);
        out.valid.insert(out.valid.end(), parts[i].records.valid.begin(),
                         parts[i].records.valid.end());
    }
    return out;
}

namespace {

// Copies a file line by line, each line followed by the delimiter and the
// text that `tail(i)` gives for line i (the head line being -1).
template <class Tail>
void copy_with_new_columns(const std::string& infile, const std::string& outfile,
                           const std::string& open_in_failure, const std::string& open_out_failure,
                           const std::string& failure, char delimiter, Tail tail) {
    std::unique_ptr<LineReader> reader;
    try {
        reader = std::make_unique<LineReader>(infile);
    } catch (const std::string&) {
        throw open_in_failure;
    }
    std::FILE* out = std::fopen(outfile.c_str(), "w");
    if (!out)
        throw open_out_failure;
    long long i = -1;
    while (const char* line = reader->read_record(delimiter)) {
        const std::string_view text = without_newlines(std::string_view(line, reader->length()));
        std::fwrite(text.data(), 1, text.size(), out);
        std::fputc(delimiter, out);
        const std::string added = tail(i++);
        std::fwrite(added.data(), 1, added.size(), out);
        std::fputc('\n', out);
    }
    const bool failed = std::ferror(out) != 0;
    if (std::fclose(out) != 0 || failed)
        throw failure;
}

}  // namespace

void append_vector(const std::string& infile, const std::string& outfile, const dvec& values,
                   const std::string& new_name, char delimiter) {
    copy_with_new_columns(infile, outfile, "Error: cannot open input file " + infile,
                          "Error: cannot open output file " + outfile,
                          "append_vector to file " + outfile + " failed!", delimiter,
                          [&](long long i) -> std::string {
                              if (i < 0)
                                  return new_name;
                              const auto at = static_cast<std::size_t>(i);
                              return at < values.size() ? number_text16(values[at]) : "";
                          });
}

void append_scores(const std::string& infile, const std::string& outfile, const dvec& scores,
                   const bvec& valid, const std::string& score_name, char delimiter) {
    const std::string failure = "append_vector to file " + outfile + " failed!";
    std::size_t written = 0;
    copy_with_new_columns(infile, outfile, "Error: cannot open input file " + infile,
                          "Error: cannot open output file " + outfile, failure, delimiter,
                          [&](long long i) -> std::string {
                              if (i < 0)
                                  return score_name;
                              const auto at = static_cast<std::size_t>(i);
                              ++written;
                              if (at >= scores.size() || !valid[at])
                                  return ".";
                              return number_text16(scores[at]);
                          });
    if (written != scores.size())
        throw failure;
}

void append_matrix(const std::string& infile, const std::string& outfile, const dmat& values,
                   const svec& new_names, char delimiter) {
    const std::string joiner(1, delimiter);
    copy_with_new_columns(infile, outfile, "Error: cannot open file " + infile,
                          "Error: cannot open file " + outfile,
                          "append_matrix to file " + outfile + " failed!", delimiter,
                          [&](long long i) -> std::string {
                              std::string text;
                              for (std::size_t j = 0; j < new_names.size(); ++j) {
                                  if (j)
                                      text += joiner;
                                  if (i < 0) {
                                      text += new_names[j];
                                  } else {
                                      const auto at = static_cast<std::size_t>(i);
                                      if (at < values.size() && j < values[at].size())
                                          text += number_text16(values[at][j]);
                                  }
                              }
                              return text;
                          });
}

void write_table(const std::string& filename, const CellMatrix& table, char delimiter) {
    std::ofstream out(filename);
    if (!out)
        throw "Error: open file " + filename + " failed!";
    out.precision(16);
    const std::size_t rows = table.RowsInStructure(), columns = table.ColumnsInStructure();
    for (std::size_t i = 0; i < rows; ++i) {
        for (std::size_t j = 0; j < columns; ++j) {
            if (j)
                out << delimiter;
            const CellValue& cell = table(i, j);
            if (cell.IsANumber())
                out << cell.NumericValue();
            else
                out << cell_to_text(cell);
        }
        out << '\n';
    }
}

}  // namespace zentable
