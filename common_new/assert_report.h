// Assertion reports of the common library: a violated precondition is reported with its expression,
// the source that it belongs to and the line; the function that found it goes on and returns its
// failure.
#pragma once

namespace ppt {

inline constexpr const char* kSourceCommon = "common_new/common";
inline constexpr const char* kSourceSafeFunc = "common_new/SafeFunc";

struct AssertReport {
    const char* expression;
    const char* source;
    unsigned line;
};

using AssertHandler = void (*)(const AssertReport& report);

// Replaces the receiver of the reports and returns the one before. Null stands for the one that is
// there at start, which writes a line to standard error.
AssertHandler set_assert_handler(AssertHandler handler);

// Reports that `expression` does not hold; `line` is the caller's.
void report_assertion(const char* expression, const char* source, unsigned line = __builtin_LINE());

} // namespace ppt
