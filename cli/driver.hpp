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
    int digits = kShortest;  // --digits N
    std::string plot;        // --plot FILE, "-" for a text chart; empty: none
    int plot_width = 800, plot_height = 600;
    bool quiet = false;  // --quiet: no progress line
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

// Places given arguments in catalogue order; the rest stay omitted. With
// `require`, an omitted argument that is not optional stops the call.
std::vector<CellMatrix> bind_arguments(const FunctionInfo& function,
                                       const std::vector<GivenArgument>& given,
                                       bool require = true);

// How an argument reaches its command, as `help` shows it.
std::string kind_name(const FunctionInfo& function, std::size_t argument);

// The functions whose names contain `pattern` (in any case), all of them
// when it is empty; `built_only` leaves out those not built.
void print_list(std::ostream& out, const std::string& pattern = "", bool built_only = false);
void print_help(std::ostream& out, const FunctionInfo& function);

// The table a result shows under the output options.
CellMatrix shown(const CellMatrix& table, const OutputOptions& options);

// Checks, before the call, that every argument the catalogue does not mark
// optional is given.
void require_arguments(const FunctionInfo& function, const std::vector<CellMatrix>& args);

// "did you mean a, b?" from the closest of `names`, or empty.
std::string suggestion(const std::string& word, const std::vector<std::string>& names);

// Prints a result, then draws its chart when --plot asks; returns the exit status.
int show_result(const FunctionInfo* function, const CellMatrix& table, const OutputOptions& options,
                std::ostream& out, std::ostream& err);

// Runs a script, "-" for standard input; returns the exit status.
int run_script(const std::string& path, const OutputOptions& options, std::ostream& out,
               std::ostream& err);

}  // namespace zentable::cli
