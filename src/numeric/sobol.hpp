#pragma once

#include <cstdint>
#include <vector>

namespace zentable {

constexpr int kSobolMaxDimension = 1111;

// One Sobol sequence in base 2 with 32-bit direction numbers. The points come
// in their natural order, so that the first coordinate is the base-2 radical
// inverse of 1, 2, 3 and so on; the origin, point 0, is skipped, so that every
// coordinate lies strictly between 0 and 1.
class Sobol {
  public:
    // A dimension outside 1 to kSobolMaxDimension ends the process: callers
    // test it first.
    explicit Sobol(int dimension);
    virtual ~Sobol() = default;

    int dimension() const { return dimension_; }

    // Writes the next point's dimension() coordinates to out; a sequence has
    // 2^32 - 1 points.
    void next(double* out);

  private:
    int dimension_;
    std::uint32_t counter_ = 0;
    // For each dimension, 32 running XORs of its direction numbers: from point
    // n - 1 to point n the coordinate changes by the XOR of the directions of
    // the bits that flip, which are bit 0 up to the lowest set bit of n.
    std::vector<std::uint32_t> flips_;
    std::vector<std::uint32_t> integers_;  // the point, as 32-bit binary fractions
};

}  // namespace zentable
