#include "optimisation/expression_engine.hpp"

#include <cctype>
#include <limits>

#include <exprtk.hpp>

#include "numeric/distributions.hpp"

namespace zentable {

namespace {

using SymbolTable = exprtk::symbol_table<double>;
using Expression = exprtk::expression<double>;
using Parser = exprtk::parser<double>;
using Token = exprtk::lexer::token;

bool is_valid_symbol(const std::string& name) {
    if (name.empty() || !std::isalpha(static_cast<unsigned char>(name[0]))) {
        return false;
    }
    for (const char c : name) {
        if (!std::isalnum(static_cast<unsigned char>(c)) && c != '_') {
            return false;
        }
    }
    return true;
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

std::vector<ExpressionToken> expression_tokens(const std::string& text) {
    exprtk::lexer::generator lexer;
    if (!lexer.process(text)) {
        throw parser_diagnostic(text);
    }
    std::vector<ExpressionToken> tokens(lexer.size());
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        const Token& token = lexer[i];
        tokens[i].symbol = token.type == Token::e_symbol;
        tokens[i].assignment = token.type == Token::e_assign;
        tokens[i].value = token.value;
    }
    return tokens;
}

bool is_library_word(const std::string& name) {
    return exprtk::details::is_reserved_word(name) || exprtk::details::is_reserved_symbol(name);
}

struct CompiledExpression::Library {
    SymbolTable symbols;
    Expression expression;
};

CompiledExpression::CompiledExpression(const std::string& text, const svec& names, double* values)
    : library_(std::make_unique<Library>()) {
    SymbolTable& table = library_->symbols;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (is_valid_symbol(names[i]) && !table.symbol_exists(names[i])) {
            table.add_variable(names[i], values[i]);
        }
    }
    table.add_constant("pi", 3.141592653589793);
    table.add_constant("epsilon", 2.220446049250313e-16);
    table.add_constant("inf", std::numeric_limits<double>::infinity());
    add_probability_functions(table);
    library_->expression.register_symbol_table(table);
    Parser parser;
    if (!parser.compile(text, library_->expression)) {
        throw parser.error();
    }
}

CompiledExpression::~CompiledExpression() = default;

double CompiledExpression::value() const {
    return library_->expression.value();
}

}  // namespace zentable
