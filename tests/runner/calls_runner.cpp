// calls_runner: runs one call file (tests/calls/README.md) and checks every
// case's table, or with --rewrite writes a copy holding the actual tables.
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "driver_error.hpp"
#include "print.hpp"
#include "script.hpp"
#include "values.hpp"
#include "xlw/cell_conversions.hpp"

namespace fs = std::filesystem;
using namespace zentable;
using namespace zentable::cli;

namespace {

const double kDefaultTolerance = 1e-12;

// ---- Cells as the expected tables write them ----

struct Field {
    std::string text;
    bool quoted = false;
};

struct Expected {
    enum Kind { empty, number, text, boolean, error, handle } kind = empty;
    double value = 0;
    std::string spelling;  // a text, an error's spelling, or a handle's class
};

bool is_error_spelling(const std::string& s) {
    static const char* const known[] = {"#NULL!", "#DIV/0!", "#VALUE!", "#REF!",
                                        "#NAME?", "#NUM!",   "#N/A"};
    if (std::find(std::begin(known), std::end(known), s) != std::end(known))
        return true;
    return s.size() > 7 && s.compare(0, 6, "#ERROR") == 0 && s.back() == '!';
}

bool is_number_word(const std::string& s) {
    return is_decimal_number(s) || s == "nan" || s == "inf" || s == "-inf";
}

// Class name, "->", digits: the handle that cell (0, 0) of a model report holds.
bool is_handle(const std::string& s, std::string& class_name) {
    const auto arrow = s.find("->");
    if (arrow == std::string::npos || arrow == 0 || arrow + 2 == s.size() ||
        !is_identifier(s.substr(0, arrow)))
        return false;
    for (std::size_t i = arrow + 2; i < s.size(); ++i)
        if (s[i] < '0' || s[i] > '9')
            return false;
    class_name = s.substr(0, arrow);
    return true;
}

std::vector<Field> split_csv(const std::string& line) {
    std::vector<Field> fields(1);
    bool in_quotes = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        Field& f = fields.back();
        if (in_quotes) {
            if (c == '"' && i + 1 < line.size() && line[i + 1] == '"')
                f.text += line[++i];
            else if (c == '"')
                in_quotes = false;
            else
                f.text += c;
        } else if (c == '"' && f.text.empty() && !f.quoted) {
            in_quotes = f.quoted = true;
        } else if (c == ',') {
            fields.emplace_back();
        } else {
            f.text += c;
        }
    }
    if (in_quotes)
        throw DriverError("unterminated quoted field in an expected row: " + line);
    return fields;
}

Expected expected_cell(const Field& f) {
    Expected e;
    const std::string& s = f.text;
    if (f.quoted) {
        e.kind = Expected::text;
        e.spelling = s;
    } else if (s.empty() || s == "(empty)") {
        e.kind = Expected::empty;
    } else if (is_number_word(s)) {
        e.kind = Expected::number;
        e.value = std::strtod(s.c_str(), nullptr);
    } else if (s == "TRUE" || s == "FALSE") {
        e.kind = Expected::boolean;
        e.value = s == "TRUE";
    } else if (is_error_spelling(s)) {
        e.kind = Expected::error;
        e.spelling = s;
    } else if (s.size() > 3 && s.compare(s.size() - 3, 3, "->*") == 0) {
        e.kind = Expected::handle;
        e.spelling = s.substr(0, s.size() - 3);
    } else {
        e.kind = Expected::text;
        e.spelling = s;
    }
    return e;
}

// The spelling of an actual cell in an expected table: the inverse of
// expected_cell, so that a rewritten file reads back as the same table.
std::string written_cell(const CellValue& cell) {
    if (!cell.IsString())
        return cell_text(cell);
    const std::string& s = cell.StringValue();
    std::string class_name;
    if (is_handle(s, class_name))
        return class_name + "->*";
    // Bare when it reads back as this very text.
    const Expected bare = expected_cell({s, false});
    const bool plain = bare.kind == Expected::text && s.find_first_of(",\"") == std::string::npos &&
                       s.front() != ' ' && s.back() != ' ';
    if (plain)
        return s;
    std::string quoted = "\"";
    for (char c : s)
        quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    return quoted + "\"";
}

