#include "numeric/one_based.hpp"

#include <gtest/gtest.h>

#include "thrown_text.hpp"

#include <complex>
#include <limits>
#include <string>

using namespace zentable;

namespace {

// A one-based routine in the old style: it sees only the offset pointer.
double sum_one_based(const double* v, int n) {
    double s = 0.0;
    for (int i = 1; i <= n; ++i)
        s += v[i];
    return s;
}

double trace_one_based(double** m, int n) {
    double s = 0.0;
    for (int i = 1; i <= n; ++i)
        s += m[i][i];
    return s;
}

}  // namespace

TEST(OneBased, VectorsIndexFromTheirLowerBound) {
    dvector v(1, 4);
    for (long i = 1; i <= 4; ++i)
        v[i] = static_cast<double>(i);
    EXPECT_EQ(sum_one_based(v.data(), 4), 10.0);
    EXPECT_EQ(&v.data()[1], &v[1]);

    ivector iv(-2, 2);
    for (long i = -2; i <= 2; ++i)
        iv[i] = static_cast<std::int32_t>(10 * i);
    EXPECT_EQ(iv[-2], -20);
    EXPECT_EQ(iv[2], 20);
    EXPECT_EQ(&iv[2] - &iv[-2], 4);
    EXPECT_EQ(iv.lower(), -2);
    EXPECT_EQ(iv.upper(), 2);
}

TEST(OneBased, MatricesAreOneContiguousBlock) {
    matrix m(1, 3, 1, 3);
    for (long i = 1; i <= 3; ++i)
        for (long j = 1; j <= 3; ++j)
            m[i][j] = static_cast<double>(10 * i + j);
    EXPECT_EQ(trace_one_based(m.data(), 3), 66.0);
    EXPECT_EQ(&m[2][1], &m[1][3] + 1);
    EXPECT_EQ(&m[3][3] - &m[1][1], 8);

    cmatrix c(0, 1, 0, 2);
    c[1][2] = std::complex<double>(1.5, -2.0);
    EXPECT_EQ(c.data()[1][2], std::complex<double>(1.5, -2.0));
    EXPECT_EQ(&c[1][0], &c[0][2] + 1);
}

TEST(OneBased, AllocationFailuresThrowTheirTexts) {
    const long huge = std::numeric_limits<long>::max() / 2;
    EXPECT_EQ(THROWN_TEXT(dvector(1, huge)), "allocation failure in dvector()");
    EXPECT_EQ(THROWN_TEXT(ivector(1, huge)), "allocation failure in ivector()");
    EXPECT_EQ(THROWN_TEXT(dvector(5, 2)), "allocation failure in dvector()");

    EXPECT_EQ(THROWN_TEXT(matrix(1, huge, 1, 1)), "allocation failure 1 in matrix()");
    EXPECT_EQ(THROWN_TEXT(matrix(1, 2, 1, huge)), "allocation failure 2 in matrix()");
    EXPECT_EQ(THROWN_TEXT(cmatrix(1, huge, 1, 1)), "allocation failure 1 in cmatrix()");
    EXPECT_EQ(THROWN_TEXT(cmatrix(1, 2, 1, huge)), "allocation failure 2 in cmatrix()");
}
