#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "numeric/matrix.hpp"
#include "optimisation/expression_engine.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

// The names in an expression text that are not the language's own.
struct ExpressionNames {
    svec symbols;  // every such name once, sorted
    svec free;     // those whose first use is not an assignment: what the caller must supply
};

// Lower-cases the text and scans it on the expression lexer's tokens. Throws
// "Empty expression!" or the parser's diagnostic of a lexer error.
ExpressionNames scan_expression(const std::string& text);

// A compiled expression whose every symbol, locals included, is bound to one
// entry of `values`; `positions` maps each input, in input order, to its entry
// or -1. Compiling costs tens of microseconds, so it happens once here and a
// call only copies numbers in and runs the compiled tree. The bound values are
// state: one object serves one caller at a time.
class BoundExpression {
  public:
    virtual ~BoundExpression();
    BoundExpression(BoundExpression&&) noexcept;
    BoundExpression& operator=(BoundExpression&&) noexcept;
    BoundExpression(const BoundExpression&) = delete;
    BoundExpression& operator=(const BoundExpression&) = delete;

    const svec& symbols() const { return symbols_; }
    const std::vector<int>& positions() const { return positions_; }

  protected:
    struct Binding {
        ExpressionNames names;
        std::vector<int> positions;
    };
    // Steps up to the binding of input names, which each class does its own way.
    static Binding bind_inputs(const std::string& text, const std::string& tableName,
                               const svec& inputNames, bool strict);
    // The integrand's rule: exactly one free name, whatever else is local.
    static Binding bind_single_variable(const std::string& text);
    // The least-squares fit's rules: each free name a parameter or a column,
    // each parameter used, and no test for duplicates.
    static Binding bind_parameters_and_columns(const std::string& text, const svec& parameterNames,
                                               const svec& columnNames);

    BoundExpression(const std::string& text, Binding binding);

    // A vector longer than the names has its surplus ignored, never written past `values`.
    void set_inputs(const dvec& inputs, std::size_t offset) const {
        const std::size_t n = std::min(inputs.size(), positions_.size() - offset);
        for (std::size_t i = 0; i < n; ++i) {
            const int p = positions_[offset + i];
            if (p >= 0) {
                values_[static_cast<std::size_t>(p)] = inputs[i];
            }
        }
    }
    double evaluate() const;
    // f at each row: the parameters bound first, each row's columns after them.
    dvec values_at_rows(const dvec& parameters, const dmat& rows,
                        std::size_t parameter_count) const;

    mutable dvec values_;
    std::vector<int> positions_;
    std::unique_ptr<CompiledExpression> compiled_;

  private:
    svec symbols_;
};

// f(x): the inputs are the variables, in the order of the input names.
class GenericFunction : public BoundExpression {
  public:
    // With `strict`, an input that the text never uses fails; without, it is ignored.
    GenericFunction(const std::string& text, const std::string& tableName, const svec& inputNames,
                    bool strict);
    double operator()(dvec x) const {
        set_inputs(x, 0);
        return evaluate();
    }
};

// The weighted sum over rows of (y - f(parameters, row))^2: the objective of a
// least-squares fit. The inputs are the parameters, then the data columns.
class GenericFunction2 : public BoundExpression {
  public:
    GenericFunction2(const std::string& text, const std::string& tableName,
                     const svec& parameterNames, const svec& columnNames, dmat rows, dvec y,
                     dvec weight, bool strict);
    double operator()(dvec parameters) const;
    // f at each row.
    dvec predict(dvec parameters) const;

  private:
    std::size_t parameter_count_;
    dmat rows_;
    dvec y_;
    dvec weight_;
};

// The weighted sum over rows of f(parameters, row).
class GenericFunction_Sum : public BoundExpression {
  public:
    GenericFunction_Sum(const std::string& text, const std::string& tableName,
                        const svec& parameterNames, const svec& columnNames, dmat rows, dvec weight,
                        bool strict);
    double operator()(dvec parameters) const;
    dvec predict(dvec parameters) const;

  private:
    std::size_t parameter_count_;
    dmat rows_;
    dvec weight_;
};

// f(parameters, row) under the least-squares fit's naming rules: what a cost
// function evaluates. The inputs are the parameters, then the data columns.
class ParametricFunction : public BoundExpression {
  public:
    ParametricFunction(const std::string& text, const svec& parameterNames,
                       const svec& columnNames);
    void set_parameters(const dvec& parameters) const { set_inputs(parameters, 0); }
    // f at one row, at the parameters set last.
    double at_row(const dvec& row) const {
        set_inputs(row, parameter_count_);
        return evaluate();
    }
    dvec predict(const dvec& parameters, const dmat& rows) const {
        return values_at_rows(parameters, rows, parameter_count_);
    }
    // sqrt(weight) (f - y) at rows first to last - 1, into out[first...]: the
    // inner loop of a fit, so the data come by column and only the columns in
    // use are bound.
    void weighted_residuals(const double* parameters, const std::vector<dvec>& columns,
                            const dvec& y, const dvec& root_weight, std::size_t first,
                            std::size_t last, double* out) const;
    // Every entry is bound afresh at each row: no local carries a value from
    // one row to the next, so rows may be shared out between copies.
    bool rows_independent() const { return rows_independent_; }

  private:
    std::size_t parameter_count_;
    // (entry of `values`, column) for each column that the expression uses.
    std::vector<std::pair<std::size_t, std::size_t>> bound_columns_;
    bool rows_independent_ = false;
};

// f(t) for an integrand: the text must have exactly one free name.
class GenericIntegralFunction : public BoundExpression {
  public:
    explicit GenericIntegralFunction(const std::string& text);
    double operator()(dvec x) const { return (*this)(x.at(0)); }
    double operator()(double t) const {
        values_[variable_] = t;
        return evaluate();
    }
    const std::string& variable() const { return symbols()[variable_]; }

  private:
    std::size_t variable_;
};

}  // namespace zentable
