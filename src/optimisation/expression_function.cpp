// The only file that includes the expression library: its header costs a minute
// of compilation, so everything that needs it lives here behind a plain header.
#include "optimisation/expression_function.hpp"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <limits>
#include <set>
#include <utility>

#include <exprtk.hpp>

#include "numeric/distributions.hpp"

namespace zentable {

namespace {

using SymbolTable = exprtk::symbol_table<double>;
using Expression = exprtk::expression<double>;
using Parser = exprtk::parser<double>;
using Token = exprtk::lexer::token;

// The system's own functions: reserved for the scan beside the library's words,
// so that they never count as names the caller must supply.
const char* const kAddedFunctions[] = {"prob_normal", "prob_normal_inv", "prob_t",
                                       "prob_t_inv",  "probchi",         "cinv"};
const char* const kConstants[] = {"pi", "epsilon", "inf"};

template <std::size_t N>
bool is_one_of(const std::string& name, const char* const (&list)[N]) {
    return std::any_of(std::begin(list), std::end(list),
                       [&](const char* entry) { return name == entry; });
}

std::string lower_case(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

bool is_valid_symbol(const std::string& name) {
    if (name.empty() || !std::isalpha(static_cast<unsigned char>(name[0]))) {
        return false;
    }
    return std::all_of(name.begin() + 1, name.end(), [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) || c == '_';
    });
}

bool is_language_name(const std::string& name) {
    return exprtk::details::is_reserved_word(name) || exprtk::details::is_reserved_symbol(name) ||
           is_one_of(name, kConstants) || is_one_of(name, kAddedFunctions);
}

// probchi and cinv: two arguments for the central distribution, three for the
// non-central one, and NaN for any other count rather than a parse failure.
class CentralOrNot final : public exprtk::ivararg_function<double> {
  public:
    using Central = double (*)(double, double);
    using NonCentral = double (*)(double, double, double);
    CentralOrNot(Central central, NonCentral non_central)
        : central_(central), non_central_(non_central) {
        exprtk::enable_zero_parameters(*this);
    }
    double operator()(const std::vector<double>& args) override {
        if (args.size() == 2) {
            return central_(args[0], args[1]);
        }
        if (args.size() == 3) {
            return non_central_(args[0], args[1], args[2]);
        }
        return std::numeric_limits<double>::quiet_NaN();
    }

