#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

// The delimiter argument: "," by default; "\t", "\tab" (any case) or "t" a
// tab; "\s", "\space" or "s" a blank; otherwise the first character.
char read_delimiter(const CellMatrix& delimiter);

// A field is a number when a standard input stream reads a double from all of
// it: blanks before are allowed, anything after is not.
bool is_number(std::string_view field);
// is_number, and when it holds, the field's value (the C library's atof).
bool parse_number(std::string_view field, double& value);
// parse_number for a field of a data file: with the delimiter ";" a number
// may also be written with a decimal comma (3,14), as spreadsheets and R's
// write.csv2 write them in many countries.
bool parse_file_number(std::string_view field, char delimiter, double& value);

// A number written with a decimal comma (3,14) as text with a point, or ""
// when the field is not written so: one comma, no point.
std::string decimal_comma_as_point(std::string_view field);

// The name given to a column whose head field is empty (R's write.csv puts
// the row names under one): "X" and the column's number from 1.
std::string unnamed_column(std::size_t column);

// The fields of a record. Quotes as R, pandas and spreadsheets write them: a
// field that starts with a double quote (after blanks) runs to the closing
// one and may hold the delimiter, line breaks and doubled quotes, which stand
// for one; the quotes are not part of the value. Line ends (LF or CRLF) are
// removed. A trailing delimiter gives a last, empty field; with the blank as
// delimiter, runs of blanks count as one. At most 100000 fields. Unquoted
// fields are views into the record; quoted ones into `unquoted`.
struct Fields : std::vector<std::string_view> {
    std::string unquoted;
};
void split_fields(std::string_view record, char delimiter, Fields& fields);
std::vector<std::string> split_line(const std::string& line, char delimiter);

// The end of the record that starts at `start` of a text held whole: past
// its newline, and past those of a quoted field that spans lines, as
// LineReader::read_record reads it; npos when the text ends inside a quote.
std::size_t record_end(std::string_view text, std::size_t start, char delimiter);

// Reads a file line by line with no limit on a line's length, optionally
// only the lines that start in the byte range [begin, end). Each line is
// copied into a buffer that starts at 1024 bytes and doubles whenever a line
// does not fit. As with the C library's line reader, a NUL byte ends the text
// of its line; the rest of that line is passed over. A UTF-8 byte-order mark
// at the start of the file is no part of the first line.
class LineReader {
  public:
    // Fails with "Error: cannot open file <name>". `begin` must be the start of a line.
    explicit LineReader(const std::string& filename, long long begin = 0, long long end = -1);
    ~LineReader();
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;

    // The next line with its newline, if it had one, ended by a NUL; null at
    // the end of the file or of the range.
    const char* read_line();
    // The next record: a line, and the lines after it while a quoted field
    // is open, whatever the range's end. Fails with "unterminated quoted
    // field in <name>" when the file ends inside one.
    const char* read_record(char delimiter);
    std::size_t length() const { return length_; }  // of the line last read
    long long offset() const { return offset_; }    // where the next line starts
    const std::string& filename() const { return filename_; }

  private:
    bool fill_block();
    bool take_line(std::size_t at);

    std::string filename_;
    std::FILE* file_;
    // Left uninitialised: a small file touches only the pages it fills.
    std::unique_ptr<char[]> block_;
    std::size_t block_size_ = 0;
    std::size_t block_begin_ = 0, block_end_ = 0;
    std::vector<char> line_;
    std::size_t length_ = 0;
    long long offset_;
    long long end_;
    long long file_size_ = 0;  // 0 when not a regular file
    bool at_file_start_;
};

// The list of variable names that a _from_file command requires: the
// caller's text when it is omitted, one row or one column of texts otherwise.
svec read_file_variable_names(const CellMatrix& names, const std::string& missing_message);

// The head line's names, trimmed; an empty one named by unnamed_column.
svec read_head(const std::string& filename, char delimiter);

// Index of a name among the head's; the first of equal names wins.
// Failure: "Error: cannot find the variable (<name>) in data file".
std::size_t find_variable(const svec& names, const std::string& wanted);
// The same lookup over data in memory: "... in data set".
std::size_t find_variable_in_data(const svec& names, const std::string& wanted);

// x, y and weight read from a file by their names, with the commands' own
// checks of the name arguments; only complete records are kept.
XYW read_xyw_from_file(const std::string& filename, const CellMatrix& x_names,
                       const CellMatrix& y_name, const CellMatrix& weight_name, char delimiter);

// One vector per variable, each keeping only the fields that are numbers, and
// the number of records read.
struct NumericColumns {
    std::vector<dvec> values;
    long long records = 0;
};
NumericColumns read_numeric_columns(const std::string& filename, const svec& names, char delimiter);

// The data table of the named variables with its valid mask, as from a cell
// table; a limit above 0 stops after that many data lines.
NamedTable read_numeric_table(const std::string& filename, const svec& names, char delimiter,
                              long long record_limit = 0);

// One list of trimmed texts per variable.
std::vector<svec> read_text_columns(const std::string& filename, const svec& names, char delimiter);

// Every variable; the first record decides the type of each column.
MixedTable read_whole_table(const std::string& filename, char delimiter);

// The named fields as trimmed text, one row per record.
std::vector<svec> read_field_table(const std::string& filename, const svec& names, char delimiter,
                                   long long record_limit = 0);

// Class variables as text columns and x variables as numbers, in one pass.
struct ClassAndNumbers {
    std::vector<svec> classes;  // one column per class name, one text per record
    dmat x;                     // one row per record
    bvec valid;                 // false where an x field is not a number
};
ClassAndNumbers read_two_name_lists(const std::string& filename, const svec& class_names,
                                    const svec& x_names, char delimiter);

// A copy of a file with one new last column: the value of line i (counted
// from 0 after the head) at 16 significant digits, or empty past the values.
void append_vector(const std::string& infile, const std::string& outfile, const dvec& values,
                   const std::string& new_name, char delimiter);
// A copy of a file with each data line's score appended, "." where the line
// is not valid; the scores must be as many as the data lines.
void append_scores(const std::string& infile, const std::string& outfile, const dvec& scores,
                   const bvec& valid, const std::string& score_name, char delimiter);
// The same with several new columns, values[i] being line i's.
void append_matrix(const std::string& infile, const std::string& outfile, const dmat& values,
                   const svec& new_names, char delimiter);

// Writes a cell table as a delimited file, numbers at 16 significant digits.
void write_table(const std::string& filename, const CellMatrix& table, char delimiter);

}  // namespace zentable
