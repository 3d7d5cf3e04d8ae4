// The links of one presentation with their targets, as `check` shows them.
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
    std::vector<Target> targets; // one for each link
};

// Loads the presentation `file`, whose absolute name is `name`, and looks its targets up: the
// process's current directory becomes the presentation's folder. A file that fails is complained of
// and gives a listing with its status and no links; what could not be read of it is complained of.
Listing read_listing(const Session& session, const std::string& file, const std::string& name);

// Complains of a file that failed; gives its listing.
Listing failed_listing(const StatusFailure& failure, const std::string& file);

// "1 link", "2 links".
std::string counted(std::size_t count, const std::string& noun);

} // namespace pptlinks
