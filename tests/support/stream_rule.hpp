#pragma once

#include <sstream>
#include <string>

namespace zentable {

// The rule a number field must follow: a standard stream reads a double from
// it, sets neither fail nor bad, and stops at the end of the text.
inline bool stream_rule(const std::string& text) {
    std::istringstream in(text);
    double value;
    in >> value;
    if (in.fail() || in.bad())
        return false;
    return in.eof() || in.tellg() == static_cast<std::streampos>(text.size());
}

}  // namespace zentable
