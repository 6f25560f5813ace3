#include "numeric/fft.hpp"

#include <fftw3.h>

#include <cstring>
#include <memory>

#include "numeric/matrix_cells.hpp"
#include "xlw/cell_conversions.hpp"

namespace zentable {

namespace {

struct FftwFree {
    void operator()(void* p) const { fftw_free(p); }
};
template <class T>
using FftwBuffer = std::unique_ptr<T[], FftwFree>;

template <class T>
FftwBuffer<T> fftw_buffer(std::size_t count, const char* failure) {
    FftwBuffer<T> buffer(static_cast<T*>(fftw_malloc(sizeof(T) * (count == 0 ? 1 : count))));
    if (!buffer)
        throw failure;
    // A transform of millions of points otherwise spends more in page faults
    // than FFTW spends computing.
    prefer_huge_pages(buffer.get(), sizeof(T) * count);
    return buffer;
}

struct Plan {
    fftw_plan plan;
    ~Plan() { fftw_destroy_plan(plan); }
};

int sign_of(bool inverse) {
    return inverse ? FFTW_BACKWARD : FFTW_FORWARD;
}

void check_same_size(std::size_t real, std::size_t imag) {
    if (real == 0)
        throw "real part is empty";
    if (real != imag)
        throw "real part and imag part must have the same size";
}

// Copies the transform out, dividing by the count for the inverse.
ComplexValues collect(const fftw_complex* out, std::size_t count, bool inverse) {
    ComplexValues result(count);
    const double scale = inverse ? 1.0 / static_cast<double>(count) : 1.0;
    for (std::size_t k = 0; k < count; ++k)
        result[k] = std::complex<double>(out[k][0] * scale, out[k][1] * scale);
    return result;
}

ComplexValues complex_transform(const ComplexValues& x, std::size_t rows, std::size_t columns,
                                bool inverse, const char* failure) {
    const std::size_t count = x.size();
    auto in = fftw_buffer<fftw_complex>(count, failure);
    auto out = fftw_buffer<fftw_complex>(count, failure);
    for (std::size_t k = 0; k < count; ++k) {
        in[k][0] = x[k].real();
        in[k][1] = x[k].imag();
    }
    const Plan plan{rows == 0
                        ? fftw_plan_dft_1d(static_cast<int>(count), in.get(), out.get(),
                                           sign_of(inverse), FFTW_ESTIMATE)
                        : fftw_plan_dft_2d(static_cast<int>(rows), static_cast<int>(columns),
                                           in.get(), out.get(), sign_of(inverse), FFTW_ESTIMATE)};
    fftw_execute(plan.plan);
    return collect(out.get(), count, inverse);
}

// The real-input transform has sign -1; for a real x the inverse is the
// conjugate of the forward transform divided by the count.
ComplexValues real_transform(const std::vector<double>& x, std::size_t rows, std::size_t columns,
                             bool inverse, const char* failure) {
    const std::size_t count = x.size();
    const std::size_t half = columns / 2 + 1;
    auto in = fftw_buffer<double>(count, failure);
    auto out = fftw_buffer<fftw_complex>(rows * half, failure);
    std::memcpy(in.get(), x.data(), sizeof(double) * count);
    const Plan plan{
        rows == 1
            ? fftw_plan_dft_r2c_1d(static_cast<int>(columns), in.get(), out.get(), FFTW_ESTIMATE)
            : fftw_plan_dft_r2c_2d(static_cast<int>(rows), static_cast<int>(columns), in.get(),
                                   out.get(), FFTW_ESTIMATE)};
    fftw_execute(plan.plan);
    ComplexValues result(count);
    const double scale = inverse ? 1.0 / static_cast<double>(count) : 1.0;
    for (std::size_t i = 0; i < rows; ++i) {
        for (std::size_t j = 0; j < half; ++j) {
            const fftw_complex& z = out[i * half + j];
            // 0.0 - y, not -y: the conjugate of a zero stays +0, not -0.
            const double imag = inverse ? 0.0 - z[1] * scale : z[1] * scale;
            result[i * columns + j] = std::complex<double>(z[0] * scale, imag);
        }
    }
    // The half FFTW leaves out: X[i][j] = conj(X[-i][-j]), from halves all filled.
    for (std::size_t i = 0; i < rows; ++i) {
        const std::size_t mirror_row = (rows - i) % rows;
        for (std::size_t j = half; j < columns; ++j) {
            const std::complex<double> z = result[mirror_row * columns + (columns - j)];
            result[i * columns + j] = std::complex<double>(z.real(), 0.0 - z.imag());
        }
    }
    return result;
}

struct Input {
    bool two_d = false;
    std::size_t rows = 0;
    std::size_t columns = 0;
    std::vector<double> real;
    std::vector<double> imag;
    bool has_imag = false;
};

bool is_line(const CellMatrix& t) {
    return t.RowsInStructure() == 1 || t.ColumnsInStructure() == 1;
}

std::vector<double> read_values(const CellMatrix& t) {
    std::vector<double> out;
    out.reserve(t.RowsInStructure() * t.ColumnsInStructure());
    for (std::size_t i = 0; i < t.RowsInStructure(); ++i)
        for (std::size_t j = 0; j < t.ColumnsInStructure(); ++j)
            out.push_back(t(i, j).NumericValue());
    return out;
}

Input read_input(const CellMatrix& xReal, const CellMatrix& xImag) {
    if (is_omitted(xReal))
        throw "Input xReal cannot be empty";
    Input in;
    in.two_d = !is_line(xReal);
    in.rows = in.two_d ? xReal.RowsInStructure() : 1;
    in.columns = in.two_d ? xReal.ColumnsInStructure()
                          : xReal.RowsInStructure() * xReal.ColumnsInStructure();
    in.has_imag = !is_omitted(xImag);
    if (in.has_imag) {
        if (is_line(xImag) == in.two_d)
            throw "xReal and xImag have different dimension";
        const bool same = in.two_d
                              ? xImag.RowsInStructure() == xReal.RowsInStructure() &&
                                    xImag.ColumnsInStructure() == xReal.ColumnsInStructure()
                              : xImag.RowsInStructure() * xImag.ColumnsInStructure() == in.columns;
        if (!same)
            throw "xReal and xImag have different size";
    }
    // One result row per value of a 1-D transform, two blocks of a 2-D one.
    if (in.two_d)
        check_result_size(2.0 * static_cast<double>(in.rows) + 3.0,
                          static_cast<double>(in.columns));
    else
        check_result_size(static_cast<double>(in.columns) + 2.0, 2.0);
    in.real = read_values(xReal);
    if (in.has_imag)
        in.imag = read_values(xImag);
    return in;
}

CellMatrix transform(const CellMatrix& xReal, const CellMatrix& xImag, bool inverse) {
    const Input in = read_input(xReal, xImag);
    ComplexValues y;
    if (in.has_imag) {
        ComplexValues x(in.real.size());
        for (std::size_t k = 0; k < x.size(); ++k)
            x[k] = std::complex<double>(in.real[k], in.imag[k]);
        y = in.two_d ? fft_2d(x, in.rows, in.columns, inverse) : fft_1d(x, inverse);
    } else {
        y = in.two_d ? fft_2d_real(in.real, in.rows, in.columns, inverse)
                     : fft_1d_real(in.real, inverse);
    }
    constexpr const char* kTitle = "Fast Fourier Transform";
    if (!in.two_d) {
        CellMatrix r(y.size() + 2, 2);
        r(0, 0) = kTitle;
        r(1, 0) = "Real";
        r(1, 1) = "Imag";
        for (std::size_t k = 0; k < y.size(); ++k) {
            r(k + 2, 0) = y[k].real();
            r(k + 2, 1) = y[k].imag();
        }
        return r;
    }
    // The title, the "Real" block, a blank row, the "Imag" block.
    CellMatrix r(2 * in.rows + 4, in.columns);
    r(0, 0) = kTitle;
    r(1, 0) = "Real";
    r(in.rows + 3, 0) = "Imag";
    for (std::size_t i = 0; i < in.rows; ++i)
        for (std::size_t j = 0; j < in.columns; ++j) {
            r(2 + i, j) = y[i * in.columns + j].real();
            r(in.rows + 4 + i, j) = y[i * in.columns + j].imag();
        }
    return r;
}

}  // namespace

ComplexValues fft_1d(const ComplexValues& x, bool inverse) {
    check_same_size(x.size(), x.size());
    return complex_transform(x, 0, x.size(), inverse, "allocation failure in fft_1d()");
}

ComplexValues fft_1d_real(const std::vector<double>& x, bool inverse) {
    check_same_size(x.size(), x.size());
    return real_transform(x, 1, x.size(), inverse, "allocation failure in fft_1d_real()");
}

ComplexValues fft_2d(const ComplexValues& x, std::size_t rows, std::size_t columns, bool inverse) {
    check_same_size(rows * columns, x.size());
    return complex_transform(x, rows, columns, inverse, "allocation failure in fft_2d()");
}

ComplexValues fft_2d_real(const std::vector<double>& x, std::size_t rows, std::size_t columns,
                          bool inverse) {
    check_same_size(rows * columns, x.size());
    return real_transform(x, rows, columns, inverse, "allocation failure in fft_2d_real()");
}

CellMatrix FFT(const CellMatrix& xReal, const CellMatrix& xImag) {
    return transform(xReal, xImag, false);
}

CellMatrix IFFT(const CellMatrix& xReal, const CellMatrix& xImag) {
    return transform(xReal, xImag, true);
}

}  // namespace zentable
