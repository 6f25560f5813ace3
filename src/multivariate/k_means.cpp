#include "multivariate/k_means.hpp"

#include <algorithm>
#include <cmath>
#include <condition_variable>
#include <cstddef>
#include <cstring>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "data/delimited_file.hpp"
#include "numeric/random.hpp"
#include "xlw/decoders.hpp"
#include "xlw/report.hpp"

namespace zentable {

namespace {

constexpr const char* kBadClusters = "numClusters must be a positive integer";
constexpr const char* kBadSeed = "seed must be an integer";
constexpr const char* kBadShow = "Input showAssignments must be either 1 or 0";
constexpr const char* kTooManyClusters =
    "The number of clusters cannot be more than the number of data points";
constexpr const char* kNamesMissing = "Error: variable names (varNames) are missing";

// Below this many distance terms a round, a second thread costs more than it saves.
constexpr std::size_t kParallelTerms = 1 << 18;

// Above any distance that finite data of sensible size can give: a record
// with no distance below it (only infinite or NaN ones) goes to the first cluster.
constexpr double kFar = 9.99e99;

// A second thread kept for the whole iteration: starting one for each half of
// every round would cost the kernel more than the round's own work.
class Helper {
  public:
    Helper() : thread_([this] { serve(); }) {}
    ~Helper() {
        {
            std::lock_guard<std::mutex> lock(mutex_);
            stop_ = true;
        }
        wake_.notify_all();
        thread_.join();
    }
    Helper(const Helper&) = delete;
    Helper& operator=(const Helper&) = delete;

    // Runs `theirs` on the helper and `mine` here, and returns when both are done.
    void both(const std::function<void()>& theirs, const std::function<void()>& mine) {
        {
            std::lock_guard<std::mutex> lock(mutex_);
            task_ = &theirs;
        }
        wake_.notify_all();
        mine();
        std::unique_lock<std::mutex> lock(mutex_);
        wake_.wait(lock, [this] { return task_ == nullptr; });
    }

  private:
    void serve() {
        std::unique_lock<std::mutex> lock(mutex_);
        for (;;) {
            wake_.wait(lock, [this] { return task_ != nullptr || stop_; });
            if (stop_)
                return;
            lock.unlock();
            (*task_)();
            lock.lock();
            task_ = nullptr;
            wake_.notify_all();
        }
    }

