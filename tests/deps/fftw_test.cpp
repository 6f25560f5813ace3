#include <fftw3.h>
#include <gtest/gtest.h>

#include <cmath>

// x[t] = 1 + 2 cos(2 pi t / 8) + 3 sin(2 pi 2t / 8) has, in FFTW's unscaled
// forward transform, X[0] = 8, X[1] = 8 and X[2] = -12i; every other bin is 0.
TEST(Fftw, EightPointRealTransformOfKnownSignal) {
    const int n = 8;
    const double pi = std::acos(-1.0);
    double* in = static_cast<double*>(fftw_malloc(sizeof(double) * n));
    fftw_complex* out = static_cast<fftw_complex*>(fftw_malloc(sizeof(fftw_complex) * (n / 2 + 1)));
    fftw_plan plan = fftw_plan_dft_r2c_1d(n, in, out, FFTW_ESTIMATE);
    for (int t = 0; t < n; ++t)
        in[t] = 1.0 + 2.0 * std::cos(2 * pi * t / n) + 3.0 * std::sin(2 * pi * 2 * t / n);
    fftw_execute(plan);

    const double expected_re[] = {8, 8, 0, 0, 0};
    const double expected_im[] = {0, 0, -12, 0, 0};
    for (int k = 0; k <= n / 2; ++k) {
        EXPECT_NEAR(out[k][0], expected_re[k], 1e-12) << "bin " << k;
        EXPECT_NEAR(out[k][1], expected_im[k], 1e-12) << "bin " << k;
    }
    fftw_destroy_plan(plan);
    fftw_free(out);
    fftw_free(in);
}
