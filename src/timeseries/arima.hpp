#pragma once

#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

// arima(x, hasMean, p, d, q, numForecast, lowerAndUpperBound,
// maxNumGenerations, seed, showDetails): a conditional-sum-of-squares fit by
// differential evolution, with standard errors from the numeric Jacobian of
// the predictions, and forecasts.
CellMatrix arima(const CellMatrix& x, const CellMatrix& hasMean, const CellMatrix& p,
                 const CellMatrix& d, const CellMatrix& q, const CellMatrix& numForecast,
                 const CellMatrix& lowerAndUpperBound, const CellMatrix& maxNumGenerations,
                 const CellMatrix& seed, const CellMatrix& showDetails);

// sarima(...): the same with a multiplicative seasonal part of period
// seasonalPeriod.
CellMatrix sarima(const CellMatrix& x, const CellMatrix& hasMean, const CellMatrix& p,
                  const CellMatrix& d, const CellMatrix& q, const CellMatrix& seasonalPeriod,
                  const CellMatrix& seasonalP, const CellMatrix& seasonalD,
                  const CellMatrix& seasonalQ, const CellMatrix& numForecast,
                  const CellMatrix& lowerAndUpperBound, const CellMatrix& maxNumGenerations,
                  const CellMatrix& seed, const CellMatrix& showDetails);

// Forecasts from given coefficients.
CellMatrix arima_forecast(const CellMatrix& x, const CellMatrix& numForecast,
                          const CellMatrix& mean, const CellMatrix& ar, const CellMatrix& d,
                          const CellMatrix& ma, const CellMatrix& sigma);
CellMatrix sarima_forecast(const CellMatrix& x, const CellMatrix& numForecast,
                           const CellMatrix& mean, const CellMatrix& ar, const CellMatrix& d,
                           const CellMatrix& ma, const CellMatrix& seasonalPeriod,
                           const CellMatrix& seasonalAR, const CellMatrix& seasonalD,
                           const CellMatrix& seasonalMA, const CellMatrix& sigma);

// Paths from given coefficients and a seed.
CellMatrix arima_simulate(const CellMatrix& numPoints, const CellMatrix& mean, const CellMatrix& ar,
                          const CellMatrix& d, const CellMatrix& ma, const CellMatrix& sigma,
                          const CellMatrix& seed);
CellMatrix sarima_simulate(const CellMatrix& numPoints, const CellMatrix& mean,
                           const CellMatrix& ar, const CellMatrix& d, const CellMatrix& ma,
                           const CellMatrix& seasonalPeriod, const CellMatrix& seasonalAR,
                           const CellMatrix& seasonalD, const CellMatrix& seasonalMA,
                           const CellMatrix& sigma, const CellMatrix& seed);

// The pieces below serve the commands and their tests.

// The one recursion behind the fits and the forecasts: from t = start on,
// f = mean + sum_i (y[t-i] - mean) ar[i] + sum_{j <= min(q, t)} ma[j] e[t-j]
// (ar[0] and ma[0] stand for lag 1), e[t] = y[t] - f. Returns the sum of the
// squared e; prediction and noise receive f and e, 0 before start, their
// storage reused from call to call.
double css_recursion(const dvec& y, double mean, const dvec& ar, const dvec& ma, std::size_t start,
                     dvec& prediction, dvec& noise);

// The conditional sum of squares of an ARMA model of a differenced series,
// over the parameters (mean, AR 1..p, MA 1..q).
class GenericFunction3 {
  public:
    GenericFunction3(int p, int q, dvec series);
    virtual ~GenericFunction3() = default;
    double operator()(dvec params) const;
    // The predictions f of the recursion at params, 0 for the first points.
    dvec predictions(const dvec& params) const;
    int dimension() const { return p + q + 1; }

    int p;
    int q;
    dvec series;
    int n;

  private:
    void check(const dvec& params) const;
    // Work space of the recursion: a fresh buffer per evaluation costs more
    // in page faults than the recursion itself when the allocator gives the
    // memory back between evaluations.
    mutable dvec work_f_, work_e_;
};

// The same for the seasonal model over (mean, AR, MA, seasonal AR, seasonal
// MA), on the expansions of (1 - a(B))(1 - sa(B^s)) and (1 + m(B))(1 + sm(B^s))
// made afresh at each evaluation.
class GenericFunctionForSARIMA {
  public:
    GenericFunctionForSARIMA(int p, int q, int s, int P, int Q, dvec series);
    virtual ~GenericFunctionForSARIMA() = default;
    double operator()(dvec params) const;
    dvec predictions(const dvec& params) const;
    int dimension() const { return p + q + P + Q + 1; }

    int p;
    int q;
    int s;
    int P;
    int Q;
    int n;
    dvec series;

  private:
    void expand(const dvec& params, dvec& ar, dvec& ma) const;
    mutable dvec work_f_, work_e_;
};

// The AR coefficients (lag 1 first) of (1 - a(B))(1 - sa(B^s)) and the MA
// coefficients of (1 + m(B))(1 + sm(B^s)).
dvec seasonal_ar_expansion(const dvec& ar, const dvec& seasonal_ar, int period);
dvec seasonal_ma_expansion(const dvec& ma, const dvec& seasonal_ma, int period);
// a(B) with (1 - B)^d and (1 - B^s)^D multiplied in, as AR coefficients.
dvec integrated_ar(const dvec& ar, int d);
dvec integrated_seasonal_ar(const dvec& ar, const dvec& seasonal_ar, int period, int d,
                            int seasonal_d);

// d regular differences; seasonal ones of lag s come first in the seasonal model.
dvec difference(dvec x, int lag, int times);

// Forecasts from the undifferenced series by the AR vector c and the MA
// vector m of the recursion, with the one-step noise of the observations.
struct ForecastPath {
    dvec prediction;  // per observation, 0 before the first predicted point
    dvec noise;       // per observation
    dvec forecast, standard_error, lower, upper;
};
ForecastPath forecast_core(const dvec& x, int numForecast, double mean, const dvec& c,
                           const dvec& m, double sigma);

// The path of the simulate commands from a seeded generator.
dvec simulate_path(int numPoints, double mean, const dvec& c, const dvec& m, double sigma,
                   unsigned long seed);

}  // namespace zentable
