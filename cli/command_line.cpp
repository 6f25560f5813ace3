// The zentable command line: options, verbs, and the exit statuses the
// driver promises.
#include "command_line.hpp"

#include <algorithm>
#include <cctype>
#include <ostream>
#include <string>
#include <vector>

#include "chart.hpp"
#include "commands/notes.hpp"
#include "driver.hpp"
#include "driver_error.hpp"
#include "progress_line.hpp"
#include "reference.hpp"

namespace zentable::cli {

namespace {

struct CommandLine {
    std::vector<std::string> words;
    OutputOptions options;
    bool help = false, version = false, built = false, markdown = false, man = false;
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

// "3x2" as two positive counts up to the limits given; false when it is not one.
bool parse_by(const std::string& text, std::size_t max_rows, std::size_t max_columns,
              std::size_t& rows, std::size_t& columns) {
    const auto x = text.find_first_of("xX");
    bool ok = x != std::string::npos && x > 0 && x + 1 < text.size() &&
              std::isdigit(static_cast<unsigned char>(text[0])) &&
              std::isdigit(static_cast<unsigned char>(text[x + 1]));
    try {
        std::size_t used = 0;
        if (ok)
            rows = std::stoul(text.substr(0, x), &used), ok = used == x;
        if (ok)
            columns = std::stoul(text.substr(x + 1), &used), ok = used == text.size() - x - 1;
    } catch (const std::exception&) {
        ok = false;
    }
    return ok && rows > 0 && columns > 0 && rows <= max_rows && columns <= max_columns;
}

int parse_digits(const std::string& text) {
    const bool digits_only =
        !text.empty() && text.size() <= 2 &&
        std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
    const int n = digits_only ? std::stoi(text) : 0;
    if (n < 1 || n > 17)
        throw DriverError("--digits wants a count of significant digits from 1 to 17: " + text);
    return n;
}

void parse_range(const std::string& text, OutputOptions& options) {
    std::size_t rows = 0, columns = 0;
    if (!parse_by(text, 1048576, 16384, rows, columns))
        throw DriverError("--range wants rows by columns, such as 3x2: " + text);
    options.has_range = true;
    options.range_rows = rows;
    options.range_columns = columns;
}

void parse_size(const std::string& text, OutputOptions& options) {
    std::size_t width = 0, height = 0;
    if (!parse_by(text, 10000, 10000, width, height))
        throw DriverError("--size wants a width by a height in pixels, such as 800x600: " + text);
    options.plot_width = static_cast<int>(width);
    options.plot_height = static_cast<int>(height);
}

CommandLine parse_command_line(const std::vector<std::string>& args) {
    CommandLine cl;
    bool options_end = false;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& word = args[i];
        if (!options_end && (word == "-h" || word == "-V")) {
            (word == "-h" ? cl.help : cl.version) = true;
            continue;
        }
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
        else if (option == "--version")
            cl.version = true;
        else if (option == "--built")
            cl.built = true;
        else if (option == "--markdown")
            cl.markdown = true;
        else if (option == "--man")
            cl.man = true;
        else if (option == "--quiet")
            cl.options.quiet = true;
        else if (option == "--format")
            cl.options.format = parse_format(value());
        else if (option == "--digits")
            cl.options.digits = parse_digits(value());
        else if (option == "--range")
            parse_range(value(), cl.options);
        else if (option == "--size")
            parse_size(value(), cl.options);
        else if (option == "--plot") {
            cl.options.plot = value();
            if (!is_chart_target(cl.options.plot))
                throw DriverError(
                    "--plot wants a file ending in .png, .svg, .pdf or .dat, or - for "
                    "a text chart: " +
                    cl.options.plot);
        } else
            throw UsageError("unknown option " + option);
    }
    return cl;
}

int call_function(const std::vector<std::string>& words, const OutputOptions& options,
                  std::ostream& out, std::ostream& err) {
    const FunctionInfo& f = function_named(words[1]);
    GuardedResult r;
    {
        // Reading the @ files is part of the wait.
        const ProgressLine progress(!options.quiet);
        std::vector<GivenArgument> given;
        for (std::size_t i = 2; i < words.size(); ++i)
            given.push_back(given_argument(f, words[i], nullptr));
        r = call_entry(f, bind_arguments(f, given));
    }
    if (r.failed()) {
        err << failure_text(f, r) << '\n';
        return 1;
    }
    return show_result(&f, r.table, options, out, err);
}

void help(const std::vector<std::string>& w, std::ostream& out) {
    if (w.size() < 2)
        out << kUsage
            << "\n\nzentable help call, help run and help syntax explain the "
               "subcommands and the argument forms;\nzentable help NAME shows a "
               "function's arguments.\n";
    else if (!print_topic(out, w[1]))
        print_help(out, function_named(w[1]));
}

int run(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
    const CommandLine cl = parse_command_line(args);
    const std::vector<std::string>& w = cl.words;
    if (cl.version) {
        out << "zentable " << ZENTABLE_VERSION << '\n';
        return 0;
    }
    if (cl.help) {
        if (w.size() >= 2 && (w[0] == "help" || w[0] == "call"))
            help({"help", w[1]}, out);
        else if (w.size() == 1 && w[0] != "help" && print_topic(out, w[0]))
            ;
        else
            out << kUsage << '\n';
        return 0;
    }
    if (w.empty())
        throw UsageError("no command given");
    const std::string& verb = w[0];
    if (verb == "list" && w.size() <= 2) {
        print_list(out, w.size() == 2 ? w[1] : "", cl.built);
        return 0;
    }
    if (verb == "help" && cl.markdown && w.size() == 1) {
        print_markdown_reference(out);
        return 0;
    }
    if (verb == "help" && cl.man && w.size() == 1) {
        print_man_page(out);
        return 0;
    }
    if (verb == "help" && w.size() <= 2) {
        help(w, out);
        return 0;
    }
    if (verb == "completion" && w.size() == 2 && w[1] == "bash") {
        print_bash_completion(out);
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
