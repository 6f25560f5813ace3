#pragma once

#include <string>
#include <vector>

#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

using bvec = std::vector<bool>;
using svec = std::vector<std::string>;

// Scalar decoders: the table must be 1 by 1, else the caller's message. The
// output holds the default on entry and is left alone for an empty cell.
void read_int(const CellMatrix& table, const std::string& message, int& out);
void read_int_required(const CellMatrix& table, const std::string& message, int& out);
void read_double(const CellMatrix& table, const std::string& message, double& out);
void read_double_required(const CellMatrix& table, const std::string& message, double& out);
void read_bool(const CellMatrix& table, const std::string& message, bool& out);
void read_string(const CellMatrix& table, const std::string& message, std::string& out);
void read_text(const CellMatrix& table, const std::string& message, std::string& out);
void read_text_required(const CellMatrix& table, const std::string& message, std::string& out);

// Vector decoders. A single row is read along it; any other shape that a
// decoder accepts is read down its first column. The index of a row or column
// must lie inside the table.
void read_double_vector(const CellMatrix& table, const std::string& message, dvec& out);
void read_double_vector_optional(const CellMatrix& table, const std::string& message, dvec& out);
void read_named_vector(const CellMatrix& table, std::string& name, dvec& out);
void read_string_list(const CellMatrix& table, svec& out);
dvec read_column_double(const CellMatrix& table, std::size_t column);
dvec read_row_double(const CellMatrix& table, std::size_t row);
svec read_column_text(const CellMatrix& table, std::size_t column);
svec read_row_text(const CellMatrix& table, std::size_t row);

// A table of observations under variable names, with the mask of complete rows.
struct NamedTable {
    svec names;
    dmat data;  // one row per observation
    bvec valid;
};

struct NamedVector {
    std::string name;
    dvec values;
    bvec valid;
};

NamedTable read_table_with_headers(const CellMatrix& table);
NamedVector read_vector_with_header(const CellMatrix& table);
// The cells of a named vector as they stand: one column, or one row, whose
// first cell is the name; the shape and the header are tested as
// read_vector_with_header tests them. The table must outlive the line.
class NamedLine {
  public:
    explicit NamedLine(const CellMatrix& table);
    const std::string& name() const { return name_; }
    std::size_t size() const { return size_; }  // the cells after the name
    const CellValue& operator[](std::size_t i) const {
        return along_row_ ? table_(0, i + 1) : table_(i + 1, 0);
    }

  private:
    const CellMatrix& table_;
    bool along_row_ = false;
    std::size_t size_ = 0;
    std::string name_;
};
// As read_vector_with_header, each value through cell_to_text and trim, kept
// as a code into the distinct texts: the one column of a categorical variable.
struct NamedCodes {
    std::string name;
    svec texts;              // the distinct texts in order of first appearance
    std::vector<int> codes;  // per value: its text's index
};
NamedCodes read_coded_vector_with_header(const CellMatrix& table);
// Variables in columns under a header row; cells through cell_to_double and
// no cell spoils an observation, so the mask is all set.
NamedTable read_table_numeric_headers_first_row(const CellMatrix& table);

// Each variable keeps only the number cells of its column, so lengths differ.
struct NamedColumns {
    svec names;
    std::vector<dvec> columns;
};
NamedColumns read_columns_dropping_non_numbers(const CellMatrix& table);
// The same with every row kept: a cell that is not a number is NaN, missing.
NamedColumns read_columns_missing_as_nan(const CellMatrix& table);

struct MixedTable {
    svec names;
    dmat numeric_rows;
    std::vector<svec> text_rows;
    std::string column_types;  // "N" or "C" per column
    std::vector<int> column_index;
    int row_count = 0;
};
MixedTable read_mixed_table(const CellMatrix& table);

struct LabelledTable {
    svec row_labels;
    svec column_labels;
    dmat values;
};
LabelledTable read_labelled_table(const CellMatrix& table);

dmat read_numeric_matrix(const CellMatrix& table);

// 0: the first row is all numbers, 1: all strings, 2: mixed.
int header_kind(const CellMatrix& table);

// A header row over text columns, every cell through cell_to_text and trim.
struct TextTable {
    svec names;
    std::vector<svec> columns;  // one per variable
};
TextTable read_table_text(const CellMatrix& table);

// x, y and weight decoded and aligned: only records complete in all three stay.
struct XYW {
    svec x_names;
    std::string y_name;
    std::string weight_name;
    dmat x;
    dvec y;
    dvec weight;
    bool has_weight = false;
};
XYW read_xyw(const CellMatrix& x, const CellMatrix& y, const CellMatrix& weight);

}  // namespace zentable
