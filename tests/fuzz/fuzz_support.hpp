#pragma once

// What every fuzz target needs: a way to say a promise was broken, a reader
// of the fuzzer's bytes, and a folder of its own to write files into.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include <unistd.h>

#include "commands/entry.hpp"

namespace zentable::fuzz {

// A broken promise ends the run, so that libFuzzer keeps the input.
inline void require(bool holds, const char* promise) {
    if (!holds) {
        std::fprintf(stderr, "broken promise: %s\n", promise);
        std::abort();
    }
}

// A failure must come back as words, never as the guard's fallbacks for
// what it cannot name.
inline void require_text_failure(const GuardedResult& r, const char* what) {
    require(r.outcome != GuardedResult::value_error, what);
    require(r.outcome != GuardedResult::host_failure, what);
    if (r.outcome == GuardedResult::failure)
        require(r.table.RowsInStructure() == 1 && r.table.ColumnsInStructure() == 1 &&
                    r.table(0, 0).IsString(),
                what);
}

// Reads the fuzzer's bytes front to back; past the end every read gives 0.
class Bytes {
  public:
    Bytes(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}
    std::uint8_t byte() { return pos_ < size_ ? data_[pos_++] : 0; }
    double number() {
        double d = 0;
        unsigned char raw[sizeof d] = {};
        for (unsigned char& b : raw)
            b = byte();
        std::memcpy(&d, raw, sizeof d);
        return d;
    }
    std::string text(std::size_t max_length) {
        const std::size_t n = byte() % (max_length + 1);
        std::string s;
        for (std::size_t i = 0; i < n && pos_ < size_; ++i)
            s += static_cast<char>(byte());
        return s;
    }
    std::string rest() {
        std::string s(reinterpret_cast<const char*>(data_ + pos_), size_ - pos_);
        pos_ = size_;
        return s;
    }
    bool empty() const { return pos_ >= size_; }

  private:
    const std::uint8_t* data_;
    std::size_t size_;
    std::size_t pos_ = 0;
};

// A folder of this process's own under the system's temporary folder.
inline std::filesystem::path own_folder(const char* target) {
    static const std::filesystem::path folder = [target] {
        const auto p = std::filesystem::temp_directory_path() /
                       (std::string("zentable-fuzz-") + target + "-" + std::to_string(::getpid()));
        std::filesystem::create_directories(p);
        return p;
    }();
    return folder;
}

}  // namespace zentable::fuzz
