#include "models/evaluation.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <utility>
#include <vector>

#include "numeric/distributions.hpp"
#include "numeric/incomplete_beta.hpp"
#include "xlw/report.hpp"

namespace zentable {

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kEps = 2.220446049250313e-16;

// Orders that keep every NaN together after all numbers, so that a NaN score
// cannot break the sort.
bool ascending(double a, double b) {
    return a < b || (std::isnan(b) && !std::isnan(a));
}
bool descending(double a, double b) {
    return a > b || (std::isnan(b) && !std::isnan(a));
}

struct ValuesLess {
    bool operator()(const dvec& a, const dvec& b) const {
        return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), ascending);
    }
};

// The pair counters are 32-bit, as in the reports users already hold, so
// beyond 2^31 pairs they wrap; unsigned arithmetic gives the same bits without
// undefined behaviour.
using Counter = std::uint32_t;

std::int32_t as_signed(Counter c) {
    return static_cast<std::int32_t>(c);
}

// Truncation toward zero to 32 bits; a value out of range gives the
// processor's "integer indefinite", the smallest int.
Counter truncate32(double v) {
    if (!(v > -2147483649.0 && v < 2147483648.0))
        return static_cast<Counter>(std::numeric_limits<std::int32_t>::min());
    return static_cast<Counter>(static_cast<std::int32_t>(v));
}

// Columns of a group_summary row with one class column and the analysis
// columns y and score.
enum SummaryColumn {
    kWeightSum = 3,
    kYSum = 4,
    kYMean = 7,
    kYStd = 8,
    kScoreMin = 10,
    kScoreMax = 11,
    kScoreMean = 12,
};

// The total and the groups of scores ranked from high to low.
dmat score_groups(const dmat& records, int numBins) {
    const dmat ranked = rank_groups(records, 2, numBins, -1);
    dmat summary;
    group_summary(ranked, {4}, {1, 2}, 3, false, summary);
    return summary;
}

// Hosmer-Lemeshow over the bins of a binary gains chart. A score outside 0
// to 1 can make the statistic negative; it then has no p-value.
void hosmer_lemeshow(BinaryEval& out) {
    const std::size_t rows = out.gains.empty() ? 0 : out.gains.size() - 1;
    double chi = 0.0;
    for (std::size_t i = 0; i < rows; ++i) {
        const double f = out.gains[i][1], y = out.gains[i][2], m = out.gains[i][5];
        const double d = y - m * f;
        chi += d * d / (m * f * (1.0 - m) + 1e-20);
    }
    const double df = static_cast<double>(std::max<std::size_t>(rows, 3) - 2);
    out.hl_chi_square = chi;
    if (std::isinf(chi) && chi > 0)
        out.hl_p_value = 0.0;
    else if (chi >= 0.0)
        out.hl_p_value = gammq(df * 0.5, chi * 0.5);
    else
        out.hl_p_value = kNaN;
}

void binary_gains(const dmat& records, int numBins, BinaryEval& out) {
    const dmat summary = score_groups(records, numBins);
    const dvec& total = summary[0];
    const double w = total[kWeightSum], b = total[kYSum], g = w - b;
    double cum_f = 0.0, cum_b = 0.0;
    auto cumulative = [&](dvec& row) {
        row[7] = cum_f;
        row[8] = cum_b;
        row[9] = cum_b / cum_f;
        row[10] = cum_b / b;
        row[12] = (cum_b / cum_f) / (b / w);
    };
    out.ks = 0.0;
    for (std::size_t i = 1; i < summary.size(); ++i) {
        const dvec& group = summary[i];
        cum_f += group[kWeightSum];
        cum_b += group[kYSum];
        dvec row(13);
        row[0] = static_cast<double>(i);
        row[1] = group[kWeightSum];
        row[2] = group[kYSum];
        row[3] = group[kScoreMin];
        row[4] = group[kScoreMax];
        row[5] = group[kScoreMean];
        row[6] = group[kYMean];
        cumulative(row);
        row[11] = std::fabs(cum_b / b - (cum_f - cum_b) / g);
        if (row[11] > out.ks)
            out.ks = row[11];
        out.gains.push_back(std::move(row));
    }
    dvec closing(13);
    closing[0] = 0.0;
    closing[1] = w;
    closing[2] = b;
    closing[3] = total[kScoreMin];
    closing[4] = total[kScoreMax];
    closing[5] = total[kScoreMean];
    closing[6] = total[kYMean];
    cumulative(closing);
    closing[11] = out.ks;
    out.gains.push_back(std::move(closing));
}

