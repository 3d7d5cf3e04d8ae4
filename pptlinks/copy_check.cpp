#include "pptlinks/copy_check.h"

#include "plugin/failure.h"

#include <algorithm>
#include <cstdlib>

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

std::uint64_t number_of(const std::string& decimal) {
    return std::strtoull(decimal.c_str(), nullptr, 10);
}

} // namespace

CopyCheck::CopyCheck(const LoadedPresentation& presentation, const std::vector<IndexedValue>& asked)
    : unread_(presentation.unread().count)
    , own_id_(presentation.target_file_id()) {
    for (const IndexedValue& id : asked) {
        asked_.insert(id.index);
    }
    remember_ids(presentation);
}

// Millions of links may share a few ids.
void CopyCheck::remember_ids(const LoadedPresentation& presentation) {
    const std::int32_t count = presentation.link_count();
    for (std::int32_t i = 0; i < count; ++i) {
        if (const auto id = presentation.link(i).id) {
            ids_.push_back(number_of(*id));
        }
    }
    std::sort(ids_.begin(), ids_.end());
    ids_.erase(std::unique(ids_.begin(), ids_.end()), ids_.end());
    ids_.shrink_to_fit();
    if (ids_.empty()) {
        return;
    }
    id_of_link_.reserve(static_cast<std::size_t>(count));
    for (std::int32_t i = 0; i < count; ++i) {
        const auto id = presentation.link(i).id;
        const auto place =
            id ? std::lower_bound(ids_.begin(), ids_.end(), number_of(*id)) : ids_.end();
        id_of_link_.push_back(static_cast<IdNumber>(place - ids_.begin()));
    }
}

std::optional<std::uint64_t> CopyCheck::wanted_id(std::int32_t index) const {
    const std::size_t place =
        id_of_link_.empty() ? ids_.size() : id_of_link_[static_cast<std::size_t>(index)];
    return place == ids_.size() ? std::nullopt : std::optional(ids_[place]);
}

IdDifferences CopyCheck::compare_ids(const LoadedPresentation& copy,
                                     const std::vector<std::int32_t>& not_written) const {
    IdDifferences differences;
    for (std::int32_t i = 0; i < copy.link_count(); ++i) {
        const std::optional<std::uint64_t> wanted = wanted_id(i);
        if ((!wanted && !asked_.contains(i)) ||
            std::binary_search(not_written.begin(), not_written.end(), i)) {
            continue;
        }
        const auto id = copy.link(i).id;
        if (!id && wanted) {
            differences.lost.push_back(i);
        } else if (id && number_of(*id) != wanted) {
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
        return compare_ids(copy, not_written);
    } catch (const StatusFailure& failure) {
        if (ppt::is_out_of_memory(failure.status)) {
            throw;
        }
        return std::nullopt;
    }
}

} // namespace pptlinks
