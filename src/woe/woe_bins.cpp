#include "woe/woe_bins.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "numeric/distributions.hpp"
#include "numeric/radix_sort.hpp"
#include "regression/weighted_regression.hpp"

namespace zentable {

namespace {

// Keeps a count of zero from dividing by zero; never enough to move a real share.
constexpr double kTiny = 1e-30;

// The neighbours at i and i + 1 become one bin at i: the range of both, and
// the counts summed.
void merge_ybin_pair(dmat& bins, std::size_t i) {
    dvec& low = bins[i];
    const dvec& high = bins[i + 1];
    low[0] = std::min(low[0], high[0]);
    low[1] = std::max(low[1], high[1]);
    low[2] += high[2];
    low[3] += high[3];
    bins.erase(bins.begin() + static_cast<std::ptrdiff_t>(i) + 1);
}

// The standard deviation of group_summary from a bin's sum of squared
// deviations: divisor records - 1 on the weighted moments, 0 for one record.
double standard_deviation_of(double count, double weight, double squares) {
    return count > 1 ? std::sqrt(squares / weight * count / (count - 1)) : 0.0;
}

// The sums of squares pool exactly: each bin's own about its mean, and the
// spread of the two means about the merged one.
void merge_ycont_pair(dmat& bins, std::size_t i) {
    dvec& low = bins[i];
    const dvec& high = bins[i + 1];
    const double n1 = low[2], m1 = low[3];
    const double n2 = high[2], m2 = high[3];
    const double n = n1 + n2;
    const double count = low[5] + high[5];
    const double squares = low[6] + high[6] + n1 * n2 * (m1 - m2) * (m1 - m2) / n;
    low[0] = std::min(low[0], high[0]);
    low[1] = std::max(low[1], high[1]);
    low[2] = n;
    low[3] = (m1 * n1 + m2 * n2) / n;
    low[4] = standard_deviation_of(count, n, squares);
    low[5] = count;
    low[6] = squares;
    bins.erase(bins.begin() + static_cast<std::ptrdiff_t>(i) + 1);
}

bool in_zero_band(double v) {
    return v >= -kZeroTolerance && v <= kZeroTolerance;
}

// Welch's test of two bins' means; a variance is made unbiased only where a
// bin has more than one unit of weight.
double ycont_pair_p_value(const dvec& low, const dvec& high) {
    const double n1 = low[2], m1 = low[3], s1 = low[4];
    const double n2 = high[2], m2 = high[3], s2 = high[4];
    double u1 = s1 * s1;
    if (n1 > 1)
        u1 *= n1 / (n1 - 1);
    double u2 = s2 * s2;
    if (n2 > 1)
        u2 *= n2 / (n2 - 1);
    const double d = m1 - m2;
    if (in_zero_band(d))
        return 1.0;
    const double q1 = u1 / n1, q2 = u2 / n2, q = q1 + q2;
    if (in_zero_band(q))
        return 0.0;
    const double t = std::fabs(d) / std::sqrt(q);
    double df;
    if (n1 > 1 && n2 > 1) {
        df = q * q / (q1 * q1 / (n1 - 1) + q2 * q2 / (n2 - 1));
    } else {
        df = n1 + n2 - 2;
        if (df < 1)
            df = 1;
    }
    return t_two_sided_p_value(t, df);
}

// The closing row's range: that of the first and the last bins.
void closing_range(const dmat& bins, dvec& closing) {
    if (bins.empty())
        return;
    closing[kWoeXMin] = std::min(bins.front()[0], bins.back()[0]);
    closing[kWoeXMax] = std::max(bins.front()[1], bins.back()[1]);
}

// The order-keeping key of a double. Zero has one key whatever its sign, so
// that equal values have equal keys.
std::uint64_t key_of(double value) {
    return order_key(value == 0.0 ? 0.0 : value);
}

// The keys of x in ascending order, in scratch.keys.
void sort_keys(const dvec& x, GroupScratch& scratch) {
    const std::size_t n = x.size();
    scratch.keys.resize(n);
    scratch.spare.resize(n);
    for (std::size_t i = 0; i < n; ++i)
        scratch.keys[i] = key_of(x[i]);
    if (radix_sort_keys(scratch.keys.data(), scratch.spare.data(), n))
        scratch.keys.swap(scratch.spare);
}

// The first upper edge at or above x, without branches to mispredict.
std::size_t group_of(const double* upper, std::size_t size, double x) {
    const double* base = upper;
    while (size > 1) {
        const std::size_t half = size / 2;
        base = base[half] < x ? base + half : base;
        size -= half;
    }
    return static_cast<std::size_t>(base - upper) + (*base < x ? 1 : 0);
}

}  // namespace

dmat woe_merge_ybin(dmat bins, double pvalue, int maxNumBins) {
    const double cut = chi_square_quantile(1.0 - pvalue, 1.0);
    while (bins.size() >= 2) {
        std::size_t best = 0;
        double smallest = 0.0;
        for (std::size_t i = 0; i + 1 < bins.size(); ++i) {
            const double a = bins[i][2], b = bins[i][3];
            const double e = bins[i + 1][2], f = bins[i + 1][3];
            const double d = a * f - b * e;
            const double chi = ((a + b + e + f) * d * d / (a + b + kTiny)) / (f + e + kTiny) /
                               (a + e + kTiny) / (f + b + kTiny);
            if (i == 0 || chi < smallest) {
                smallest = chi;
                best = i;
            }
        }
        if (smallest >= cut && bins.size() <= static_cast<std::size_t>(maxNumBins))
            break;
        merge_ybin_pair(bins, best);
    }
    return bins;
}

dmat woe_merge_ycont(dmat bins, double pvalue, int maxNumBins) {
    while (bins.size() >= 2) {
        std::size_t best = 0;
        double largest = 0.0;
        for (std::size_t i = 0; i + 1 < bins.size(); ++i) {
            const double p = ycont_pair_p_value(bins[i], bins[i + 1]);
            if (p > largest) {
                largest = p;
                best = i;
            }
        }
        if (largest <= pvalue && bins.size() <= static_cast<std::size_t>(maxNumBins))
            break;
        merge_ycont_pair(bins, best);
    }
    return bins;
}

WoeShares woe_shares(double n1, double n0, double t1, double t0) {
    WoeShares s;
    s.r1 = n1 / t1;
    s.r0 = n0 / t0;
    s.woe = std::log((kTiny + s.r1) / (s.r0 + kTiny));
    s.info_value = s.woe * (s.r1 - s.r0);
    return s;
}

dmat woe_table_ybin(const dmat& bins, const dvec& missing) {
    if (bins.empty() && missing.empty())
        return dmat(1, dvec(kWoeTableColumns, 0.0));
    double n1_bins = 0.0, n0_bins = 0.0;
    for (const dvec& bin : bins) {
        n1_bins += bin[2];
        n0_bins += bin[3];
    }
    const double m1 = missing.empty() ? 0.0 : missing[2];
    const double m0 = missing.empty() ? 0.0 : missing[3];
    const double n1_total = n1_bins + m1, n0_total = n0_bins + m0;
    const double t1 = n1_total + kTiny, t0 = n0_total + kTiny;
    // The cumulative shares and the KS describe the order of x, which the
    // missing group has no place in.
    const double cum1 = n1_bins + kTiny, cum0 = n0_bins + kTiny;
    dmat table;
    table.reserve(bins.size() + 1);
    double c1 = 0.0, c0 = 0.0, info_value = 0.0, ks_max = 0.0;
    for (const dvec& bin : bins) {
        const double n1 = bin[2], n0 = bin[3];
        c1 += n1;
        c0 += n0;
        const WoeShares s = woe_shares(n1, n0, t1, t0);
        const double ks = std::fabs((c1 / cum1) - (c0 / cum0));
        table.push_back({bin[0], bin[1], n1 + n0, n1, c1 / cum1, n0, c0 / cum0,
                         s.r1 * 100 / (s.r0 + kTiny), n1 / (n1 + n0 + kTiny), s.woe, s.info_value,
                         ks});
        info_value += s.info_value;
        ks_max = std::max(ks_max, ks);
    }
    if (!missing.empty())
        info_value += woe_shares(m1, m0, t1, t0).info_value;
    dvec closing = {0.0,      0.0,        n1_total + n0_total,
                    n1_total, 1.0,        n0_total,
                    1.0,      100.0,      n1_total / (n1_total + n0_total + kTiny),
                    0.0,      info_value, ks_max};
    closing_range(bins, closing);
    table.push_back(std::move(closing));
    return table;
}

dmat woe_table_ycont(const dmat& bins, const dvec& missing) {
    if (bins.empty() && missing.empty())
        return dmat(1, dvec(kWoeTableColumns, 0.0));
    double n_bins = 0.0, ny_bins = 0.0;
    for (const dvec& bin : bins) {
        n_bins += bin[2];
        ny_bins += bin[2] * bin[3];
    }
    double n_total = n_bins, ny = ny_bins;
    if (!missing.empty()) {
        n_total += missing[2];
        ny += missing[2] * missing[3];
    }
    const double ybar = ny / n_total;
    // The one-way analysis of variance of the groups, the missing one among
    // them: the total is the target's own spread whatever x is.
    double within = 0.0, between = 0.0, records = 0.0;
    auto add_group = [&](const dvec& bin) {
        within += bin[6];
        between += bin[2] * (bin[3] - ybar) * (bin[3] - ybar);
        records += bin[5];
    };
    for (const dvec& bin : bins)
        add_group(bin);
    if (!missing.empty())
        add_group(missing);
    const double total_squares = within + between;
    const double sy = standard_deviation_of(records, n_total, total_squares);

    // The cumulative shares and their gaps describe the order of x, which the
    // missing group has no place in.
    const double ybar_bins = ny_bins / n_bins;
    dmat table;
    table.reserve(bins.size() + 1);
    double cn = 0.0, cy = 0.0, low = 100.0, high = -100.0;
    for (const dvec& bin : bins) {
        const double n = bin[2], m = bin[3], s = bin[4];
        cn += n;
        cy += n * m;
        const double n_share = cn / n_bins;
        const double y_share = cy / (ybar_bins * n_bins);
        const double gap = n_share - y_share;
        low = std::min(low, gap);
        high = std::max(high, gap);
        table.push_back(
            {bin[0], bin[1], n, n_share, m, s, y_share, m * 100 / ybar, gap, low, high, 0.0});
    }
    const double r_square = between / total_squares;
    dvec closing = {0.0, 0.0, n_total, 1.0, ybar, sy, 1.0, 100.0, 0.0, low, high, r_square};
    closing_range(bins, closing);
    table.push_back(std::move(closing));
    return table;
}

double woe_apply_value(const dmat& table, std::size_t value_column, double x) {
    const std::size_t bins = table.size() - 1;
    if (bins == 0)
        return 0.0;
    if (bins == 1)
        return table[0][value_column];
    if (x > table[bins - 2][kWoeXMax])
        return table[bins - 1][value_column];
    std::size_t b = 0;
    while (table[b][kWoeXMax] < x)
        ++b;
    return table[b][value_column];
}

dvec woe_apply_xcont(const dmat& table, std::size_t value_column, double missing_value,
                     const dvec& x, const std::vector<bool>& present) {
    dvec out(x.size());
    for (std::size_t i = 0; i < x.size(); ++i)
        out[i] = present[i] ? woe_apply_value(table, value_column, x[i]) : missing_value;
    return out;
}

std::vector<RankedGroup> rank_x_groups(const dvec& x, const dvec& y, const dvec& w, int groups) {
    GroupScratch scratch;
    return rank_x_groups(x, y, w, groups, scratch);
}

std::vector<RankedGroup> rank_x_groups(const dvec& x, const dvec& y, const dvec& w, int groups,
                                       GroupScratch& scratch) {
    const std::size_t n = x.size();
    std::vector<RankedGroup> out;
    if (n == 0)
        return out;
    // Only the runs of equal values matter to the codes, so the values are
    // sorted without their record numbers.
    sort_keys(x, scratch);
    const std::vector<std::uint64_t>& sorted = scratch.keys;
    dvec upper;  // the largest x of each group present, ascending
    std::vector<double> codes;
    for (std::size_t first = 0; first < n;) {
        std::size_t last = first;
        while (last + 1 < n && sorted[last + 1] == sorted[first])
            ++last;
        const double rank = static_cast<double>(first + last) * 0.5 + 1.0;
        const double code =
            std::trunc(rank * static_cast<double>(groups) / (static_cast<double>(n) + 1.0));
        if (codes.empty() || code != codes.back()) {
            codes.push_back(code);
            upper.push_back(0.0);
            RankedGroup g;
            g.x_min = key_value(sorted[first]);
            out.push_back(g);
        }
        upper.back() = key_value(sorted[last]);
        out.back().x_max = upper.back();
        first = last + 1;
    }
    // Groups are runs of the sorted values, so the first upper edge at or
    // above a value names its group; the sums then run in record order.
    for (std::size_t i = 0; i < n; ++i) {
        RankedGroup& group = out[group_of(upper.data(), upper.size(), x[i])];
        const double v = y[i], weight = w[i];
        group.count += 1.0;
        group.weight += weight;
        group.y_sum += v * weight;
        group.y_squares += v * weight * v;
    }
    return out;
}

double group_standard_deviation(double count, double weight, double sum, double squares) {
    if (count <= 1.0)
        return 0.0;
    const double mean = sum / weight;
    double variance = (squares / weight - mean * mean) * count / (count - 1.0);
    if (variance < 0.0)
        variance = 0.0;
    return std::sqrt(variance);
}

dmat ybin_bins_of(const std::vector<RankedGroup>& groups) {
    dmat bins;
    bins.reserve(groups.size());
    for (const RankedGroup& g : groups)
        bins.push_back({g.x_min, g.x_max, g.y_sum, g.weight - g.y_sum});
    return bins;
}

dvec ycont_bin(double x_min, double x_max, double count, double weight, double sum,
               double squares) {
    const double mean = sum / weight;
    const double deviations = std::max(0.0, squares / weight - mean * mean) * weight;
    return {x_min, x_max,     weight, mean, group_standard_deviation(count, weight, sum, squares),
            count, deviations};
}

dmat ycont_bins_of(const std::vector<RankedGroup>& groups) {
    dmat bins;
    bins.reserve(groups.size());
    for (const RankedGroup& g : groups)
        bins.push_back(ycont_bin(g.x_min, g.x_max, g.count, g.weight, g.y_sum, g.y_squares));
    return bins;
}

}  // namespace zentable
