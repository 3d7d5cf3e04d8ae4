// Which link gets which path: the user's --set and --map applied to the links of a presentation.
#pragma once

#include "pptlinks/arguments.h"
#include "pptlinks/session.h"

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace pptlinks {

struct PathWishes {
    std::map<std::int32_t, std::string> paths; // by index, ANSI
    std::vector<PathMapEntry> maps;            // ANSI
};

struct RelinkPlan {
    std::vector<std::optional<std::string>> new_paths; // by index; none: nothing was asked
    // Uses of one object that change together although only some of them were named.
    std::vector<std::vector<std::int32_t>> joined;
    // Uses of different objects that the presentation keeps in one list, which takes a single path
    // for all of them; empty when no such list was to change.
    std::vector<std::int32_t> inseparable;
};

// A path that was set wins over the map. Uses of one external object get one path: the one set for
// any of them, else the first mapped one. Throws UsageError when two of them are set to different
// paths. Every index in `wishes` is that of a link.
RelinkPlan plan_relink(std::span<const Link> links, const PathWishes& wishes);

} // namespace pptlinks
