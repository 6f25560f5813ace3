#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <string>
#include <vector>

#include "commands/catalogue.hpp"
#include "commands/entry.hpp"
#include "commands/utility.hpp"
#include "xlw/xlf_exception.hpp"

namespace zentable {
namespace {

std::string only_text(const GuardedResult& r) {
    EXPECT_EQ(r.table.RowsInStructure(), 1u);
    EXPECT_EQ(r.table.ColumnsInStructure(), 1u);
    return r.table(0, 0).StringValue();
}

TEST(Guard, MapsWhatIsThrownToWhatTheSheetShows) {
    const GuardedResult literal = guarded([]() -> CellMatrix { throw "bad input"; });
    const GuardedResult built = guarded([]() -> CellMatrix { throw std::string("bad input"); });
    EXPECT_EQ(only_text(literal), "bad input");
    EXPECT_EQ(only_text(built), "bad input");
    EXPECT_EQ(literal.outcome, GuardedResult::failure);
    EXPECT_EQ(built.outcome, GuardedResult::failure);

    const GuardedResult cell_read = guarded([]() -> CellMatrix {
        CellMatrix t(1, 1);
        t(0, 0) = 1.5;
        return CellMatrix(t(0, 0).StringValue());
    });
    EXPECT_EQ(only_text(cell_read), "non string cell asked to be a string");

    const GuardedResult host = guarded([]() -> CellMatrix { throw XlfException("abort"); });
    EXPECT_EQ(host.outcome, GuardedResult::host_failure);
    EXPECT_EQ(host.table.RowsInStructure(), 0u);

    const GuardedResult other = guarded([]() -> CellMatrix { throw 42; });
    EXPECT_EQ(other.outcome, GuardedResult::value_error);
    ASSERT_TRUE(other.table(0, 0).IsError());
    EXPECT_EQ(other.table(0, 0).ErrorValue(), 15u);

    // A thrown table comes back as a result, and pads like one.
    const GuardedResult thrown_table =
        guarded([]() -> CellMatrix { throw CellMatrix("as a table"); });
    EXPECT_FALSE(thrown_table.failed());
    const CellMatrix padded = pad_to_range(thrown_table.table, 3, 2);
    ASSERT_EQ(padded.RowsInStructure(), 3u);
    ASSERT_EQ(padded.ColumnsInStructure(), 2u);
    EXPECT_EQ(padded(0, 0).StringValue(), "as a table");
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 2; ++j)
            if (i || j) {
                EXPECT_TRUE(padded(i, j).IsAString() && padded(i, j).StringValue().empty());
            }
}

TEST(Padding, KeepsALargerTableAndHonoursThePadFlag) {
    CellMatrix t(2, 3);
    t(0, 0) = 1.0;
    const CellMatrix larger = pad_to_range(t, 1, 1);
    EXPECT_EQ(larger.RowsInStructure(), 2u);
    EXPECT_EQ(larger.ColumnsInStructure(), 3u);
    EXPECT_EQ(larger(0, 0).NumericValue(), 1.0);
    EXPECT_TRUE(larger(1, 2).IsAString());  // an empty cell goes out as an empty string
    t.pad_to_caller = false;
    const CellMatrix unpadded = pad_to_range(t, 5, 5);
    EXPECT_EQ(unpadded.RowsInStructure(), 2u);
    EXPECT_EQ(unpadded.ColumnsInStructure(), 3u);
}

std::vector<std::string> seen;

CellMatrix probe(const CellMatrix& table, double number, const std::string& text) {
    seen = {std::to_string(table.RowsInStructure()), std::to_string(number), text};
    return CellMatrix(text);
}

TEST(Entry, ConvertsArgumentsByTheParameterTypesInOrder) {
    const FunctionInfo f =
        function("probe", "Probe", {oper("data", "d"), plain("p", "p"), oper("model", "m")},
                 command<&probe>());
    ASSERT_TRUE(f.is_built());
    EXPECT_EQ(f.command.kinds,
              (std::vector<ArgKind>{ArgKind::table, ArgKind::number, ArgKind::text}));
    EXPECT_EQ(f.help, " Probe ");
    EXPECT_EQ(f.entry_name, "xlprobe");

    CellMatrix model(2, 2);
    model(0, 0) = "linearRegModel->7";
    const GuardedResult r = call_entry(f, {CellMatrix(3, 1), CellMatrix("2.5"), model});
    ASSERT_FALSE(r.failed());
    EXPECT_EQ(seen, (std::vector<std::string>{"3", "2.500000", "linearRegModel->7"}));

    // Omitted trailing arguments arrive as one empty cell each: a number 0.
    seen.clear();
    EXPECT_FALSE(call_entry(f, {CellMatrix(1, 1)}).failed());
    EXPECT_EQ(seen, (std::vector<std::string>{"1", "0.000000", ""}));

    // A failed conversion stops the call before the command runs.
    seen.clear();
    const GuardedResult bad = call_entry(f, {CellMatrix(1, 1), CellMatrix("abc"), model});
    EXPECT_EQ(only_text(bad), "Conversion to Double: argument p must be a number");
    EXPECT_TRUE(seen.empty());

    const FunctionInfo unbuilt = function("later", "Later", {oper("x", "x")});
    EXPECT_EQ(only_text(call_entry(unbuilt, {})), "later is not available in this build");
}

TEST(Utility, VersionAndTheHandKeptFunctionList) {
    const CellMatrix v = version();
    ASSERT_EQ(v.RowsInStructure(), 1u);
    EXPECT_TRUE(std::regex_match(v(0, 0).StringValue(),
                                 std::regex("Zentable 2\\.00 is built on [A-Z][a-z]{2} [ 123][0-9] "
                                            "[0-9]{4} [0-9]{2}:[0-9]{2}:[0-9]{2}")))
        << v(0, 0).StringValue();

    const CellMatrix list = function_list();
    ASSERT_EQ(list.RowsInStructure(), 251u);
    ASSERT_EQ(list.ColumnsInStructure(), 3u);
    EXPECT_EQ(list(0, 0).StringValue(), "Zentable 2.00");
    EXPECT_EQ(list(0, 1).StringValue(), "Function List");
    EXPECT_EQ(list(1, 0).StringValue(), "I");
    EXPECT_EQ(list(1, 1).StringValue(), "Utility Functions");
    EXPECT_EQ(list(2, 0).NumericValue(), 1);
    EXPECT_EQ(list(2, 1).StringValue(), "version()");
    EXPECT_EQ(list(3, 1).StringValue(), "function_list()");
    EXPECT_TRUE(list(4, 0).IsEmpty() && list(4, 1).IsEmpty());
    EXPECT_EQ(list(5, 0).StringValue(), "II");
    EXPECT_EQ(list(236, 0).StringValue(), "XXV");
    EXPECT_EQ(list(236, 1).StringValue(), "Probability Functions");
    EXPECT_EQ(list(249, 0).NumericValue(), 13);
    EXPECT_EQ(list(249, 1).StringValue(), "Cornish_Fisher_expansion()");
    EXPECT_TRUE(list(250, 0).IsEmpty());

    std::set<std::string> listed;
    int sections = 0;
    for (std::size_t i = 1; i < 251; ++i) {
        if (list(i, 0).IsString())
            ++sections;
        if (list(i, 0).IsANumber()) {
            listed.insert(list(i, 1).StringValue());
            EXPECT_FALSE(list(i, 2).StringValue().empty()) << list(i, 1).StringValue();
        }
    }
    EXPECT_EQ(sections, 25);
    EXPECT_EQ(listed.size(), 200u);
    for (const char* odd : {"data_save_tex()", "stochastic_processs_simulate()",
                            "tree_boosting_ls()", "tree_boosting_ls_from_file()"})
        EXPECT_EQ(listed.count(odd), 1u) << odd;
    for (const char* unlisted :
         {"data_info()", "linear_reg_nz()", "model_score_node()", "split_str()",
          "stochastic_process_simulate()", "tree_boosting_ls_reg()"})
        EXPECT_EQ(listed.count(unlisted), 0u) << unlisted;
}

}  // namespace
}  // namespace zentable
