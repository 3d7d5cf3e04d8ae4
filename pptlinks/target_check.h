// Where the targets of a presentation's links lie, and why those that are not there are not.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

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

// Looks up paths as seen from one presentation, whose folder becomes the process's current
// directory. Needs a session. It remembers some paths, so that one which many links have is not
// looked up for each.
class TargetLookup {
  public:
    explicit TargetLookup(std::string ansi_presentation);

    // Empty paths and addresses stay unchecked. The target is good until the next question.
    const Target& target_of(const std::string& path);

  private:
    std::string presentation_;
    std::unordered_map<std::string, Target> known_;
};

} // namespace pptlinks
