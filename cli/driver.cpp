#include "driver.hpp"

#include <algorithm>
#include <fstream>
#include <ostream>

#include "driver_error.hpp"
#include "script.hpp"
#include "xlw/cell_conversions.hpp"

namespace zentable::cli {

namespace {

bool takes_text_by_name(const std::string& name) {
    return name == "filename" || name == "infilename" || name == "outfilename" || name == "model";
}

std::string signature(const FunctionInfo& f) {
    std::string s = f.excel_name + "(";
    for (std::size_t i = 0; i < f.args.size(); ++i)
        s += (i ? ", " : "") + f.args[i].name;
    return s + ")";
}

}  // namespace

const FunctionInfo& function_named(const std::string& name) {
    const FunctionInfo* f = find_function(name);
    if (!f)
        throw DriverError("unknown function " + name + " (zentable list shows them all)");
    return *f;
}

// "name=value" names an argument when the name is one of the function's.
GivenArgument given_argument(const FunctionInfo& f, const std::string& word,
                             const Results* results) {
    const std::string text = trim(word, 0);
    const auto eq = text.find('=');
    if (eq != std::string::npos && eq > 0) {
        const std::string name = trim(text.substr(0, eq), 0);
        if (is_identifier(name)) {
            const bool known = std::any_of(f.args.begin(), f.args.end(),
                                           [&](const ArgumentInfo& a) { return a.name == name; });
            if (!known)
                throw DriverError(f.excel_name + " has no argument named " + name);
            return {name, parse_value(text.substr(eq + 1), results)};
        }
    }
    return {"", parse_value(text, results)};
}

std::string failure_text(const FunctionInfo& f, const GuardedResult& result) {
    return result.table.RowsInStructure() ? cell_text(result.table(0, 0))
                                          : f.excel_name + " failed";
}

std::vector<CellMatrix> bind_arguments(const FunctionInfo& f,
                                       const std::vector<GivenArgument>& given) {
    std::vector<CellMatrix> args(f.args.size(), CellMatrix(1, 1));
    std::vector<bool> set(f.args.size(), false);
    std::size_t next = 0;
    for (const GivenArgument& g : given) {
        std::size_t at = next;
        if (!g.first.empty()) {
            at = static_cast<std::size_t>(
                std::find_if(f.args.begin(), f.args.end(),
                             [&](const ArgumentInfo& a) { return a.name == g.first; }) -
                f.args.begin());
        } else {
            while (at < set.size() && set[at])
                ++at;
            next = at + 1;
        }
        if (at >= f.args.size())
            throw DriverError(f.excel_name + " takes " + std::to_string(f.args.size()) +
                              (f.args.size() == 1 ? " argument: " : " arguments: ") + signature(f));
        if (set[at])
            throw DriverError("argument " + f.args[at].name + " is given twice");
        args[at] = g.second;
        set[at] = true;
    }
    return args;
}

std::string kind_name(const FunctionInfo& f, std::size_t i) {
    ArgKind kind = ArgKind::table;
    if (f.is_built())
        kind = f.command.kinds[i];
    else if (f.args[i].type == "B")
        kind = ArgKind::number;
    else if (takes_text_by_name(f.args[i].name))
        kind = ArgKind::text;
    switch (kind) {
        case ArgKind::number:
            return "number";
        case ArgKind::text:
            return "text";
        default:
            return "table";
    }
}

void print_list(std::ostream& out) {
    std::size_t width = 0;
    for (const FunctionInfo& f : catalogue())
        width = std::max(width, f.excel_name.size());
    for (const FunctionInfo& f : catalogue()) {
        out << f.excel_name << std::string(width + 2 - f.excel_name.size(), ' ')
            << (f.is_built() ? "  " : "- ") << trim(f.help, 0) << '\n';
    }
    out << "\n"
        << catalogue().size() << " functions; those marked - are not available in this build.\n";
}

void print_help(std::ostream& out, const FunctionInfo& f) {
    out << signature(f) << "\n  " << trim(f.help, 0) << "\n";
    if (!f.is_built())
        out << "  Not available in this build.\n";
    if (f.args.empty()) {
        out << "\nNo arguments.\n";
        return;
    }
    std::size_t width = 0;
    for (const ArgumentInfo& a : f.args)
        width = std::max(width, a.name.size());
    out << "\nArguments, in order:\n";
    for (std::size_t i = 0; i < f.args.size(); ++i) {
        const ArgumentInfo& a = f.args[i];
        const std::string kind = kind_name(f, i);
        out << "  " << a.name << std::string(width - a.name.size(), ' ') << "  " << kind
            << std::string(6 - kind.size(), ' ') << "  " << a.help << '\n';
    }
}

CellMatrix shown(const CellMatrix& table, const OutputOptions& options) {
    if (!options.has_range)
        return table;
    // Padded as the sheet pads an array formula, then cut to the range it shows.
    const CellMatrix padded = pad_to_range(table, options.range_rows, options.range_columns);
    CellMatrix cut(options.range_rows, options.range_columns);
    for (std::size_t i = 0; i < options.range_rows; ++i)
        for (std::size_t j = 0; j < options.range_columns; ++j)
            cut(i, j) = padded(i, j);
    return cut;
}

int run_script(const std::string& path, const OutputOptions& options, std::ostream& out,
               std::ostream& err) {
    std::ifstream in(path);
    if (!in) {
        err << "zentable: cannot open script " << path << '\n';
        return 2;
    }
    ScriptSession session;
    bool printed_any = false;
    std::string line;
    for (int number = 1; std::getline(in, line); ++number) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        const std::string text = trim(line, 0);
        if (text.empty() || text[0] == '#')
            continue;
        const std::string where = path + ":" + std::to_string(number) + ": ";
        try {
            const StatementOutcome done = session.run(text);
            if (done.kind == StatementOutcome::failed) {
                err << where << done.failure << '\n';
                return 1;
            }
            if (done.kind == StatementOutcome::printed) {
                if (printed_any)
                    out << '\n';
                print_table(out, shown(done.table, options), options.format);
                printed_any = true;
            }
        } catch (const DriverError& e) {
            err << where << e.what() << '\n';
            return 2;
        }
    }
    return 0;
}

}  // namespace zentable::cli
