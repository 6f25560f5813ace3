#include "script.hpp"

#include "driver.hpp"
#include "driver_error.hpp"
#include "xlw/cell_conversions.hpp"

namespace zentable::cli {

namespace {

// Splits the inside of a call's parentheses at the commas that stand outside
// array constants and quoted texts.
std::vector<std::string> split_arguments(const std::string& inside) {
    std::vector<std::string> pieces;
    std::string piece;
    int depth = 0;
    bool in_quotes = false;
    for (char c : inside) {
        if (in_quotes) {
            if (c == '"')
                in_quotes = false;
        } else if (c == '"') {
            in_quotes = true;
        } else if (c == '{') {
            ++depth;
        } else if (c == '}') {
            --depth;
        } else if (c == ',' && depth == 0) {
            pieces.push_back(piece);
            piece.clear();
            continue;
        }
        piece += c;
    }
    if (in_quotes)
        throw DriverError("unterminated text in the arguments");
    if (depth != 0)
        throw DriverError("unterminated array constant in the arguments");
    if (!trim(piece, 0).empty() || !pieces.empty())
        pieces.push_back(piece);
    return pieces;
}

struct ScriptCall {
    std::string function;
    std::string inside;
};

bool parse_call(const std::string& text, ScriptCall& call) {
    const auto open = text.find('(');
    if (open == std::string::npos || text.back() != ')')
        return false;
    call.function = trim(text.substr(0, open), 0);
    call.inside = text.substr(open + 1, text.size() - open - 2);
    return is_identifier(call.function);
}

// What may stand alone on the right of "=": a file, an array constant, a
// text, a number, or an earlier result or a range of it.
bool is_value_form(const std::string& text, const Results& results) {
    const char first = text[0];
    if (first == '@' || first == '{' || first == '"' || is_decimal_number(text))
        return true;
    return results.count(text.substr(0, text.find('!'))) > 0;
}

}  // namespace

StatementOutcome ScriptSession::run(const std::string& statement) {
    const std::string text = trim(statement, 0);
    StatementOutcome done;
    auto call = [&](const ScriptCall& c) {
        const FunctionInfo& f = function_named(c.function);
        done.function = &f;
        std::vector<GivenArgument> given;
        for (const std::string& piece : split_arguments(c.inside))
            given.push_back(given_argument(f, piece, &results_));
        const GuardedResult r = call_entry(f, bind_arguments(f, given, check_arguments_));
        if (r.failed()) {
            done.kind = StatementOutcome::failed;
            done.failure = failure_text(f, r);
        } else {
            done.table = r.table;
        }
    };

    ScriptCall c;
    if (text.rfind("print ", 0) == 0) {
        const std::string what = trim(text.substr(6), 0);
        const auto bang = what.find('!');
        if (!results_.count(what.substr(0, bang)))
            throw DriverError("no earlier result is named " + what.substr(0, bang));
        done.kind = StatementOutcome::printed;
        done.table = parse_value(what, &results_);
        if (bang == std::string::npos)
            done.function = made_by_[what];
        return done;
    }
    const auto eq = text.find('=');
    const std::string target = eq == std::string::npos ? "" : trim(text.substr(0, eq), 0);
    if (is_identifier(target)) {
        const std::string rhs = trim(text.substr(eq + 1), 0);
        if (rhs.empty())
            throw DriverError("nothing to assign to " + target);
        if (parse_call(rhs, c))
            call(c);
        else if (is_value_form(rhs, results_))
            done.table = parse_value(rhs, &results_);
        else
            throw DriverError("cannot read this line: " + text);
        if (done.kind != StatementOutcome::failed) {
            results_[target] = done.table;
            made_by_[target] = done.function;
        }
        return done;
    }
    if (!parse_call(text, c))
        throw DriverError("cannot read this line: " + text);
    done.kind = StatementOutcome::printed;
    call(c);
    return done;
}

}  // namespace zentable::cli
