// zentable: the catalogue's functions from a shell or a script.
#include <iostream>
#include <string>
#include <vector>

#include "driver.hpp"
#include "driver_error.hpp"

using namespace zentable;
using namespace zentable::cli;

namespace {

const char* const kUsage =
    "usage: zentable list | help NAME | call NAME [ARG...] | run SCRIPT\n"
    "       options: --format table|csv|tsv|json  --range RxC  --help  (-- ends the options)";

struct CommandLine {
    std::vector<std::string> words;
    OutputOptions options;
    bool help = false;
};

Format parse_format(const std::string& text) {
    if (text == "table")
        return Format::table;
    if (text == "csv")
        return Format::csv;
    if (text == "tsv")
        return Format::tsv;
    if (text == "json")
        return Format::json;
    throw DriverError("unknown format " + text + " (table, csv, tsv or json)");
}

void parse_range(const std::string& text, OutputOptions& options) {
    const auto x = text.find_first_of("xX");
    std::size_t rows = 0, columns = 0;
    bool ok = x != std::string::npos && x > 0 && x + 1 < text.size();
    try {
        std::size_t used = 0;
        if (ok)
            rows = std::stoul(text.substr(0, x), &used), ok = used == x;
        if (ok)
            columns = std::stoul(text.substr(x + 1), &used), ok = used == text.size() - x - 1;
    } catch (const std::exception&) {
        ok = false;
    }
    if (!ok || rows == 0 || columns == 0 || rows > 1048576 || columns > 16384)
        throw DriverError("--range wants rows by columns, such as 3x2: " + text);
    options.has_range = true;
    options.range_rows = rows;
    options.range_columns = columns;
}

CommandLine parse_command_line(int argc, char** argv) {
    CommandLine cl;
    bool options_end = false;
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        if (options_end || word.size() < 2 || word.compare(0, 2, "--") != 0) {
            cl.words.push_back(word);
            continue;
        }
        if (word == "--") {
            options_end = true;
            continue;
        }
        const auto eq = word.find('=');
        const std::string option = word.substr(0, eq);
        auto value = [&]() -> std::string {
            if (eq != std::string::npos)
                return word.substr(eq + 1);
            if (i + 1 >= argc)
                throw UsageError(option + " wants a value");
            return argv[++i];
        };
        if (option == "--help")
            cl.help = true;
        else if (option == "--format")
            cl.options.format = parse_format(value());
        else if (option == "--range")
            parse_range(value(), cl.options);
        else
            throw UsageError("unknown option " + option);
    }
    return cl;
}

int call_function(const std::vector<std::string>& words, const OutputOptions& options) {
    const FunctionInfo& f = function_named(words[1]);
    std::vector<GivenArgument> given;
    for (std::size_t i = 2; i < words.size(); ++i) {
        const std::string& word = words[i];
        const auto eq = word.find('=');
        const std::string name = eq == std::string::npos ? "" : word.substr(0, eq);
        if (!name.empty() && is_identifier(name)) {
            bool known = false;
            for (const ArgumentInfo& a : f.args)
                known = known || a.name == name;
            if (!known)
                throw DriverError(f.excel_name + " has no argument named " + name);
            given.emplace_back(name, parse_value(word.substr(eq + 1), nullptr));
        } else {
            given.emplace_back("", parse_value(word, nullptr));
        }
    }
    const GuardedResult r = call_entry(f, bind_arguments(f, given));
    if (r.failed()) {
        std::cerr << (r.table.RowsInStructure() ? cell_text(r.table(0, 0))
                                                : f.excel_name + " failed")
                  << '\n';
        return 1;
    }
    print_table(std::cout, shown(r.table, options), options.format);
    return 0;
}

int run(int argc, char** argv) {
    const CommandLine cl = parse_command_line(argc, argv);
    const std::vector<std::string>& w = cl.words;
    if (cl.help) {
        if (w.size() >= 2 && (w[0] == "help" || w[0] == "call")) {
            print_help(std::cout, function_named(w[1]));
        } else {
            std::cout << kUsage << '\n';
        }
        return 0;
    }
    if (w.empty())
        throw UsageError("no command given");
    const std::string& verb = w[0];
    if (verb == "list" && w.size() == 1) {
        print_list(std::cout);
        return 0;
    }
    if (verb == "help" && w.size() == 2) {
        print_help(std::cout, function_named(w[1]));
        return 0;
    }
    if (verb == "call" && w.size() >= 2)
        return call_function(w, cl.options);
    if (verb == "run" && w.size() == 2)
        return run_script(w[1], cl.options, std::cout, std::cerr);
    throw UsageError("cannot read the command line");
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const UsageError& e) {
        std::cerr << "zentable: " << e.what() << '\n' << kUsage << '\n';
        return 2;
    } catch (const DriverError& e) {
        std::cerr << "zentable: " << e.what() << '\n';
        return 2;
    } catch (const std::exception& e) {
        std::cerr << "zentable: " << e.what() << '\n';
        return 2;
    }
}
