#pragma once

#include <string>

#include "commands/catalogue.hpp"
#include "values.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable::cli {

// What one statement of a script did.
struct StatementOutcome {
    enum Kind { kept, printed, failed } kind = kept;
    CellMatrix table;                        // the table kept or printed
    std::string failure;                     // the text the guard caught, when failed
    const FunctionInfo* function = nullptr;  // whose result the table is, when known
};

// The statements of one script, in order, sharing their kept results. The
// script runner and the call-file runner both go through it, so that a test
// reads a line exactly as `zentable run` does.
class ScriptSession {
  public:
    // Runs one statement (not blank, not a comment); a line it cannot read
    // throws DriverError.
    StatementOutcome run(const std::string& statement);

    // The driver names an omitted argument that is not optional before the
    // call; off, the command meets the omission itself and says so in its own
    // words, as the sheet shows them.
    void check_arguments(bool on) { check_arguments_ = on; }

  private:
    bool check_arguments_ = true;
    Results results_;
    std::map<std::string, const FunctionInfo*> made_by_;
};

}  // namespace zentable::cli
