#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace zentable::cli {

// Runs one command line (the words after the program's name) and gives the
// exit status: 0 done, 1 a failure the guard caught (its text on `err`), 2 a
// bad command line or input (one line on `err`, the usage line after it
// when the line's shape was wrong).
int run_command_line(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

}  // namespace zentable::cli
