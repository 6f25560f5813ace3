// Arbitrary bytes as a delimited file, through every layer that reads one:
// the delimiter argument, the line reader (whole and by byte ranges), the
// field splitter, the number rule and each reader of the file layer. Then a
// table made from the same bytes goes through the writer and back.

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "data/delimited_file.hpp"
#include "fuzz_support.hpp"
#include "support/stream_rule.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable::fuzz {
namespace {

void write_file(const std::string& path, const std::string& content) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << content;
}

// The lines of [begin, end), checked against the bytes they came from.
std::vector<std::string> read_lines(const std::string& path, const std::string& content,
                                    long long begin, long long end) {
    std::vector<std::string> lines;
    LineReader reader(path, begin, end);
    long long offset = begin;
    // A byte-order mark at the start of the file is no part of its first line.
    if (begin == 0 && content.compare(0, 3, "\xEF\xBB\xBF") == 0)
        offset = 3;
    while (const char* line = reader.read_line()) {
        const std::string text(line, reader.length());
        // A line is the file's bytes up to and with its newline, or to its
        // first NUL, which ends the text as it does for the C library.
        const std::size_t full_end = content.find('\n', static_cast<std::size_t>(offset));
        const std::size_t full_length =
            (full_end == std::string::npos ? content.size() : full_end + 1) - offset;
        const std::string full = content.substr(static_cast<std::size_t>(offset), full_length);
        require(text == full.substr(0, full.find('\0')), "a line is its bytes up to a NUL");
        offset += static_cast<long long>(full_length);
        require(reader.offset() == offset, "the next line starts after the last one's newline");
        lines.push_back(text);
    }
    require(offset >= (end < 0 ? static_cast<long long>(content.size()) : end) ||
                offset == static_cast<long long>(content.size()),
            "the reader stops at the end of its range or of the file");
    return lines;
}

void check_fields(const std::string& line, char delimiter) {
    const std::vector<std::string> fields = split_line(line, delimiter);
    require(fields.size() <= 100000, "at most 100000 fields");
    std::string bare = line;
    while (!bare.empty() && (bare.back() == '\n' || bare.back() == '\r'))
        bare.pop_back();
    // Without quotes the fields are the line cut at its delimiters; quotes
    // only ever join what delimiters would have cut.
    if (delimiter != ' ' && fields.size() < 100000) {
        if (bare.find('"') == std::string::npos) {
            std::string joined;
            for (std::size_t i = 0; i < fields.size(); ++i)
                joined += (i ? std::string(1, delimiter) : std::string()) + fields[i];
            require(joined == bare, "the fields and their delimiters give the line back");
        } else {
            const auto cuts =
                static_cast<std::size_t>(std::count(bare.begin(), bare.end(), delimiter));
            require(fields.size() <= cuts + 1, "quotes never add a field");
        }
    }
    for (const std::string& field : fields) {
        double value = 0;
        const bool number = parse_number(field, value);
        require(number == is_number(field), "parse_number and is_number agree");
        require(number == stream_rule(field), "a number is what a stream reads in full");
        if (number) {
            const double reference = std::atof(field.c_str());
            require(value == reference || (std::isnan(value) && std::isnan(reference)),
                    "a number's value is the C library's");
        }
    }
}

// Every reader either reads or says in words why not.
void check_readers(const std::string& path, char delimiter) {
    svec head;
    require_text_failure(guarded([&] {
                             head = read_head(path, delimiter);
                             return CellMatrix(1, 1);
                         }),
                         "read_head fails in words");
    if (head.empty())
        return;
    const svec names(head.begin(), head.begin() + std::min<std::size_t>(head.size(), 3));
    auto reads = [&](const char* what, auto body) {
        require_text_failure(guarded([&] {
                                 body();
                                 return CellMatrix(1, 1);
                             }),
                             what);
    };
    reads("read_numeric_columns", [&] {
        const NumericColumns c = read_numeric_columns(path, names, delimiter);
        require(c.values.size() == names.size(), "one column per name");
        for (const dvec& v : c.values)
            require(static_cast<long long>(v.size()) <= c.records, "no more numbers than records");
    });
    reads("read_numeric_table", [&] {
        const NamedTable t = read_numeric_table(path, names, delimiter);
        require(t.data.size() == t.valid.size(), "one mask entry per record");
        for (const dvec& row : t.data)
            require(row.size() == names.size(), "a record has a value per name");
    });
    reads("read_text_columns", [&] { read_text_columns(path, names, delimiter); });
    reads("read_whole_table", [&] {
        const MixedTable t = read_whole_table(path, delimiter);
        // The first record decides the types: without records there are none.
        require(t.column_types.size() == (t.row_count ? t.names.size() : 0) ||
                    t.column_types.size() == t.names.size(),
                "a type per variable");
    });
    reads("read_field_table", [&] {
        for (const svec& row : read_field_table(path, names, delimiter))
            require(row.size() == names.size(), "a field per name");
    });
    reads("read_two_name_lists", [&] {
        const svec first(names.begin(), names.begin() + 1);
        const ClassAndNumbers c = read_two_name_lists(path, first, names, delimiter);
        require(c.classes.size() == 1 && c.classes[0].size() == c.x.size() &&
                    c.x.size() == c.valid.size(),
                "classes, numbers and mask per record");
    });
}