  private:
    Central central_;
    NonCentral non_central_;
};

void add_probability_functions(SymbolTable& symbols) {
    // Stateless, so one instance serves every table for the life of the process.
    static CentralOrNot probchi(&chi_cdf, &nc_chi_cdf);
    static CentralOrNot cinv(&chi_inv, &nc_chi_inv);
    symbols.add_function("prob_normal", &normal_cdf);
    symbols.add_function("prob_normal_inv", &normal_inv);
    symbols.add_function("prob_t", &student_cdf);
    symbols.add_function("prob_t_inv", &student_inv);
    symbols.add_function("probchi", probchi);
    symbols.add_function("cinv", cinv);
}

// The library keeps only its first diagnostic worth showing; a lexer failure is
// worded by the parser, so the parser is asked for it.
std::string parser_diagnostic(const std::string& text) {
    SymbolTable symbols;
    add_probability_functions(symbols);
    Expression expression;
    expression.register_symbol_table(symbols);
    Parser parser;
    parser.compile(text, expression);
    return parser.error();
}

}  // namespace

ExpressionNames scan_expression(const std::string& text) {
    const std::string lowered = lower_case(text);
    exprtk::lexer::generator lexer;
    if (lowered.empty()) {
        throw "Empty expression!";
    }
    if (!lexer.process(lowered)) {
        throw parser_diagnostic(lowered);
    }
    if (lexer.empty()) {
        throw "Empty expression!";
    }
    const std::size_t count = lexer.size();
    std::set<std::string> names;
    for (std::size_t i = 0; i < count; ++i) {
        const Token& token = lexer[i];
        if (token.type == Token::e_symbol && !is_language_name(token.value)) {
            names.insert(token.value);
        }
    }
    ExpressionNames out;
    out.symbols.assign(names.begin(), names.end());
    for (const std::string& name : out.symbols) {
        std::size_t first = 0;
        while (lexer[first].type != Token::e_symbol || lexer[first].value != name) {
            ++first;
        }
        const bool assigned = first + 1 < count && lexer[first + 1].type == Token::e_assign;
        if (!assigned) {
            out.free.push_back(name);
        }
    }
    return out;
}

struct BoundExpression::Compiled {
    SymbolTable symbols;
    Expression expression;
};

BoundExpression::Binding BoundExpression::bind_inputs(const std::string& text,
                                                      const std::string& tableName,
                                                      const svec& inputNames, bool strict) {
    Binding binding{scan_expression(text), {}};
    const svec& symbols = binding.names.symbols;
    svec lowered;
    lowered.reserve(inputNames.size());
    for (const std::string& name : inputNames) {
        lowered.push_back(lower_case(name));
    }
    svec sorted = lowered;
    std::sort(sorted.begin(), sorted.end());
    if (std::adjacent_find(sorted.begin(), sorted.end()) != sorted.end()) {
        throw "There are duplicated variables in '" + tableName + "'";
    }
    for (const std::string& name : binding.names.free) {
        if (!std::binary_search(sorted.begin(), sorted.end(), name)) {
            throw "The variable '" + name + "' in the expression is not in the input '" +
                tableName + "'";
        }
    }
    binding.positions.reserve(lowered.size());
    for (std::size_t i = 0; i < lowered.size(); ++i) {
        const auto found = std::lower_bound(symbols.begin(), symbols.end(), lowered[i]);
        if (found != symbols.end() && *found == lowered[i]) {
            binding.positions.push_back(static_cast<int>(found - symbols.begin()));
        } else if (strict) {
            throw "The variable '" + inputNames[i] + "' from the input '" + tableName +
                "' is not in the expression of the function";
        } else {
            binding.positions.push_back(-1);
        }
    }
    return binding;
}

BoundExpression::BoundExpression(const std::string& text, Binding binding)
    : values_(binding.names.symbols.size(), 0.0),
      positions_(std::move(binding.positions)),
      symbols_(std::move(binding.names.symbols)),
      compiled_(std::make_unique<Compiled>()) {
    SymbolTable& table = compiled_->symbols;
    for (std::size_t i = 0; i < symbols_.size(); ++i) {
        if (is_valid_symbol(symbols_[i]) && !table.symbol_exists(symbols_[i])) {
            table.add_variable(symbols_[i], values_[i]);
        }
    }
    table.add_constant("pi", 3.141592653589793);
    table.add_constant("epsilon", 2.220446049250313e-16);
    table.add_constant("inf", std::numeric_limits<double>::infinity());
    add_probability_functions(table);
    compiled_->expression.register_symbol_table(table);
    Parser parser;
    if (!parser.compile(text, compiled_->expression)) {
        throw parser.error();
    }
}

BoundExpression::~BoundExpression() = default;
BoundExpression::BoundExpression(BoundExpression&&) noexcept = default;
BoundExpression& BoundExpression::operator=(BoundExpression&&) noexcept = default;

double BoundExpression::evaluate() const {
    return compiled_->expression.value();
}

GenericFunction::GenericFunction(const std::string& text, const std::string& tableName,
                                 const svec& inputNames, bool strict)
    : BoundExpression(text, bind_inputs(text, tableName, inputNames, strict)) {}

namespace {

svec concatenated(const svec& first, const svec& second) {
    svec out = first;
    out.insert(out.end(), second.begin(), second.end());
    return out;
}

}  // namespace

dvec BoundExpression::values_at_rows(const dvec& parameters, const dmat& rows,
                                     std::size_t parameter_count) const {
    set_inputs(parameters, 0);
    dvec out(rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        set_inputs(rows[i], parameter_count);
        out[i] = evaluate();
    }
    return out;
}

GenericFunction2::GenericFunction2(const std::string& text, const std::string& tableName,
                                   const svec& parameterNames, const svec& columnNames, dmat rows,
                                   dvec y, dvec weight, bool strict)
    : BoundExpression(
          text, bind_inputs(text, tableName, concatenated(parameterNames, columnNames), strict)),
      parameter_count_(parameterNames.size()),
      rows_(std::move(rows)),
      y_(std::move(y)),
      weight_(std::move(weight)) {}

double GenericFunction2::operator()(dvec parameters) const {
    set_inputs(parameters, 0);
    double sum = 0.0;
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        set_inputs(rows_[i], parameter_count_);
        const double residual = y_[i] - evaluate();
        sum += weight_[i] * (residual * residual);
    }
    return sum;
}

dvec GenericFunction2::predict(dvec parameters) const {
    return values_at_rows(parameters, rows_, parameter_count_);
}

GenericFunction_Sum::GenericFunction_Sum(const std::string& text, const std::string& tableName,
                                         const svec& parameterNames, const svec& columnNames,
                                         dmat rows, dvec weight, bool strict)
    : BoundExpression(
          text, bind_inputs(text, tableName, concatenated(parameterNames, columnNames), strict)),
      parameter_count_(parameterNames.size()),
      rows_(std::move(rows)),
      weight_(std::move(weight)) {}

double GenericFunction_Sum::operator()(dvec parameters) const {
    set_inputs(parameters, 0);
    double sum = 0.0;
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        set_inputs(rows_[i], parameter_count_);
        sum += weight_[i] * evaluate();
    }
    return sum;
}

dvec GenericFunction_Sum::predict(dvec parameters) const {
    return values_at_rows(parameters, rows_, parameter_count_);
}

GenericIntegralFunction::GenericIntegralFunction(const std::string& text)
    : BoundExpression(text, bind_single_variable(text)),
      variable_(static_cast<std::size_t>(positions()[0])) {}

BoundExpression::Binding BoundExpression::bind_single_variable(const std::string& text) {
    Binding binding{scan_expression(text), {}};
    if (binding.names.free.size() != 1) {
        throw "Only one variable allowed in 1-D integration";
    }
    const svec& symbols = binding.names.symbols;
    const auto found = std::lower_bound(symbols.begin(), symbols.end(), binding.names.free[0]);
    binding.positions.push_back(static_cast<int>(found - symbols.begin()));
    return binding;
}

}  // namespace zentable
