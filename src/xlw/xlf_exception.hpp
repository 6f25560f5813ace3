#pragma once

#include <stdexcept>
#include <string>

namespace zentable {

// Thrown when the host itself failed or aborted a call: the entry then returns
// a null value and the host reports its own failure. Not an std::exception on
// purpose, so that the guard can tell it from a failure with a text.
class XlfException {
  public:
    explicit XlfException(std::string what = "") : what_(std::move(what)) {}
    virtual ~XlfException() = default;
    const char* what() const noexcept { return what_.c_str(); }

  private:
    std::string what_;
};

// A cell read as a kind it does not hold; its text reaches the sheet.
class XlfGeneralException : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace zentable
