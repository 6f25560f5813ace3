#pragma once

#include <stdexcept>
#include <string>

namespace zentable::cli {

// A fault of the driver's own input (the command line, a script line, an
// argument form), as opposed to a failure the guard caught in a command.
class DriverError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// A command line of the wrong shape: the usage line follows the message.
class UsageError : public DriverError {
  public:
    using DriverError::DriverError;
};

}  // namespace zentable::cli
