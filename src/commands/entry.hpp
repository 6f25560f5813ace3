#pragma once

#include <functional>
#include <string>
#include <vector>

#include "commands/catalogue.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

// What the guard made of a call. A failure is one text cell (or, for what it
// cannot name, the sheet's #VALUE! error); a host failure has no table at all.
struct GuardedResult {
    enum Outcome { result, failure, host_failure, value_error };
    CellMatrix table;
    Outcome outcome = result;
    bool failed() const { return outcome != result; }
};

constexpr unsigned long kValueErrorCode = 15;  // the sheet's #VALUE!

// Runs a body and maps whatever it throws to the table the sheet shows.
GuardedResult guarded(const std::function<CellMatrix()>& body);

// One call of a catalogue function, as every driver makes it: the arguments
// converted in catalogue order, the command called, all inside the guard.
// Missing trailing arguments arrive omitted.
GuardedResult call_entry(const FunctionInfo& function, std::vector<CellMatrix> args);

// The padding of a result entered over a range: extra rows and columns of
// empty strings up to the range, and empty cells made empty strings too.
CellMatrix pad_to_range(const CellMatrix& table, std::size_t rows, std::size_t columns);

}  // namespace zentable
