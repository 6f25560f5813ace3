#include "numeric/column_scaling.hpp"

#include <cmath>

namespace zentable {

namespace {

constexpr double kConstantColumn = 1e-8;

}  // namespace

ColumnScaling standardize_columns(dmat& x, const dvec& weight) {
    if (x.size() != weight.size())
        throw "Data matrix is not conformable";
    const std::size_t p = x.empty() ? 0 : x[0].size();
    ColumnScaling scaling;
    scaling.n = static_cast<std::int32_t>(x.size());
    dvec sum(p, 0.0), squares(p, 0.0);
    for (std::size_t i = 0; i < x.size(); ++i) {
        const double w = weight[i];
        scaling.sum_weight += w;
        for (std::size_t j = 0; j < p; ++j) {
            sum[j] += w * x[i][j];
            squares[j] += w * x[i][j] * x[i][j];
        }
    }
    const double total = scaling.sum_weight;
    scaling.mean.resize(p);
    scaling.sd.resize(p);
    for (std::size_t j = 0; j < p; ++j) {
        const double m = sum[j] / total;
        const double variance = squares[j] / total - m * m;
        double s = std::sqrt(variance);
        // Also catches the NaN of a tiny negative variance: a constant column
        // is centred, not scaled.
        if (!(s > kConstantColumn))
            s = 1.0;
        scaling.mean[j] = m;
        scaling.sd[j] = s;
    }
    scale_columns(x, scaling);
    return scaling;
}

void scale_columns(dmat& x, const ColumnScaling& scaling) {
    const std::size_t p = scaling.mean.size();
    for (dvec& row : x)
        for (std::size_t j = 0; j < p; ++j)
            row[j] = (row[j] - scaling.mean[j]) / scaling.sd[j];
}

TargetScale target_scale(const dvec& y, const dvec& weight, double sum_weight) {
    double sum = 0.0, squares = 0.0;
    for (std::size_t i = 0; i < y.size(); ++i) {
        sum += weight[i] * y[i];
        squares += weight[i] * y[i] * y[i];
    }
    TargetScale out;
    out.mean = sum / sum_weight;
    out.sd = std::sqrt(squares / sum_weight - out.mean * out.mean);
    return out;
}

}  // namespace zentable
