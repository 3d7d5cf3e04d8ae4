#include "pptlinks/relink_plan.h"

#include "common_new/SafeFunc/paths.h"
#include "pptlinks/failure.h"
#include "pptlinks/target_check.h"
#include "pptlinks/text_encoding.h"

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <optional>
#include <set>
#include <string_view>
#include <tuple>
#include <utility>

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

// Without its leading zeros; empty for an id that is cleared.
std::string_view digits_of(const std::string& id) {
    return std::string_view(id).substr(std::min(id.find_first_not_of('0'), id.size()));
}

[[noreturn]] void refuse_ids(std::int32_t first, std::int32_t second, const std::string& why) {
    throw UsageError("--set-id: links " + std::to_string(first) + " and " + std::to_string(second) +
                     why);
}

// Whether the path holds what stands for a character that the code page lacks: no file's path has a
// '?' but in front of its drive or share, nor U+FFFD.
bool has_substitute(const std::string& path) {
    constexpr std::string_view kLongPath = "\\\\?\\";
    constexpr WCHAR kReplacement = 0xFFFD;
    const std::size_t start = path.starts_with(kLongPath) ? kLongPath.size() : 0;
    const WideString wide = wide_from_ansi(std::string_view(path).substr(start));
    return std::any_of(wide.begin(), wide.end(),
                       [](WCHAR unit) { return unit == '?' || unit == kReplacement; });
}

bool keeps_substitute(const std::string& path, const std::string& mapped) {
    return !is_address(path) && has_substitute(path) && has_substitute(mapped);
}

} // namespace

std::optional<std::uint64_t> id_number(const Link& link) {
    return link.id ? std::optional(std::strtoull(link.id->c_str(), nullptr, 10)) : std::nullopt;
}

RelinkPlan::RelinkPlan(std::int32_t count, const std::function<Link(std::int32_t)>& link) {
    links_.resize(static_cast<std::size_t>(count));
    objects_.reserve(links_.size());
    for (std::int32_t i = 0; i < count; ++i) {
        const Link asked = link(i);
        objects_.push_back({asked.object_list_ordinal, asked.external_object_id});
        at(i).kind = static_cast<std::uint8_t>(asked.kind);
    }
    keep_paths(link);
}

RelinkPlan::TextNumber RelinkPlan::keep(std::string text) {
    texts_.push_back(std::move(text));
    return static_cast<TextNumber>(texts_.size() - 1);
}

template <class Key>
std::vector<std::int32_t> RelinkPlan::order_by(Key key) const {
    std::vector<std::int32_t> order(links_.size());
    std::iota(order.begin(), order.end(), 0);
    std::sort(order.begin(), order.end(), [&](std::int32_t a, std::int32_t b) {
        return std::tuple(key(object_of(a)), a) < std::tuple(key(object_of(b)), b);
    });
    return order;
}

// A file holds the path of an object once, however often the object is used; that of a picture
// stands where the picture is.
void RelinkPlan::keep_paths(const std::function<Link(std::int32_t)>& link) {
    const TextNumber lost = keep({});
    std::optional<std::int32_t> last;
    for (const std::int32_t index : order_by([](const Object& object) { return object; })) {
        std::string path = link(index).path;
        if (path.empty()) {
            at(index).path = lost;
            continue;
        }
        const bool is_known =
            last && object_of(*last) == object_of(index) && this->path(*last) == path;
        at(index).path = is_known ? at(*last).path : keep(std::move(path));
        last = index;
    }
}

void RelinkPlan::for_each_id(
    const std::vector<IndexedValue>& ids,
    const std::function<void(std::int32_t, const std::string&)>& set) const {
    std::map<Object, const IndexedValue*> of_object;
    for (const IndexedValue& wish : ids) {
        set(wish.index, wish.value);
        if (object_of(wish.index).object_list_ordinal >= 0) {
            of_object[object_of(wish.index)] = &wish;
        }
    }
    const auto count = static_cast<std::int32_t>(links_.size());
    for (std::int32_t i = 0; !of_object.empty() && i < count; ++i) {
        const auto wish = of_object.find(object_of(i));
        if (wish != of_object.end() && wish->second->index != i) {
            set(i, wish->second->value);
        }
    }
}

void RelinkPlan::keep_ids(const std::function<Link(std::int32_t)>& link) {
    objects_ = std::vector<Object>();
    const auto count = static_cast<std::int32_t>(links_.size());
    std::set<std::uint64_t> known; // millions of links may share a few
    for (std::int32_t i = 0; i < count; ++i) {
        if (const auto id = id_number(link(i))) {
            known.insert(*id);
        }
    }
    ids_.assign(known.begin(), known.end());
    for (std::int32_t i = 0; i < count; ++i) {
        if (const auto id = id_number(link(i))) {
            const auto place = std::lower_bound(ids_.begin(), ids_.end(), *id);
            at(i).id = static_cast<std::uint32_t>(place - ids_.begin()) & kNoId;
        }
    }
}

