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

CopyCheck::CopyCheck(const LoadedPresentation& presentation, const std::vector<IndexedValue>& asked)
    : unread_(presentation.unread().count)
    , own_id_(presentation.target_file_id()) {
    for (const IndexedValue& id : asked) {
        asked_.insert(id.index);
    }
}

IdDifferences CopyCheck::compare_ids(const LoadedPresentation& copy, const RelinkPlan& plan,
                                     const std::vector<std::int32_t>& not_written) const {
    IdDifferences differences;
    for (std::int32_t i = 0; i < copy.link_count(); ++i) {
        const std::optional<std::uint64_t> wanted = plan.id(i);
        if ((!wanted && !asked_.contains(i)) ||
            std::binary_search(not_written.begin(), not_written.end(), i)) {
            continue;
        }
        const std::optional<std::uint64_t> id = id_number(copy.link(i));
        if (!id && wanted) {
            differences.lost.push_back(i);
        } else if (id != wanted) {
            (asked_.contains(i) ? differences.not_taken : differences.changed).push_back(i);
        }
    }
    differences.own = copy.target_file_id() != own_id_;
    return differences;
}

std::optional<IdDifferences>
CopyCheck::differences(const Session& session, const std::string& ansi_copy, const RelinkPlan& plan,
                       const std::vector<std::int32_t>& not_written) const {
    try {
        const LoadedPresentation copy(session, ansi_copy);
        if (copy.unread().count != unread_ || !has_links_of(copy, plan)) {
            return std::nullopt;
        }
        return compare_ids(copy, plan, not_written);
    } catch (const StatusFailure& failure) {
        if (ppt::is_out_of_memory(failure.status)) {
            throw;
        }
        return std::nullopt;
    }
}

} // namespace pptlinks
