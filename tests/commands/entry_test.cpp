#include <gtest/gtest.h>

#include <regex>
#include <string>

#include "commands/entry.hpp"
#include "commands/utility.hpp"
#include "xlw/xlf_exception.hpp"

// The call files state the texts that commands throw, the conversions of the
// entries and the function list; here is what no call can show.
namespace zentable {
namespace {

TEST(Guard, MapsWhatIsThrownToWhatTheSheetShows) {
    const GuardedResult host = guarded([]() -> CellMatrix { throw XlfException("abort"); });
    EXPECT_EQ(host.outcome, GuardedResult::host_failure);
    EXPECT_EQ(host.table.RowsInStructure(), 0u);

    const GuardedResult other = guarded([]() -> CellMatrix { throw 42; });
    EXPECT_EQ(other.outcome, GuardedResult::value_error);
    ASSERT_TRUE(other.table(0, 0).IsError());
    EXPECT_EQ(other.table(0, 0).ErrorValue(), 15u);

    // A thrown table comes back as a result; the command line's tests show the
    // padding of a result.
    const GuardedResult thrown = guarded([]() -> CellMatrix { throw CellMatrix("as a table"); });
    EXPECT_FALSE(thrown.failed());
    EXPECT_EQ(thrown.table(0, 0).StringValue(), "as a table");
}

TEST(Padding, NeverCutsATableAndHonoursThePadFlag) {
    CellMatrix t(2, 3);
    const CellMatrix larger = pad_to_range(t, 1, 1);
    EXPECT_EQ(larger.RowsInStructure(), 2u);
    EXPECT_EQ(larger.ColumnsInStructure(), 3u);
    EXPECT_TRUE(larger(1, 2).IsAString());  // an empty cell goes out as an empty string
    t.pad_to_caller = false;
    EXPECT_EQ(pad_to_range(t, 5, 5).RowsInStructure(), 2u);
}

// The build stamp and the help sentences, which the function list's call file
// leaves out.
TEST(Utility, VersionStampAndListedDescriptions) {
    EXPECT_TRUE(std::regex_match(version()(0, 0).StringValue(),
                                 std::regex("Zentable 2\\.00 is built on [A-Z][a-z]{2} [ 123][0-9] "
                                            "[0-9]{4} [0-9]{2}:[0-9]{2}:[0-9]{2}")));
    const CellMatrix list = function_list();
    for (std::size_t i = 1; i < list.RowsInStructure(); ++i)
        if (list(i, 0).IsANumber()) {
            EXPECT_FALSE(list(i, 2).StringValue().empty()) << list(i, 1).StringValue();
        }
}

}  // namespace
}  // namespace zentable
