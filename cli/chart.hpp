#pragma once

#include <iosfwd>
#include <string>

#include "commands/catalogue.hpp"
#include "driver.hpp"

namespace zentable::cli {

// True when --plot names a file the chart can be written as: .png, .svg,
// .pdf, .dat for the points each panel draws, or "-" for a text chart on
// standard output.
bool is_chart_target(const std::string& path);

// Draws the chart the catalogue declares for `function` from its result,
// through the gnuplot program; returns the exit status (1 when it cannot).
int draw_chart(const FunctionInfo& function, const CellMatrix& table, const OutputOptions& options,
               std::ostream& out, std::ostream& err);

}  // namespace zentable::cli
