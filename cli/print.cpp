#include "print.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace zentable::cli {

namespace {

std::string error_text(unsigned long code) {
    switch (code) {
        case 0:
            return "#NULL!";
        case 7:
            return "#DIV/0!";
        case 15:
            return "#VALUE!";
        case 23:
            return "#REF!";
        case 29:
            return "#NAME?";
        case 36:
            return "#NUM!";
        case 42:
            return "#N/A";
        default:
            return "#ERROR" + std::to_string(code) + "!";
    }
}

// An integer small enough that every digit is exact shows every digit: ten
// digits of 123456789012 would name a different integer.
bool is_plain_integer(double value) {
    return std::fabs(value) < 1e15 && value == std::trunc(value);
}

std::string rounded_text(double value, int digits) {
    if (is_plain_integer(value)) {
        char buffer[32];
        std::snprintf(buffer, sizeof buffer, "%.0f", value == 0 ? 0.0 : value);
        return buffer;
    }
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.*g", digits, value);
    return buffer;
}

std::string number_text(double value, int digits = kShortest) {
    if (std::isnan(value))
        return "nan";
    if (std::isinf(value))
        return value > 0 ? "inf" : "-inf";
    if (digits != kShortest)
        return rounded_text(value, digits);
    // As few significant digits as read back to the same double, laid out as
    // %g lays them out; whole numbers below 1e16 stay plain. The layout is made
    // from the shortest digits directly: printf's own conversion costs more
    // than everything else when a table has millions of numbers.
    char shortest[64];
    const char* const end =
        std::to_chars(shortest, shortest + sizeof shortest, value, std::chars_format::scientific)
            .ptr;
    const char* c = shortest;
    std::string text;
    if (*c == '-')
        text += *c++;
    std::string mantissa;
    for (; c < end && *c != 'e'; ++c)
        if (*c != '.')
            mantissa += *c;
    const int exponent = std::atoi(std::string(c + 1, end).c_str());
    int precision = static_cast<int>(mantissa.size());
    if (exponent >= 0 && exponent < 16)
        precision = std::max(precision, exponent + 1);
    if (exponent < -4 || exponent >= precision) {
        text += mantissa[0];
        if (mantissa.size() > 1)
            text += '.' + mantissa.substr(1);
        char power[16];
        std::snprintf(power, sizeof power, "e%c%02d", exponent < 0 ? '-' : '+', std::abs(exponent));
        return text + power;
    }
    if (exponent < 0)
        return text + "0." + std::string(static_cast<std::size_t>(-exponent - 1), '0') + mantissa;
    const std::size_t whole = static_cast<std::size_t>(exponent) + 1;
    if (mantissa.size() <= whole)
        return text + mantissa + std::string(whole - mantissa.size(), '0');
    return text + mantissa.substr(0, whole) + '.' + mantissa.substr(whole);
}

std::string quoted(const std::string& text, char quote_char) {
    std::string out(1, quote_char);
    for (char c : text) {
        if (c == quote_char)
            out += quote_char;
        out += c;
    }
    out += quote_char;
    return out;
}

std::string csv_field(const CellValue& cell, char delimiter, int digits) {
    std::string text = cell_text(cell, digits);
    if (!cell.IsString())
        return text;
    const bool needs_quotes = text.find(delimiter) != std::string::npos ||
                              text.find('"') != std::string::npos ||
                              text.find('\n') != std::string::npos ||
                              (!text.empty() && (text.front() == ' ' || text.back() == ' '));
    return needs_quotes ? quoted(text, '"') : text;
}

std::string json_string(const std::string& text) {
    std::string out = "\"";
    for (unsigned char c : text) {
        switch (c) {
            case '"':
                out += "\\\"";
                break;
            case '\\':
                out += "\\\\";
                break;
            case '\n':
                out += "\\n";
                break;
            case '\r':
                out += "\\r";
                break;
            case '\t':
                out += "\\t";
                break;
            default:
                if (c < 0x20) {
                    char buffer[8];
                    std::snprintf(buffer, sizeof buffer, "\\u%04x", c);
                    out += buffer;
                } else {
                    out += static_cast<char>(c);
                }
        }
    }
    return out + "\"";
}

std::string json_value(const CellValue& cell, int digits) {
    if (cell.IsEmpty())
        return "null";
    if (cell.IsBoolean())
        return cell.BooleanValue() ? "true" : "false";
    if (cell.IsANumber() && std::isfinite(cell.NumericValue()))
        return number_text(cell.NumericValue(), digits);
    return json_string(cell_text(cell));
}

void print_aligned(std::ostream& out, const CellMatrix& table, int digits) {
    const std::size_t rows = table.RowsInStructure(), columns = table.ColumnsInStructure();
    std::vector<std::vector<std::string>> texts(rows, std::vector<std::string>(columns));
    std::vector<std::size_t> width(columns, 0);
    for (std::size_t i = 0; i < rows; ++i)
        for (std::size_t j = 0; j < columns; ++j) {
            texts[i][j] = cell_text(table(i, j), digits);
            width[j] = std::max(width[j], texts[i][j].size());
        }
    for (std::size_t i = 0; i < rows; ++i) {
        std::string line;
        for (std::size_t j = 0; j < columns; ++j) {
            const std::string& t = texts[i][j];
            const std::string pad(width[j] - t.size(), ' ');
            // Numbers line up on the right, as a sheet shows them.
            line += table(i, j).IsANumber() ? pad + t : t + pad;
            if (j + 1 < columns)
                line += "  ";
        }
        while (!line.empty() && line.back() == ' ')
            line.pop_back();
        out << line << '\n';
    }
}

}  // namespace

std::string cell_text(const CellValue& cell, int digits) {
    if (cell.IsString())
        return cell.StringValue();
    if (cell.IsANumber())
        return number_text(cell.NumericValue(), digits);
    if (cell.IsBoolean())
        return cell.BooleanValue() ? "TRUE" : "FALSE";
    if (cell.IsError())
        return error_text(cell.ErrorValue());
    return std::string();
}

void print_table(std::ostream& out, const CellMatrix& table, Format format, int digits) {
    const std::size_t rows = table.RowsInStructure(), columns = table.ColumnsInStructure();
    switch (format) {
        case Format::table:
            print_aligned(out, table, digits == kShortest ? kTableDigits : digits);
            return;
        case Format::csv:
        case Format::tsv: {
            const char delimiter = format == Format::csv ? ',' : '\t';
            for (std::size_t i = 0; i < rows; ++i) {
                for (std::size_t j = 0; j < columns; ++j) {
                    if (j)
                        out << delimiter;
                    out << csv_field(table(i, j), delimiter, digits);
                }
                out << '\n';
            }
            return;
        }
        case Format::json: {
            out << '[';
            for (std::size_t i = 0; i < rows; ++i) {
                out << (i ? ",[" : "[");
                for (std::size_t j = 0; j < columns; ++j)
                    out << (j ? "," : "") << json_value(table(i, j), digits);
                out << ']';
            }
            out << "]\n";
            return;
        }
    }
}

}  // namespace zentable::cli
