#include "numeric/sobol.hpp"

#include <boost/random/detail/sobol_table.hpp>
#include <cstdlib>
#include <iostream>

namespace zentable {

namespace {

constexpr int kBits = 32;

// The primitive polynomials and initial direction numbers of S. Joe and
// F. Y. Kuo (new-joe-kuo-6.21201), as Boost.Random ships them for 3667
// dimensions; the first dimension, which has no polynomial, takes all its
// initial numbers as 1.
using JoeKuo = boost::random::detail::qrng_tables::sobol;
static_assert(JoeKuo::max_dimension >= kSobolMaxDimension, "the table is too short");

int degree_of(unsigned polynomial) {
    int degree = -1;
    for (; polynomial != 0; polynomial >>= 1)
        ++degree;
    return degree;
}

// The direction numbers of all dimensions, dimension by dimension, each as a
// 32-bit binary fraction m_j 2^-(j + 1). Filled on first use and kept for the
// program's life.
const std::vector<std::uint32_t>& direction_numbers() {
    static const std::vector<std::uint32_t> table = [] {
        std::vector<std::uint32_t> v(static_cast<std::size_t>(kSobolMaxDimension) * kBits);
        for (int d = 0; d < kSobolMaxDimension; ++d) {
            std::uint32_t* m = &v[static_cast<std::size_t>(d) * kBits];
            if (d == 0) {
                for (int j = 0; j < kBits; ++j)
                    m[j] = 1;
            } else {
                const unsigned polynomial = JoeKuo::polynomial(d - 1);
                const int s = degree_of(polynomial);
                for (int j = 0; j < s; ++j)
                    m[j] = JoeKuo::minit(d - 1, j);
                // m_j = 2 c_1 m_(j-1) ^ 4 c_2 m_(j-2) ^ ... ^ 2^s m_(j-s) ^ m_(j-s),
                // where c_i is the coefficient of x^(s-i).
                for (int j = s; j < kBits; ++j) {
                    std::uint32_t value = m[j - s] ^ (m[j - s] << s);
                    for (int i = 1; i < s; ++i)
                        if ((polynomial >> (s - i)) & 1u)
                            value ^= m[j - i] << i;
                    m[j] = value;
                }
            }
            for (int j = 0; j < kBits; ++j)
                m[j] <<= (kBits - 1 - j);
        }
        return v;
    }();
    return table;
}

}  // namespace

Sobol::Sobol(int dimension) : dimension_(dimension) {
    if (dimension < 1 || dimension > kSobolMaxDimension) {
        std::cerr << "Sobol: the dimension " << dimension << " is outside 1 to "
                  << kSobolMaxDimension << "\n";
        std::exit(EXIT_FAILURE);
    }
    const std::vector<std::uint32_t>& directions = direction_numbers();
    flips_.resize(static_cast<std::size_t>(dimension) * kBits);
    for (int d = 0; d < dimension; ++d) {
        std::uint32_t running = 0;
        for (int j = 0; j < kBits; ++j) {
            const std::size_t at = static_cast<std::size_t>(d) * kBits + j;
            running ^= directions[at];
            flips_[at] = running;
        }
    }
    integers_.assign(dimension, 0);
}

void Sobol::next(double* out) {
    ++counter_;
    int lowest_set = 0;
    // Bounded, so that a counter run past 2^32 - 1 points cannot spin.
    for (std::uint32_t n = counter_; (n & 1u) == 0 && lowest_set < kBits - 1; n >>= 1)
        ++lowest_set;
    constexpr double kScale = 1.0 / 4294967296.0;
    const std::uint32_t* flip = flips_.data() + lowest_set;
    for (int d = 0; d < dimension_; ++d, flip += kBits) {
        integers_[d] ^= *flip;
        out[d] = integers_[d] * kScale;
    }
}

}  // namespace zentable
