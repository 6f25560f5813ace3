#pragma once

#include "../support/tables.hpp"

// The text that an expression threw, as a fixed or a built text.
#define THROWN_TEXT(expr) zentable::testing::thrown_text([&] { (void)(expr); })
