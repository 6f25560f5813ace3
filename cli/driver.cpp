#include "driver.hpp"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <iostream>
#include <ostream>

#include "chart.hpp"
#include "driver_error.hpp"
#include "progress_line.hpp"
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

// Edits that turn one name into the other, letters compared in any case.
std::size_t edit_distance(const std::string& a, const std::string& b) {
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j)
        row[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const bool same = std::tolower(static_cast<unsigned char>(a[i - 1])) ==
                              std::tolower(static_cast<unsigned char>(b[j - 1]));
            const std::size_t next = std::min({row[j] + 1, row[j - 1] + 1, diagonal + !same});
            diagonal = row[j];
            row[j] = next;
        }
    }
    return row[b.size()];
}

bool starts_with_folded(const std::string& text, const std::string& start) {
    return start.size() >= 3 && text.size() >= start.size() &&
           edit_distance(text.substr(0, start.size()), start) == 0;
}

std::string suggestion(const std::string& word, const std::vector<std::string>& names) {
    // A typo is a few edits away; a longer or shorter spelling of the same
    // name (linear_regression for linear_reg) shares its start.
    const std::size_t allowed = std::max<std::size_t>(2, word.size() / 4);
    std::vector<std::pair<std::size_t, std::string>> close;
    for (const std::string& name : names) {
        const std::size_t d = edit_distance(word, name);
        if (d <= allowed || starts_with_folded(word, name) || starts_with_folded(name, word))
            close.emplace_back(d, name);
    }
    if (close.empty())
        return "";
    std::stable_sort(close.begin(), close.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    std::string text = "did you mean ";
    for (std::size_t i = 0; i < close.size() && i < 3; ++i)
        text += (i ? ", " : "") + close[i].second;
    return text + "?";
}

const FunctionInfo& function_named(const std::string& name) {
    const FunctionInfo* f = find_function(name);
    if (f)
        return *f;
    std::vector<std::string> names;
    for (const FunctionInfo& g : catalogue())
        names.push_back(g.excel_name);
    const std::string hint = suggestion(name, names);
    throw DriverError("unknown function " + name +
                      (hint.empty() ? " (zentable list shows them all)" : "; " + hint));
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
            if (!known) {
                std::vector<std::string> names;
                for (const ArgumentInfo& a : f.args)
                    names.push_back(a.name);
                const std::string hint = suggestion(name, names);
                throw DriverError(f.excel_name + " has no argument named " + name +
                                  (hint.empty() ? "" : "; " + hint));
            }
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
                                       const std::vector<GivenArgument>& given, bool require) {
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
    if (require)
        require_arguments(f, args);
    return args;
}

void require_arguments(const FunctionInfo& f, const std::vector<CellMatrix>& args) {
    // A function not built says so itself, whatever its arguments.
    if (!f.is_built())
        return;
    for (std::size_t i = 0; i < f.args.size(); ++i) {
        const CellMatrix& a = args[i];
        const bool omitted =
            a.RowsInStructure() == 1 && a.ColumnsInStructure() == 1 && a(0, 0).IsEmpty();
        if (omitted && f.args[i].help.find("Optional") == std::string::npos)
            throw DriverError(f.excel_name + ": argument " + f.args[i].name + " is required");
    }
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

void print_list(std::ostream& out, const std::string& pattern, bool built_only) {
    std::vector<const FunctionInfo*> shown;
    for (const FunctionInfo& f : catalogue()) {
        const bool matches =
            pattern.empty() || std::search(f.excel_name.begin(), f.excel_name.end(),
                                           pattern.begin(), pattern.end(), [](char a, char b) {
                                               return std::tolower(static_cast<unsigned char>(a)) ==
                                                      std::tolower(static_cast<unsigned char>(b));
                                           }) != f.excel_name.end();
        if (matches && (f.is_built() || !built_only))
            shown.push_back(&f);
    }
    std::size_t width = 0;
    for (const FunctionInfo* f : shown)
        width = std::max(width, f->excel_name.size());
    for (const FunctionInfo* f : shown) {
        out << f->excel_name << std::string(width + 2 - f->excel_name.size(), ' ')
            << (f->is_built() ? "  " : "- ") << trim(f->help, 0) << '\n';
    }
    if (pattern.empty() && !built_only) {
        out << "\n"
            << catalogue().size()
            << " functions; those marked - are not available in this build.\n";
    } else {
        out << "\n" << shown.size() << " of " << catalogue().size() << " functions.\n";
    }
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
    std::ifstream file;
    if (path == "-") {
        claim_standard_input_for_script();
    } else {
        file.open(path);
        if (!file) {
            err << "zentable: cannot open script " << path << '\n';
            return 2;
        }
    }
    std::istream& in = path == "-" ? std::cin : file;
    const std::string name = path == "-" ? "stdin" : path;
    ScriptSession session;
    const FunctionInfo* charted = nullptr;
    CellMatrix chart_table;
    bool printed_any = false;
    std::string line;
    for (int number = 1; std::getline(in, line); ++number) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        const std::string text = trim(line, 0);
        if (text.empty() || text[0] == '#')
            continue;
        const std::string where = name + ":" + std::to_string(number) + ": ";
        try {
            StatementOutcome done;
            {
                const ProgressLine progress(!options.quiet);
                done = session.run(text);
            }
            if (done.kind == StatementOutcome::failed) {
                err << where << done.failure << '\n';
                return 1;
            }
            if (done.kind == StatementOutcome::printed) {
                // JSON Lines: each result on a line of its own, with no blank between.
                if (printed_any && options.format != Format::json)
                    out << '\n';
                print_table(out, shown(done.table, options), options.format, options.digits);
                printed_any = true;
                if (done.function && !done.function->chart.empty()) {
                    charted = done.function;
                    chart_table = done.table;
                }
            }
        } catch (const DriverError& e) {
            err << where << e.what() << '\n';
            return 2;
        }
    }
    if (options.plot.empty())
        return 0;
    if (!charted) {
        err << "zentable: no result of this script has a chart\n";
        return 1;
    }
    return draw_chart(*charted, chart_table, options, out, err);
}

int show_result(const FunctionInfo* function, const CellMatrix& table, const OutputOptions& options,
                std::ostream& out, std::ostream& err) {
    print_table(out, shown(table, options), options.format, options.digits);
    if (options.plot.empty())
        return 0;
    if (!function || function->chart.empty()) {
        err << "zentable: " << (function ? function->excel_name : std::string("this result"))
            << " draws no chart\n";
        return 1;
    }
    return draw_chart(*function, table, options, out, err);
}

}  // namespace zentable::cli
