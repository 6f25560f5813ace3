#pragma once

#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

#include "commands/catalogue.hpp"
#include "commands/entry.hpp"
#include "print.hpp"
#include "values.hpp"

namespace zentable::cli {

struct OutputOptions {
    Format format = Format::table;
    bool has_range = false;  // --range RxC: what an array formula over R by C shows
    std::size_t range_rows = 0, range_columns = 0;
};

// An argument as written: a name (empty when given by position) and its table.
using GivenArgument = std::pair<std::string, CellMatrix>;

const FunctionInfo& function_named(const std::string& name);

// One argument as written in a call: "name=value" names it when the name is
// one of the function's; `results` (may be null) resolves earlier results.
GivenArgument given_argument(const FunctionInfo& function, const std::string& word,
                             const Results* results);

// The text of a failure the guard caught.
std::string failure_text(const FunctionInfo& function, const GuardedResult& result);

// Places given arguments in catalogue order; the rest stay omitted.
std::vector<CellMatrix> bind_arguments(const FunctionInfo& function,
                                       const std::vector<GivenArgument>& given);

// How an argument reaches its command, as `help` shows it.
std::string kind_name(const FunctionInfo& function, std::size_t argument);

void print_list(std::ostream& out);
void print_help(std::ostream& out, const FunctionInfo& function);

// The table a result shows under the output options.
CellMatrix shown(const CellMatrix& table, const OutputOptions& options);

// Runs a script; returns the exit status.
int run_script(const std::string& path, const OutputOptions& options, std::ostream& out,
               std::ostream& err);

}  // namespace zentable::cli
