// Every built command, called through the drivers' guard with arguments that
// users' sheets and files really hold: each call must come back as a table
// (a result or one text), never a crash, an abort or a hang. The sweep walks
// the catalogue, so a command that lands is swept without a new line here.

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <future>
#include <iostream>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include <unistd.h>

#include "../support/tables.hpp"
#include "commands/catalogue.hpp"
#include "commands/entry.hpp"

namespace zentable {
namespace {

namespace fs = std::filesystem;

// A handle of a class every sweep has: fitted once through the catalogue.
std::string fitted_handle(const char* function, const CellMatrix& x, const CellMatrix& y) {
    const GuardedResult fit = call_entry(*find_function(function), {x, y});
    if (fit.failed() || !fit.table(0, 0).IsString())
        return "";
    return fit.table(0, 0).StringValue();
}

CellMatrix small_data() {
    return testing::table_with_header(
        {"x1", "x2", "y"}, {{1, 2, 0}, {2, 3, 1}, {3, 5, 0}, {4, 4, 1}, {5, 7, 1}, {6, 5, 0}});
}

CellMatrix columns(const CellMatrix& table, std::size_t first, std::size_t count) {
    CellMatrix c(table.RowsInStructure(), count);
    for (std::size_t i = 0; i < c.RowsInStructure(); ++i)
        for (std::size_t j = 0; j < count; ++j)
            c(i, j) = table(i, first + j);
    return c;
}

CellMatrix error_cell() {
    CellMatrix t(1, 1);
    t(0, 0) = CellValue::ErrorCode{kValueErrorCode};
    return t;
}

CellMatrix non_finite_table() {
    const double inf = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    CellMatrix t = small_data();
    t(1, 0) = nan;
    t(2, 1) = inf;
    t(3, 2) = -inf;
    t(4, 0) = inf;
    return t;
}

CellMatrix wide_table() {
    constexpr std::size_t columns = 10000;
    CellMatrix t(3, columns);
    for (std::size_t j = 0; j < columns; ++j) {
        t(0, j) = "v" + std::to_string(j);
        t(1, j) = static_cast<double>(j % 7);
        t(2, j) = static_cast<double>(j % 3);
    }
    return t;
}

// What one hostile argument is, for each kind of parameter.
struct Hostile {
    std::string name;
    std::function<CellMatrix(ArgKind)> value;
};

struct Sweep {
    std::vector<Hostile> hostiles;
    std::string linear_handle;
};

// Written into the sweep's own folder before the first call.
constexpr const char* kDataFile = "data.csv";

const Sweep& sweep() {
    static const Sweep s = [] {
        Sweep w;
        const CellMatrix data = small_data();
        const CellMatrix x = columns(data, 0, 2);
        const std::string linear = fitted_handle("linear_reg", x, columns(data, 2, 1));
        w.linear_handle = linear;
        const std::string logistic = fitted_handle("logistic_reg", x, columns(data, 2, 1));
        const fs::path dir = fs::temp_directory_path();
        auto same = [](CellMatrix v) { return [v](ArgKind) { return v; }; };
        const double nan = std::numeric_limits<double>::quiet_NaN();
        const double inf = std::numeric_limits<double>::infinity();
        w.hostiles = {
            {"omitted", same(CellMatrix(1, 1))},
            {"empty text", same(CellMatrix(""))},
            {"text for numbers", same(CellMatrix("abc"))},
            {"error cell", same(error_cell())},
            {"NaN", same(CellMatrix(nan))},
            {"infinity", same(CellMatrix(inf))},
            {"minus infinity", same(CellMatrix(-inf))},
            {"table with NaN and infinities",
             [](ArgKind k) { return k == ArgKind::table ? non_finite_table() : CellMatrix(1, 1); }},
            {"1 by 1 table", same(CellMatrix(1.0))},
            {"10^4 columns",
             [](ArgKind k) { return k == ArgKind::table ? wide_table() : CellMatrix(1, 1); }},
            {"linear model handle", same(CellMatrix(linear))},
            {"logistic model handle", same(CellMatrix(logistic))},
            {"handle never filed", same(CellMatrix("linearRegModel->987654321"))},
            {"missing file", same(CellMatrix((dir / "zentable-no-such-file.csv").string()))},
            {"directory as file", same(CellMatrix(dir.string()))},
        };
        return w;
    }();
    return s;
}

// A value that lets a call get past its first checks, so that the one hostile
// argument beside it reaches the command's own work: the argument's name says
// what it holds.
CellMatrix plausible(const ArgumentInfo& arg, ArgKind kind) {
    const std::string& n = arg.name;
    if (n == "filename" || n == "infilename")
        return CellMatrix(kDataFile);
    if (n == "outfilename")
        return CellMatrix("out.csv");
    if (n == "delimiter")
        return CellMatrix(",");
    if (n == "model" || n == "woeModel")
        return CellMatrix(sweep().linear_handle);
    if (n == "xNames" || n == "varNames")
        return testing::table_with_header({"x1", "x2"}, {});
    if (n == "yName")
        return CellMatrix("y");
    if (n.size() > 4 && n.compare(n.size() - 4, 4, "Name") == 0)
        return n == "weightName" ? CellMatrix(1, 1) : CellMatrix("x1");
    if (n == "x" && kind == ArgKind::table)
        return columns(small_data(), 0, 2);
    if (n == "y" && kind == ArgKind::table)
        return columns(small_data(), 2, 1);
    if (n == "weight")
        return CellMatrix(1, 1);
    switch (kind) {
        case ArgKind::table:
            return small_data();
        case ArgKind::text:
            return CellMatrix("x1");
        case ArgKind::number:
            return CellMatrix(1.0);
    }
    return CellMatrix(1, 1);
}

// A call that does not come back within this is a hang; the thread cannot be
// stopped, so the whole test ends there, naming the call.
constexpr std::chrono::seconds kHangLimit{30};

void call_or_die_on_hang(const FunctionInfo& f, std::vector<CellMatrix> args,
                         const std::string& what) {
    auto task = std::make_shared<std::packaged_task<GuardedResult()>>(
        [&f, args = std::move(args)]() mutable { return call_entry(f, std::move(args)); });
    std::future<GuardedResult> done = task->get_future();
    std::thread([task] { (*task)(); }).detach();
    if (done.wait_for(kHangLimit) != std::future_status::ready) {
        std::cerr << "hang: " << what << std::endl;
        std::_Exit(3);
    }
    const GuardedResult r = done.get();
    // A failure is one text cell; a result has at least one cell.
    if (r.outcome == GuardedResult::failure) {
        ASSERT_EQ(r.table.RowsInStructure(), 1u) << what;
        ASSERT_EQ(r.table.ColumnsInStructure(), 1u) << what;
        EXPECT_TRUE(r.table(0, 0).IsString()) << what;
    } else if (r.outcome == GuardedResult::result) {
        EXPECT_GT(r.table.RowsInStructure() * r.table.ColumnsInStructure(), 0u) << what;
    }
    // The guard's fallback for what it cannot name (#VALUE!, or nothing at all
    // for a host failure) is for exceptions from outside this code: a command
    // that ends there threw something it should have said in words.
    EXPECT_NE(r.outcome, GuardedResult::value_error) << what;
    EXPECT_NE(r.outcome, GuardedResult::host_failure) << what;
}

std::vector<std::string> built_functions() {
    std::vector<std::string> names;
    for (const FunctionInfo& f : catalogue())
        if (f.is_built())
            names.push_back(f.excel_name);
    return names;
}

class HostileSweep : public ::testing::TestWithParam<std::string> {
  protected:
    // Files a command writes under a hostile name land in a folder of their own.
    static void SetUpTestSuite() {
        const fs::path dir =
            fs::temp_directory_path() / ("zentable-sweep-" + std::to_string(::getpid()));
        fs::create_directories(dir);
        fs::current_path(dir);
        std::ofstream data(kDataFile);
        data << "x1,x2,y\n1,2,0\n2,3,1\n3,5,0\n4,4,1\n5,7,1\n6,5,0\n";
    }
};

TEST_P(HostileSweep, EveryCallComesBackAsATable) {
    const FunctionInfo& f = *find_function(GetParam());
    const std::size_t n = f.command.kinds.size();
    for (const Hostile& h : sweep().hostiles) {
        // Every argument hostile at once, then each alone among plausible ones.
        std::vector<CellMatrix> all;
        for (ArgKind k : f.command.kinds)
            all.push_back(h.value(k));
        call_or_die_on_hang(f, all, f.excel_name + " with every argument " + h.name);
        for (std::size_t i = 0; i < n; ++i) {
            std::vector<CellMatrix> args;
            for (std::size_t j = 0; j < n; ++j)
                args.push_back(j == i ? h.value(f.command.kinds[j])
                                      : plausible(f.args[j], f.command.kinds[j]));
            call_or_die_on_hang(f, args, f.excel_name + " with " + f.args[i].name + " " + h.name);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Catalogue, HostileSweep, ::testing::ValuesIn(built_functions()),
                         [](const ::testing::TestParamInfo<std::string>& info) {
                             return info.param;
                         });

TEST(HostileSweepCoverage, SweepsEveryBuiltCommand) {
    // The sweep is only as good as its reach: an empty catalogue sweeps nothing.
    EXPECT_GE(built_functions().size(), 50u);
}

}  // namespace
}  // namespace zentable
