#include "woe/woe_xcat.hpp"

#include <map>

#include "data/delimited_file.hpp"
#include "regression/logistic_fit.hpp"
#include "woe/woe_bins.hpp"
#include "woe/woe_cells.hpp"
#include "woe/woe_models.hpp"
#include "xlw/cell_conversions.hpp"
#include "xlw/report.hpp"

namespace zentable {

namespace {

constexpr const char* kTitle = "Weight of Evidence";

// The categorical x and the target, over the records whose y is present.
struct XcatData {
    svec names;
    std::vector<svec> x;  // one text column per variable
    std::string y_name;
    dvec y;
};

XcatData keep_present_y(svec names, std::vector<svec> x, std::string y_name, const dvec& y,
                        const bvec& y_present) {
    XcatData out;
    out.names = std::move(names);
    out.y_name = std::move(y_name);
    out.x.resize(x.size());
    for (std::size_t i = 0; i < y.size(); ++i) {
        if (!y_present[i])
            continue;
        out.y.push_back(y[i]);
        for (std::size_t j = 0; j < x.size(); ++j)
            out.x[j].push_back(std::move(x[j][i]));
    }
    return out;
}

XcatData read_sheet(const CellMatrix& x, const CellMatrix& y) {
    TextTable xs = read_table_text(x);
    NamedVector ys = read_vector_with_header(y);
    if (xs.columns.front().size() != ys.values.size())
        throw "The numbers of observations in x and y must be the same";
    return keep_present_y(std::move(xs.names), std::move(xs.columns), std::move(ys.name), ys.values,
                          ys.valid);
}

XcatData read_file(const std::string& filename, const CellMatrix& xNames, const CellMatrix& yName,
                   char delimiter) {
    svec names = read_woe_x_names(xNames);
    std::string y_name = read_woe_y_name(yName);
    std::vector<svec> x = read_text_columns(filename, names, delimiter);
    const FlaggedColumns y = read_flagged_columns(filename, {y_name}, delimiter);
    return keep_present_y(std::move(names), std::move(x), std::move(y_name), y.values[0],
                          y.present[0]);
}

// A category's record count and its sums of y and y squared.
struct Category {
    double count = 0, sum = 0, squares = 0;
};

// The categories of a column in order of their target rate. Equal rates keep
// the order of their labels, as the map hands them to the multimap.
std::vector<std::pair<std::string, Category>> ordered_categories(const svec& x, const dvec& y) {
    std::map<std::string, Category> by_label;
    for (std::size_t i = 0; i < x.size(); ++i) {
        Category& c = by_label[x[i]];
        c.count += 1;
        c.sum += y[i];
        c.squares += y[i] * y[i];
    }
    std::multimap<double, std::pair<std::string, Category>> by_rate;
    for (const auto& [label, c] : by_label)
        by_rate.emplace(c.sum / c.count, std::make_pair(label, c));
    std::vector<std::pair<std::string, Category>> out;
    out.reserve(by_rate.size());
    for (auto& entry : by_rate)
        out.push_back(std::move(entry.second));
    return out;
}

template <class MakeBin, class Merge, class Table>
std::vector<WoeXcatBins> xcat_bins(const std::vector<svec>& x, const dvec& y, MakeBin make_bin,
                                   Merge merge, Table table) {
    std::vector<WoeXcatBins> out;
    out.reserve(x.size());
    for (const svec& column : x) {
        const auto categories = ordered_categories(column, y);
        dmat bins;
        for (std::size_t i = 0; i < categories.size(); ++i)
            bins.push_back(make_bin(static_cast<double>(i), categories[i].second));
        WoeXcatBins result;
        result.initial = table(bins);
        result.merged = table(merge(bins));
        // A merged bin holds the categories numbered from its xMin to its xMax.
        for (std::size_t b = 0; b + 1 < result.merged.size(); ++b) {
            svec labels;
            const auto first = static_cast<std::size_t>(result.merged[b][kWoeXMin]);
            const auto last = static_cast<std::size_t>(result.merged[b][kWoeXMax]);
            for (std::size_t i = first; i <= last; ++i)
                labels.push_back(categories[i].first);
            result.groups.push_back(std::move(labels));
        }
        out.push_back(std::move(result));
    }
    return out;
}

// An empty cell is a category of its own; it is named so that the joined
// labels show it rather than a stray comma.
constexpr const char* kEmptyLabel = "(empty)";

std::string joined(const svec& labels) {
    std::string out;
    for (std::size_t i = 0; i < labels.size(); ++i)
        out += (i ? "," : "") + (labels[i].empty() ? std::string(kEmptyLabel) : labels[i]);
    return out;
}

// The blocks of the "Weight of Evidence" section from row `row`: per variable
// its name, the header, a row per bin with its labels, and the total, each
// block after a blank row. Table columns 2 to `last` stand in the same
// columns; with a continuous target the R-square closes the total row.
void write_blocks(CellMatrix& r, std::size_t row, const XcatData& data,
                  const std::vector<WoeXcatBins>& bins, const std::vector<const char*>& header,
                  std::size_t last, bool r_square) {
    for (std::size_t j = 0; j < bins.size(); ++j) {
        const dmat& table = bins[j].merged;
        r(row, 0) = data.names[j];
        for (std::size_t c = 0; c < header.size(); ++c)
            r(row + 1, c) = c == 1 ? data.names[j] : std::string(header[c]);
        row += 2;
        const std::size_t count = table.size() - 1;
        for (std::size_t b = 0; b < count; ++b, ++row) {
            r(row, 0) = static_cast<double>(b + 1);
            r(row, 1) = count == 1 ? std::string("ALL") : joined(bins[j].groups[b]);
            for (std::size_t c = 2; c <= last; ++c)
                r(row, c) = table[b][c];
        }
        r(row, 0) = "Total";
        for (std::size_t c = 2; c <= last; ++c)
            r(row, c) = table.back()[c];
        if (r_square)
            r(row, last + 1) = table.back()[kWoeRSquare];
        row += 2;
    }
}

// Rows of the section: its title, then each block after a blank row.
std::size_t section_rows(const std::vector<WoeXcatBins>& bins) {
    std::size_t rows = 1;
    for (const WoeXcatBins& b : bins)
        rows += 1 + 2 + (b.merged.size() - 1) + 1;
    return rows;
}

template <class Model>
std::string file_model(const XcatData& data, const std::vector<WoeXcatBins>& bins) {
    std::vector<std::vector<svec>> groups;
    std::vector<dmat> tables;
    for (const WoeXcatBins& b : bins) {
        groups.push_back(b.groups);
        tables.push_back(b.merged);
    }
    return std::string(handle_to_string(handle_c<Model>(new Model(data.names, groups, tables))));
}

CellMatrix xcat_ybin_run(const XcatData& data, double pvalue, int maxNumBins) {
    dvec coded = data.y;
    const dvec levels = binary_recode(coded);
    const std::vector<WoeXcatBins> bins = woe_bins_xcat_ybin(data.x, coded, pvalue, maxNumBins);
    const std::string handle = file_model<woeXcatYbinModel>(data, bins);

    const std::size_t p = data.names.size();
    const std::size_t section = 11 + p;
    CellMatrix r(section + section_rows(bins), 12);
    r(0, 0) = handle;
    const double n = static_cast<double>(coded.size());
    double ones = 0;
    for (double v : coded)
        ones += v;
    r(2, 0) = data.y_name;
    r(2, 1) = "Freq";
    r(2, 2) = "Percent";
    r(3, 0) = "ALL";
    r(3, 1) = n;
    r(3, 2) = 1;
    r(4, 0) = levels[1];
    r(4, 1) = ones;
    r(4, 2) = ones / n;
    r(5, 0) = levels[0];
    r(5, 1) = n - ones;
    r(5, 2) = (n - ones) / n;
    r(7, 0) = "Summary of Importance of Variables";
    r(9, 0) = "#";
    r(9, 1) = "Variable";
    r(9, 2) = "KS";
    r(9, 3) = "Info Value";
    for (std::size_t j = 0; j < p; ++j) {
        r(10 + j, 0) = static_cast<double>(j + 1);
        r(10 + j, 1) = data.names[j];
        r(10 + j, 2) = bins[j].merged.back()[kWoeKs];
        r(10 + j, 3) = bins[j].merged.back()[kWoeInfoValue];
    }
    r(section, 0) = kTitle;
    write_blocks(r, section + 2, data, bins,
                 {"#", "", "#Total", "#(Y=1)", "%Cum(Y=1)", "#(Y=0)", "%Cum(Y=0)", "Odds_ratio",
                  "%(Y=1)", "WOE", "Info Value", "KS"},
                 11, false);
    end_report(r, kTitle);
    return r;
}

CellMatrix xcat_ycont_run(const XcatData& data, double pvalue, int maxNumBins) {
    const std::vector<WoeXcatBins> bins = woe_bins_xcat_ycont(data.x, data.y, pvalue, maxNumBins);
    const std::string handle = file_model<woeXcatYcontModel>(data, bins);

    const std::size_t p = data.names.size();
    const std::size_t section = 6 + p;
    CellMatrix r(section + section_rows(bins), 9);
    r(0, 0) = handle;
    r(2, 0) = "Summary of Importance of Variables";
    r(4, 0) = "#";
    r(4, 1) = "Variable";
    r(4, 2) = "R-Square";
    for (std::size_t j = 0; j < p; ++j) {
        r(5 + j, 0) = static_cast<double>(j + 1);
        r(5 + j, 1) = data.names[j];
        r(5 + j, 2) = bins[j].merged.back()[kWoeRSquare];
    }
    r(section, 0) = kTitle;
    write_blocks(r, section + 2, data, bins,
                 {"#", "", "#Total", "%Cum_n", "Ymean", "Ystd", "%Cum_Y", "Lift", "R-Square"}, 7,
                 true);
    end_report(r, kTitle);
    return r;
}

}  // namespace

std::vector<WoeXcatBins> woe_bins_xcat_ybin(const std::vector<svec>& x, const dvec& y,
                                            double pvalue, int maxNumBins) {
    return xcat_bins(
        x, y,
        [](double i, const Category& c) {
            return dvec{i, i, c.sum, c.count - c.sum};
        },
        [&](const dmat& bins) { return woe_merge_ybin(bins, pvalue, maxNumBins); },
        [](const dmat& bins) { return woe_table_ybin(bins); });
}

std::vector<WoeXcatBins> woe_bins_xcat_ycont(const std::vector<svec>& x, const dvec& y,
                                             double pvalue, int maxNumBins) {
    return xcat_bins(
        x, y,
        [](double i, const Category& c) {
            return ycont_bin(i, i, c.count, c.count, c.sum, c.squares);
        },
        [&](const dmat& bins) { return woe_merge_ycont(bins, pvalue, maxNumBins); },
        [](const dmat& bins) { return woe_table_ycont(bins); });
}

double woe_apply_xcat(const WoeXcatBinning& model, std::size_t variable, std::size_t value_column,
                      const std::string& label) {
    const std::vector<svec>& groups = model.groups[variable];
    for (std::size_t b = 0; b < groups.size(); ++b)
        for (const std::string& member : groups[b])
            if (member == label)
                return model.tables[variable][b][value_column];
    return 0.0;
}

CellMatrix woe_xcat_ybin(const CellMatrix& x, const CellMatrix& y, const CellMatrix& pvalue,
                         const CellMatrix& maxNumBins, const CellMatrix&) {
    const double p = read_woe_pvalue(pvalue);
    const int max_bins = read_woe_max_bins(maxNumBins);
    return xcat_ybin_run(read_sheet(x, y), p, max_bins);
}

CellMatrix woe_xcat_ybin_from_file(const std::string& filename, const CellMatrix& xNames,
                                   const CellMatrix& yName, const CellMatrix& pvalue,
                                   const CellMatrix& maxNumBins, const CellMatrix&,
                                   const CellMatrix& delimiter) {
    const double p = read_woe_pvalue(pvalue);
    const int max_bins = read_woe_max_bins(maxNumBins);
    const char separator = read_delimiter(delimiter);
    return xcat_ybin_run(read_file(filename, xNames, yName, separator), p, max_bins);
}

CellMatrix woe_xcat_ycont(const CellMatrix& x, const CellMatrix& y, const CellMatrix& pvalue,
                          const CellMatrix& maxNumBins, const CellMatrix&) {
    const double p = read_woe_pvalue(pvalue);
    const int max_bins = read_woe_max_bins(maxNumBins);
    return xcat_ycont_run(read_sheet(x, y), p, max_bins);
}

CellMatrix woe_xcat_ycont_from_file(const std::string& filename, const CellMatrix& xNames,
                                    const CellMatrix& yName, const CellMatrix& pvalue,
                                    const CellMatrix& maxNumBins, const CellMatrix&,
                                    const CellMatrix& delimiter) {
    const double p = read_woe_pvalue(pvalue);
    const int max_bins = read_woe_max_bins(maxNumBins);
    const char separator = read_delimiter(delimiter);
    return xcat_ycont_run(read_file(filename, xNames, yName, separator), p, max_bins);
}

}  // namespace zentable
