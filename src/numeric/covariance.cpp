#include "numeric/covariance.hpp"

#include <cmath>
#include <cstddef>

namespace zentable {

dmat covarianceMatrix(const dmat& data) {
    const std::size_t n = data.size();
    const std::size_t p = n == 0 ? 0 : data[0].size();
    dvec mean(p, 0.0);
    for (const dvec& row : data)
        for (std::size_t a = 0; a < p; ++a)
            mean[a] += row[a];
    for (double& m : mean)
        m /= static_cast<double>(n);

    // Deviations once, kept by column, so that each entry's sum runs down two
    // contiguous columns.
    dmat deviation(p, dvec(n));
    for (std::size_t i = 0; i < n; ++i)
        for (std::size_t a = 0; a < p; ++a)
            deviation[a][i] = data[i][a] - mean[a];

    dmat cov(p, dvec(p, 0.0));
    for (std::size_t a = 0; a < p; ++a) {
        for (std::size_t b = a; b < p; ++b) {
            double sum = 0.0;
            const dvec& da = deviation[a];
            const dvec& db = deviation[b];
            for (std::size_t i = 0; i < n; ++i)
                sum += da[i] * db[i];
            // A product of two deviations is the same in either order, so the
            // lower triangle is the upper one.
            cov[a][b] = cov[b][a] = sum / static_cast<double>(n);
        }
    }
    return cov;
}

dmat correlationMatrix(const dmat& data) {
    dmat m = covarianceMatrix(data);
    const std::size_t p = m.size();
    dvec root(p);
    for (std::size_t a = 0; a < p; ++a)
        root[a] = std::sqrt(m[a][a]);
    // Dividing by the two roots in the other order can change the last bit;
    // the lower triangle copies the upper one so that the matrix stays
    // exactly symmetric, as the eigen-decomposition demands.
    for (std::size_t a = 0; a < p; ++a) {
        for (std::size_t b = a; b < p; ++b)
            m[a][b] = m[a][b] / root[a] / root[b];
        for (std::size_t b = 0; b < a; ++b)
            m[a][b] = m[b][a];
    }
    return m;
}

}  // namespace zentable
