#pragma once

#include <vector>

#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

// Kaplan_Meier(time, status, classVar, labelForCensor): for the whole data or
// for each class, the survival function with Greenwood standard errors and
// the points that draw it as steps.
CellMatrix Kaplan_Meier(const CellMatrix& time, const CellMatrix& status,
                        const CellMatrix& classVar, const CellMatrix& labelForCensor);

// One closed time of the walk.
struct SurvivalRow {
    double time = 0.0;
    int at_risk = 0;
    int events = 0;
    int censored = 0;
    double survival = 1.0;
    double std_error = 0.0;
    double lower = 1.0;
    double upper = 1.0;
};

// A run of times in a buffer the caller owns.
struct TimeSpan {
    const double* data = nullptr;
    std::size_t size = 0;
};

// The walk over one group, given the times of its events and of its censored
// records, each sorted ascending.
std::vector<SurvivalRow> survival_rows(TimeSpan event_times, TimeSpan censor_times);

// One point of the step plot; `censored` marks the point that carries the label.
struct PlotPoint {
    double time = 0.0;
    double survival = 1.0;
    double std_error = 0.0;
    double lower = 1.0;
    double upper = 1.0;
    bool censored = false;
};

std::vector<PlotPoint> plotting_points(const std::vector<SurvivalRow>& rows);

// Ascending sort of doubles by their bits, in linear time, with a scratch
// buffer of the same length; the same order as std::sort for every value but
// NaN, which never reaches it.
void sort_times(double* first, std::size_t size, double* scratch);

}  // namespace zentable
