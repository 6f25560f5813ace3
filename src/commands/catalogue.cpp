#include "commands/catalogue.hpp"

#include <cctype>
#include <cstdlib>

#include "xlw/cell_conversions.hpp"

namespace zentable {

ArgumentInfo oper(const char* name, const char* help) {
    return {name, "XLF_OPER", help};
}

ArgumentInfo plain(const char* name, const char* help) {
    return {name, "B", help};
}

FunctionInfo function(const char* name, const char* help, std::vector<ArgumentInfo> args,
                      Command command, Chart chart) {
    FunctionInfo f;
    f.library = "Zentable";
    // The host's dialog runs help texts into other text; the blanks keep them apart.
    f.help = std::string(" ") + help + " ";
    f.excel_name = name;
    f.entry_name = std::string("xl") + name;
    f.args = std::move(args);
    f.command = std::move(command);
    f.chart = std::move(chart);
    return f;
}

CellMatrix as_table(const CellMatrix& value, const ArgumentInfo&) {
    return value;
}

std::string as_text(const CellMatrix& value, const ArgumentInfo&) {
    if (value.RowsInStructure() == 0 || value.ColumnsInStructure() == 0)
        return std::string();
    return cell_to_text(value(0, 0));
}

double as_number(const CellMatrix& value, const ArgumentInfo& label) {
    const std::string failure =
        "Conversion to Double: argument " + label.name + " must be a number";
    if (value.RowsInStructure() == 0 || value.ColumnsInStructure() == 0)
        return 0.0;
    if (value.RowsInStructure() != 1 || value.ColumnsInStructure() != 1)
        throw failure;
    const CellValue& cell = value(0, 0);
    if (cell.IsANumber())
        return cell.NumericValue();
    if (cell.IsBoolean())
        return cell.BooleanValue() ? 1.0 : 0.0;
    if (cell.IsEmpty())
        return 0.0;
    if (cell.IsString()) {
        // The host coerces a text that reads in full as a number.
        const std::string text = trim(cell.StringValue(), 0);
        char* end = nullptr;
        const double number = std::strtod(text.c_str(), &end);
        if (!text.empty() && end == text.c_str() + text.size())
            return number;
    }
    throw failure;
}

const FunctionInfo* find_function(const std::string& name) {
    const auto& functions = catalogue();
    for (const FunctionInfo& f : functions)
        if (f.excel_name == name)
            return &f;
    // The sheet takes function names in any case.
    auto same_folded = [](const std::string& a, const std::string& b) {
        if (a.size() != b.size())
            return false;
        for (std::size_t i = 0; i < a.size(); ++i)
            if (std::toupper(static_cast<unsigned char>(a[i])) !=
                std::toupper(static_cast<unsigned char>(b[i])))
                return false;
        return true;
    };
    for (const FunctionInfo& f : functions)
        if (same_folded(f.excel_name, name))
            return &f;
    return nullptr;
}

}  // namespace zentable
