#include "multivariate/kaplan_meier.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <utility>

namespace zentable {
namespace {

std::uint64_t bits_of(double v) {
    std::uint64_t b;
    std::memcpy(&b, &v, sizeof b);
    return b;
}

// The radix sort against the library's sort, bit for bit, on whole days with
// many ties (three passes), on doubles of every sign and scale (all six), and
// on short lists (the library's sort itself).
TEST(SortTimes, OrdersAsTheLibrarySortDoes) {
    std::mt19937_64 gen(37);
    std::vector<dvec> cases;
    dvec days(100000);
    for (double& d : days)
        d = static_cast<double>(gen() % 3650 + 1);
    cases.push_back(days);
    dvec wide(50000);
    for (double& w : wide) {
        const std::uint64_t b = gen();
        std::memcpy(&w, &b, sizeof w);
        if (std::isnan(w) || w == 0.0)
            w = -1.5;
    }
    wide[7] = std::numeric_limits<double>::infinity();
    wide[8] = -std::numeric_limits<double>::infinity();
    wide[9] = std::numeric_limits<double>::denorm_min();
    cases.push_back(wide);
    cases.push_back({3.0, -2.0, 3.0, 0.5});
    for (const dvec& c : cases) {
        dvec radix = c, library = c, scratch(c.size());
        sort_times(radix.data(), radix.size(), scratch.data());
        std::sort(library.begin(), library.end());
        ASSERT_EQ(radix.size(), library.size());
        for (std::size_t i = 0; i < radix.size(); ++i)
            ASSERT_EQ(bits_of(radix[i]), bits_of(library[i])) << "at " << i;
    }
}

// The walk in its plainest form: records sorted by time, each status added to d
// and 1 - status to c, a time closed when the next time differs. Counts are
// doubles here, so that a product of counts cannot wrap.
std::vector<SurvivalRow> walk_as_written(std::vector<std::pair<double, int>> records) {
    std::sort(records.begin(), records.end(),
              [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<SurvivalRow> rows;
    double n = static_cast<double>(records.size()), s = 1.0, g = 0.0, d = 0.0, c = 0.0;
    for (std::size_t i = 0; i < records.size(); ++i) {
        d += records[i].second;
        c += 1 - records[i].second;
        if (i + 1 < records.size() && records[i + 1].first == records[i].first)
            continue;
        s = s * (n - d) / n;
        if (n - d > 0)
            g += d / (n * (n - d));
        SurvivalRow row;
        row.time = records[i].first;
        row.at_risk = static_cast<int>(n);
        row.events = static_cast<int>(d);
        row.censored = static_cast<int>(c);
        row.survival = s;
        row.std_error = s * std::sqrt(g);
        row.lower = std::max(s - 1.96 * row.std_error, 0.0);
        row.upper = std::min(s + 1.96 * row.std_error, 1.0);
        rows.push_back(row);
        n = std::trunc(n - d - c);
        d = c = 0.0;
    }
    return rows;
}

// The two sorted lists walked together give the plain walk's rows bit for bit, on
// enough records that n (n - d) passes the range of an int.
TEST(SurvivalRows, EqualTheWalkOverSortedRecords) {
    std::mt19937 gen(5);
    for (std::size_t n : {1u, 9u, 2000u, 70000u}) {
        std::vector<std::pair<double, int>> records(n);
        dvec events, censored;
        for (auto& r : records) {
            r.first = static_cast<double>(gen() % 60) - 5.0;  // ties, and times below 0
            r.second = gen() % 4 != 0 ? 1 : 0;
            (r.second == 1 ? events : censored).push_back(r.first);
        }
        std::sort(events.begin(), events.end());
        std::sort(censored.begin(), censored.end());
        const std::vector<SurvivalRow> merged =
            survival_rows({events.data(), events.size()}, {censored.data(), censored.size()});
        const std::vector<SurvivalRow> reference = walk_as_written(records);
        ASSERT_EQ(merged.size(), reference.size());
        for (std::size_t i = 0; i < merged.size(); ++i) {
            const SurvivalRow &a = merged[i], &b = reference[i];
            ASSERT_EQ(a.time, b.time);
            ASSERT_EQ(a.at_risk, b.at_risk);
            ASSERT_EQ(a.events, b.events);
            ASSERT_EQ(a.censored, b.censored);
            ASSERT_EQ(bits_of(a.survival), bits_of(b.survival)) << "n " << n << ", row " << i;
            ASSERT_EQ(bits_of(a.std_error), bits_of(b.std_error)) << "n " << n << ", row " << i;
            ASSERT_EQ(bits_of(a.lower), bits_of(b.lower));
            ASSERT_EQ(bits_of(a.upper), bits_of(b.upper));
        }
    }
}

}  // namespace
}  // namespace zentable
