#pragma once

#include <cstddef>
#include <cstdint>

namespace zentable {

// The key of a double whose unsigned order is the numeric order: negative
// numbers have all bits turned, the others only the sign bit. -0 and 0 keep
// their own keys; a caller that wants them equal passes 0 for both.
std::uint64_t order_key(double value);
double key_value(std::uint64_t key);

// Sorts n order keys ascending by a least-significant-digit radix sort, six
// passes of 11 bits whose counts stay in the first-level cache; a pass whose
// digit all keys share moves nothing. keys and spare each hold n 64-bit keys
// (read and written bytewise, so a buffer of doubles serves); gives true when
// the sorted keys end in spare, false when in keys.
bool radix_sort_keys(void* keys, void* spare, std::size_t n);

}  // namespace zentable
