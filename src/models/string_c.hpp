#pragma once

#include <cctype>
#include <cstddef>
#include <string>

namespace zentable {

// Character traits that compare with case folded, so that a handle typed in
// any case finds its model.
struct case_insensitive_traits : std::char_traits<char> {
    static char fold(char c) {
        return static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    static bool eq(char a, char b) { return fold(a) == fold(b); }
    static bool lt(char a, char b) { return fold(a) < fold(b); }
    static int compare(const char* a, const char* b, std::size_t n) {
        for (std::size_t i = 0; i < n; ++i) {
            if (lt(a[i], b[i]))
                return -1;
            if (lt(b[i], a[i]))
                return 1;
        }
        return 0;
    }
    static const char* find(const char* s, std::size_t n, char c) {
        for (std::size_t i = 0; i < n; ++i)
            if (eq(s[i], c))
                return s + i;
        return nullptr;
    }
};

// The string of handles and keys: keeps its case, compares without it.
class string_c {
  public:
    using string_type = std::basic_string<char, case_insensitive_traits>;

    string_c() = default;
    string_c(const char* text) : text_(text) {}
    string_c(const string_type& text) : text_(text) {}
    string_c(const std::string& text) : text_(text.data(), text.size()) {}

    operator std::string() const { return std::string(text_.data(), text_.size()); }
    const string_type& str() const { return text_; }
    bool is_valid() const { return true; }

    friend bool operator==(const string_c& a, const string_c& b) { return a.text_ == b.text_; }
    friend bool operator!=(const string_c& a, const string_c& b) { return !(a == b); }
    friend bool operator<(const string_c& a, const string_c& b) { return a.text_ < b.text_; }

  private:
    string_type text_;
};

}  // namespace zentable
