#include "common_new/assert_report.h"

#include <cstdio>

namespace ppt {

namespace {

void write_to_standard_error(const AssertReport& report) {
    std::fprintf(stderr, "assertion failed: %s, %s, line %u\n", report.expression, report.source,
                 report.line);
}

AssertHandler current_handler = write_to_standard_error;

} // namespace

AssertHandler set_assert_handler(AssertHandler handler) {
    const AssertHandler before = current_handler;
    current_handler = handler == nullptr ? write_to_standard_error : handler;
    return before;
}

void report_assertion(const char* expression, const char* source, unsigned line) {
    current_handler({expression, source, line});
}

} // namespace ppt
