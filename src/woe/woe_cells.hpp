#pragma once

#include <string>
#include <vector>

#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

// Numeric variables with one flag per cell. Binning looks at one variable at
// a time, so a missing x spoils only its own variable, never the record.
struct FlaggedColumns {
    svec names;
    std::vector<dvec> values;   // one column per variable
    std::vector<bvec> present;  // parallel to values: false where the cell is no number
    std::size_t records = 0;
};

// A table with names in the first row or the first column, oriented as
// read_table_with_headers orients it.
FlaggedColumns read_flagged_columns(const CellMatrix& table);

// The named variables of a delimited file: a field is present when it is a
// number, as the file layer's number rule says.
FlaggedColumns read_flagged_columns(const std::string& filename, const svec& names, char delimiter);
// The same through the record reader, which keeps every record however many
// of its fields are not numbers.
FlaggedColumns read_flagged_fields(const std::string& filename, const svec& names, char delimiter);

// The x, target and weight of a weight of evidence binning, with their flags.
// Without a weight every record weighs 1.
struct WoeData {
    FlaggedColumns x;
    std::string y_name;
    dvec y;
    bvec y_present;
    dvec w;
    bvec w_present;
};

// The sheet form: x through read_flagged_columns, y and weight through
// read_vector_with_header; all three must count the same records.
WoeData read_woe_data(const CellMatrix& x, const CellMatrix& y, const CellMatrix& weight);

// The file form, one reading of the file for all the variables.
WoeData read_woe_data(const std::string& filename, const CellMatrix& xNames,
                      const CellMatrix& yName, const CellMatrix& weightName, char delimiter);

// The two arguments that every binning takes: pvalue, 1 when omitted, and
// maxNumBins, 2147483647 when omitted, each with its message.
double read_woe_pvalue(const CellMatrix& pvalue);
int read_woe_max_bins(const CellMatrix& maxNumBins);

// The names of a file form, with their messages.
svec read_woe_x_names(const CellMatrix& xNames);
std::string read_woe_y_name(const CellMatrix& yName);

}  // namespace zentable
