// The JSON form of a listing or a check: one object for each file, on one line. Always
// valid UTF-8; what would act on a terminal is written as \u escapes, which mean the same.
#pragma once

#include "pptlinks/listing.h"

#include <cstdint>
#include <optional>
#include <string>

namespace pptlinks {

// The object in pieces: what stands in front of the links, each link, the end.
struct JsonHead {
    const std::string& file; // as the user typed it
    std::int32_t status = 0;
    const Unread& unread;
    const std::optional<std::string>& target_file_id;
};
void append_json_head(std::string& out, const JsonHead& head);
// `target` may be null: nothing is said of it then.
void append_json_link(std::string& out, const Link& link, std::size_t index, const Target* target);
void append_json_end(std::string& out);

// The whole of it.
void append_json(std::string& out, const Listing& listing);

} // namespace pptlinks
