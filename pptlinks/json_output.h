// The JSON form of a listing: one object for each file, on one line. Always valid UTF-8.
#pragma once

#include "pptlinks/session.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace pptlinks {

struct Listing {
    std::string file; // as the user typed it
    std::int32_t status = 0;
    std::optional<std::string> target_file_id;
    std::vector<Link> links;
};

void append_json(std::string& out, const Listing& listing);

} // namespace pptlinks
