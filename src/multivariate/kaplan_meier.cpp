#include "multivariate/kaplan_meier.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#include "numeric/radix_sort.hpp"
#include "stats/freq.hpp"
#include "xlw/cell_conversions.hpp"
#include "xlw/decoders.hpp"
#include "xlw/report.hpp"

namespace zentable {

namespace {

constexpr const char* kStatusSize = "The sizes of time and status must be the same";
constexpr const char* kBadStatus =
    "The values of the input status must 1 or 0; 1 as event and 0 as censored";
constexpr const char* kClassSize = "The sizes of time and classVar must be the same";
constexpr const char* kBadLabel = "labelForCensor must be a string";

// The limits are S -/+ 1.96 standard errors: the two-place constant, not the
// normal quantile 1.959963..., so that the limits keep the digits users
// compare against.
constexpr double kZ = 1.96;

constexpr int kLeftOut = -1;

// The records of the decoded arguments. Every record with a number in time
// and in status (and a class when classes are given) takes part; any other
// record is left out whole.
struct Records {
    const NamedLine& time;
    const NamedLine& status;
    const NamedCodes* classes;

    std::size_t size() const { return time.size(); }
    bool complete(std::size_t i) const {
        const CellValue& t = time[i];
        return t.IsANumber() && !std::isnan(t.NumericValue()) && status[i].IsANumber() &&
               (classes == nullptr || !text_of(i).empty());
    }
    const std::string& text_of(std::size_t i) const {
        return classes->texts[static_cast<std::size_t>(classes->codes[i])];
    }
    bool is_event(std::size_t i) const { return status[i].NumericValue() == 1.0; }
};

void check_status(const NamedLine& status) {
    for (std::size_t i = 0; i < status.size(); ++i) {
        const CellValue& s = status[i];
        if (s.IsANumber() && s.NumericValue() != 0.0 && s.NumericValue() != 1.0)
            throw kBadStatus;
    }
}

// The groups and the group of each class code. The groups come in the order
// of the frequency routine: by value when the first class kept reads as a
// number, so 1, 2, 10, and by text otherwise. The routine orders the distinct
// classes alone, in order of first appearance, as it orders all the records.
struct Grouping {
    svec suffixes;              // " for <class> = <level>", or one empty text
    std::vector<int> group_of;  // per class code; kLeftOut for no group
};

Grouping group_classes(const Records& records) {
    Grouping out;
    if (records.classes == nullptr) {
        out.suffixes.emplace_back();
        return out;
    }
    const NamedCodes& classes = *records.classes;
    std::vector<int> seen_at(classes.texts.size(), kLeftOut);
    std::vector<std::size_t> seen_code;
    svec seen;
    for (std::size_t i = 0; i < records.size(); ++i) {
        const auto code = static_cast<std::size_t>(classes.codes[i]);
        if (seen_at[code] == kLeftOut && records.complete(i)) {
            seen_at[code] = static_cast<int>(seen.size());
            seen.push_back(classes.texts[code]);
            seen_code.push_back(code);
        }
    }
    const FreqLevels levels = make_freq_levels(seen);
    for (std::size_t k = 0; k < levels.size(); ++k) {
        const std::string level = levels.text(k);
        out.suffixes.push_back(" for " + classes.name + " = " + level);
    }
    out.group_of.assign(classes.texts.size(), kLeftOut);
    for (std::size_t j = 0; j < seen.size(); ++j)
        out.group_of[seen_code[j]] = levels.codes[j];
    return out;
}

// The times of every group in one buffer: for group k, its event times in
// run 2k and its censored times in run 2k + 1, each sorted. One block backed
// by large pages, since for millions of records the first touch of small
// pages costs more than the sort.
struct SortedRuns {
    std::unique_ptr<CellArena> block;
    double* times = nullptr;
    std::vector<std::size_t> start;  // run r is [start[r], start[r + 1])