std::vector<std::string> written_rows(const CellMatrix& t) {
    std::vector<std::string> rows;
    for (std::size_t i = 0; i < t.RowsInStructure(); ++i) {
        std::string row;
        for (std::size_t j = 0; j < t.ColumnsInStructure(); ++j)
            row += (j ? "," : "") + written_cell(t(i, j));
        rows.push_back(row.empty() ? "(empty)" : row);
    }
    return rows;
}

// ---- Comparison ----

std::string a1(std::size_t row, std::size_t column) {
    std::string letters;
    for (std::size_t c = column + 1; c > 0; c = (c - 1) / 26)
        letters.insert(letters.begin(), static_cast<char>('A' + (c - 1) % 26));
    return letters + std::to_string(row + 1);
}

bool holds(const CellRange& r, std::size_t row, std::size_t column) {
    return row >= r.first_row && row <= r.last_row && column >= r.first_column &&
           column <= r.last_column;
}

CellRange parse_ignored(const std::string& text) {
    CellRange r;
    if (!parse_a1_range(text, r))
        throw DriverError("ignore wants a cell or a range in A1 notation: " + text);
    return r;
}

double parse_tolerance(const std::string& text) {
    if (!is_decimal_number(text) || std::strtod(text.c_str(), nullptr) < 0)
        throw DriverError("tolerance wants a relative tolerance such as 1e-9: " + text);
    return std::strtod(text.c_str(), nullptr);
}

bool matches(const Expected& e, const CellValue& a, double tolerance) {
    std::string class_name;
    switch (e.kind) {
        case Expected::empty:
            return a.IsEmpty();
        case Expected::text:
            return a.IsString() && a.StringValue() == e.spelling;
        case Expected::boolean:
            return a.IsBoolean() && a.BooleanValue() == (e.value != 0);
        case Expected::error:
            return a.IsError() && cell_text(a) == e.spelling;
        case Expected::handle:
            return a.IsString() && is_handle(a.StringValue(), class_name) &&
                   class_name == e.spelling;
        case Expected::number: {
            if (!a.IsANumber())
                return false;
            const double x = a.NumericValue();
            if (std::isnan(e.value) || std::isinf(e.value))
                return std::isnan(e.value) ? std::isnan(x) : x == e.value;
            const double scale = e.value == 0 ? 1.0 : std::fabs(e.value);
            return std::fabs(x - e.value) <= tolerance * scale;
        }
    }
    return false;
}

// The rows of both tables around the first difference, numbered as the sheet numbers them.
void show_around(std::ostream& out, const std::vector<std::string>& expected,
                 const std::vector<std::string>& actual, std::size_t row) {
    const std::size_t from = row > 3 ? row - 3 : 0;
    for (const auto* side : {&expected, &actual}) {
        out << (side == &expected ? "  expected:\n" : "  actual:\n");
        for (std::size_t i = from; i < side->size() && i <= row + 3; ++i)
            out << "    " << (i == row ? "> " : "  ") << i + 1 << ": " << (*side)[i] << '\n';
    }
}

// ---- The file ----

struct Case {
    int first_line = 0, last_line = 0, failed_line = 0;
    std::string first_statement;
    StatementOutcome outcome;
    double tolerance = kDefaultTolerance;
    std::vector<CellRange> ignored;
    std::vector<std::string> expected;  // the rows, or one "error: ..." line
};

class CallFile {
  public:
    // A call file pins each command's own text for an omitted argument, which
    // the sheet shows; the driver's check before the call has its own tests.
    CallFile(std::string path, bool rewrite) : path_(std::move(path)), rewrite_(rewrite) {
        session_.check_arguments(false);
    }

    // Runs every case; gives the number that failed.
    int run(std::istream& in) {
        std::string line;
        while (next(in, line)) {
            const std::string text = trim(line, 0);
            if (!in_case_ && (text.empty() || text[0] == '#')) {
                copy(line);
                continue;
            }
            if (text.empty()) {  // a paragraph without ---- was set-up
                end_paragraph();
                copy(line);
                continue;
            }
            copy(line);
            if (text.rfind("file ", 0) == 0 && text.find("<<") != std::string::npos) {
                write_file(in, text);
            } else if (text.rfind("tolerance ", 0) == 0) {
                pending_.tolerance = parse_tolerance(trim(text.substr(10), 0));
                has_tolerance_ = true;
                in_case_ = true;
            } else if (text.rfind("ignore ", 0) == 0) {
                pending_.ignored.push_back(parse_ignored(trim(text.substr(7), 0)));
                in_case_ = true;
            } else if (text == "----") {
                read_expected(in);
            } else if (text[0] != '#') {
                statement(text);
            }
        }
        end_paragraph();
        return failures_;
    }

