#include "multivariate/k_means.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <set>
#include <string>
#include <vector>

#include "../support/tables.hpp"
#include "numeric/random.hpp"

using namespace zentable;

namespace {

// Records around `centers`, record i drawn around center i mod the count.
dmat groups_around(const dmat& centers, std::size_t records, double spread, unsigned long seed) {
    MersenneTwister g(seed);
    dmat data(records, dvec(centers[0].size()));
    for (std::size_t i = 0; i < records; ++i)
        for (std::size_t v = 0; v < data[i].size(); ++v)
            data[i][v] = centers[i % centers.size()][v] + spread * normal_draw(g);
    return data;
}

CellMatrix run(const dmat& data, double k, double seed) {
    std::vector<std::string> names(data[0].size(), "v");
    return k_means(zentable::testing::table_with_header(names, data), CellMatrix(k),
                   CellMatrix(seed), CellMatrix(1.0));
}

// The cluster of record i, from 0, in a report of k clusters.
int cluster_of(const CellMatrix& r, std::size_t k, std::size_t i) {
    return static_cast<int>(r(k + 11 + i, 0).NumericValue()) - 1;
}

double squared_distance(const dvec& a, const dvec& b) {
    double s = 0.0;
    for (std::size_t v = 0; v < a.size(); ++v)
        s += (a[v] - b[v]) * (a[v] - b[v]);
    return s;
}

}  // namespace

TEST(KMeans, RecoversWellSeparatedGroups) {
    const dmat data = groups_around({{0, 0}, {100, 0}, {0, 100}, {100, 100}}, 120, 1.0, 11);
    const CellMatrix r = run(data, 4, 100);
    std::set<int> used;
    for (std::size_t g = 0; g < 4; ++g) {
        for (std::size_t i = g; i < data.size(); i += 4)
            EXPECT_EQ(cluster_of(r, 4, i), cluster_of(r, 4, g)) << "record " << i;
        used.insert(cluster_of(r, 4, g));
    }
    EXPECT_EQ(used.size(), 4u);
}

// The start drawn here with the generator's formula, then Lloyd's loop in
// its plainest form, which stops only where every record is nearest its own
// center and each center is its records' mean: the command must reach the
// same table, also where it splits the work between threads, and again for
// the same seed; T and W are the sums of the final assignment.
TEST(KMeans, ReachesThePlainLoopFromTheDrawnStart) {
    const dmat data = groups_around({{0, 0, 0, 0}, {2, 0, 1, 0}, {0, 2, 0, 1}}, 30000, 1.5, 3);
    const std::size_t k = 4, n = data.size(), p = 4;
    std::vector<int> cluster(n);
    std::uint32_t state = 36;
    for (std::size_t i = 0; i < n; ++i) {
        state = i < k ? state : state * 214013u + 2531011u;
        const double draw = static_cast<double>((state >> 16) & 0x7FFF);
        cluster[i] = i < k
                         ? static_cast<int>(i)
                         : static_cast<int>(static_cast<long long>((draw + 1.0) / 32769.0 * n) % k);
    }
    dmat centers;
    for (bool changed = true; changed;) {
        centers.assign(k, dvec(p, 0.0));
        std::vector<int> counts(k, 0);
        for (std::size_t i = 0; i < n; ++i) {
            ++counts[static_cast<std::size_t>(cluster[i])];
            for (std::size_t v = 0; v < p; ++v)
                centers[static_cast<std::size_t>(cluster[i])][v] += data[i][v];
        }
        for (std::size_t c = 0; c < k; ++c)
            for (double& v : centers[c])
                v = counts[c] == 0 ? 0.0 : v / counts[c];
        changed = false;
        for (std::size_t i = 0; i < n; ++i) {
            double best = 9.99e99;
            int nearest = 0;
            for (std::size_t c = 0; c < k; ++c) {
                const double d = squared_distance(data[i], centers[c]);
                if (d < best) {
                    best = d;
                    nearest = static_cast<int>(c);
                }
            }
            changed = changed || nearest != cluster[i];
            cluster[i] = nearest;
        }
    }
    long double total = 0.0L, within = 0.0L;
    dvec mean(p, 0.0);
    for (const dvec& row : data)
        for (std::size_t v = 0; v < p; ++v)
            mean[v] += row[v] / static_cast<double>(n);
    for (std::size_t i = 0; i < n; ++i) {
        total += squared_distance(data[i], mean);
        within += squared_distance(data[i], centers[static_cast<std::size_t>(cluster[i])]);
    }

    for (const CellMatrix& r : {run(data, 4, 36), run(data, 4, 36)}) {
        for (std::size_t i = 0; i < n; ++i)
            ASSERT_EQ(cluster_of(r, k, i), cluster[i]) << "record " << i;
        for (std::size_t c = 0; c < k; ++c)
            for (std::size_t v = 0; v < p; ++v)
                EXPECT_EQ(r(c + 3, v + 2).NumericValue(), centers[c][v]);
        EXPECT_NEAR(r(k + 5, 1).NumericValue(), static_cast<double>(total), 1e-12 * total);
        EXPECT_NEAR(r(k + 6, 1).NumericValue(), static_cast<double>(within), 1e-12 * within);
    }
}

// The loop has no limit on rounds, so data that are not finite must still
// end it: NaN and infinite distances are never nearer than the start value.
TEST(KMeans, EndsOnCellsThatAreNotFinite) {
    dmat data = groups_around({{0, 0}, {5, 5}}, 40, 1.0, 9);
    data[3][0] = std::numeric_limits<double>::quiet_NaN();
    data[8][1] = std::numeric_limits<double>::infinity();
    data[17][0] = -std::numeric_limits<double>::infinity();
    for (double k : {1.0, 2.0, 3.0})
        EXPECT_EQ(run(data, k, 100)(0, 0).StringValue(), "k_means clustering");
}
