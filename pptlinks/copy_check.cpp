#include "pptlinks/copy_check.h"

#include "plugin/failure.h"

#include <algorithm>

namespace pptlinks {

namespace {

bool has_links_of(const LoadedPresentation& copy, const RelinkPlan& plan) {
    const auto count = static_cast<std::int32_t>(plan.link_count());
    if (copy.link_count() != count) {
        return false;
    }
    for (std::int32_t i = 0; i < count; ++i) {
        if (copy.link(i).kind != plan.kind(i)) {
            return false;
        }
    }
    return true;
}

} // namespace

CopyCheck::CopyCheck(const LoadedPresentation& presentation)
    : unread_(presentation.unread().count)
    , has_own_id_(presentation.target_file_id().has_value()) {
    for (std::int32_t i = 0; i < presentation.link_count(); ++i) {
        if (presentation.link(i).id) {
            links_with_ids_.push_back(i);
        }
    }
}

std::optional<LostIds> CopyCheck::lost_ids(const Session& session, const std::string& ansi_copy,
                                           const RelinkPlan& plan,
                                           const std::vector<std::int32_t>& not_written) const {
    try {
        const LoadedPresentation copy(session, ansi_copy);
        if (copy.unread().count != unread_ || !has_links_of(copy, plan)) {
            return std::nullopt;
        }
        LostIds lost;
        for (const std::int32_t index : links_with_ids_) {
            const bool counts = !std::binary_search(not_written.begin(), not_written.end(), index);
            if (counts && !copy.link(index).id) {
                lost.links.push_back(index);
            }
        }
        lost.own = has_own_id_ && !copy.target_file_id();
        return lost;
    } catch (const StatusFailure& failure) {
        if (ppt::is_out_of_memory(failure.status)) {
            throw;
        }
        return std::nullopt;
    }
}

} // namespace pptlinks
