// What the driver says about itself, all of it made from the catalogue so that
// the help, the reference, the manual page and the completion never disagree.
#include "reference.hpp"

#include <ostream>
#include <set>
#include <vector>

#include "commands/catalogue.hpp"
#include "driver.hpp"
#include "xlw/cell_conversions.hpp"

namespace zentable::cli {

const char* const kUsage =
    "usage: zentable list [PATTERN] [--built] | help [NAME|call|run|syntax] | call NAME [ARG...]\n"
    "       | run SCRIPT|- | completion bash | --version\n"
    "       options: --format table|csv|tsv|json  --digits N  --range RxC  --plot FILE|-\n"
    "                --size WxH  --quiet  --help  (-- ends the options)";

namespace {

struct Topic {
    const char* name;
    const char* text;
};

const Topic kTopics[] = {
    {"call",
     "zentable call NAME [ARG...]\n"
     "  Calls one function and prints its result. Arguments go in the catalogue's\n"
     "  order (zentable help NAME shows it), or by name as name=value in any order;\n"
     "  _ leaves one out. An argument that is not optional must be given.\n"
     "\n"
     "  zentable call linear_reg @x.csv @y.csv\n"
     "  zentable call linear_reg y=@y.csv x=@x.csv --format csv\n"
     "  zentable call freq '{\"grade\";\"A\";\"B\";\"A\"}'\n"
     "  cut -d, -f2 data.csv | zentable call univariate @-\n"
     "\n"
     "  A failure of the function prints its text on standard error and exits 1.\n"
     "  See zentable help syntax for the forms an argument takes.\n"},
    {"run",
     "zentable run SCRIPT\n"
     "zentable run -            (the script from standard input)\n"
     "  Runs the lines of a script in one process, so that a model fitted on one\n"
     "  line is scored or evaluated on a later one. It stops at the first line that\n"
     "  fails, naming the file and the line. With --format json each printed result\n"
     "  is one line of JSON (JSON Lines); with --plot the last printed result that\n"
     "  draws a chart is drawn.\n"
     "\n"
     "  fit = linear_reg(@x.csv, @y.csv)\n"
     "  print fit!A21:C23\n"
     "  model_score(fit!A1, @new.csv)\n"
     "\n"
     "  See zentable help syntax for the grammar.\n"},
    {"syntax",
     "Arguments, on the command line and in scripts:\n"
     "  @data.csv     a delimited file read as a table (comma, tab or semicolon)\n"
     "  @-            a delimited table read from standard input, once in a run\n"
     "  {1,2;3,4}     an array constant: commas between columns, semicolons between rows\n"
     "  \"text\"        a text; \"\" inside it is one quote\n"
     "  3.5, TRUE     a number or a boolean; any other word is a text\n"
     "  name=value    the argument called name, in any order after those by position\n"
     "  _             an argument left out: the function's default\n"
     "\n"
     "In a shell, single-quote every {...} and every handle, whose -> and\n"
     "brackets the shell would otherwise take:\n"
     "  zentable call linear_reg '{\"x\";1;2;3}' '{\"y\";2;4;7}'\n"
     "  zentable call model_score 'linearRegModel->1' @new.csv\n"
     "\n"
     "Script lines:\n"
     "  # a comment             (blank lines are skipped too)\n"
     "  name = function(args)   keeps the result under name\n"
     "  name = value            keeps a value (@file, {...}, \"text\", a number, a result)\n"
     "  function(args)          prints the result\n"
     "  print name              prints a kept result; print name!A1:C9 a range of it\n"
     "  name!A1                 a cell or range of a kept result, as an argument\n"
     "Arguments inside parentheses are separated by commas outside {...} and quotes.\n"},
};

// The text that follows "Default:" in an argument's help, or empty.
std::string default_of(const std::string& help) {
    const auto at = help.find("Default:");
    return at == std::string::npos ? "" : trim(help.substr(at + 8), 0);
}

bool is_optional(const ArgumentInfo& a) {
    return a.help.find("Optional") != std::string::npos;
}

std::string markdown_cell(const std::string& text) {
    std::string cell;
    for (char c : text)
        cell += c == '|' ? std::string("\\|") : std::string(1, c);
    return cell;
}

std::string signature_of(const FunctionInfo& f) {
    std::string s = f.excel_name + "(";
    for (std::size_t i = 0; i < f.args.size(); ++i)
        s += (i ? ", " : "") + f.args[i].name;
    return s + ")";
}

// roff reads a leading dot or quote as a request, and a backslash as an escape.
std::string roff_text(const std::string& text) {
    std::string out;
    for (char c : text)
        out += c == '\\' ? std::string("\\e") : c == '-' ? std::string("\\-") : std::string(1, c);
    if (!out.empty() && (out[0] == '.' || out[0] == '\''))
        out = "\\&" + out;
    return out;
}

}  // namespace

bool print_topic(std::ostream& out, const std::string& topic) {
    for (const Topic& t : kTopics)
        if (topic == t.name) {
            out << t.text;
            return true;
        }
    return false;
}

void print_markdown_reference(std::ostream& out) {
    std::size_t built = 0;
    for (const FunctionInfo& f : catalogue())
        built += f.is_built();
    out << "# Zentable functions\n\n"
        << "Written by `zentable help --markdown` from the catalogue: edit the catalogue, not "
           "this file.\n"
        << "There are " << catalogue().size() << " functions, " << built
        << " of them built; those not built say so when called.\n"
        << "Kinds: a *table* is any table of cells, a *text* one text (a file name, a handle), "
           "a *number* one number.\n";
    for (const FunctionInfo& f : catalogue()) {
        out << "\n## " << f.excel_name << "\n\n`" << signature_of(f) << "`"
            << (f.is_built() ? "" : " (not built)") << "\n\n"
            << trim(f.help, 0) << ".\n";
        if (f.args.empty())
            continue;
        out << "\n| argument | kind | default | help |\n|---|---|---|---|\n";
        for (std::size_t i = 0; i < f.args.size(); ++i) {
            const ArgumentInfo& a = f.args[i];
            const std::string fallback = is_optional(a) ? default_of(a.help) : "required";
            out << "| " << a.name << " | " << kind_name(f, i) << " | "
                << markdown_cell(fallback.empty() ? "optional" : fallback) << " | "
                << markdown_cell(a.help) << " |\n";
        }
    }
}

void print_man_page(std::ostream& out) {
    out << ".TH ZENTABLE 1 \"\" \"Zentable " << ZENTABLE_VERSION << "\" \"User Commands\"\n"
        << ".SH NAME\nzentable \\- data mining and numerical functions from a shell\n"
        << ".SH SYNOPSIS\n.nf\n";
    std::string usage = kUsage;
    out << roff_text(usage.substr(7)) << "\n.fi\n";
    out << ".SH DESCRIPTION\nEach function of the catalogue maps tables of cells to one table "
           "of cells.\n"
           ".B zentable\ncalls one of them, runs a script of them in one process, and "
           "prints results as aligned tables, CSV, TSV or JSON.\n";
    out << ".SH COMMANDS\n";
    for (const Topic& t : kTopics) {
        out << ".SS " << t.name << "\n.nf\n";
        std::string text = t.text, line;
        for (std::size_t at = 0; at < text.size();) {
            const auto end = text.find('\n', at);
            out << roff_text(text.substr(at, end - at)) << "\n";
            at = end == std::string::npos ? text.size() : end + 1;
        }
        out << ".fi\n";
    }
    out << ".SH OPTIONS\n"
        << ".TP\n.B \\-\\-format table|csv|tsv|json\nThe form of results. Tables show at most "
           "10 significant digits; CSV, TSV and JSON the shortest digits that read back to the "
           "same number.\n"
        << ".TP\n.B \\-\\-digits N\nSignificant digits of numbers, 1 to 17, in every format.\n"
        << ".TP\n.B \\-\\-range RxC\nShow what an array formula over R rows by C columns shows.\n"
        << ".TP\n.B \\-\\-plot FILE\nDraw the result as PNG, SVG or PDF by the file's extension, "
           "or as a text chart on standard output for \\-, through gnuplot; .dat writes the points "
           "each panel draws, as text.\n"
        << ".TP\n.B \\-\\-size WxH\nThe chart's size in pixels, 800x600 unless given.\n"
        << ".TP\n.B \\-\\-quiet\nNo progress line on long work. Without it, work that runs "
           "more than 2 seconds shows one line on standard error when that is a terminal; "
           "ZENTABLE_PROGRESS_AFTER sets the seconds.\n"
        << ".TP\n.B \\-h, \\-\\-help\nThe usage, or the help of a function after call or help.\n"
        << ".TP\n.B \\-V, \\-\\-version\nThe version.\n";
    out << ".SH EXIT STATUS\n0 done; 1 a function failed (its text on standard error) or a "
           "chart could not be drawn; 2 a bad command line, script line or input.\n";
    out << ".SH FUNCTIONS\n";
    for (const FunctionInfo& f : catalogue())
        out << ".TP\n.B " << roff_text(signature_of(f)) << "\n"
            << roff_text(trim(f.help, 0)) << (f.is_built() ? "" : " (Not built.)") << "\n";
    out << ".SH FILES\nThe bash completion script is what\n.B zentable completion bash\nprints; "
           "the installed package puts it in share/bash-completion/completions.\n";
    out << ".SH SEE ALSO\n"
        << ".B zentable help NAME\nfor the arguments of a function.\n";
}

void print_bash_completion(std::ostream& out) {
    out << "# bash completion for zentable, written by `zentable completion bash`.\n"
           "_zentable() {\n"
           "    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD-1]}\n"
           "    local options='--format --digits --range --plot --size --quiet --help --version "
           "--built --markdown'\n"
           "    local functions='";
    for (std::size_t i = 0; i < catalogue().size(); ++i)
        out << (i ? " " : "") << catalogue()[i].excel_name;
    out << "'\n"
           "    case $prev in\n"
           "        --format) COMPREPLY=($(compgen -W 'table csv tsv json' -- \"$cur\")); return "
           ";;\n"
           "        --plot) COMPREPLY=($(compgen -f -- \"$cur\")); return ;;\n"
           "        --digits|--range|--size) return ;;\n"
           "    esac\n"
           "    if [[ $cur == -* ]]; then\n"
           "        COMPREPLY=($(compgen -W \"$options\" -- \"$cur\")); return\n"
           "    fi\n"
           "    # The words before the cursor that are not options or their values.\n"
           "    local words=() i w\n"
           "    for ((i = 1; i < COMP_CWORD; i++)); do\n"
           "        w=${COMP_WORDS[i]}\n"
           "        case $w in\n"
           "            --format|--digits|--range|--plot|--size) ((i++)) ;;\n"
           "            -*) ;;\n"
           "            *) words+=(\"$w\") ;;\n"
           "        esac\n"
           "    done\n"
           "    case ${#words[@]} in\n"
           "        0) COMPREPLY=($(compgen -W 'list help call run completion' -- \"$cur\")) ;;\n"
           "        1) case ${words[0]} in\n"
           "               call) COMPREPLY=($(compgen -W \"$functions\" -- \"$cur\")) ;;\n"
           "               help) COMPREPLY=($(compgen -W \"call run syntax $functions\" -- "
           "\"$cur\")) ;;\n"
           "               run) COMPREPLY=($(compgen -f -- \"$cur\")) ;;\n"
           "               completion) COMPREPLY=($(compgen -W 'bash' -- \"$cur\")) ;;\n"
           "           esac ;;\n"
           "        *) [[ ${words[0]} == call ]] || return\n"
           "           if [[ $cur == @* ]]; then\n"
           "               COMPREPLY=($(compgen -P @ -f -- \"${cur#@}\")); return\n"
           "           fi\n"
           "           local names\n"
           "           case ${words[1]} in\n";
    for (const FunctionInfo& f : catalogue()) {
        if (f.args.empty())
            continue;
        out << "               " << f.excel_name << ") names='";
        for (std::size_t i = 0; i < f.args.size(); ++i)
            out << (i ? " " : "") << f.args[i].name << "=";
        out << "' ;;\n";
    }
    out << "           esac\n"
           "           COMPREPLY=($(compgen -W \"$names\" -- \"$cur\"))\n"
           "           [[ ${COMPREPLY[0]} == *= ]] && compopt -o nospace 2>/dev/null ;;\n"
           "    esac\n"
           "}\n"
           "complete -F _zentable zentable\n";
}

}  // namespace zentable::cli