    std::mutex mutex_;
    std::condition_variable wake_;
    const std::function<void()>* task_ = nullptr;
    bool stop_ = false;
    std::thread thread_;  // last, so that it starts on a finished object
};

struct Options {
    int clusters = 0;
    int seed = 100;
    bool show = false;
};

Options read_options(const CellMatrix& numClusters, const CellMatrix& seed,
                     const CellMatrix& showAssignments) {
    Options o;
    read_int_required(numClusters, kBadClusters, o.clusters);
    if (o.clusters < 1)
        throw kBadClusters;
    read_int(seed, kBadSeed, o.seed);
    int show = 0;
    read_int(showAssignments, kBadShow, show);
    if (show != 0 && show != 1)
        throw kBadShow;
    o.show = show == 1;
    return o;
}

// The records in one flat row-major block, and the centers transposed
// (variable by cluster), so that one pass over a record's values advances
// the distances to every cluster at once, each still summed over the
// variables in order.
struct Workspace {
    std::size_t n = 0, p = 0, k = 0;
    dvec values;                     // n by p
    dvec centers;                    // p by k
    std::unique_ptr<Helper> helper;  // only where two threads pay
};

bool worth_two_threads(const Workspace& w) {
    return w.n * w.p * w.k >= kParallelTerms && std::thread::hardware_concurrency() > 1;
}

// The sums of variables [first, last) per cluster, each in record order.
void sum_variables(const Workspace& w, const ivec& cluster, std::size_t first, std::size_t last,
                   dvec& sums) {
    for (std::size_t i = 0; i < w.n; ++i) {
        const double* x = &w.values[i * w.p];
        double* s = &sums[static_cast<std::size_t>(cluster[i]) * w.p];
        for (std::size_t v = first; v < last; ++v)
            s[v] += x[v];
    }
}

void set_centers(Workspace& w, const ivec& cluster, ivec& counts) {
    std::fill(counts.begin(), counts.end(), 0);
    for (int c : cluster)
        ++counts[static_cast<std::size_t>(c)];
    dvec sums(w.k * w.p, 0.0);  // k by p
    // Each sum runs over the records in order whichever thread adds it, so
    // the variables can be shared out; the second thread adds into a block
    // of its own, as two threads writing one cache line would stall each other.
    if (w.helper && w.p > 1) {
        const std::size_t half = w.p / 2;
        dvec first_sums(w.k * w.p, 0.0);
        w.helper->both([&] { sum_variables(w, cluster, 0, half, first_sums); },
                       [&] { sum_variables(w, cluster, half, w.p, sums); });
        for (std::size_t c = 0; c < w.k; ++c)
            for (std::size_t v = 0; v < half; ++v)
                sums[c * w.p + v] = first_sums[c * w.p + v];
    } else {
        sum_variables(w, cluster, 0, w.p, sums);
    }
    for (std::size_t c = 0; c < w.k; ++c)
        for (std::size_t v = 0; v < w.p; ++v)
            w.centers[v * w.k + c] = counts[c] == 0 ? 0.0 : sums[c * w.p + v] / counts[c];
}

// Two doubles in one register: each lane does the scalar arithmetic of its
// own cluster, so the distances are bit for bit those of the scalar loop.
typedef double Pair __attribute__((vector_size(16)));

Pair load_pair(const double* at) {
    Pair p;
    std::memcpy(&p, at, sizeof p);
    return p;
}

// One record's squared distances to the clusters [first, first + 4), each
// the sum over the variables in order.
void distances_of_four(const Workspace& w, const double* x, std::size_t first, double* out) {
    Pair low = {0.0, 0.0}, high = {0.0, 0.0};
    const double* center = &w.centers[first];
    for (std::size_t v = 0; v < w.p; ++v, center += w.k) {
        const Pair xv = {x[v], x[v]};
        const Pair t0 = xv - load_pair(center);
        const Pair t1 = xv - load_pair(center + 2);
        low += t0 * t0;
        high += t1 * t1;
    }
    std::memcpy(out, &low, sizeof low);
    std::memcpy(out + 2, &high, sizeof high);
}

// The same for the clusters [first, first + 8): four independent sums in
// flight hide the latency of each addition.
void distances_of_eight(const Workspace& w, const double* x, std::size_t first, double* out) {
    Pair d0 = {0.0, 0.0}, d1 = {0.0, 0.0}, d2 = {0.0, 0.0}, d3 = {0.0, 0.0};
    const double* center = &w.centers[first];
    for (std::size_t v = 0; v < w.p; ++v, center += w.k) {
        const Pair xv = {x[v], x[v]};
        const Pair t0 = xv - load_pair(center);
        const Pair t1 = xv - load_pair(center + 2);
        const Pair t2 = xv - load_pair(center + 4);
        const Pair t3 = xv - load_pair(center + 6);
        d0 += t0 * t0;
        d1 += t1 * t1;
        d2 += t2 * t2;
        d3 += t3 * t3;
    }
    std::memcpy(out, &d0, sizeof d0);
    std::memcpy(out + 2, &d1, sizeof d1);
    std::memcpy(out + 4, &d2, sizeof d2);
    std::memcpy(out + 6, &d3, sizeof d3);
}

// Assigns records [begin, end) to their nearest centers; true when any moved.
bool assign_range(const Workspace& w, ivec& cluster, std::size_t begin, std::size_t end) {
    bool changed = false;
    dvec distance(w.k);
    const std::size_t eights = w.k / 8 * 8;
    const std::size_t blocks = w.k / 4 * 4;
    for (std::size_t i = begin; i < end; ++i) {
        const double* x = &w.values[i * w.p];
        for (std::size_t c = 0; c < eights; c += 8)
            distances_of_eight(w, x, c, &distance[c]);
        for (std::size_t c = eights; c < blocks; c += 4)
            distances_of_four(w, x, c, &distance[c]);
        for (std::size_t c = blocks; c < w.k; ++c) {
            double d = 0.0;
            for (std::size_t v = 0; v < w.p; ++v) {
                const double t = x[v] - w.centers[v * w.k + c];
                d += t * t;
            }
            distance[c] = d;
        }
        double best = kFar;
        int nearest = 0;
        for (std::size_t c = 0; c < w.k; ++c) {
            if (distance[c] < best) {
                best = distance[c];
                nearest = static_cast<int>(c);
            }
        }
        if (cluster[i] != nearest) {
            cluster[i] = nearest;
            changed = true;
        }
    }
    return changed;
}

bool assign_all(const Workspace& w, ivec& cluster) {
    if (!w.helper)
        return assign_range(w, cluster, 0, w.n);
    // Each record's choice depends only on the centers, so halves are independent.
    const std::size_t half = w.n / 2;
    bool first_changed = false, second_changed = false;
    w.helper->both([&] { first_changed = assign_range(w, cluster, 0, half); },
                   [&] { second_changed = assign_range(w, cluster, half, w.n); });
    return first_changed || second_changed;
}

void sums_of_squares(const dmat& data, Clustering& out) {
    const std::size_t n = data.size();
    const std::size_t p = data[0].size();
    dvec mean(p, 0.0);
    for (const dvec& row : data)
        for (std::size_t v = 0; v < p; ++v)
            mean[v] += row[v];
    for (double& m : mean)
        m /= static_cast<double>(n);
    for (std::size_t i = 0; i < n; ++i) {
        const dvec& center = out.centers[static_cast<std::size_t>(out.cluster[i])];
        for (std::size_t v = 0; v < p; ++v) {
            const double t = data[i][v] - mean[v];
            const double e = data[i][v] - center[v];
            out.total += t * t;
            out.within += e * e;
        }
    }
}

// The complete records with their numbers from 1 in the table or the file.
struct Records {
    dmat data;
    std::vector<long long> number;
};

Records complete_records(NamedTable&& table) {
    Records r;
    r.data.reserve(table.data.size());
    r.number.reserve(table.data.size());
    for (std::size_t i = 0; i < table.data.size(); ++i) {
        if (table.valid[i]) {
            r.data.push_back(std::move(table.data[i]));
            r.number.push_back(static_cast<long long>(i) + 1);
        }
    }
    return r;
}

CellMatrix report(const svec& names, const Records& records, const Options& o) {
    if (static_cast<std::size_t>(o.clusters) > records.data.size())
        throw kTooManyClusters;
    const Clustering result = lloyd(
        records.data, o.clusters,
        initial_assignment(records.data.size(), o.clusters, static_cast<std::uint32_t>(o.seed)));

    const std::size_t k = static_cast<std::size_t>(o.clusters);
    const std::size_t n = records.data.size();
    const std::size_t p = names.size();
    const std::size_t assignment_rows = o.show ? n + 3 : 0;
    CellMatrix r(k + 8 + assignment_rows + kReportEndRows, std::max<std::size_t>(p + 2, 3));
    r(0, 0) = "k_means clustering";
    r(2, 0) = "Cluster";
    r(2, 1) = "Count";
    for (std::size_t v = 0; v < p; ++v)
        r(2, v + 2) = names[v];
    for (std::size_t c = 0; c < k; ++c) {
        r(c + 3, 0) = static_cast<double>(c + 1);
        r(c + 3, 1) = static_cast<double>(result.counts[c]);
        for (std::size_t v = 0; v < p; ++v)
            r(c + 3, v + 2) = result.centers[c][v];
    }
    const std::size_t top = k + 4;
    r(top, 0) = "Variance decomposition";
    r(top, 1) = "Variance";
    r(top, 2) = "Percent of total variance";
    r(top + 1, 0) = "Total";
    r(top + 1, 1) = result.total;
    r(top + 1, 2) = 1.0;
    r(top + 2, 0) = "Within classes";
    r(top + 2, 1) = result.within;
    r(top + 2, 2) = result.within / result.total;
    r(top + 3, 0) = "Between classes";
    r(top + 3, 1) = result.total - result.within;
    r(top + 3, 2) = (result.total - result.within) / result.total;
    if (o.show) {
        const std::size_t head = top + 5;
        r(head, 0) = "Assignments";
        r(head + 1, 0) = "Cluster";
        r(head + 1, 1) = "Record";
        for (std::size_t i = 0; i < n; ++i) {
            r(head + 2 + i, 0) = static_cast<double>(result.cluster[i] + 1);
            r(head + 2 + i, 1) = static_cast<double>(records.number[i]);
        }
    }
    write_report_end(r, "k_means");
    return r;
}

}  // namespace

ivec initial_assignment(std::size_t records, int clusters, std::uint32_t seed) {
    seed_rand15(seed);
    ivec cluster(records);
    const double n = static_cast<double>(records);
    for (std::size_t i = 0; i < records; ++i) {
        if (i < static_cast<std::size_t>(clusters)) {
            cluster[i] = static_cast<int>(i);
        } else {
            // rand15() stays below 32768, so t stays below n.
            const auto t = static_cast<long long>((rand15() + 1.0) / 32769.0 * n);
            cluster[i] = static_cast<int>(t % clusters);
        }
    }
    return cluster;
}

Clustering lloyd(const dmat& data, int clusters, ivec start) {
    Workspace w;
    w.n = data.size();
    w.p = data[0].size();
    w.k = static_cast<std::size_t>(clusters);
    w.values.resize(w.n * w.p);
    for (std::size_t i = 0; i < w.n; ++i)
        std::copy(data[i].begin(), data[i].end(), w.values.begin() + i * w.p);
    w.centers.resize(w.p * w.k);
    if (worth_two_threads(w))
        w.helper = std::make_unique<Helper>();

    Clustering out;
    out.cluster = std::move(start);
    out.counts.assign(w.k, 0);
    set_centers(w, out.cluster, out.counts);
    // No limit on the rounds: every round that moves a record lowers the
    // within sum, so finite data end.
    for (;;) {
        ++out.rounds;
        if (!assign_all(w, out.cluster))
            break;
        set_centers(w, out.cluster, out.counts);
    }
    out.centers.assign(w.k, dvec(w.p));
    for (std::size_t c = 0; c < w.k; ++c)
        for (std::size_t v = 0; v < w.p; ++v)
            out.centers[c][v] = w.centers[v * w.k + c];
    sums_of_squares(data, out);
    return out;
}

CellMatrix k_means(const CellMatrix& x, const CellMatrix& numClusters, const CellMatrix& seed,
                   const CellMatrix& showAssignments) {
    const Options o = read_options(numClusters, seed, showAssignments);
    NamedTable table = read_table_with_headers(x);
    const svec names = table.names;
    return report(names, complete_records(std::move(table)), o);
}

CellMatrix k_means_from_file(const std::string& filename, const CellMatrix& varNames,
                             const CellMatrix& numClusters, const CellMatrix& seed,
                             const CellMatrix& delimiter, const CellMatrix& showAssignments) {
    const svec names = read_file_variable_names(varNames, kNamesMissing);
    const Options o = read_options(numClusters, seed, showAssignments);
    const char separator = read_delimiter(delimiter);
    return report(names, complete_records(read_numeric_table(filename, names, separator)), o);
}

}  // namespace zentable
