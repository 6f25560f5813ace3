#include "commands/entry.hpp"

#include <algorithm>
#include <exception>

#include "xlw/xlf_exception.hpp"

namespace zentable {

namespace {

CellMatrix text_cell(const std::string& text) {
    return CellMatrix(text);
}

}  // namespace

GuardedResult guarded(const std::function<CellMatrix()>& body) {
    GuardedResult r;
    try {
        r.table = body();
        r.outcome = GuardedResult::result;
    } catch (const XlfException&) {
        r.table = CellMatrix(0, 0);
        r.outcome = GuardedResult::host_failure;
    } catch (const std::exception& e) {
        r.table = text_cell(e.what());
        r.outcome = GuardedResult::failure;
    } catch (const std::string& text) {
        r.table = text_cell(text);
        r.outcome = GuardedResult::failure;
    } catch (const char* text) {
        r.table = text_cell(text);
        r.outcome = GuardedResult::failure;
    } catch (const CellMatrix& table) {
        // A command may throw a whole table; it shows as if returned.
        r.table = table;
        r.outcome = GuardedResult::result;
    } catch (...) {
        r.table = CellMatrix(1, 1);
        r.table(0, 0) = CellValue::ErrorCode{kValueErrorCode};
        r.outcome = GuardedResult::value_error;
    }
    return r;
}

GuardedResult call_entry(const FunctionInfo& function, std::vector<CellMatrix> args) {
    return guarded([&]() -> CellMatrix {
        if (!function.is_built())
            throw function.excel_name + " is not available in this build";
        if (args.size() > function.args.size())
            throw function.excel_name + " takes " + std::to_string(function.args.size()) +
                " arguments, not " + std::to_string(args.size());
        while (args.size() < function.args.size())
            args.emplace_back(1, 1);
        return function.command.invoke(args, function.args);
    });
}

CellMatrix pad_to_range(const CellMatrix& table, std::size_t rows, std::size_t columns) {
    const std::size_t r0 = table.RowsInStructure(), c0 = table.ColumnsInStructure();
    const std::size_t r = table.pad_to_caller ? std::max(r0, rows) : r0;
    const std::size_t c = table.pad_to_caller ? std::max(c0, columns) : c0;
    CellMatrix padded(r, c);
    for (std::size_t i = 0; i < r; ++i) {
        for (std::size_t j = 0; j < c; ++j) {
            if (i < r0 && j < c0 && !table(i, j).IsEmpty())
                padded(i, j) = table(i, j);
            else
                padded(i, j) = std::string();
        }
    }
    return padded;
}

}  // namespace zentable
