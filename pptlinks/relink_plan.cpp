#include "pptlinks/relink_plan.h"

#include "pptlinks/failure.h"

#include <algorithm>

namespace pptlinks {

namespace {

using Uses = std::vector<std::int32_t>;

// The links in groups that change together, in the order of each group's first link.
std::vector<Uses> group_uses(std::span<const Link> links) {
    std::vector<Uses> groups;
    std::map<std::int32_t, std::size_t> group_of_object;
    for (std::size_t i = 0; i < links.size(); ++i) {
        const Link& link = links[i];
        std::size_t group = groups.size();
        if (link.object_list_ordinal >= 0) {
            group = group_of_object.try_emplace(link.object_list_ordinal, group).first->second;
        }
        if (group == groups.size()) {
            groups.emplace_back();
        }
        groups[group].push_back(static_cast<std::int32_t>(i));
    }
    return groups;
}

bool are_different_objects(std::span<const Link> links, const Uses& uses) {
    const auto object = [links](std::int32_t use) {
        return links[static_cast<std::size_t>(use)].external_object_id;
    };
    return std::any_of(uses.begin(), uses.end(),
                       [&](std::int32_t use) { return object(use) != object(uses.front()); });
}

// The path that --set gives to the uses, if any.
std::optional<std::string> set_path(const Uses& uses, const PathWishes& wishes) {
    std::optional<std::string> path;
    std::int32_t named = 0;
    for (const std::int32_t use : uses) {
        const auto wish = wishes.paths.find(use);
        if (wish == wishes.paths.end()) {
            continue;
        }
        if (path && *path != wish->second) {
            throw UsageError("--set: links " + std::to_string(named) + " and " +
                             std::to_string(use) +
                             " are one object and cannot get different paths");
        }
        path = wish->second;
        named = use;
    }
    return path;
}

} // namespace

RelinkPlan plan_relink(std::span<const Link> links, const PathWishes& wishes) {
    RelinkPlan plan;
    plan.new_paths.resize(links.size());
    for (const Uses& uses : group_uses(links)) {
        std::optional<std::string> path = set_path(uses, wishes);
        bool all_named = true;
        for (const std::int32_t use : uses) {
            const auto mapped = map_path(wishes.maps, links[static_cast<std::size_t>(use)].path);
            all_named = all_named && (mapped || wishes.paths.contains(use));
            if (!path) {
                path = mapped;
            }
        }
        if (!path) {
            continue;
        }
        if (are_different_objects(links, uses)) {
            plan.inseparable = uses;
        }
        for (const std::int32_t use : uses) {
            plan.new_paths[static_cast<std::size_t>(use)] = path;
        }
        if (!all_named) {
            plan.joined.push_back(uses);
        }
    }
    return plan;
}

} // namespace pptlinks
