#pragma once

#include <complex>
#include <cstddef>
#include <vector>

#include "xlw/cell_matrix.hpp"

namespace zentable {

// Discrete Fourier transforms through FFTW, each plan estimated for one use.
// The forward transform has sign -1 and no scaling; the inverse has sign +1
// and divides by the number of points. Data are row-major, rows by columns.
using ComplexValues = std::vector<std::complex<double>>;
ComplexValues fft_1d(const ComplexValues& x, bool inverse);
ComplexValues fft_1d_real(const std::vector<double>& x, bool inverse);
ComplexValues fft_2d(const ComplexValues& x, std::size_t rows, std::size_t columns, bool inverse);
ComplexValues fft_2d_real(const std::vector<double>& x, std::size_t rows, std::size_t columns,
                          bool inverse);

// The worksheet forms: one row or one column is a 1-D transform, any other
// shape 2-D; without xImag the input is real.
CellMatrix FFT(const CellMatrix& xReal, const CellMatrix& xImag);
CellMatrix IFFT(const CellMatrix& xReal, const CellMatrix& xImag);

}  // namespace zentable
