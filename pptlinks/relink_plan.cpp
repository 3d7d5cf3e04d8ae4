#include "pptlinks/relink_plan.h"

#include "pptlinks/failure.h"

#include <algorithm>
#include <numeric>
#include <optional>
#include <tuple>

namespace pptlinks {

namespace {

// The path that --set gives to the uses, if any.
const std::string* path_set_for(std::span<const std::int32_t> uses, const PathWishes& wishes) {
    const std::string* path = nullptr;
    std::int32_t named = 0;
    for (const std::int32_t use : uses) {
        const auto wish = wishes.paths.find(use);
        if (wish == wishes.paths.end()) {
            continue;
        }
        if (path != nullptr && *path != wish->second) {
            throw UsageError("--set: links " + std::to_string(named) + " and " +
                             std::to_string(use) +
                             " are one object and cannot get different paths");
        }
        path = &wish->second;
        named = use;
    }
    return path;
}

} // namespace

void RelinkPlan::add(const Link& link) {
    links_.push_back(
        {link.kind, link.object_list_ordinal, link.external_object_id, kept(link.path)});
}

// Objects in the order of the presentation's list of them, the uses of each in the order of the
// links.
bool RelinkPlan::is_before(std::int32_t a, std::int32_t b) const {
    return std::tuple(link(a).object_list_ordinal, a) < std::tuple(link(b).object_list_ordinal, b);
}

bool RelinkPlan::change_together(std::int32_t a, std::int32_t b) const {
    const std::int32_t ordinal = link(a).object_list_ordinal;
    return ordinal >= 0 && ordinal == link(b).object_list_ordinal;
}

bool RelinkPlan::are_different_objects(Uses uses) const {
    return std::any_of(uses.begin(), uses.end(), [&](std::int32_t use) {
        return link(use).external_object_id != link(uses.front()).external_object_id;
    });
}

void RelinkPlan::apply(const PathWishes& wishes) {
    std::vector<std::int32_t> order(links_.size());
    std::iota(order.begin(), order.end(), 0);
    std::sort(order.begin(), order.end(),
              [this](std::int32_t a, std::int32_t b) { return is_before(a, b); });
    for (std::size_t start = 0; start < order.size();) {
        std::size_t end = start + 1;
        while (end < order.size() && change_together(order[start], order[end])) {
            ++end;
        }
        apply_to(Uses(order).subspan(start, end - start), wishes);
        start = end;
    }
}

void RelinkPlan::apply_to(Uses uses, const PathWishes& wishes) {
    const std::string* const set_path = path_set_for(uses, wishes);
    const std::string* new_path = set_path == nullptr ? nullptr : kept(*set_path);
    const std::string* looked_at = nullptr;
    std::optional<std::string> mapped;
    bool all_named = true;
    for (const std::int32_t use : uses) {
        if (looked_at != link(use).path) {
            looked_at = link(use).path;
            mapped = map_path(wishes.maps, *looked_at);
        }
        all_named = all_named && (mapped || wishes.paths.contains(use));
        if (new_path == nullptr && mapped) {
            new_path = kept(*mapped);
        }
    }
    if (new_path == nullptr) {
        return;
    }
    for (const std::int32_t use : uses) {
        at(use).new_path = new_path;
    }
    if (are_different_objects(uses)) {
        inseparable_.assign(uses.begin(), uses.end());
    }
    if (!all_named) {
        joined_.emplace_back(uses.begin(), uses.end());
    }
}

} // namespace pptlinks
