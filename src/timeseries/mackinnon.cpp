#include "timeseries/mackinnon.hpp"

#include <cstddef>

#include "timeseries/mackinnon_table.hpp"

namespace zentable {

namespace {

// The coefficients of one N and time-terms case, or null when the table has none.
const double (*coefficients(int N, const std::string& timeTerms))[4] {
    const std::size_t row = static_cast<std::size_t>(N - 1);
    if (timeTerms == "nc") {
        return N == 1 ? mackinnon::kNoConstant[0] : nullptr;
    }
    if (timeTerms == "c") {
        return mackinnon::kConstant[row];
    }
    if (timeTerms == "ct") {
        return mackinnon::kConstantTrend[row];
    }
    if (timeTerms == "ctt") {
        return mackinnon::kConstantTrendSquared[row];
    }
    return nullptr;
}

}  // namespace

std::array<double, 3> mackinnon_criticalValue(int N, const std::string& timeTerms, double T) {
    if (N > 12) {
        throw "N can not be large than 12 in mackinnon_criticalValue()";
    }
    if (N < 1) {
        throw "N must be at least 1 in mackinnon_criticalValue()";
    }
    const double(*b)[4] = coefficients(N, timeTerms);
    if (b == nullptr) {
        throw "timeTerms" + timeTerms + " is not valid";
    }
    std::array<double, 3> values{};
    for (std::size_t level = 0; level < 3; ++level) {
        values[level] =
            b[level][0] + b[level][1] / T + b[level][2] / (T * T) + b[level][3] / (T * T * T);
    }
    return values;
}

}  // namespace zentable
