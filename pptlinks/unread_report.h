// What a presentation holds that could not be read and was left out, and the words for it.
#pragma once

#include "pptlinks/failure.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace pptlinks {

struct UnreadObject {
    std::int32_t status = 0;
    std::string kind;        // "slide", "movie" and so on, as the plug-in names it
    std::int32_t number = 0; // of the page among its kind, of the object among all, from 1
};

struct Unread {
    std::size_t count = 0;
    std::vector<UnreadObject> objects; // the first of them
};

// Out of the error parameters that a load leaves: the count, then status, kind and number of each
// object that is named. Throws StatusFailure for out of memory when the count is missing, which is
// when the plug-in could not hold it.
Unread unread_from(const std::vector<WideString>& parameters);

// A sentence on standard error for each object that is named, and one for the rest.
void complain_of(const Unread& unread, const std::string& file);

// ", 2 objects could not be read" for the summary of a file; empty when all was read.
std::string summary_of(const Unread& unread);

} // namespace pptlinks
