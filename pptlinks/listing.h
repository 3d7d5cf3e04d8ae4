// The links of one presentation, as `list` and `check` show them.
#pragma once

#include "pptlinks/session.h"
#include "pptlinks/target_check.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pptlinks {

inline constexpr std::string_view kNone = "-"; // in place of a text that is not there

struct Listing {
    std::string file; // as the user typed it
    std::int32_t status = 0;
    Unread unread;
    std::optional<std::string> target_file_id;
    std::vector<Link> links;
    std::vector<Target> targets; // of a check: one for each link
};

// Loads the presentation `file`, whose absolute name is `name`. A file that fails is complained of
// and gives a listing with its status and no links; so is everything in it that could not be read.
// With `looks_up_targets` the listing tells where
// the targets lie, and the process's current directory becomes the presentation's folder.
Listing read_listing(const Session& session, const std::string& file, const std::string& name,
                     bool looks_up_targets);

// "1 link", "2 links".
std::string counted(std::size_t count, const std::string& noun);

} // namespace pptlinks
