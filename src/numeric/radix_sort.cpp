#include "numeric/radix_sort.hpp"

#include <array>
#include <cstring>
#include <utility>
#include <vector>

namespace zentable {

std::uint64_t order_key(double value) {
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return (bits >> 63) != 0 ? ~bits : bits | (std::uint64_t{1} << 63);
}

double key_value(std::uint64_t key) {
    const std::uint64_t bits = (key >> 63) != 0 ? key & ~(std::uint64_t{1} << 63) : ~key;
    double value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

bool radix_sort_keys(void* keys, void* spare, std::size_t n) {
    constexpr int kBits = 11, kPasses = 6;
    constexpr std::size_t kBuckets = std::size_t{1} << kBits;
    auto* from = static_cast<unsigned char*>(keys);
    auto* to = static_cast<unsigned char*>(spare);
    auto key_at = [](const unsigned char* run, std::size_t i) {
        std::uint64_t key;
        std::memcpy(&key, run + i * sizeof key, sizeof key);
        return key;
    };
    std::vector<std::array<std::size_t, kBuckets>> counts(kPasses);
    for (auto& c : counts)
        c.fill(0);
    for (std::size_t i = 0; i < n; ++i) {
        const std::uint64_t key = key_at(from, i);
        for (int p = 0; p < kPasses; ++p)
            ++counts[p][(key >> (p * kBits)) & (kBuckets - 1)];
    }
    bool in_spare = false;
    for (int p = 0; p < kPasses && n > 0; ++p) {
        const int shift = p * kBits;
        if (counts[p][(key_at(from, 0) >> shift) & (kBuckets - 1)] == n)
            continue;
        std::size_t start = 0;
        for (std::size_t& c : counts[p]) {
            const std::size_t here = c;
            c = start;
            start += here;
        }
        for (std::size_t i = 0; i < n; ++i) {
            const std::uint64_t key = key_at(from, i);
            const std::size_t at = counts[p][(key >> shift) & (kBuckets - 1)]++;
            std::memcpy(to + at * sizeof key, &key, sizeof key);
        }
        std::swap(from, to);
        in_spare = !in_spare;
    }
    return in_spare;
}

}  // namespace zentable
