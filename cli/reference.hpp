#pragma once

#include <iosfwd>
#include <string>

namespace zentable::cli {

// The usage lines, shown on a bad command line and by --help.
extern const char* const kUsage;

// `help call`, `help run`, `help syntax`: false when `topic` is none of them.
bool print_topic(std::ostream& out, const std::string& topic);

// Every function with its arguments, kinds, defaults and help, as Markdown.
void print_markdown_reference(std::ostream& out);

// The manual page, in roff.
void print_man_page(std::ostream& out);

// A bash completion script for the catalogue's names and the driver's options.
void print_bash_completion(std::ostream& out);

}  // namespace zentable::cli