std::optional<std::uint64_t> RelinkPlan::id(std::int32_t index) const {
    const std::uint32_t place = at(index).id;
    return place == kNoId ? std::nullopt : std::optional(ids_[place]);
}

std::optional<std::string> RelinkPlan::new_path(std::int32_t index) const {
    const TextNumber number = at(index).new_path;
    if (number == kNoText) {
        return std::nullopt;
    }
    return (number & kMapped) == 0 ? texts_[number] : map_path(maps_, texts_[number - kMapped]);
}

bool RelinkPlan::change_together(std::int32_t a, std::int32_t b) const {
    const std::int32_t ordinal = object_of(a).object_list_ordinal;
    return ordinal >= 0 && ordinal == object_of(b).object_list_ordinal;
}

bool RelinkPlan::are_different_objects(Uses uses) const {
    return std::any_of(uses.begin(), uses.end(), [&](std::int32_t use) {
        return object_of(use).external_object_id != object_of(uses.front()).external_object_id;
    });
}

void RelinkPlan::apply(const PathWishes& wishes) {
    maps_ = wishes.maps;
    const std::vector<std::int32_t> order =
        order_by([](const Object& object) { return object.object_list_ordinal; });
    for (std::size_t start = 0; start < order.size();) {
        std::size_t end = start + 1;
        while (end < order.size() && change_together(order[start], order[end])) {
            ++end;
        }
        apply_to(Uses(order).subspan(start, end - start), wishes);
        start = end;
    }
    std::sort(not_known_whole_.begin(), not_known_whole_.end());
}

void RelinkPlan::require_separate_ids(const std::vector<IndexedValue>& ids,
                                      const std::function<Link(std::int32_t)>& link) const {
    std::map<std::int32_t, std::string_view> of_link;
    std::map<Object, const IndexedValue*> of_object;
    std::map<std::string_view, const IndexedValue*> by_id;
    for (const IndexedValue& wish : ids) {
        const Object& object = object_of(wish.index);
        const std::string_view id = digits_of(wish.value);
        if (of_link.try_emplace(wish.index, id).first->second != id) {
            throw UsageError("--set-id: link " + std::to_string(wish.index) +
                             " cannot get two different ids");
        }
        if (object.object_list_ordinal >= 0) {
            const IndexedValue& other = *of_object.try_emplace(object, &wish).first->second;
            if (digits_of(other.value) != id) {
                refuse_ids(other.index, wish.index, " are one object and cannot get different ids");
            }
        }
        const IndexedValue& other = *by_id.try_emplace(id, &wish).first->second;
        if (!id.empty() && !have_one_path(other.index, wish.index)) {
            refuse_ids(other.index, wish.index,
                       " have different paths and cannot get the same id: an id belongs to one "
                       "path");
        }
    }
    require_free_ids(ids, link);
}

// A link keeps its id unless one is asked for its path. Those that share one already may keep it.
void RelinkPlan::require_free_ids(const std::vector<IndexedValue>& ids,
                                  const std::function<Link(std::int32_t)>& link) const {
    std::map<std::string_view, std::int32_t> asked;
    std::set<std::string> paths;
    for (const IndexedValue& wish : ids) {
        const std::string_view id = digits_of(wish.value);
        if (!id.empty() && id != digits_of(link(wish.index).id.value_or(""))) {
            asked.try_emplace(id, wish.index);
        }
        paths.insert(final_path(wish.index));
    }
    for (std::int32_t i = 0; !asked.empty() && i < static_cast<std::int32_t>(links_.size()); ++i) {
        const std::optional<std::string> id = link(i).id;
        const auto wish = id ? asked.find(digits_of(*id)) : asked.end();
        if (wish != asked.end() && !paths.contains(final_path(i))) {
            refuse_ids(wish->second, i,
                       " have different paths, and the second has this id already: an id belongs "
                       "to one path; give the second another one as well");
        }
    }
}

bool RelinkPlan::have_one_path(std::int32_t a, std::int32_t b) const {
    return final_path(a) == final_path(b);
}

std::string RelinkPlan::final_path(std::int32_t index) const {
    return ppt::ascii_lower(new_path(index).value_or(path(index)));
}

void RelinkPlan::apply_to(Uses uses, const PathWishes& wishes) {
    const std::string* const set_path = path_set_for(uses, wishes);
    TextNumber new_path = set_path == nullptr ? kNoText : keep(*set_path);
    TextNumber looked_at = kNoText;
    std::optional<std::string> mapped;
    bool all_named = true;
    bool is_known_whole = true;
    for (const std::int32_t use : uses) {
        if (looked_at != at(use).path) {
            looked_at = at(use).path;
            mapped = map_path(maps_, path(use));
            is_known_whole = is_known_whole && !(mapped && keeps_substitute(path(use), *mapped));
        }
        all_named = all_named && (mapped || wishes.paths.contains(use));
        if (new_path == kNoText && mapped) {
            new_path = kMapped | looked_at;
        }
    }
    if (set_path == nullptr && !is_known_whole) {
        not_known_whole_.insert(not_known_whole_.end(), uses.begin(), uses.end());
        return;
    }
    if (new_path == kNoText) {
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
