#include "pptlinks/copy_check.h"

#include "common_new/SafeFunc/paths.h"
#include "plugin/failure.h"
#include "plugin/status.h"

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

bool lies_in_machine(std::int32_t status) {
    using namespace ppt::status;
    return ppt::is_out_of_memory(status) || status == kTooManyOpenFiles ||
           status == kDeviceNotReady || status == kInUseByOther || status == kFileInUse ||
           status == kAccessDenied;
}

} // namespace

CopyCheck::CopyCheck(const LoadedPresentation& presentation, const std::vector<IndexedValue>& asked)
    : unread_(presentation.unread().count)
    , own_id_(presentation.target_file_id()) {
    for (const IndexedValue& id : asked) {
        asked_.insert(id.index);
    }
}

void CopyCheck::compare_id(const Link& link, std::int32_t index,
                           std::optional<std::uint64_t> wanted,
                           CopyDifferences& differences) const {
    const bool is_asked = asked_.contains(index);
    const std::optional<std::uint64_t> id = id_number(link);
    if (id == wanted || (!wanted && !is_asked)) {
        return;
    }
    const bool is_lost = !id && wanted;
    (is_lost    ? differences.id_lost
     : is_asked ? differences.id_not_taken
                : differences.id_changed)
        .push_back(index);
}

CopyDifferences CopyCheck::compare(const LoadedPresentation& copy, const RelinkPlan& plan,
                                   const std::vector<std::int32_t>& not_written) const {
    CopyDifferences differences;
    for (std::int32_t i = 0; i < copy.link_count(); ++i) {
        const Link link = copy.link(i);
        // Of a hyperlink that was not written only the displayed text stayed.
        const bool has_new_path = link.kind == LinkKind::hyperlink ||
                                  !std::binary_search(not_written.begin(), not_written.end(), i);
        const std::optional<std::string> path = has_new_path ? plan.new_path(i) : std::nullopt;
        if (path && ppt::ascii_lower(*path) != ppt::ascii_lower(link.path)) {
            differences.other_path.push_back(i);
        }
        compare_id(link, i, plan.id(i), differences);
    }
    differences.own_id = copy.target_file_id() != own_id_;
    return differences;
}

std::optional<CopyDifferences>
CopyCheck::differences(const Session& session, const std::string& ansi_copy, const RelinkPlan& plan,
                       const std::vector<std::int32_t>& not_written) const {
    try {
        const LoadedPresentation copy(session, ansi_copy);
        if (copy.unread().count != unread_ || !has_links_of(copy, plan)) {
            return std::nullopt;
        }
        return compare(copy, plan, not_written);
    } catch (StatusFailure& failure) {
        if (lies_in_machine(failure.status)) {
            failure.while_rewriting = true;
            throw;
        }
        return std::nullopt;
    }
}

} // namespace pptlinks
