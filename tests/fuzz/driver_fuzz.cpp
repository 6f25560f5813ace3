// The driver's argument forms and whole command lines and scripts: array
// constants, @file references, named arguments, A1 ranges of kept results.
// Whatever the words, the driver gives a table or one line of complaint, and
// its exit status keeps its promise.

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <unistd.h>

#include "command_line.hpp"
#include "fuzz_support.hpp"
#include "values.hpp"

namespace zentable::fuzz {
namespace {

// The files a command line may name are the ones in the target's own folder:
// an input with a path in it could write anywhere, so it is passed over.
bool stays_in_folder(const std::string& input) {
    return input.find('/') == std::string::npos;
}

void enter_own_folder() {
    static const bool entered = [] {
        const auto folder = own_folder("driver");
        if (::chdir(folder.c_str()) != 0)
            std::abort();
        std::ofstream("data.csv") << "x1,x2,y\n1,2,0\n2,3,1\n3,5,0\n4,4,1\n5,7,1\n6,5,0\n";
        return true;
    }();
    (void)entered;
}

std::vector<std::string> split(const std::string& text, char at) {
    std::vector<std::string> words;
    std::string word;
    std::istringstream in(text);
    while (std::getline(in, word, at))
        words.push_back(word);
    return words;
}

void check_argument_form(const std::string& word) {
    cli::Results results;
    results["fit"] = cli::parse_array_constant("{\"linearRegModel->1\",2;3,\"x\";TRUE,}");
    results["data"] = cli::read_cells_file("data.csv");
    // The driver's own faults are exceptions of its own kind, with words.
    try {
        const CellMatrix table = cli::parse_value(word, &results);
        require(table.RowsInStructure() > 0 && table.ColumnsInStructure() > 0,
                "an argument is a table of at least one cell");
    } catch (const std::exception&) {
    }
    try {
        cli::parse_array_constant(word);
    } catch (const std::exception&) {
    }
}

void check_exit(const std::vector<std::string>& args) {
    std::ostringstream out, err;
    const int status = cli::run_command_line(args, out, err);
    require(status == 0 || status == 1 || status == 2, "the exit status is 0, 1 or 2");
    const std::string complaint = err.str();
    if (status == 0)
        require(complaint.empty(), "success says nothing on the error stream");
    else
        require(!complaint.empty() && complaint.back() == '\n', "a failure says why");
    // `call` failing in a command gives exactly its one line.
    if (status == 1 && !args.empty() && args[0] == "call")
        require(std::count(complaint.begin(), complaint.end(), '\n') == 1,
                "a guarded failure is one line");
}

}  // namespace
}  // namespace zentable::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace zentable::fuzz;
    Bytes bytes(data, size);
    const std::uint8_t mode = bytes.byte() % 3;
    const std::string input = bytes.rest();
    // An array formula over the sheet's whole grid is the user's choice, not
    // the driver's fault: it is left out of the runs. So are a chart, which
    // runs another program and writes where it is told, and standard input,
    // which a run by hand would wait on.
    const bool reads_standard_input =
        input.find("@-") != std::string::npos || input.find("\n-\n") != std::string::npos ||
        (input.size() >= 2 && input.compare(input.size() - 2, 2, "\n-") == 0);
    if (!stays_in_folder(input) || input.find("--range") != std::string::npos ||
        input.find("--plot") != std::string::npos || reads_standard_input)
        return 0;
    enter_own_folder();
    if (mode == 0) {
        check_argument_form(input);
    } else if (mode == 1) {
        check_exit(split(input, '\n'));
    } else {
        std::ofstream("script.zt", std::ios::binary | std::ios::trunc) << input;
        check_exit({"run", "script.zt"});
    }
    return 0;
}
