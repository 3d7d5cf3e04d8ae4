// The JSON form of a listing or a check: one object for each file, on one line, in pieces. Always
// valid UTF-8; what would act on a terminal is written as \u escapes, which mean the same.
#pragma once

#include "pptlinks/session.h"
#include "pptlinks/target_check.h"

#include <cstdint>
#include <optional>
#include <string>

namespace pptlinks {

// What stands in front of the links. It is followed by each link and the end.
struct JsonHead {
    std::string file; // as the user typed it
    std::int32_t status = 0;
    Unread unread;
    std::optional<std::string> target_file_id;
};
void append_json_head(std::string& out, const JsonHead& head);
// `target` may be null: nothing is said of it then.
void append_json_link(std::string& out, const Link& link, std::size_t index, const Target* target);
void append_json_end(std::string& out);

} // namespace pptlinks
