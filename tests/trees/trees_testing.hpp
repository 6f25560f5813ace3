#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "xlw/cell_matrix.hpp"

namespace zentable::testing {

inline const CellMatrix kOmitted(1, 1);

// A cell that must be a number, or a text; a wrong kind fails the test.
inline double num(const CellMatrix& t, std::size_t r, std::size_t c) {
    EXPECT_TRUE(t(r, c).IsANumber()) << "cell " << r << "," << c;
    return t(r, c).IsANumber() ? t(r, c).NumericValue() : NAN;
}

inline std::string text(const CellMatrix& t, std::size_t r, std::size_t c) {
    EXPECT_TRUE(t(r, c).IsString()) << "cell " << r << "," << c;
    return t(r, c).IsString() ? t(r, c).StringValue() : "";
}

}  // namespace zentable::testing