void cont_gains(const dmat& records, int numBins, ContEval& out) {
    const dmat summary = score_groups(records, numBins);
    const dvec& total = summary[0];
    double cum_f = 0.0, cum_y = 0.0;
    auto row_of = [&](const dvec& group, double label) {
        dvec row(9);
        row[0] = label;
        row[1] = group[kWeightSum];
        row[2] = group[kScoreMin];
        row[3] = group[kScoreMax];
        row[4] = group[kScoreMean];
        row[5] = group[kYMean];
        row[6] = group[kYStd];
        row[7] = cum_y / cum_f;
        row[8] = (cum_y / cum_f) / total[kYMean];
        return row;
    };
    for (std::size_t i = 1; i < summary.size(); ++i) {
        cum_f += summary[i][kWeightSum];
        cum_y += summary[i][kYSum];
        out.gains.push_back(row_of(summary[i], static_cast<double>(i)));
    }
    out.gains.push_back(row_of(total, 0.0));
}

// The gains header and rows from `first`, "Total" on the closing row.
void write_gains(const dmat& gains, const char* const* header, std::size_t first,
                 CellMatrix& result) {
    const std::size_t columns = gains.empty() ? 0 : gains[0].size();
    for (std::size_t j = 0; header[j]; ++j)
        result(first - 1, j) = header[j];
    for (std::size_t i = 0; i < gains.size(); ++i)
        for (std::size_t j = 0; j < columns; ++j)
            result(first + i, j) = gains[i][j];
    if (!gains.empty())
        result(first + gains.size() - 1, 0) = "Total";
}

}  // namespace

dmat rank_groups(const dmat& data, int key_column, int groups, int direction) {
    const std::size_t n = data.size();
    const std::size_t key = static_cast<std::size_t>(key_column - 1);
    std::vector<std::pair<double, std::size_t>> order(n);
    for (std::size_t i = 0; i < n; ++i)
        order[i] = {data[i][key], i};
    auto by_key = [direction](const std::pair<double, std::size_t>& a,
                              const std::pair<double, std::size_t>& b) {
        return direction > 0 ? ascending(a.first, b.first) : descending(a.first, b.first);
    };
    std::sort(order.begin(), order.end(), by_key);

    dvec code(n);
    for (std::size_t first = 0; first < n;) {
        std::size_t last = first;
        while (last + 1 < n && order[last + 1].first == order[first].first)
            ++last;
        const double rank = static_cast<double>(first + last) * 0.5 + 1.0;
        const double group =
            std::trunc(rank * static_cast<double>(groups) / (static_cast<double>(n) + 1.0));
        for (std::size_t i = first; i <= last; ++i)
            code[order[i].second] = group;
        first = last + 1;
    }

    dmat out;
    out.reserve(n);
    for (std::size_t i = 0; i < n; ++i) {
        dvec row;
        row.reserve(data[i].size() + 1);
        row.assign(data[i].begin(), data[i].end());
        row.push_back(code[i]);
        out.push_back(std::move(row));
    }
    return out;
}

void group_summary(const dmat& data, const ivec& class_columns, const ivec& analysis_columns,
                   int weight_column, bool all_ways, dmat& out) {
    struct Stat {
        double sum = 0, sum_squares = 0, min = kNaN, max = kNaN;
    };
    struct Group {
        double count = 0, weight = 0;
        std::vector<Stat> stats;
    };
    const std::size_t m = class_columns.size();
    const std::size_t a = analysis_columns.size();
    // Every subset of the class columns is a block of its own.
    if (m > 16)
        throw "group_summary takes at most 16 class columns";
    const unsigned full = (1u << m) - 1u;

    std::vector<unsigned> types;
    for (unsigned type = all_ways ? full : 0u; type <= full; ++type)
        types.push_back(type);
    std::vector<std::map<dvec, Group, ValuesLess>> blocks(types.size());

    dvec key(m);
    for (const dvec& record : data) {
        const double w =
            weight_column > 0 ? record[static_cast<std::size_t>(weight_column - 1)] : 1.0;
        for (std::size_t b = 0; b < types.size(); ++b) {
            for (std::size_t j = 0; j < m; ++j)
                key[j] = types[b] & (1u << (m - 1 - j))
                             ? record[static_cast<std::size_t>(class_columns[j] - 1)]
                             : kNaN;
            auto found = blocks[b].find(key);
            if (found == blocks[b].end()) {
                found = blocks[b].emplace(key, Group{}).first;
                found->second.stats.resize(a);
            }
            Group& group = found->second;
            group.count += 1.0;
            group.weight += w;
            for (std::size_t j = 0; j < a; ++j) {
                const double v = record[static_cast<std::size_t>(analysis_columns[j] - 1)];
                Stat& s = group.stats[j];
                if (group.count == 1.0) {
                    s.min = v;
                    s.max = v;
                } else {
                    s.min = std::min(s.min, v);
                    s.max = std::max(s.max, v);
                }
                s.sum += v * w;
                s.sum_squares += v * w * v;
            }
        }
    }
    // The empty subset stands for the total even when there are no records.
    if (!all_ways || m == 0)
        if (blocks[0].empty())
            blocks[0].emplace(dvec(m, kNaN), Group{}).first->second.stats.resize(a);

    out.clear();
    for (std::size_t b = 0; b < types.size(); ++b) {
        for (const auto& [values, group] : blocks[b]) {
            dvec row(values);
            row.reserve(m + 4 + 5 * a);
            row.push_back(types[b]);
            row.push_back(group.count);
            row.push_back(group.weight);
            for (const Stat& s : group.stats) {
                const double mean = s.sum / group.weight;
                double sd = 0.0;
                if (group.count > 1.0) {
                    double variance = (s.sum_squares / group.weight - mean * mean) * group.count /
                                      (group.count - 1.0);
                    if (variance < 0.0)
                        variance = 0.0;
                    sd = std::sqrt(variance);
                }
                row.insert(row.end(), {s.sum, s.min, s.max, mean, sd});
            }
            out.push_back(std::move(row));
        }
    }
}

