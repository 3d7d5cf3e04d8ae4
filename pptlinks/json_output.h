// The JSON form of a listing or a check: one object for each file, on one line. Always
// valid UTF-8; what would act on a terminal is written as \u escapes, which mean the same.
#pragma once

#include "pptlinks/listing.h"

#include <string>

namespace pptlinks {

void append_json(std::string& out, const Listing& listing);

} // namespace pptlinks
