#pragma once

#include <vector>

#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

// Holt_Winters(x, type, frequency, numForecast, excludeList, force): fits
// exponential smoothing of type 1 (level), 2 (level and trend) or 3 (level,
// trend and additive season) by the simplex, then smooths and forecasts.
CellMatrix Holt_Winters(const CellMatrix& x, const CellMatrix& type, const CellMatrix& frequency,
                        const CellMatrix& numForecast, const CellMatrix& excludeList,
                        const CellMatrix& force);

// Holt_Winters_forecast(x, params, initialTrend, initialSeasonalIndices,
// numForecast, excludeList): the same smoothing with the parameters given.
CellMatrix Holt_Winters_forecast(const CellMatrix& x, const CellMatrix& params,
                                 const CellMatrix& initialTrend,
                                 const CellMatrix& initialSeasonalIndices,
                                 const CellMatrix& numForecast, const CellMatrix& excludeList);

// The recursions on their own, for the fit and for tests.
struct HoltWintersStart {
    int type = 1;
    int frequency = 1;
    double trend = 0.0;
    dvec seasonal;  // one index per position in the season, for type 3
};

struct HoltWintersPath {
    dvec prediction;  // one-step prediction per point; NaN where there is none
    dvec level, trend, season;
    dvec forecasts;
    double sse = 0.0;
    int terms = 0;  // the points whose prediction error counts
    double mse() const { return sse / terms; }
};

HoltWintersPath holt_winters_smooth(const dvec& x, const std::vector<bool>& valid,
                                    const dvec& params, const HoltWintersStart& start,
                                    int numForecast);

}  // namespace zentable