    const std::vector<std::string>& copy_lines() const { return copied_; }

  private:
    bool next(std::istream& in, std::string& line) {
        if (!std::getline(in, line))
            return false;
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        ++line_number_;
        return true;
    }

    void copy(const std::string& line) { copied_.push_back(line); }

    void statement(const std::string& text) {
        Case& c = pending_;
        if (c.first_line == 0) {
            c.first_line = line_number_;
            c.first_statement = text;
        }
        c.last_line = line_number_;
        in_case_ = true;
        if (c.failed_line)
            return;  // the case is lost already: later lines would only add noise
        try {
            c.outcome = session_.run(text);
        } catch (const DriverError& e) {
            c.outcome.kind = StatementOutcome::failed;
            c.outcome.failure = e.what();
        }
        if (c.outcome.kind == StatementOutcome::failed)
            c.failed_line = line_number_;
    }

    // A paragraph of statements without an expected table: set-up that must
    // not fail. A lone tolerance line sets the file's default.
    void end_paragraph() {
        if (!in_case_)
            return;
        if (pending_.first_line == 0 && has_tolerance_)
            file_tolerance_ = pending_.tolerance;
        else if (pending_.failed_line)
            fail(pending_, "set-up line " + std::to_string(pending_.failed_line) +
                               " failed: " + pending_.outcome.failure);
        reset();
    }

    void reset() {
        pending_ = Case();
        pending_.tolerance = file_tolerance_;
        in_case_ = has_tolerance_ = false;
    }

    void write_file(std::istream& in, const std::string& text) {
        const std::string name = trim(text.substr(5, text.find("<<") - 5), 0);
        const std::string tag = trim(text.substr(text.find("<<") + 2), 0);
        std::ofstream out(name, std::ios::binary);
        if (name.empty() || tag.empty() || !out)
            throw DriverError("cannot write the file of this line: " + text);
        std::string line;
        while (next(in, line)) {
            copy(line);
            if (line == tag)
                return;
            out << line << '\n';
        }
        throw DriverError("file " + name + " has no line " + tag + " to end it");
    }

    void read_expected(std::istream& in) {
        const int dashes = line_number_;
        std::string line;
        std::vector<std::string> rows;
        while (next(in, line) && !line.empty())
            rows.push_back(line);
        pending_.expected = rows;
        if (pending_.first_line == 0)
            throw DriverError("line " + std::to_string(dashes) + ": ---- with no statement");
        check(pending_);
        if (rewrite_)
            for (const std::string& r : actual_rows(pending_))
                copy(r);
        else
            for (const std::string& r : rows)
                copy(r);
        copy("");
        reset();
    }

    static std::vector<std::string> actual_rows(const Case& c) {
        if (c.outcome.kind == StatementOutcome::failed)
            return {"error: " + c.outcome.failure};
        return written_rows(c.outcome.table);
    }

    void fail(const Case& c, const std::string& why) {
        ++failures_;
        std::cerr << path_ << ":" << c.first_line << ": " << c.first_statement << "\n  " << why
                  << '\n';
    }

    void check(const Case& c) {
        const bool expects_error = c.expected.size() == 1 && c.expected[0].rfind("error: ", 0) == 0;
        const StatementOutcome& got = c.outcome;
        if (c.failed_line && c.failed_line != c.last_line)
            return fail(c, "line " + std::to_string(c.failed_line) + " failed: " + got.failure);
        if (!expects_error) {
            if (got.kind == StatementOutcome::failed)
                return fail(c, "failed: " + got.failure);
            return compare(c);
        }
        const std::string want = c.expected[0].substr(7);
        if (got.kind != StatementOutcome::failed)
            return fail(c, "expected the failure \"" + want + "\", got a " +
                               std::to_string(got.table.RowsInStructure()) + " by " +
                               std::to_string(got.table.ColumnsInStructure()) + " table");
        if (got.failure != want)
            fail(c, "failure text differs\n  expected: " + want + "\n  actual:   " + got.failure);
    }