// A finite number, a text that cannot read as a number, or nothing.
CellMatrix table_from(Bytes& bytes) {
    const std::size_t rows = 1 + bytes.byte() % 5, columns = 1 + bytes.byte() % 5;
    CellMatrix table(rows, columns);
    for (std::size_t i = 0; i < rows; ++i) {
        for (std::size_t j = 0; j < columns; ++j) {
            const std::uint8_t kind = bytes.byte() % 3;
            if (kind == 0) {
                const double d = bytes.number();
                table(i, j) = std::isfinite(d) ? d : 0.5;
            } else if (kind == 1) {
                std::string s = "x";
                for (char c : bytes.text(8))
                    if (std::isalnum(static_cast<unsigned char>(c)))
                        s += c;
                table(i, j) = s;
            }
        }
    }
    return table;
}

// Numbers go out at 16 significant digits and come back as the C library
// reads those digits; texts and empty cells come back as they went.
void check_round_trip(const std::string& path, Bytes& bytes) {
    const CellMatrix table = table_from(bytes);
    write_table(path, table, ',');
    std::ifstream in(path, std::ios::binary);
    const std::string written((std::istreambuf_iterator<char>(in)),
                              std::istreambuf_iterator<char>());
    const std::vector<std::string> lines = read_lines(path, written, 0, -1);
    require(lines.size() == table.RowsInStructure(), "a line per row");
    for (std::size_t i = 0; i < lines.size(); ++i) {
        std::vector<std::string> fields = split_line(lines[i], ',');
        require(fields.size() == table.ColumnsInStructure(), "a field per cell, empty ones too");
        for (std::size_t j = 0; j < fields.size(); ++j) {
            const CellValue& cell = table(i, j);
            if (cell.IsANumber()) {
                char digits[64];
                std::snprintf(digits, sizeof digits, "%.16g", cell.NumericValue());
                // Near the largest double, 16 digits can round past it: a
                // stream reading such a text fails, so it is no number.
                const double expected = std::strtod(digits, nullptr);
                const bool in_range = std::isfinite(expected);
                double value = 0;
                require(parse_number(fields[j], value) == in_range,
                        "a written number reads as a number when its digits are in range");
                require(!in_range || value == expected, "a number keeps 16 digits");
            } else if (cell.IsString()) {
                require(fields[j] == cell.StringValue(), "a text comes back as written");
            } else {
                require(fields[j].empty(), "an empty cell comes back empty");
            }
        }
    }
}

}  // namespace
}  // namespace zentable::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace zentable;
    using namespace zentable::fuzz;
    Bytes bytes(data, size);
    const std::string delimiter_text = bytes.text(3);
    char delimiter = ',';
    require_text_failure(guarded([&] {
                             delimiter = read_delimiter(CellMatrix(delimiter_text));
                             return CellMatrix(1, 1);
                         }),
                         "read_delimiter fails in words");
    const std::string split_at_text = bytes.text(2);
    Bytes table_bytes(data, size);
    const std::string content = bytes.rest();
    const std::string path = (own_folder("data_file") / "input.csv").string();
    write_file(path, content);

    const std::vector<std::string> lines = read_lines(path, content, 0, -1);
    for (const std::string& line : lines)
        check_fields(line, delimiter);

    // Two readers over two byte ranges split at a line's start give the same lines.
    if (!lines.empty()) {
        const std::size_t k = split_at_text.empty() ? 0 : split_at_text[0] % (lines.size() + 1);
        long long split = 0;
        for (std::size_t i = 0; i < k; ++i) {
            const std::size_t newline = content.find('\n', static_cast<std::size_t>(split));
            split = newline == std::string::npos ? static_cast<long long>(content.size())
                                                 : static_cast<long long>(newline + 1);
        }
        std::vector<std::string> halves = read_lines(path, content, 0, split);
        const std::vector<std::string> second = read_lines(path, content, split, -1);
        halves.insert(halves.end(), second.begin(), second.end());
        require(halves == lines, "two ranges read the lines of one");
    }

    check_readers(path, delimiter);
    check_round_trip((own_folder("data_file") / "written.csv").string(), table_bytes);
    return 0;
}
