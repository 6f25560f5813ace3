// The zentable command line: options, verbs, and the exit statuses the
// driver promises.
#include "command_line.hpp"

#include <ostream>
#include <string>
#include <vector>

#include "commands/notes.hpp"
#include "driver.hpp"
#include "driver_error.hpp"

namespace zentable::cli {

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

CommandLine parse_command_line(const std::vector<std::string>& args) {
    CommandLine cl;
    bool options_end = false;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& word = args[i];
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
            if (i + 1 >= args.size())
                throw UsageError(option + " wants a value");
            return args[++i];
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

int call_function(const std::vector<std::string>& words, const OutputOptions& options,
                  std::ostream& out, std::ostream& err) {
    const FunctionInfo& f = function_named(words[1]);
    std::vector<GivenArgument> given;
    for (std::size_t i = 2; i < words.size(); ++i)
        given.push_back(given_argument(f, words[i], nullptr));
    const GuardedResult r = call_entry(f, bind_arguments(f, given));
    if (r.failed()) {
        err << failure_text(f, r) << '\n';
        return 1;
    }
    print_table(out, shown(r.table, options), options.format);
    return 0;
}

int run(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
    const CommandLine cl = parse_command_line(args);
    const std::vector<std::string>& w = cl.words;
    if (cl.help) {
        if (w.size() >= 2 && (w[0] == "help" || w[0] == "call")) {
            print_help(out, function_named(w[1]));
        } else {
            out << kUsage << '\n';
        }
        return 0;
    }
    if (w.empty())
        throw UsageError("no command given");
    const std::string& verb = w[0];
    if (verb == "list" && w.size() == 1) {
        print_list(out);
        return 0;
    }
    if (verb == "help" && w.size() == 2) {
        print_help(out, function_named(w[1]));
        return 0;
    }
    if (verb == "call" && w.size() >= 2)
        return call_function(w, cl.options, out, err);
    if (verb == "run" && w.size() == 2)
        return run_script(w[1], cl.options, out, err);
    throw UsageError("cannot read the command line");
}

}  // namespace

int run_command_line(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
    // Standard output carries only tables, in every format; a command's notes
    // go to standard error, each on a line of its own.
    const ScopedNoteSink notes([&err](const std::string& line) { err << line << '\n'; });
    try {
        return run(args, out, err);
    } catch (const UsageError& e) {
        err << "zentable: " << e.what() << '\n' << kUsage << '\n';
        return 2;
    } catch (const std::exception& e) {
        err << "zentable: " << e.what() << '\n';
        return 2;
    }
}

}  // namespace zentable::cli
