#include "woe/woe_xcont.hpp"

#include <algorithm>
#include <cmath>
#include <exception>
#include <thread>

#include "data/delimited_file.hpp"
#include "regression/logistic_fit.hpp"
#include "woe/woe_bins.hpp"
#include "woe/woe_models.hpp"
#include "xlw/cell_conversions.hpp"
#include "xlw/decoders.hpp"
#include "xlw/report.hpp"

namespace zentable {

namespace {

constexpr const char* kTitle = "Weight of Evidence";
constexpr double kTiny = 1e-30;

// Above this many cells the variables are binned on two threads; each
// variable's sums stay on one thread in record order.
constexpr std::size_t kParallelCells = 1 << 18;

// work(j, slot): slot 0 or 1 names the thread, for buffers kept per thread.
template <class Work>
void for_each_variable(std::size_t variables, std::size_t records, Work work) {
    if (variables < 2 || variables * records < kParallelCells) {
        for (std::size_t j = 0; j < variables; ++j)
            work(j, 0);
        return;
    }
    std::exception_ptr failure;
    std::thread second([&] {
        try {
            for (std::size_t j = 1; j < variables; j += 2)
                work(j, 1);
        } catch (...) {
            failure = std::current_exception();
        }
    });
    try {
        for (std::size_t j = 0; j < variables; j += 2)
            work(j, 0);
    } catch (...) {
        second.join();
        throw;
    }
    second.join();
    if (failure)
        std::rethrow_exception(failure);
}

// The working data of one variable: records with x, y and weight present, in
// record order; those with x missing go to the missing group. The buffers are
// kept from one variable to the next.
struct Working {
    dvec x, y, w;
    double missing_count = 0, missing_weight = 0, missing_y = 0, missing_y_squares = 0;
    GroupScratch scratch;
};

void working_data(const FlaggedColumns& columns, std::size_t j, const dvec& y, const dvec& w,
                  const bvec& yw_present, Working& out) {
    const dvec& x = columns.values[j];
    const bvec& present = columns.present[j];
    out.x.clear();
    out.y.clear();
    out.w.clear();
    out.missing_count = out.missing_weight = out.missing_y = out.missing_y_squares = 0;
    out.x.reserve(columns.records);
    out.y.reserve(columns.records);
    out.w.reserve(columns.records);
    for (std::size_t i = 0; i < columns.records; ++i) {
        if (!yw_present[i])
            continue;
        if (present[i]) {
            out.x.push_back(x[i]);
            out.y.push_back(y[i]);
            out.w.push_back(w[i]);
        } else {
            out.missing_count += 1;
            out.missing_weight += w[i];
            out.missing_y += w[i] * y[i];
            out.missing_y_squares += w[i] * y[i] * y[i];
        }
    }
}

// The missing group as a bin row of each target kind; empty when no record
// has x missing.
dvec ybin_missing_bin(const WoeXcontBins& b) {
    if (b.missing_count == 0)
        return {};
    return {0.0, 0.0, b.missing_y, b.missing_weight - b.missing_y};
}

dvec ycont_missing_bin(const WoeXcontBins& b) {
    if (b.missing_count == 0)
        return {};
    return ycont_bin(0.0, 0.0, b.missing_count, b.missing_weight, b.missing_y, b.missing_y_squares);
}

template <class MakeBins, class MissingBin, class Merge, class Table>
std::vector<WoeXcontBins> bins_of_all(const FlaggedColumns& x, const dvec& y, const dvec& w,
                                      const bvec& yw_present, int initialNumBins,
                                      MakeBins make_bins, MissingBin missing_bin, Merge merge,
                                      Table table) {
    std::vector<WoeXcontBins> out(x.names.size());
    Working working[2];
    for_each_variable(x.names.size(), x.records, [&](std::size_t j, int slot) {
        Working& data = working[slot];
        working_data(x, j, y, w, yw_present, data);
        WoeXcontBins& result = out[j];
        result.missing_count = data.missing_count;
        result.missing_weight = data.missing_weight;
        result.missing_y = data.missing_y;
        result.missing_y_squares = data.missing_y_squares;
        const dvec missing = missing_bin(result);
        const dmat bins =
            make_bins(rank_x_groups(data.x, data.y, data.w, initialNumBins, data.scratch));
        result.initial = table(bins, missing);
        result.merged = table(merge(bins), missing);
    });
    return out;
}

// The unweighted moments of x shown in the summary, over the records with x,
// y and weight present.
struct XSummary {
    double freq = 0, mean = 0, sd = 0, min = 0, max = 0;
    double correlation_square = 0;
};

XSummary summary_of(const FlaggedColumns& columns, std::size_t j, const dvec& y,
                    const bvec& yw_present) {
    XSummary s;
    const dvec& x = columns.values[j];
    const bvec& present = columns.present[j];
    double sum_x = 0, sum_y = 0;
    for (std::size_t i = 0; i < columns.records; ++i) {
        if (!yw_present[i] || !present[i])
            continue;
        if (s.freq == 0) {
            s.min = x[i];
            s.max = x[i];
        }
        s.freq += 1;
        sum_x += x[i];
        sum_y += y[i];
        s.min = std::min(s.min, x[i]);
        s.max = std::max(s.max, x[i]);
    }
    if (s.freq == 0)
        return s;
    s.mean = sum_x / s.freq;
    const double mean_y = sum_y / s.freq;
    double sxx = 0, syy = 0, sxy = 0;
    for (std::size_t i = 0; i < columns.records; ++i) {
        if (!yw_present[i] || !present[i])
            continue;
        const double dx = x[i] - s.mean, dy = y[i] - mean_y;
        sxx += dx * dx;
        syy += dy * dy;
        sxy += dx * dy;
    }
    s.sd = std::sqrt(sxx / s.freq);
    s.correlation_square = sxy * sxy / (sxx * syy);
    return s;
}

std::vector<XSummary> summaries_of(const FlaggedColumns& columns, const dvec& y,
                                   const bvec& yw_present) {
    std::vector<XSummary> out(columns.names.size());
    for_each_variable(columns.names.size(), columns.records,
                      [&](std::size_t j, int) { out[j] = summary_of(columns, j, y, yw_present); });
    return out;
}

bvec both_present(const WoeData& data) {
    bvec out(data.y.size());
    for (std::size_t i = 0; i < out.size(); ++i)
        out[i] = data.y_present[i] && data.w_present[i];
    return out;
}

void write_row(CellMatrix& r, std::size_t row, const std::vector<const char*>& texts) {
    for (std::size_t c = 0; c < texts.size(); ++c)
        r(row, c) = texts[c];
}

// The x moments of a summary row from column `first` on; blank when no
// record has x.
void write_moments(CellMatrix& r, std::size_t row, std::size_t first, const XSummary& s) {
    if (s.freq == 0)
        return;
    r(row, first) = s.mean;
    r(row, first + 1) = s.sd;
    r(row, first + 2) = s.min;
    r(row, first + 3) = s.max;
}

// The bins of a finished table, numbered from 1 from column 0, with the
// table's columns 0 to last after it. Each bin's printed xMin is the previous
// bin's xMax, so that the printed bins join without gaps.
void write_bins(CellMatrix& r, std::size_t row, const dmat& table, std::size_t last) {
    const std::size_t bins = table.size() - 1;
    for (std::size_t b = 0; b < bins; ++b) {
        r(row + b, 0) = static_cast<double>(b + 1);
        for (std::size_t c = 0; c <= last; ++c)
            r(row + b, c + 1) = table[b][c];
        if (b > 0)
            r(row + b, 1) = table[b - 1][kWoeXMax];
    }
}

// The missing group's shares in the totals of the merged table, which count
// it as a bin of its own.
WoeShares missing_shares(const WoeXcontBins& b) {
    const dvec& closing = b.merged.back();
    const double m1 = b.missing_y, m0 = b.missing_weight - m1;
    return woe_shares(m1, m0, closing[3] + kTiny, closing[5] + kTiny);
}

std::size_t block_rows(const WoeXcontBins& bins) {
    return 2 + (bins.merged.size() - 1) + (bins.missing_count > 0 ? 1 : 0) + 1;
}

// Rows of the "Weight of Evidence" section: its title, then each block after
// a blank row.
std::size_t section_rows(const std::vector<WoeXcontBins>& bins) {
    std::size_t rows = 1;
    for (const WoeXcontBins& b : bins)
        rows += 1 + block_rows(b);
    return rows;
}

}  // namespace

WoeArgs read_woe_args(const CellMatrix& initialNumBins, const CellMatrix& pvalue,
                      const CellMatrix& maxNumBins, const CellMatrix& minNumRecords) {
    WoeArgs args;
    args.pvalue = read_woe_pvalue(pvalue);
    const std::string initial_message = "Input initialNumBins must be a positive integer";
    if (is_omitted(initialNumBins))
        throw initial_message;
    read_int_required(initialNumBins, initial_message, args.initial_bins);
    if (args.initial_bins < 1)
        throw initial_message;
    args.max_bins = read_woe_max_bins(maxNumBins);
    const std::string min_message = "Input minNumRecords must be a positive integer";
    if (!is_omitted(minNumRecords))
        read_int(minNumRecords, min_message, args.min_records);
    if (args.min_records < 1)
        throw min_message;
    return args;
}

std::vector<WoeXcontBins> woe_bins_ybin(const FlaggedColumns& x, const dvec& y, const dvec& w,
                                        const bvec& yw_present, int initialNumBins, double pvalue,
                                        int maxNumBins) {
    return bins_of_all(
        x, y, w, yw_present, initialNumBins, ybin_bins_of, ybin_missing_bin,
        [&](const dmat& bins) { return woe_merge_ybin(bins, pvalue, maxNumBins); },
        [](const dmat& bins, const dvec& missing) { return woe_table_ybin(bins, missing); });
}

std::vector<WoeXcontBins> woe_bins_ycont(const FlaggedColumns& x, const dvec& y, const dvec& w,
                                         const bvec& yw_present, int initialNumBins, double pvalue,
                                         int maxNumBins) {
    return bins_of_all(
        x, y, w, yw_present, initialNumBins, ycont_bins_of, ycont_missing_bin,
        [&](const dmat& bins) { return woe_merge_ycont(bins, pvalue, maxNumBins); },
        [](const dmat& bins, const dvec& missing) { return woe_table_ycont(bins, missing); });
}

CellMatrix woe_xcont_ybin_run(const WoeData& data, const WoeArgs& args, const std::string& title) {
    const std::size_t n = data.x.records;
    const std::size_t p = data.x.names.size();

    // The target is coded over the records that have it.
    dvec present_y;
    for (std::size_t i = 0; i < n; ++i)
        if (data.y_present[i])
            present_y.push_back(data.y[i]);
    const dvec levels = binary_recode(present_y);
    dvec coded(n, 0.0);
    double ones = 0;
    for (std::size_t i = 0, k = 0; i < n; ++i) {
        if (!data.y_present[i])
            continue;
        coded[i] = present_y[k++];
        ones += coded[i];
    }
    const double with_y = static_cast<double>(present_y.size());
    const bvec yw_present = both_present(data);
    const std::vector<WoeXcontBins> bins = woe_bins_ybin(
        data.x, coded, data.w, yw_present, args.initial_bins, args.pvalue, args.max_bins);

    std::vector<dmat> tables;
    dvec missing_values(p, 0.0);
    for (std::size_t j = 0; j < p; ++j) {
        const WoeXcontBins& b = bins[j];
        tables.push_back(b.merged);
        if (args.min_records <= b.missing_count)
            missing_values[j] = missing_shares(b).woe;
    }
    const handle_c<woeXcontYbinModel> model(
        new woeXcontYbinModel(data.x.names, tables, missing_values));

    const std::size_t section = 12 + p;
    CellMatrix r(section + section_rows(bins), 13);
    r(0, 0) = std::string(woeXcontYbinModelHandle_to_string(model));
    r(2, 0) = data.y_name;
    r(2, 1) = "Freq";
    r(2, 2) = "Percent";
    const double records = static_cast<double>(n);
    r(3, 0) = "ALL";
    r(3, 1) = records;
    r(3, 2) = 1;
    r(4, 0) = levels[1];
    r(4, 1) = ones;
    r(4, 2) = ones / records;
    r(5, 0) = levels[0];
    r(5, 1) = with_y - ones;
    r(5, 2) = (with_y - ones) / records;
    r(6, 0) = "Missing";
    r(6, 1) = records - with_y;
    r(6, 2) = (records - with_y) / records;
    r(8, 0) = "Summary of Importance of Variables";
    write_row(r, 10,
              {"#", "Variable", "Nmiss", "Freq", "Avg", "Stdev", "Min", "Max", "KS", "Info Value"});
    double usable = 0;
    for (bool u : yw_present)
        usable += u ? 1 : 0;
    const std::vector<XSummary> summaries = summaries_of(data.x, coded, yw_present);
    for (std::size_t j = 0; j < p; ++j) {
        const XSummary& s = summaries[j];
        const dvec& closing = tables[j].back();
        const std::size_t row = 11 + j;
        r(row, 0) = static_cast<double>(j + 1);
        r(row, 1) = data.x.names[j];
        r(row, 2) = usable - s.freq;
        r(row, 3) = s.freq;
        write_moments(r, row, 4, s);
        r(row, 8) = closing[kWoeKs];
        r(row, 9) = closing[kWoeInfoValue];
    }

    r(section, 0) = kTitle;
    std::size_t row = section + 2;
    for (std::size_t j = 0; j < p; ++j) {
        const dmat& table = tables[j];
        const dvec& closing = table.back();
        r(row, 0) = data.x.names[j];
        write_row(r, row + 1,
                  {"#", "xMin", "xMax", "#Total", "#(Y=1)", "%Cum(Y=1)", "#(Y=0)", "%Cum(Y=0)",
                   "Odds Ratio", "%(Y=1)", "WOE", "Info Value", "KS"});
        write_bins(r, row + 2, table, 11);
        row += 2 + table.size() - 1;
        if (bins[j].missing_count > 0) {
            const double m1 = bins[j].missing_y, m0 = bins[j].missing_weight - m1;
            const WoeShares s = missing_shares(bins[j]);
            r(row, 0) = "Missing";
            r(row, 3) = m1 + m0;
            r(row, 4) = m1;
            r(row, 6) = m0;
            r(row, 8) = s.r1 * 100 / (s.r0 + kTiny);
            r(row, 9) = m1 / (m1 + m0 + kTiny);
            r(row, 10) = s.woe;
            r(row, 11) = s.info_value;
            ++row;
        }
        r(row, 0) = "Total";
        for (std::size_t c = 0; c < kWoeTableColumns; ++c)
            r(row, c + 1) = closing[c];
        row += 2;
    }
    end_report(r, title);
    return r;
}

CellMatrix woe_xcont_ycont_run(const WoeData& data, const WoeArgs& args, const std::string& title) {
    const std::size_t p = data.x.names.size();
    const bvec yw_present = both_present(data);
    const std::vector<WoeXcontBins> bins = woe_bins_ycont(
        data.x, data.y, data.w, yw_present, args.initial_bins, args.pvalue, args.max_bins);

    std::vector<dmat> tables;
    dvec missing_values(p, 0.0);
    for (std::size_t j = 0; j < p; ++j) {
        tables.push_back(bins[j].merged);
        if (args.min_records <= bins[j].missing_count)
            missing_values[j] = bins[j].missing_y / bins[j].missing_weight;
    }
    const handle_c<woeXcontYcontModel> model(
        new woeXcontYcontModel(data.x.names, tables, missing_values));

    const std::size_t section = 6 + p;
    CellMatrix r(section + section_rows(bins), 10);
    r(0, 0) = std::string(woeXcontYcontModelHandle_to_string(model));
    r(2, 0) = "Summary of Importance of Variables";
    write_row(r, 4,
              {"#", "Variable", "R-Square", "Correlation-Square", "Avg", "Stdev", "Min", "Max"});
    const std::vector<XSummary> summaries = summaries_of(data.x, data.y, yw_present);
    for (std::size_t j = 0; j < p; ++j) {
        const XSummary& s = summaries[j];
        const std::size_t row = 5 + j;
        r(row, 0) = static_cast<double>(j + 1);
        r(row, 1) = data.x.names[j];
        r(row, 2) = tables[j].back()[kWoeRSquare];
        if (s.freq > 0)
            r(row, 3) = s.correlation_square;
        write_moments(r, row, 4, s);
    }

    r(section, 0) = kTitle;
    std::size_t row = section + 2;
    for (std::size_t j = 0; j < p; ++j) {
        const dmat& table = tables[j];
        const dvec& closing = table.back();
        r(row, 0) = data.x.names[j];
        write_row(r, row + 1,
                  {"#", "xmin", "xmax", "#Total", "%Cum_n", "Ymean", "Ystd", "%Cum_Y", "Lift",
                   "R-Square"});
        write_bins(r, row + 2, table, 7);
        row += 2 + table.size() - 1;
        if (bins[j].missing_count > 0) {
            const double mean = bins[j].missing_y / bins[j].missing_weight;
            r(row, 0) = "Missing";
            r(row, 3) = bins[j].missing_weight;
            r(row, 5) = mean;
            r(row, 6) = ycont_missing_bin(bins[j])[4];
            r(row, 8) = mean * 100 / closing[kWoeMeanY];
            ++row;
        }
        r(row, 0) = "Total";
        for (std::size_t c = 0; c <= 7; ++c)
            r(row, c + 1) = closing[c];
        r(row, 9) = closing[kWoeRSquare];
        row += 2;
    }
    end_report(r, title);
    return r;
}

CellMatrix woe_xcont_ybin(const CellMatrix& x, const CellMatrix& y,
                          const CellMatrix& initialNumBins, const CellMatrix& pvalue,
                          const CellMatrix& maxNumBins, const CellMatrix& minNumRecords,
                          const CellMatrix& weight) {
    const WoeArgs args = read_woe_args(initialNumBins, pvalue, maxNumBins, minNumRecords);
    return woe_xcont_ybin_run(read_woe_data(x, y, weight), args, kTitle);
}

CellMatrix woe_xcont_ybin_from_file(const std::string& filename, const CellMatrix& xNames,
                                    const CellMatrix& yName, const CellMatrix& initialNumBins,
                                    const CellMatrix& pvalue, const CellMatrix& maxNumBins,
                                    const CellMatrix& minNumRecords, const CellMatrix& weightName,
                                    const CellMatrix& delimiter) {
    const WoeArgs args = read_woe_args(initialNumBins, pvalue, maxNumBins, minNumRecords);
    const char separator = read_delimiter(delimiter);
    return woe_xcont_ybin_run(read_woe_data(filename, xNames, yName, weightName, separator), args,
                              kTitle);
}

CellMatrix woe_xcont_ycont(const CellMatrix& x, const CellMatrix& y,
                           const CellMatrix& initialNumBins, const CellMatrix& pvalue,
                           const CellMatrix& maxNumBins, const CellMatrix& minNumRecords,
                           const CellMatrix& weight) {
    const WoeArgs args = read_woe_args(initialNumBins, pvalue, maxNumBins, minNumRecords);
    return woe_xcont_ycont_run(read_woe_data(x, y, weight), args, kTitle);
}

CellMatrix woe_xcont_ycont_from_file(const std::string& filename, const CellMatrix& xNames,
                                     const CellMatrix& yName, const CellMatrix& initialNumBins,
                                     const CellMatrix& pvalue, const CellMatrix& maxNumBins,
                                     const CellMatrix& minNumRecords, const CellMatrix& weightName,
                                     const CellMatrix& delimiter) {
    const WoeArgs args = read_woe_args(initialNumBins, pvalue, maxNumBins, minNumRecords);
    const char separator = read_delimiter(delimiter);
    return woe_xcont_ycont_run(read_woe_data(filename, xNames, yName, weightName, separator), args,
                               kTitle);
}

}  // namespace zentable
