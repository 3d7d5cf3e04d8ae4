// Numbers among the error parameters that a call leaves when it succeeded.
#pragma once

#include "plugin/status.h"
#include "pptlinks/failure.h"
#include "pptlinks/text_encoding.h"

#include <charconv>

namespace pptlinks {

// Throws StatusFailure for out of memory when there is no number, which is when the plug-in could
// not hold it.
template <class Number>
Number number_from(WideView parameter) {
    const std::string text = utf8_from_wide(parameter);
    Number number{};
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    if (result.ec != std::errc() || result.ptr != end) {
        throw StatusFailure(ppt::status::kOutOfMemory, {});
    }
    return number;
}

} // namespace pptlinks
