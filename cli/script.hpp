#pragma once

#include <string>

#include "values.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable::cli {

// What one statement of a script did.
struct StatementOutcome {
    enum Kind { kept, printed, failed } kind = kept;
    CellMatrix table;     // the table kept or printed
    std::string failure;  // the text the guard caught, when failed
};

// The statements of one script, in order, sharing their kept results. The
// script runner and the call-file runner both go through it, so that a test
// reads a line exactly as `zentable run` does.
class ScriptSession {
  public:
    // Runs one statement (not blank, not a comment); a line it cannot read
    // throws DriverError.
    StatementOutcome run(const std::string& statement);

  private:
    Results results_;
};

}  // namespace zentable::cli
