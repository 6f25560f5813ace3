// FFT against a plain O(n^2) DFT summed in long double, for lengths that are
// not powers of 2, real and complex, 1-D and 2-D.

#include "numeric/fft.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

using namespace zentable;

namespace {

using lcplx = std::complex<long double>;

// X[k1][k2] = sum x[j1][j2] e^(sign 2 pi i (j1 k1 / rows + j2 k2 / columns)).
ComplexValues dft(const ComplexValues& x, std::size_t rows, std::size_t columns, int sign) {
    const long double pi = 3.141592653589793238462643383279502884L;
    ComplexValues out(x.size());
    for (std::size_t k1 = 0; k1 < rows; ++k1)
        for (std::size_t k2 = 0; k2 < columns; ++k2) {
            lcplx s = 0.0L;
            for (std::size_t j1 = 0; j1 < rows; ++j1)
                for (std::size_t j2 = 0; j2 < columns; ++j2) {
                    const long double angle =
                        sign * 2.0L * pi *
                        (static_cast<long double>((j1 * k1) % rows) / rows +
                         static_cast<long double>((j2 * k2) % columns) / columns);
                    const std::complex<double>& v = x[j1 * columns + j2];
                    s += lcplx(v.real(), v.imag()) * lcplx(std::cos(angle), std::sin(angle));
                }
            out[k1 * columns + k2] =
                std::complex<double>(static_cast<double>(s.real()), static_cast<double>(s.imag()));
        }
    return out;
}

double largest_difference(const ComplexValues& a, const ComplexValues& b) {
    double d = 0.0;
    for (std::size_t k = 0; k < a.size(); ++k)
        d = std::max(d, std::abs(a[k] - b[k]));
    return d;
}

TEST(FFT, AgreesWithThePlainSumAndInvertsForEveryShape) {
    std::mt19937 engine(7);
    std::uniform_real_distribution<double> uniform(-1.0, 1.0);
    struct Shape {
        std::size_t rows, columns;
    };
    for (const Shape& shape : {Shape{1, 7}, Shape{1, 12}, Shape{3, 5}, Shape{6, 4}}) {
        const std::size_t n = shape.rows * shape.columns;
        std::vector<double> real(n);
        ComplexValues complex(n), real_as_complex(n);
        for (std::size_t k = 0; k < n; ++k) {
            real[k] = uniform(engine);
            real_as_complex[k] = real[k];
            complex[k] = {uniform(engine), uniform(engine)};
        }
        const bool two_d = shape.rows > 1;
        auto forward_real =
            two_d ? fft_2d_real(real, shape.rows, shape.columns, false) : fft_1d_real(real, false);
        auto forward =
            two_d ? fft_2d(complex, shape.rows, shape.columns, false) : fft_1d(complex, false);
        EXPECT_LT(
            largest_difference(forward_real, dft(real_as_complex, shape.rows, shape.columns, -1)),
            1e-12);
        EXPECT_LT(largest_difference(forward, dft(complex, shape.rows, shape.columns, -1)), 1e-12);

        // The inverse divides by the count: IFFT(FFT(x)) = x.
        ComplexValues inverse_real_expected = dft(real_as_complex, shape.rows, shape.columns, 1);
        for (auto& z : inverse_real_expected)
            z /= static_cast<double>(n);
        auto inverse_real =
            two_d ? fft_2d_real(real, shape.rows, shape.columns, true) : fft_1d_real(real, true);
        EXPECT_LT(largest_difference(inverse_real, inverse_real_expected), 1e-12);
        auto back =
            two_d ? fft_2d(forward, shape.rows, shape.columns, true) : fft_1d(forward, true);
        EXPECT_LT(largest_difference(back, complex), 1e-12);
    }
}

}  // namespace