    void compare(const Case& c) {
        const CellMatrix& t = c.outcome.table;
        std::vector<std::vector<Expected>> want;
        std::size_t columns = 0;
        for (const std::string& row : c.expected) {
            want.emplace_back();
            for (const Field& f : split_csv(row))
                want.back().push_back(expected_cell(f));
            columns = std::max(columns, want.back().size());
        }
        const std::vector<std::string> got_rows = written_rows(t);
        const std::size_t rows = t.RowsInStructure(), got_columns = t.ColumnsInStructure();
        std::ostringstream why;
        bool ragged = false;
        for (const auto& r : want)
            ragged = ragged || r.size() != columns;
        if (ragged || want.size() != rows || columns != got_columns) {
            why << "shape differs: expected " << want.size() << " by " << columns
                << (ragged ? " (rows of unequal length)" : "") << ", actual " << rows << " by "
                << got_columns << '\n';
            show_around(why, c.expected, got_rows, 0);
            return fail(c, why.str());
        }
        for (std::size_t i = 0; i < rows; ++i) {
            for (std::size_t j = 0; j < columns; ++j) {
                const bool skip = std::any_of(c.ignored.begin(), c.ignored.end(),
                                              [&](const CellRange& r) { return holds(r, i, j); });
                if (skip || matches(want[i][j], t(i, j), c.tolerance))
                    continue;
                why << "cell " << a1(i, j) << " differs: expected "
                    << written_field(c.expected[i], j) << ", actual " << written_cell(t(i, j));
                if (want[i][j].kind == Expected::number && t(i, j).IsANumber())
                    why << " (relative difference "
                        << std::fabs(t(i, j).NumericValue() - want[i][j].value) /
                               std::max(std::fabs(want[i][j].value), 1e-300)
                        << ", tolerance " << c.tolerance << ")";
                why << '\n';
                show_around(why, c.expected, got_rows, i);
                return fail(c, why.str());
            }
        }
    }

    static std::string written_field(const std::string& row, std::size_t j) {
        const Field f = split_csv(row)[j];
        return f.quoted ? "\"" + f.text + "\"" : (f.text.empty() ? "(empty)" : f.text);
    }

    std::string path_;
    bool rewrite_;
    ScriptSession session_;
    Case pending_;
    bool in_case_ = false, has_tolerance_ = false;
    double file_tolerance_ = kDefaultTolerance;
    int line_number_ = 0;
    int failures_ = 0;
    std::vector<std::string> copied_;
};

// A fresh folder for the file's own data and outputs, removed when done.
class ScratchFolder {
  public:
    ScratchFolder() {
        std::string pattern = (fs::temp_directory_path() / "zentable-calls-XXXXXX").string();
        if (!mkdtemp(pattern.data()))
            throw std::runtime_error("cannot make a scratch folder");
        path_ = pattern;
        previous_ = fs::current_path();
        fs::current_path(path_);
    }
    ~ScratchFolder() {
        std::error_code ignored;
        fs::current_path(previous_, ignored);
        fs::remove_all(path_, ignored);
    }

  private:
    fs::path path_, previous_;
};

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> args(argv + 1, argv + argc);
    const bool rewrite = !args.empty() && args[0] == "--rewrite";
    if (args.size() != (rewrite ? 2u : 1u)) {
        std::cerr << "usage: calls_runner [--rewrite] FILE\n";
        return 2;
    }
    const fs::path path = fs::absolute(args.back());
    std::ifstream in(path);
    if (!in) {
        std::cerr << "calls_runner: cannot open " << path.string() << '\n';
        return 2;
    }
    CallFile file(path.string(), rewrite);
    int failures = 0;
    try {
        ScratchFolder scratch;
        failures = file.run(in);
    } catch (const std::exception& e) {
        std::cerr << path.string() << ": " << e.what() << '\n';
        return 2;
    }
    if (rewrite) {
        const std::string copy = path.string() + ".new";
        std::ofstream out(copy);
        for (const std::string& line : file.copy_lines())
            out << line << '\n';
        std::cout << "wrote " << copy << '\n';
        return 0;
    }
    if (failures)
        std::cerr << failures << " case(s) failed in " << path.string() << '\n';
    return failures ? 1 : 0;
}
