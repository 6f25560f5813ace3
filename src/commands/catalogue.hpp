#pragma once

#include <cstddef>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "xlw/cell_matrix.hpp"

namespace zentable {

// How an argument reaches its command: a table of cells, one text (a file
// name, a model handle), or a plain number (registered as type "B").
enum class ArgKind { table, text, number };

struct ArgumentInfo {
    std::string name;
    std::string type;  // "XLF_OPER" or "B"
    std::string help;  // an optional argument says "Optional: ... Default: ..."
};

// Calls a command with its arguments as tables, each converted to the kind
// its parameter has, in argument order.
using Invoker = CellMatrix (*)(const std::vector<CellMatrix>& args,
                               const std::vector<ArgumentInfo>& labels);

struct Command {
    Invoker invoke = nullptr;  // null: the command is not built yet
    std::vector<ArgKind> kinds;
};

// One panel of the picture a result draws. It reads the table whose header
// row starts with `header`, down to the first row whose first cell is not a
// number. `x` and `y` are gnuplot expressions in which {Name} stands for the
// column headed Name, {Sum:Name} for its running sum, and {Total:Name} for its
// cell in the row whose first cell is "Total". A result that holds the table
// more than once (one per variable) draws one curve for each.
struct ChartPanel {
    enum Style { lines, bars, points };
    std::string title, x_label, y_label;
    std::string header;
    std::string x, y;
    Style style = lines;
    bool diagonal = false;     // the line y = x, from (0, 0) to (1, 1)
    bool from_origin = false;  // the curve starts at (0, 0)
};
using Chart = std::vector<ChartPanel>;

struct FunctionInfo {
    std::string library;
    std::string help;  // begins and ends with a blank
    std::string excel_name;
    std::string entry_name;  // "xl" and the name
    std::vector<ArgumentInfo> args;
    bool is_volatile = false;
    bool thread_safe = false;
    bool macro = false;
    bool async = false;
    Command command;
    Chart chart;  // what --plot draws of the result; empty: no picture

    bool is_built() const { return command.invoke != nullptr; }
};

// The argument conversions of an entry; a failure names the argument.
CellMatrix as_table(const CellMatrix& value, const ArgumentInfo& label);
std::string as_text(const CellMatrix& value, const ArgumentInfo& label);
double as_number(const CellMatrix& value, const ArgumentInfo& label);

namespace detail {

template <class T>
struct ArgTraits;
template <>
struct ArgTraits<CellMatrix> {
    static constexpr ArgKind kind = ArgKind::table;
    static CellMatrix convert(const CellMatrix& v, const ArgumentInfo& l) { return as_table(v, l); }
};
template <>
struct ArgTraits<std::string> {
    static constexpr ArgKind kind = ArgKind::text;
    static std::string convert(const CellMatrix& v, const ArgumentInfo& l) { return as_text(v, l); }
};
template <>
struct ArgTraits<double> {
    static constexpr ArgKind kind = ArgKind::number;
    static double convert(const CellMatrix& v, const ArgumentInfo& l) { return as_number(v, l); }
};

template <class... A, std::size_t... I>
CellMatrix invoke_in_order(CellMatrix (*f)(A...), const std::vector<CellMatrix>& args,
                           const std::vector<ArgumentInfo>& labels, std::index_sequence<I...>) {
    // A braced list converts left to right: a failing argument stops the later ones.
    std::tuple<std::decay_t<A>...> converted{
        ArgTraits<std::decay_t<A>>::convert(args[I], labels[I])...};
    return std::apply(f, std::move(converted));
}

template <class... A>
Command make_command(CellMatrix (*f)(A...), Invoker invoker) {
    (void)f;
    return Command{invoker, {ArgTraits<std::decay_t<A>>::kind...}};
}

template <auto F>
struct Invoke;
template <class... A, CellMatrix (*F)(A...)>
struct Invoke<F> {
    static CellMatrix call(const std::vector<CellMatrix>& args,
                           const std::vector<ArgumentInfo>& labels) {
        return invoke_in_order(F, args, labels, std::index_sequence_for<A...>{});
    }
};

}  // namespace detail

// The one adapter from a command function to the catalogue: its argument
// kinds come from its parameter types.
template <auto F>
Command command() {
    return detail::make_command(F, &detail::Invoke<F>::call);
}

// Builders for the catalogue table.
ArgumentInfo oper(const char* name, const char* help);   // any host value
ArgumentInfo plain(const char* name, const char* help);  // a plain double, type "B"
FunctionInfo function(const char* name, const char* help, std::vector<ArgumentInfo> args,
                      Command command = {}, Chart chart = {});

// All 208 functions, in registration order.
const std::vector<FunctionInfo>& catalogue();
const FunctionInfo* find_function(const std::string& name);

}  // namespace zentable
