#include "optimisation/expression_function.hpp"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <limits>
#include <set>
#include <utility>

#include "optimisation/expression_engine.hpp"

namespace zentable {

namespace {

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

bool is_language_name(const std::string& name) {
    return is_library_word(name) || is_one_of(name, kConstants) || is_one_of(name, kAddedFunctions);
}

}  // namespace

ExpressionNames scan_expression(const std::string& text) {
    const std::string lowered = lower_case(text);
    if (lowered.empty()) {
        throw "Empty expression!";
    }
    const std::vector<ExpressionToken> tokens = expression_tokens(lowered);
    if (tokens.empty()) {
        throw "Empty expression!";
    }
    std::set<std::string> names;
    for (const ExpressionToken& token : tokens) {
        if (token.symbol && !is_language_name(token.value)) {
            names.insert(token.value);
        }
    }
    ExpressionNames out;
    out.symbols.assign(names.begin(), names.end());
    for (const std::string& name : out.symbols) {
        std::size_t first = 0;
        while (!tokens[first].symbol || tokens[first].value != name) {
            ++first;
        }
        const bool assigned = first + 1 < tokens.size() && tokens[first + 1].assignment;
        if (!assigned) {
            out.free.push_back(name);
        }
    }
    return out;
}

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
      symbols_(std::move(binding.names.symbols)) {
    compiled_ = std::make_unique<CompiledExpression>(text, symbols_, values_.data());
}

BoundExpression::~BoundExpression() = default;
BoundExpression::BoundExpression(BoundExpression&&) noexcept = default;
BoundExpression& BoundExpression::operator=(BoundExpression&&) noexcept = default;

double BoundExpression::evaluate() const {
    return compiled_->value();
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

BoundExpression::Binding BoundExpression::bind_parameters_and_columns(const std::string& text,
                                                                      const svec& parameterNames,
                                                                      const svec& columnNames) {
    Binding binding{scan_expression(text), {}};
    const svec& symbols = binding.names.symbols;
    svec parameters;
    for (const std::string& name : parameterNames) {
        parameters.push_back(lower_case(name));
    }
    svec columns;
    for (const std::string& name : columnNames) {
        columns.push_back(lower_case(name));
    }
    const auto among = [](const svec& names, const std::string& name) {
        return std::find(names.begin(), names.end(), name) != names.end();
    };
    for (const std::string& name : binding.names.free) {
        if (!among(parameters, name) && !among(columns, name)) {
            throw "The variable '" + name +
                "' in the expression is not in the inputs 'x' or 'params'";
        }
    }
    const auto position_of = [&](const std::string& name) {
        const auto found = std::lower_bound(symbols.begin(), symbols.end(), name);
        return found != symbols.end() && *found == name ? static_cast<int>(found - symbols.begin())
                                                        : -1;
    };
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        const int position = position_of(parameters[i]);
        if (position < 0) {
            throw "The variable '" + parameterNames[i] +
                "' from the input 'params' is not in the expression of the function";
        }
        binding.positions.push_back(position);
    }
    // A column that the expression leaves alone is still data, shown in the report.
    for (const std::string& name : columns) {
        binding.positions.push_back(position_of(name));
    }
    return binding;
}

ParametricFunction::ParametricFunction(const std::string& text, const svec& parameterNames,
                                       const svec& columnNames)
    : BoundExpression(text, bind_parameters_and_columns(text, parameterNames, columnNames)),
      parameter_count_(parameterNames.size()) {
    std::vector<bool> bound(values_.size(), false);
    for (std::size_t j = 0; j < parameter_count_; ++j) {
        bound[static_cast<std::size_t>(positions_[j])] = true;
    }
    for (std::size_t c = 0; c < columnNames.size(); ++c) {
        const int p = positions_[parameter_count_ + c];
        if (p >= 0) {
            bound_columns_.emplace_back(static_cast<std::size_t>(p), c);
            bound[static_cast<std::size_t>(p)] = true;
        }
    }
    rows_independent_ = std::find(bound.begin(), bound.end(), false) == bound.end();
}

void ParametricFunction::weighted_residuals(const double* parameters,
                                            const std::vector<dvec>& columns, const dvec& y,
                                            const dvec& root_weight, std::size_t first,
                                            std::size_t last, double* out) const {
    for (std::size_t j = 0; j < parameter_count_; ++j) {
        values_[static_cast<std::size_t>(positions_[j])] = parameters[j];
    }
    for (std::size_t i = first; i < last; ++i) {
        for (const auto& [entry, column] : bound_columns_) {
            values_[entry] = columns[column][i];
        }
        out[i] = root_weight[i] * (compiled_->value() - y[i]);
    }
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
