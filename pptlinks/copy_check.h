// Reads a copy back before anybody gets it: a presentation may be built in a way that nobody
// thought of.
#pragma once

#include "pptlinks/relink_plan.h"
#include "pptlinks/session.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace pptlinks {

// The ids that a copy was to have and that its document properties did not take.
struct LostIds {
    std::vector<std::int32_t> links; // ascending
    bool own = false;                // that of the presentation itself
};

class CopyCheck {
  public:
    // Remembers what the copy of the presentation has to have, as it is just before it is written.
    explicit CopyCheck(const LoadedPresentation& presentation);

    // What the copy at the path lacks; nothing when it cannot be loaded like the presentation or
    // has not the links of the plan. `not_written`, ascending: links of which the ids do not count.
    // Throws StatusFailure when memory runs out. Cost: a load of the copy.
    std::optional<LostIds> lost_ids(const Session& session, const std::string& ansi_copy,
                                    const RelinkPlan& plan,
                                    const std::vector<std::int32_t>& not_written) const;

  private:
    std::size_t unread_;
    std::vector<std::int32_t> links_with_ids_;
    bool has_own_id_;
};

} // namespace pptlinks
