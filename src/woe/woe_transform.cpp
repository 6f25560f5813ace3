#include "woe/woe_transform.hpp"

#include <algorithm>
#include <vector>

#include "data/delimited_file.hpp"
#include "models/model_store.hpp"
#include "woe/woe_bins.hpp"
#include "woe/woe_cells.hpp"
#include "woe/woe_models.hpp"
#include "xlw/cell_conversions.hpp"

namespace zentable {

namespace {

std::size_t column_for(const svec& names, const std::string& variable) {
    const auto it = std::find(names.begin(), names.end(), variable);
    if (it == names.end())
        throw "Input variable " + variable + " cannot be found in WOE transformation";
    return static_cast<std::size_t>(it - names.begin());
}

CellMatrix with_header(const std::vector<std::string>& names, std::size_t records) {
    CellMatrix r(records + 1, names.size());
    for (std::size_t j = 0; j < names.size(); ++j)
        r(0, j) = names[j];
    return r;
}

CellMatrix transform_numbers(const WoeXcontBinning& model, std::size_t value_column,
                             const FlaggedColumns& data) {
    CellMatrix r = with_header(model.names, data.records);
    for (std::size_t j = 0; j < model.names.size(); ++j) {
        const std::size_t c = column_for(data.names, model.names[j]);
        const dvec values = woe_apply_xcont(model.tables[j], value_column, model.missing_values[j],
                                            data.values[c], data.present[c]);
        for (std::size_t i = 0; i < values.size(); ++i)
            r(i + 1, j) = values[i];
    }
    return r;
}

CellMatrix transform_labels(const WoeXcatBinning& model, std::size_t value_column,
                            const svec& names, const std::vector<svec>& columns) {
    const std::size_t records = columns.empty() ? 0 : columns.front().size();
    CellMatrix r = with_header(model.names, records);
    for (std::size_t j = 0; j < model.names.size(); ++j) {
        const svec& labels = columns[column_for(names, model.names[j])];
        for (std::size_t i = 0; i < records; ++i)
            r(i + 1, j) = woe_apply_xcat(model, j, value_column, labels[i]);
    }
    return r;
}

// Holds the store's handle for as long as the transformation runs.
struct FoundModel {
    handle_c<woeXcontYbinModel> xcont_ybin;
    handle_c<woeXcontYcontModel> xcont_ycont;
    handle_c<woeXcatYbinModel> xcat_ybin;
    handle_c<woeXcatYcontModel> xcat_ycont;

    const WoeXcontBinning* xcont() const {
        if (!xcont_ybin.is_empty())
            return xcont_ybin.operator->();
        if (!xcont_ycont.is_empty())
            return xcont_ycont.operator->();
        return nullptr;
    }
    const WoeXcatBinning* xcat() const {
        if (!xcat_ybin.is_empty())
            return xcat_ybin.operator->();
        if (!xcat_ycont.is_empty())
            return xcat_ycont.operator->();
        return nullptr;
    }
    std::size_t value_column() const {
        return xcont_ybin.is_empty() && xcat_ybin.is_empty() ? kWoeMeanY : kWoeValue;
    }
};

// The handle is the text of the argument's first cell, as a sheet passes it.
FoundModel find_woe_model(const CellMatrix& woeModel) {
    const bool has_cell = woeModel.RowsInStructure() > 0 && woeModel.ColumnsInStructure() > 0;
    const std::string key = trim(has_cell ? cell_to_text(woeModel(0, 0)) : std::string(), 0);
    const std::string class_name = model_class_of(key);
    FoundModel found;
    if (class_name == "woeXcontYbinModel")
        found.xcont_ybin = string_to_handle<woeXcontYbinModel>(key);
    else if (class_name == "woeXcontYcontModel")
        found.xcont_ycont = string_to_handle<woeXcontYcontModel>(key);
    else if (class_name == "woeXcatYbinModel")
        found.xcat_ybin = string_to_handle<woeXcatYbinModel>(key);
    else if (class_name == "woeXcatYcontModel")
        found.xcat_ycont = string_to_handle<woeXcatYcontModel>(key);
    else
        throw "Invalid WOE model";
    return found;
}

// The file form reads only the columns named in xNames, so a model variable
// left out of them is the user's list at fault, not the file.
void require_in_x_names(const svec& model_names, const svec& x_names) {
    for (const std::string& variable : model_names) {
        if (std::find(x_names.begin(), x_names.end(), variable) != x_names.end())
            continue;
        std::string all;
        for (const std::string& name : model_names)
            all += (all.empty() ? "" : ", ") + name;
        throw "Input variable " + variable + " is not among xNames (the model's variables: " + all +
            ")";
    }
}

}  // namespace

CellMatrix woe_transform(const CellMatrix& woeModel, const CellMatrix& inputData) {
    const FoundModel model = find_woe_model(woeModel);
    if (const WoeXcontBinning* binning = model.xcont())
        return transform_numbers(*binning, model.value_column(), read_flagged_columns(inputData));
    const TextTable text = read_table_text(inputData);
    return transform_labels(*model.xcat(), model.value_column(), text.names, text.columns);
}

CellMatrix woe_transform_from_file(const CellMatrix& woeModel, const CellMatrix& xNames,
                                   const std::string& infilename, const std::string& outfilename,
                                   const CellMatrix& delimiter) {
    if (infilename == outfilename)
        throw "input file and output file must be different";
    const FoundModel model = find_woe_model(woeModel);
    const char separator = read_delimiter(delimiter);
    const svec names =
        read_file_variable_names(xNames, "Error: variable names (xNames) are missing");
    require_in_x_names(model.xcont() ? model.xcont()->names : model.xcat()->names, names);
    CellMatrix table;
    if (const WoeXcontBinning* binning = model.xcont())
        table = transform_numbers(*binning, model.value_column(),
                                  read_flagged_columns(infilename, names, separator));
    else
        table = transform_labels(*model.xcat(), model.value_column(), names,
                                 read_text_columns(infilename, names, separator));
    write_table(outfilename, table, separator);
    return CellMatrix("woe is sucessfully saved to " + outfilename);
}

}  // namespace zentable
