// The driver's promise on hostile input, for every built command: exit 0 with
// a table, 1 with exactly one line on standard error when the guard caught a
// failure, 2 when the command line itself was wrong; never a signal.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "command_line.hpp"
#include "commands/catalogue.hpp"

namespace zentable::cli {
namespace {

std::size_t lines_in(const std::string& text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

TEST(ExitStatus, EveryBuiltCommandKeepsThePromiseOnHostileWords) {
    // Words as a shell passes them: empty, text, a half constant, a file that
    // is not there, the omitted mark, non-finite numbers, a named argument.
    const std::vector<std::string> hostile = {"",   "abc", "{1,2", "@no-such-file.csv",
                                              "_",  "nan", "-inf", "{\"x\";1;2}",
                                              "{}", "x=1", "--",   "linearRegModel->0"};
    // Whatever a command writes lands in a folder of the test's own.
    const auto folder = std::filesystem::path(::testing::TempDir()) / "zentable-exit-status";
    std::filesystem::create_directories(folder);
    std::filesystem::current_path(folder);
    std::size_t calls = 0;
    for (const FunctionInfo& f : catalogue()) {
        if (!f.is_built())
            continue;
        for (const std::string& word : hostile) {
            std::vector<std::string> args = {"call", f.excel_name};
            args.insert(args.end(), f.args.size(), word);
            std::ostringstream out, err;
            const int status = run_command_line(args, out, err);
            ++calls;
            const std::string what = f.excel_name + " with every argument '" + word + "'";
            ASSERT_TRUE(status == 0 || status == 1 || status == 2) << what;
            if (status == 0) {
                EXPECT_TRUE(err.str().empty()) << what;
                EXPECT_FALSE(out.str().empty()) << what;
            } else {
                EXPECT_TRUE(out.str().empty()) << what;
                // One line of complaint; a wrong shape of command line adds the usage.
                EXPECT_GE(lines_in(err.str()), 1u) << what;
                if (status == 1)
                    EXPECT_EQ(lines_in(err.str()), 1u) << what << ": " << err.str();
                else
                    EXPECT_EQ(err.str().rfind("zentable: ", 0), 0u) << what << ": " << err.str();
            }
        }
    }
    EXPECT_GT(calls, 0u);
}

}  // namespace
}  // namespace zentable::cli
