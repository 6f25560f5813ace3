#pragma once

#include <string>

// The text of a thrown character pointer, or "" when nothing was thrown.
template <class F>
std::string thrown_text_of(F f) {
    try {
        f();
    } catch (const char* text) {
        return text;
    }
    return "";
}

#define THROWN_TEXT(expr) thrown_text_of([&] { (void)(expr); })
