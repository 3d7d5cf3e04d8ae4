// Where the targets of a presentation's links lie, and why those that are not there are not.
#pragma once

#include "pptlinks/session.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace pptlinks {

enum class TargetState {
    found,
    missing,
    unreachable, // its drive or share is not mapped, or the presentation's folder is not there
    denied,
    invalid, // its name cannot be that of a file
    failed,  // the look-up itself, by a path that is too long for example
    unchecked
};

// "found", "missing" and so on.
std::string_view name_of(TargetState state);

struct Target {
    TargetState state = TargetState::unchecked;
    std::string found;   // full path of what was found, ANSI
    std::string problem; // in other states but `unchecked`: why not; terminal text

    bool is_missing() const {
        return state != TargetState::found && state != TargetState::unchecked;
    }
};

// An address such as http://..., mailto:... or file:..., that is, a scheme of two or more
// characters and a colon: no path of a file, though a drive letter looks alike.
bool is_address(std::string_view path);

// The target of each link as seen from the presentation at `ansi_path`, whose folder becomes the
// process's current directory. Empty paths and addresses stay unchecked; a path that several links
// have is looked up once.
std::vector<Target> look_up_targets(std::span<const Link> links, const std::string& ansi_path);

} // namespace pptlinks
