// What `pptlinks relink` tells of a rewrite: what changed, and what could not be changed.
#pragma once

#include "pptlinks/relink_plan.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace pptlinks {

struct Changes {
    std::vector<std::pair<std::int32_t, std::string>> paths; // index, new path in ANSI
    std::size_t same = 0; // asked for, but the path is the same but for the case of letters
    // Of `paths`, ascending: pictures and objects that keep their old paths, and hyperlinks of
    // which only the displayed text stayed.
    std::vector<std::int32_t> not_written;
    Unread unread; // is in the copy as it was
};

// "links 0, 2 and 5"
std::string listed(const std::vector<std::int32_t>& indexes);

// A line for each link that changed and one with the counts; terminal text.
std::string report(const RelinkArguments& arguments, const std::vector<Link>& links,
                   const RelinkPlan& plan, const Changes& changes);

// Which link was not written, why and what to do; in UTF-8, without a full stop.
std::string why_not_written(const Link& link, std::int32_t index);

} // namespace pptlinks