void binary_eval_core(const dmat& records, int numBins, BinaryEval& out) {
    out = BinaryEval{};
    const std::size_t rows = records.size();
    const Counter n = static_cast<Counter>(rows);
    Counter n1 = 0;
    // One sort of (score, ones) pairs; the counts then come from the runs of
    // equal scores, never from pairs of records.
    std::vector<std::pair<double, Counter>> scored(rows);
    for (std::size_t i = 0; i < rows; ++i) {
        n1 += truncate32(records[i][0] + 0.1);
        scored[i] = {records[i][1], truncate32(records[i][0])};
    }
    const Counter n0 = n - n1;
    std::sort(scored.begin(), scored.end(),
              [](const auto& a, const auto& b) { return descending(a.first, b.first); });

    Counter concordant = 0, discordant = 0, tied = 0, s1 = 0, s0 = 0;
    for (std::size_t first = 0; first < rows;) {
        std::size_t last = first;
        Counter ones = scored[first].second;
        while (last + 1 < rows && scored[last + 1].first == scored[first].first)
            ones += scored[++last].second;
        const Counter zeros = static_cast<Counter>(last - first + 1) - ones;
        concordant += zeros * s1;
        discordant += ones * s0;
        tied += zeros * ones;
        s1 += ones;
        s0 += zeros;
        first = last + 1;
    }

    const double c_count = as_signed(concordant), d_count = as_signed(discordant);
    const double t_count = as_signed(tied);
    const double difference = as_signed(concordant - discordant);
    out.n = as_signed(n);
    out.n1 = as_signed(n1);
    out.n0 = as_signed(n0);
    out.pairs = as_signed(n1 * n0);
    out.concordant = c_count / out.pairs;
    out.discordant = d_count / out.pairs;
    out.tied = t_count / out.pairs;
    out.somers_d = (difference / out.n0) / out.n1;
    out.gamma = difference / static_cast<double>(as_signed(concordant + discordant));
    out.tau_a = (2.0 * difference / out.n) / (out.n - 1.0);
    out.c = (0.5 * t_count + c_count) / out.n0 / out.n1;

    double log_likelihood = 0.0;
    for (const dvec& r : records)
        log_likelihood += r[2] * (r[0] * std::log(r[1]) + (1.0 - r[0]) * std::log(1.0 - r[1]));
    out.log_likelihood = log_likelihood;

    if (numBins > 0)
        binary_gains(records, numBins, out);
    hosmer_lemeshow(out);
}

