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

// Where the ids of a copy are not those that it was to have. Links that had none, and that none was
// asked for, may have one: document properties keep ids by path.
struct IdDifferences {
    // Links, ascending.
    std::vector<std::int32_t> lost;      // without an id
    std::vector<std::int32_t> not_taken; // asked for, but there is another, or one instead of none
    std::vector<std::int32_t> changed;   // with another id though nothing was asked for
    bool own = false;                    // that of the presentation itself
};

class CopyCheck {
  public:
    // Remembers what the copy of the presentation has to have, as it is just before it is written.
    // `asked`: the ids that the user set, of which some may be cleared.
    CopyCheck(const LoadedPresentation& presentation, const std::vector<IndexedValue>& asked);

    // Nothing when the copy at the path cannot be loaded like the presentation or has not the links
    // of the plan, which knows their ids. `not_written`, ascending: links of which the ids do not
    // count. Throws StatusFailure when memory runs out. Cost: a load of the copy.
    std::optional<IdDifferences> differences(const Session& session, const std::string& ansi_copy,
                                             const RelinkPlan& plan,
                                             const std::vector<std::int32_t>& not_written) const;

  private:
    IdDifferences compare_ids(const LoadedPresentation& copy, const RelinkPlan& plan,
                              const std::vector<std::int32_t>& not_written) const;

    std::size_t unread_;
    std::set<std::int32_t> asked_;
    std::optional<std::string> own_id_;
};

} // namespace pptlinks
