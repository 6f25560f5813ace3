#pragma once

// Buffers indexed from a chosen lower bound, for the routines that were
// written with one-based arrays (the root finder, some iterative solvers).
// Each allocation is one element longer than needed, so that for the usual
// lower bounds 0 and 1 the offset pointer handed out by data() still points
// into the block.

#include <complex>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <stdexcept>

namespace zentable {

// The texts a failed allocation throws, by element type.
template <class T>
struct one_based_failure;

template <>
struct one_based_failure<std::int32_t> {
    static constexpr const char* vector = "allocation failure in ivector()";
};

template <>
struct one_based_failure<double> {
    static constexpr const char* vector = "allocation failure in dvector()";
    static constexpr const char* matrix_rows = "allocation failure 1 in matrix()";
    static constexpr const char* matrix_block = "allocation failure 2 in matrix()";
};

template <>
struct one_based_failure<std::complex<double>> {
    static constexpr const char* matrix_rows = "allocation failure 1 in cmatrix()";
    static constexpr const char* matrix_block = "allocation failure 2 in cmatrix()";
};

namespace one_based_detail {

// The number of indices lo to hi, or -1 for a reversed or absurdly long range.
// The first test runs in floating point so that no integer overflows on the way.
inline long long range_length(long lo, long hi) {
    const double approx = static_cast<double>(hi) - static_cast<double>(lo) + 1.0;
    if (approx < 0.0 || approx > 4.0e18)
        return -1;
    return static_cast<long long>(hi) - lo + 1;
}

// Allocates count value-initialised elements, turning every way that can fail
// into the given text.
template <class T>
std::unique_ptr<T[]> allocate(long long count, const char* failure) {
    if (count < 1 || static_cast<unsigned long long>(count) >
                         std::numeric_limits<std::size_t>::max() / sizeof(T))
        throw failure;
    try {
        return std::unique_ptr<T[]>(new T[static_cast<std::size_t>(count)]());
    } catch (const std::bad_alloc&) {
        throw failure;
    } catch (const std::length_error&) {
        throw failure;
    }
}

}  // namespace one_based_detail

// Elements nl to nh inclusive.
template <class T>
class one_based_vector {
  public:
    one_based_vector(long nl, long nh)
        : nl_(nl),
          nh_(nh),
          block_(one_based_detail::allocate<T>(static_cast<long long>(nh) - nl + 2,
                                               one_based_failure<T>::vector)) {}

    one_based_vector(const one_based_vector&) = delete;
    one_based_vector& operator=(const one_based_vector&) = delete;
    one_based_vector(one_based_vector&&) noexcept = default;
    one_based_vector& operator=(one_based_vector&&) noexcept = default;

    T& operator[](long i) { return block_[static_cast<std::size_t>(1 + i - nl_)]; }
    const T& operator[](long i) const { return block_[static_cast<std::size_t>(1 + i - nl_)]; }

    // The pointer the one-based routines index: data()[nl] is the first element.
    T* data() { return block_.get() + 1 - nl_; }
    const T* data() const { return block_.get() + 1 - nl_; }

    long lower() const { return nl_; }
    long upper() const { return nh_; }

  private:
    long nl_;
    long nh_;
    std::unique_ptr<T[]> block_;
};

// Rows nrl to nrh by columns ncl to nch inclusive, in one contiguous block with
// a table of row pointers, so that m[i][j] and data()[i][j] both work.
template <class T>
class one_based_matrix {
  public:
    one_based_matrix(long nrl, long nrh, long ncl, long nch)
        : nrl_(nrl), nrh_(nrh), ncl_(ncl), nch_(nch) {
        const long long nrow = one_based_detail::range_length(nrl, nrh);
        const long long ncol = one_based_detail::range_length(ncl, nch);
        rows_ = one_based_detail::allocate<T*>(nrow + 1, one_based_failure<T>::matrix_rows);
        if (ncol < 0 || (ncol > 0 && nrow > (std::numeric_limits<long long>::max() - 1) / ncol))
            throw one_based_failure<T>::matrix_block;
        block_ = one_based_detail::allocate<T>(nrow * ncol + 1, one_based_failure<T>::matrix_block);
        T* row = block_.get() + 1;
        for (long long i = 0; i < nrow; ++i, row += ncol)
            rows_[static_cast<std::size_t>(1 + i)] = row - ncl;
    }

    one_based_matrix(const one_based_matrix&) = delete;
    one_based_matrix& operator=(const one_based_matrix&) = delete;
    one_based_matrix(one_based_matrix&&) noexcept = default;
    one_based_matrix& operator=(one_based_matrix&&) noexcept = default;

    // Row i, itself indexed from the lower column bound.
    T* operator[](long i) { return rows_[static_cast<std::size_t>(1 + i - nrl_)]; }
    const T* operator[](long i) const { return rows_[static_cast<std::size_t>(1 + i - nrl_)]; }

    // The row table the one-based routines index: data()[nrl][ncl] is the first element.
    T** data() { return rows_.get() + 1 - nrl_; }

    long row_lower() const { return nrl_; }
    long row_upper() const { return nrh_; }
    long col_lower() const { return ncl_; }
    long col_upper() const { return nch_; }

  private:
    long nrl_;
    long nrh_;
    long ncl_;
    long nch_;
    std::unique_ptr<T*[]> rows_;
    std::unique_ptr<T[]> block_;
};

using ivector = one_based_vector<std::int32_t>;
using dvector = one_based_vector<double>;
using matrix = one_based_matrix<double>;
using cmatrix = one_based_matrix<std::complex<double>>;

}  // namespace zentable