void cont_eval_core(const dmat& records, int k, int numBins, ContEval& out) {
    out = ContEval{};
    const int n = static_cast<int>(records.size());
    out.n = n;
    out.k = k;
    double w = 0.0, wy = 0.0, wp = 0.0;
    for (const dvec& r : records) {
        w += r[2];
        wy += r[2] * r[0];
        wp += r[2] * r[1];
    }
    out.w = w;
    out.y_mean = wy / w;
    out.p_mean = wp / w;
    double sst = 0.0, ssr = 0.0, sse = 0.0;
    for (const dvec& r : records) {
        const double dy = r[0] - out.y_mean, dp = r[1] - out.y_mean, e = r[0] - r[1];
        sst += r[2] * dy * dy;
        ssr += r[2] * dp * dp;
        sse += r[2] * e * e;
    }
    out.sst = sst;
    out.ssr = ssr;
    out.sse = sse;
    out.r_square = 1.0 - sse / sst;
    out.rmse = k < n ? std::sqrt(sse / (n - k)) : 0.0;
    out.coeff_var = out.rmse / out.y_mean;
    out.adj_r_square = k < n ? 1.0 - (n - 1) * (1.0 - out.r_square) / (n - k) : out.r_square;

    out.f_value = 0.0;
    out.p_value = 1.0;
    const double unexplained = 1.0 - out.r_square;
    if (k > 1 && k < n && !(unexplained >= -kEps && unexplained <= kEps))
        out.f_value = (out.r_square / unexplained) * (n - k) / (k - 1);
    if (out.f_value > 0.0) {
        const double spread = out.f_value * (k - 1);
        out.p_value = betai((n - k) * 0.5, (k - 1) * 0.5, (n - k) / (spread + (n - k)));
    }

    if (numBins > 0)
        cont_gains(records, numBins, out);
}

void write_association_rows(CellMatrix& r, std::size_t top, const BinaryEval& eval) {
    const char* const labels[4][2] = {{"%Concordant", "Somers' D"},
                                      {"%Discordant", "Gamma"},
                                      {"%Tied", "Tau-a"},
                                      {"#Pairs", "c"}};
    const double values[4][2] = {{eval.concordant, eval.somers_d},
                                 {eval.discordant, eval.gamma},
                                 {eval.tied, eval.tau_a},
                                 {eval.pairs, eval.c}};
    for (std::size_t i = 0; i < 4; ++i) {
        r(top + i, 0) = labels[i][0];
        r(top + i, 1) = values[i][0];
        r(top + i, 2) = labels[i][1];
        r(top + i, 3) = values[i][1];
    }
}

void binary_eval_table(const dmat& records, int numBins, const std::string& title,
                       const std::string& name, CellMatrix& result) {
    BinaryEval eval;
    binary_eval_core(records, numBins, eval);
    result = CellMatrix(eval.gains.size() + 8, 13);
    result(0, 0) = title + " Performance";
    write_association_rows(result, 2, eval);
    static const char* const header[] = {
        "Decile",   "Freq",    "Bad",          "Min_Score", "Max_Score", "Mean_Score", "Mean_Bad",
        "Cum_Freq", "Cum_Bad", "Cum_Bad_Rate", "Cum_Rate",  "KS",        "Cum_Lift",   nullptr};
    write_gains(eval.gains, header, 8, result);
    end_report(result, name);
}

void write_cont_eval_rows(CellMatrix& r, const ContEval& eval) {
    write_variance_rows(r, 9, eval.n, eval.k, eval.ssr, eval.sse, eval.sst, eval.f_value,
                        eval.p_value);
    r(14, 0) = "RMSE";
    r(14, 1) = eval.rmse;
    r(15, 0) = "Y-actual Mean";
    r(15, 1) = eval.y_mean;
    r(16, 0) = "Y-predicted Mean";
    r(16, 1) = eval.p_mean;
    r(17, 0) = "Coeff Var";
    r(17, 1) = eval.coeff_var;
}

void cont_eval_table(const dmat& records, int k, int numBins, const std::string& title,
                     const std::string& name, CellMatrix& result) {
    ContEval eval;
    cont_eval_core(records, k, numBins, eval);
    const int n = eval.n;
    result = CellMatrix(eval.gains.size() + 22, 9);
    result(0, 0) = title + " Performance";
    result(2, 0) = "Analysis of Variance";
    result(4, 0) = "Number of Records";
    result(4, 1) = n;
    result(5, 0) = "Number of Parameters";
    result(5, 1) = k;
    result(6, 0) = "R-Square";
    result(6, 1) = eval.r_square;
    result(7, 0) = "Adj R-Square";
    result(7, 1) = eval.adj_r_square;

    write_cont_eval_rows(result, eval);

    result(19, 0) = "Gains Chart";
    static const char* const header[] = {
        "Decile",      "Freq",       "Min_Score",       "Max_Score", "Mean_Score",
        "Mean_Actual", "Std_Actual", "Cum_Mean_Actual", "Cum_Lift",  nullptr};
    write_gains(eval.gains, header, 22, result);
    end_report(result, name);
}

}  // namespace zentable
