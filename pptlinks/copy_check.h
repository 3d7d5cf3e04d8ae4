// Reads a copy back before anybody gets it: a presentation may be built in a way that nobody
// thought of.
#pragma once

#include "pptlinks/relink_plan.h"
#include "pptlinks/session.h"

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace pptlinks {

// Where a copy is not what it was to be. Links that had no id, and that none was asked for, may
// have one: document properties keep ids by path.
struct CopyDifferences {
    // Links, ascending.
    std::vector<std::int32_t> other_path;   // than the one that was written
    std::vector<std::int32_t> id_lost;      // without an id
    std::vector<std::int32_t> id_not_taken; // another than was asked for, or one instead of none
    std::vector<std::int32_t> id_changed;   // though nothing was asked for
    bool own_id = false;                    // that of the presentation itself

    // What was asked for is there; an id may have changed besides.
    bool is_as_asked() const {
        return other_path.empty() && id_lost.empty() && id_not_taken.empty() && !own_id;
    }
};

class CopyCheck {
  public:
    // Remembers what the copy of the presentation has to have, as it is just before it is written.
    // `asked`: the ids that the user set, of which some may be cleared.
    CopyCheck(const LoadedPresentation& presentation, const std::vector<IndexedValue>& asked);

    // Nothing when the copy at the path cannot be loaded like the presentation or has not the links
    // of the plan, which knows their ids. `not_written`, ascending: links that the rewrite told of.
    // Throws StatusFailure when the machine is to blame: out of memory or of files, or another
    // process keeps the copy. Cost: a load of the copy.
    std::optional<CopyDifferences> differences(const Session& session, const std::string& ansi_copy,
                                               const RelinkPlan& plan,
                                               const std::vector<std::int32_t>& not_written) const;

  private:
    CopyDifferences compare(const LoadedPresentation& copy, const RelinkPlan& plan,
                            const std::vector<std::int32_t>& not_written) const;
    void compare_id(const Link& link, std::int32_t index, std::optional<std::uint64_t> wanted,
                    CopyDifferences& differences) const;

    std::size_t unread_;
    std::set<std::int32_t> asked_;
    std::optional<std::string> own_id_;
};

} // namespace pptlinks
