#pragma once

#include <array>
#include <string>

namespace zentable {

// The critical values at 1%, 5% and 10% of the response surface of MacKinnon
// (2010) for N variables (1 to 12), the time terms "nc", "c", "ct" or "ctt"
// and T regression rows. The published table has "nc" for N = 1 only, so "nc"
// with a larger N fails as a time-terms text that is not valid.
std::array<double, 3> mackinnon_criticalValue(int N, const std::string& timeTerms, double T);

}  // namespace zentable
