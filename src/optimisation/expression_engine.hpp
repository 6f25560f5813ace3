#pragma once

#include <memory>
#include <string>
#include <vector>

#include "xlw/decoders.hpp"

namespace zentable {

// The one door to the expression library. Its header costs minutes of
// compilation, many more under the sanitisers, so only expression_engine.cpp
// includes it and the sanitised tree builds that one file uninstrumented:
// the rules of names and bindings live outside, where the sanitisers see them.

struct ExpressionToken {
    bool symbol = false;
    bool assignment = false;  // ":="
    std::string value;
};

// The lexer's tokens of a text; a text the lexer refuses throws the parser's
// diagnostic, the one worth showing.
std::vector<ExpressionToken> expression_tokens(const std::string& text);

// The library's reserved words and symbols.
bool is_library_word(const std::string& name);

// The text compiled with names[i] bound to values[i], beside the constants pi,
// epsilon and inf and the six added functions. A name that is not a valid
// symbol, or that the table already holds, stays unbound. `values` must outlive
// the object. A text that does not compile throws the parser's diagnostic.
class CompiledExpression {
  public:
    CompiledExpression(const std::string& text, const svec& names, double* values);
    ~CompiledExpression();
    CompiledExpression(const CompiledExpression&) = delete;
    CompiledExpression& operator=(const CompiledExpression&) = delete;

    double value() const;

  private:
    struct Library;
    std::unique_ptr<Library> library_;
};

}  // namespace zentable