    TimeSpan run(std::size_t r) const { return {times + start[r], start[r + 1] - start[r]}; }
};

void sort_into_runs(const Records& records, const Grouping& grouping, SortedRuns& runs) {
    auto run_of = [&](std::size_t i) -> int {
        if (!records.complete(i))
            return kLeftOut;
        const int group =
            records.classes == nullptr
                ? 0
                : grouping.group_of[static_cast<std::size_t>(records.classes->codes[i])];
        return 2 * group + (records.is_event(i) ? 0 : 1);
    };
    const std::size_t run_count = 2 * grouping.suffixes.size();
    std::vector<std::size_t> next(run_count + 1, 0);
    for (std::size_t i = 0; i < records.size(); ++i) {
        const int r = run_of(i);
        if (r != kLeftOut)
            ++next[static_cast<std::size_t>(r) + 1];
    }
    std::size_t longest = 0;
    for (std::size_t r = 0; r < run_count; ++r) {
        longest = std::max(longest, next[r + 1]);
        next[r + 1] += next[r];
    }
    runs.start = next;
    runs.block = std::make_unique<CellArena>((next[run_count] + longest) * sizeof(double) + 64);
    double* times = static_cast<double*>(runs.block->take(next[run_count] * sizeof(double)));
    runs.times = times;
    for (std::size_t i = 0; i < records.size(); ++i) {
        const int r = run_of(i);
        if (r != kLeftOut)
            times[next[static_cast<std::size_t>(r)]++] = records.time[i].NumericValue();
    }
    double* scratch = static_cast<double*>(runs.block->take(longest * sizeof(double)));
    for (std::size_t r = 0; r < run_count; ++r)
        sort_times(times + runs.start[r], runs.start[r + 1] - runs.start[r], scratch);
}

// The two blocks of one group from `row` on; returns the row after them.
std::size_t write_group(CellMatrix& r, std::size_t row, const std::string& time_name,
                        const std::string& suffix, const std::vector<SurvivalRow>& rows,
                        const std::vector<PlotPoint>& points, const std::string& label) {
    r(row++, 0) = "Kaplan-Meier Survival Function" + suffix;
    const char* const heads[] = {
        "#At Risk",       "#Event",       "#Censored",   "Survival Probability",
        "Standard Error", "Lower 95% CI", "Upper 95% CI"};
    r(row, 0) = time_name;
    for (std::size_t c = 0; c < 7; ++c)
        r(row, c + 1) = heads[c];
    ++row;
    for (const SurvivalRow& s : rows) {
        r(row, 0) = s.time;
        r(row, 1) = s.at_risk;
        r(row, 2) = s.events;
        r(row, 3) = s.censored;
        r(row, 4) = s.survival;
        r(row, 5) = s.std_error;
        r(row, 6) = s.lower;
        r(row, 7) = s.upper;
        ++row;
    }

    ++row;  // the blank row between the blocks
    r(row++, 0) = "Kaplan-Meier Survival Function for Plotting" + suffix;
    const char* const plot_heads[] = {"Survival Probability", "Standard Error", "Lower 95% CI",
                                      "Upper 95% CI", "Label for Censored"};
    r(row, 0) = time_name;
    for (std::size_t c = 0; c < 5; ++c)
        r(row, c + 1) = plot_heads[c];
    ++row;
    for (const PlotPoint& p : points) {
        r(row, 0) = p.time;
        r(row, 1) = p.survival;
        r(row, 2) = p.std_error;
        r(row, 3) = p.lower;
        r(row, 4) = p.upper;
        if (p.censored)
            r(row, 5) = label;
        ++row;
    }
    return row;
}

}  // namespace

void sort_times(double* first, std::size_t size, double* scratch) {
    // Below a few thousand values the counting tables cost more than they save.
    if (size < 4096) {
        std::sort(first, first + size);
        return;
    }
    // The keys take the place of the doubles, so that the sort needs no
    // buffer beyond the scratch run.
    std::uint64_t key;
    for (std::size_t i = 0; i < size; ++i) {
        key = order_key(first[i]);
        std::memcpy(&first[i], &key, sizeof key);
    }
    const double* sorted = radix_sort_keys(first, scratch, size) ? scratch : first;
    for (std::size_t i = 0; i < size; ++i) {
        std::memcpy(&key, &sorted[i], sizeof key);
        first[i] = key_value(key);
    }
}

std::vector<SurvivalRow> survival_rows(TimeSpan event_times, TimeSpan censor_times) {
    std::vector<SurvivalRow> rows;
    const double* events = event_times.data;
    const double* censors = censor_times.data;
    std::size_t e = 0, c = 0;
    const std::size_t ne = event_times.size, nc = censor_times.size;
    int at_risk = static_cast<int>(ne + nc);
    double survival = 1.0, greenwood = 0.0;
    // The two sorted lists walked together are the records sorted by time:
    // each distinct time closes once with its events and censorings counted.
    while (e < ne || c < nc) {
        const double time = c == nc || (e < ne && events[e] <= censors[c]) ? events[e] : censors[c];
        int d = 0, k = 0;
        for (; e < ne && events[e] == time; ++e)
            ++d;
        for (; c < nc && censors[c] == time; ++c)
            ++k;

        const double n = at_risk, dd = d;
        survival = survival * (n - dd) / n;
        if (at_risk - d > 0)
            greenwood += dd / (n * (n - dd));
        SurvivalRow row;
        row.time = time;
        row.at_risk = at_risk;
        row.events = d;
        row.censored = k;
        row.survival = survival;
        row.std_error = survival * std::sqrt(greenwood);
        row.lower = survival - kZ * row.std_error;
        if (row.lower < 0.0)
            row.lower = 0.0;
        row.upper = survival + kZ * row.std_error;
        if (row.upper > 1.0)
            row.upper = 1.0;
        rows.push_back(row);
        at_risk = at_risk - d - k;
    }
    return rows;
}

std::vector<PlotPoint> plotting_points(const std::vector<SurvivalRow>& rows) {
    std::vector<PlotPoint> points;
    if (rows.empty())
        return points;
    points.reserve(2 * rows.size() + 1);
    PlotPoint previous;
    previous.time = rows[0].time > 0.0 ? 0.0 : rows[0].time - 1.0;
    points.push_back(previous);
    for (const SurvivalRow& row : rows) {
        // A drop stands at its time twice, before and after; the censor label
        // goes on the point after the drop, where the censored records
        // leave the curve.
        if (row.events > 0) {
            PlotPoint before = previous;
            before.time = row.time;
            before.censored = false;
            points.push_back(before);
        }
        PlotPoint after;
        after.time = row.time;
        after.survival = row.survival;
        after.std_error = row.std_error;
        after.lower = row.lower;
        after.upper = row.upper;
        after.censored = row.censored > 0;
        points.push_back(after);
        previous = after;
    }
    return points;
}

CellMatrix Kaplan_Meier(const CellMatrix& time, const CellMatrix& status,
                        const CellMatrix& classVar, const CellMatrix& labelForCensor) {
    const NamedLine times(time);
    const NamedLine statuses(status);
    if (statuses.size() != times.size())
        throw kStatusSize;
    const bool grouped = !is_omitted(classVar);
    NamedCodes classes;
    if (grouped) {
        classes = read_coded_vector_with_header(classVar);
        if (classes.codes.size() != times.size())
            throw kClassSize;
    }
    std::string label = "+";
    read_string(labelForCensor, kBadLabel, label);
    check_status(statuses);

    const Records records{times, statuses, grouped ? &classes : nullptr};
    const Grouping grouping = group_classes(records);
    SortedRuns runs;
    sort_into_runs(records, grouping, runs);

    const std::size_t groups = grouping.suffixes.size();
    std::vector<std::vector<SurvivalRow>> rows(groups);
    std::vector<std::vector<PlotPoint>> points(groups);
    std::size_t size = 1;
    for (std::size_t k = 0; k < groups; ++k) {
        rows[k] = survival_rows(runs.run(2 * k), runs.run(2 * k + 1));
        points[k] = plotting_points(rows[k]);
        size += 6 + rows[k].size() + points[k].size();
    }

    // Made with its ending rows: joining them below would copy the table.
    CellMatrix r(size + kReportEndRows, 8);
    r(0, 0) = "Kaplan-Meier Survival Analysis";
    std::size_t row = 1;
    for (std::size_t k = 0; k < groups; ++k)
        row =
            write_group(r, row + 1, times.name(), grouping.suffixes[k], rows[k], points[k], label);
    write_report_end(r, "Kaplan_Meier");
    return r;
}

}  // namespace zentable
