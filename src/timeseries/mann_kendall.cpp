#include "timeseries/mann_kendall.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <thread>

#include "numeric/distributions.hpp"
#include "timeseries/series.hpp"
#include "xlw/cell_conversions.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

namespace {

constexpr const char* kFrequency = "Input frequency must be a positive integer";
// Runs shorter than this are sorted by insertion first; its shifts count the
// pairs out of order just as the merges do.
constexpr std::size_t kInsertionRun = 16;
// Below this a second thread costs more than it saves.
constexpr std::size_t kParallelSize = std::size_t{1} << 16;

std::int64_t insertion_sort_run(double* v, std::size_t size) {
    std::int64_t out_of_order = 0;
    for (std::size_t i = 1; i < size; ++i) {
        const double value = v[i];
        std::size_t j = i;
        while (j > 0 && v[j - 1] > value) {
            v[j] = v[j - 1];
            --j;
        }
        out_of_order += static_cast<std::int64_t>(i - j);
        v[j] = value;
    }
    return out_of_order;
}

// Merges two sorted runs, counting the pairs whose left value is strictly
// greater; an equal pair is a tie, not a pair out of order.
std::int64_t merge_runs(const double* left, std::size_t nl, const double* right, std::size_t nr,
                        double* out) {
    std::int64_t out_of_order = 0;
    std::size_t i = 0, j = 0, k = 0;
    while (i < nl && j < nr) {
        if (right[j] < left[i]) {
            out_of_order += static_cast<std::int64_t>(nl - i);
            out[k++] = right[j++];
        } else {
            out[k++] = left[i++];
        }
    }
    while (i < nl) {
        out[k++] = left[i++];
    }
    while (j < nr) {
        out[k++] = right[j++];
    }
    return out_of_order;
}

// Sorts v in place by runs and bottom-up merges through the buffer, and
// returns the number of pairs that were out of order.
std::int64_t sort_counting(double* v, double* buffer, std::size_t n) {
    std::int64_t out_of_order = 0;
    for (std::size_t start = 0; start < n; start += kInsertionRun) {
        out_of_order += insertion_sort_run(v + start, std::min(kInsertionRun, n - start));
    }
    double* from = v;
    double* to = buffer;
    for (std::size_t width = kInsertionRun; width < n; width *= 2) {
        for (std::size_t start = 0; start < n; start += 2 * width) {
            const std::size_t mid = std::min(start + width, n);
            const std::size_t end = std::min(start + 2 * width, n);
            out_of_order +=
                merge_runs(from + start, mid - start, from + mid, end - mid, to + start);
        }
        std::swap(from, to);
    }
    if (from != v) {
        std::copy(from, from + n, v);
    }
    return out_of_order;
}

int read_frequency(const CellMatrix& frequency) {
    int value = 1;
    if (!is_omitted(frequency)) {
        read_int(frequency, kFrequency, value);
    }
    if (value <= 0) {
        throw kFrequency;
    }
    return value;
}

}  // namespace

KendallCount kendall_count(const dvec& x) {
    const std::size_t n = x.size();
    // Both working copies in one block that may be backed by huge pages: on
    // millions of points the first touch of small pages costs more than the
    // merges.
    CellArena block(2 * n * sizeof(double) + 64);
    double* a = static_cast<double*>(block.take(n * sizeof(double)));
    double* buffer = static_cast<double*>(block.take(n * sizeof(double)));
    std::copy(x.begin(), x.end(), a);
    std::int64_t out_of_order = 0;
    if (n >= kParallelSize) {
        // The halves sort in two threads, each counting its own pairs out of
        // order; the last merge counts the pairs across them.
        const std::size_t half = n / 2;
        std::int64_t right_count = 0;
        std::thread right([&] { right_count = sort_counting(&a[half], &buffer[half], n - half); });
        out_of_order = sort_counting(a, buffer, half);
        right.join();
        out_of_order += right_count;
        out_of_order += merge_runs(a, half, a + half, n - half, buffer);
        std::swap(a, buffer);
    } else {
        out_of_order = sort_counting(a, buffer, n);
    }

    KendallCount count;
    std::int64_t tied = 0;
    for (std::size_t i = 0; i < n;) {
        std::size_t j = i + 1;
        while (j < n && a[j] == a[i]) {
            ++j;
        }
        const auto t = static_cast<std::int64_t>(j - i);
        if (t > 1) {
            count.tie_groups.push_back(t);
            tied += t * (t - 1) / 2;
        }
        i = j;
    }
    const auto size = static_cast<std::int64_t>(n);
    count.s = size * (size - 1) / 2 - tied - 2 * out_of_order;
    return count;
}

CellMatrix Mann_Kendall_trend_test(const CellMatrix& x, const CellMatrix& frequency) {
    const Series series = read_series(x, series_texts("x"));
    // The counts run over the whole series whatever the period; the argument
    // is checked so that a mistyped one does not pass unseen.
    read_frequency(frequency);

    const KendallCount count = kendall_count(series.values);
    const double n = static_cast<double>(series.values.size());
    const double s = static_cast<double>(count.s);
    double variance = n * (n - 1.0) * (2.0 * n + 5.0) / 18.0;
    double a = n * (n - 1.0) * 0.5;
    for (std::int64_t size : count.tie_groups) {
        const double t = static_cast<double>(size);
        variance -= t * (t - 1.0) * (2.0 * t + 5.0) / 18.0;
        a -= t * (t - 1.0) * 0.5;
    }
    const double d = std::sqrt(n * (n - 1.0) * 0.5 * a);
    const double tau = s / d;
    double z = 0.0;
    if (count.s > 0) {
        z = (s - 1.0) / std::sqrt(variance);
    } else if (count.s < 0) {
        z = (s + 1.0) / std::sqrt(variance);
    }
    const double p_value = 2.0 * normal_upper(std::fabs(z));

    CellMatrix table(7, 2);
    table(0, 0) = "Mann-Kendall trend test";
    const char* const labels[] = {"S", "Variance of S", "D", "tau", "Z", "p-value"};
    const double values[] = {s, variance, d, tau, z, p_value};
    for (std::size_t i = 0; i < 6; ++i) {
        table(i + 1, 0) = labels[i];
        table(i + 1, 1) = values[i];
    }
    return table;
}

}  // namespace zentable
