// zentable: the catalogue's functions from a shell or a script.
#include <iostream>
#include <string>
#include <vector>

#include "command_line.hpp"

int main(int argc, char** argv) {
    const std::vector<std::string> args(argv + 1, argv + argc);
    return zentable::cli::run_command_line(args, std::cout, std::cerr);
}
