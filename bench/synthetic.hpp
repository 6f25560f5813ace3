#pragma once

#include <random>

#include "numeric/matrix.hpp"

namespace zentable::bench {

// A seeded regression data set: x uniform on [-1, 1], y linear in x plus noise.
struct SyntheticRegression {
    dmat x;
    dvec y;
    dvec weight;
};

inline SyntheticRegression make_regression_data(std::size_t records, std::size_t variables,
                                                unsigned seed = 20261123) {
    std::mt19937_64 gen(seed);
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    std::normal_distribution<double> noise(0.0, 0.5);
    SyntheticRegression data;
    data.x.reserve(records);
    data.y.reserve(records);
    data.weight.reserve(records);
    for (std::size_t r = 0; r < records; ++r) {
        dvec row(variables);
        double y = 1.0;
        for (std::size_t j = 0; j < variables; ++j) {
            row[j] = u(gen);
            y += (static_cast<double>(j % 5) - 2.0) * row[j];
        }
        data.x.push_back(std::move(row));
        data.y.push_back(y + noise(gen));
        data.weight.push_back(1.0 + 0.5 * u(gen));
    }
    return data;
}

}  // namespace zentable::bench
