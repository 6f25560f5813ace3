#include "woe/woe_cells.hpp"

#include <climits>

#include "data/delimited_file.hpp"
#include "xlw/cell_conversions.hpp"

namespace zentable {

namespace {

constexpr const char* kUnequalCounts =
    "The numbers of observations in input data X, Y, and weight must be the same";

bool first_row_all_strings(const CellMatrix& table) {
    for (std::size_t j = 0; j < table.ColumnsInStructure(); ++j)
        if (!table(0, j).IsString())
            return false;
    return true;
}

// Rows of observations into one column per variable, every cell present.
FlaggedColumns columns_of(NamedTable table) {
    FlaggedColumns out;
    out.names = std::move(table.names);
    out.records = table.data.size();
    const std::size_t p = out.names.size();
    out.values.assign(p, dvec(out.records));
    out.present.assign(p, bvec(out.records, true));
    for (std::size_t i = 0; i < out.records; ++i)
        for (std::size_t j = 0; j < p; ++j)
            out.values[j][i] = table.data[i][j];
    return out;
}

// One name in a 1 by 1 table of text.
std::string single_name(const CellMatrix& table, const std::string& too_many,
                        const std::string& not_text) {
    if (table.RowsInStructure() != 1 || table.ColumnsInStructure() != 1)
        throw too_many;
    if (!table(0, 0).IsString())
        throw not_text;
    return trim(table(0, 0).StringValue(), 0);
}

}  // namespace

FlaggedColumns read_flagged_columns(const CellMatrix& table) {
    NamedTable decoded = read_table_with_headers(table);
    // The decoder has checked the headers; it oriented by the first row when
    // that row is all names.
    const bool by_rows = !first_row_all_strings(table);
    FlaggedColumns out = columns_of(std::move(decoded));
    for (std::size_t j = 0; j < out.names.size(); ++j)
        for (std::size_t i = 0; i < out.records; ++i)
            out.present[j][i] = (by_rows ? table(j, i + 1) : table(i + 1, j)).IsANumber();
    return out;
}

FlaggedColumns read_flagged_columns(const std::string& filename, const svec& names,
                                    char delimiter) {
    // When every field is a number, as in most files, the column reader gives
    // the columns at once, aligned since none lost a field.
    NumericColumns numbers = read_numeric_columns(filename, names, delimiter);
    const auto records = static_cast<std::size_t>(numbers.records);
    bool complete = true;
    for (const dvec& column : numbers.values)
        complete = complete && column.size() == records;
    if (complete) {
        FlaggedColumns out;
        out.names = names;
        out.records = records;
        out.values = std::move(numbers.values);
        out.present.assign(names.size(), bvec(records, true));
        return out;
    }
    numbers = NumericColumns();
    return read_flagged_fields(filename, names, delimiter);
}

FlaggedColumns read_flagged_fields(const std::string& filename, const svec& names, char delimiter) {
    NamedTable table = read_numeric_table(filename, names, delimiter);
    bvec complete = std::move(table.valid);
    FlaggedColumns out = columns_of(std::move(table));
    bool all_complete = true;
    for (bool c : complete)
        all_complete = all_complete && c;
    if (all_complete)
        return out;

    // The table reader flags whole records; the few incomplete ones are split
    // again to find which of their fields are numbers.
    const svec head = read_head(filename, delimiter);
    std::vector<std::size_t> columns;
    for (const std::string& name : names)
        columns.push_back(find_variable(head, name));
    LineReader reader(filename);
    reader.read_record(delimiter);
    Fields fields;
    double value;
    for (std::size_t i = 0; i < out.records; ++i) {
        const char* line = reader.read_record(delimiter);
        if (complete[i])
            continue;
        split_fields(std::string_view(line, reader.length()), delimiter, fields);
        for (std::size_t j = 0; j < columns.size(); ++j)
            out.present[j][i] = parse_file_number(fields[columns[j]], delimiter, value);
    }
    return out;
}

WoeData read_woe_data(const CellMatrix& x, const CellMatrix& y, const CellMatrix& weight) {
    WoeData out;
    out.x = read_flagged_columns(x);
    NamedVector ys = read_vector_with_header(y);
    out.y_name = std::move(ys.name);
    out.y = std::move(ys.values);
    out.y_present = std::move(ys.valid);
    if (is_omitted(weight)) {
        out.w.assign(out.y.size(), 1.0);
        out.w_present.assign(out.y.size(), true);
    } else {
        NamedVector ws = read_vector_with_header(weight);
        out.w = std::move(ws.values);
        out.w_present = std::move(ws.valid);
    }
    if (out.y.size() != out.x.records || out.w.size() != out.x.records)
        throw kUnequalCounts;
    return out;
}

double read_woe_pvalue(const CellMatrix& pvalue) {
    const std::string message = "Input pvalue must be a number between 0 and 1";
    double out = 1.0;
    if (!is_omitted(pvalue))
        read_double(pvalue, message, out);
    if (!(out >= 0.0 && out <= 1.0))
        throw message;
    return out;
}

int read_woe_max_bins(const CellMatrix& maxNumBins) {
    const std::string message = "Input maxNumBins must be a positive integer";
    int out = INT_MAX;
    if (!is_omitted(maxNumBins))
        read_int(maxNumBins, message, out);
    if (out < 1)
        throw message;
    return out;
}

svec read_woe_x_names(const CellMatrix& xNames) {
    return read_file_variable_names(xNames,
                                    "Error: independent variable names (xNames) are missing");
}

std::string read_woe_y_name(const CellMatrix& yName) {
    if (is_omitted(yName))
        throw std::string("Error: dependent variable name (yName) is missing");
    return single_name(yName, "Error: only one dependent variable name (yName) is allowed",
                       "Error: dependent variable name (yName) is not a string");
}

WoeData read_woe_data(const std::string& filename, const CellMatrix& xNames,
                      const CellMatrix& yName, const CellMatrix& weightName, char delimiter) {
    svec names = read_woe_x_names(xNames);
    const std::string y_name = read_woe_y_name(yName);
    const bool has_weight = !is_omitted(weightName);
    const std::string w_name =
        has_weight ? single_name(weightName,
                                 "Error: only one weight variable name (weightName) is allowed",
                                 "Error: weight variable name (weightName) is not a string")
                   : std::string();

    const std::size_t p = names.size();
    names.push_back(y_name);
    if (has_weight)
        names.push_back(w_name);
    FlaggedColumns all = read_flagged_columns(filename, names, delimiter);

    WoeData out;
    out.y_name = y_name;
    out.y = std::move(all.values[p]);
    out.y_present = std::move(all.present[p]);
    if (has_weight) {
        out.w = std::move(all.values[p + 1]);
        out.w_present = std::move(all.present[p + 1]);
    } else {
        out.w.assign(all.records, 1.0);
        out.w_present.assign(all.records, true);
    }
    all.names.resize(p);
    all.values.resize(p);
    all.present.resize(p);
    out.x = std::move(all);
    return out;
}

}  // namespace zentable
