// Which link gets which path: the user's --set and --map applied to the links of a presentation.
//
// A use of an object takes 12 bytes of a file, and a path may be long: the plan keeps 20 bytes for
// a link until it is complete and 12 then, the paths once for each object, each id once, and makes
// mapped paths when they are asked for. It stays good when the presentation is unloaded.
#pragma once

#include "pptlinks/arguments.h"
#include "pptlinks/session.h"

#include <compare>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace pptlinks {

struct PathWishes {
    std::map<std::int32_t, std::string> paths; // by index, ANSI
    std::vector<PathMapEntry> maps;            // ANSI
};

// The id of a link as a number.
std::optional<std::uint64_t> id_number(const Link& link);

class RelinkPlan {
  public:
    // The links of a presentation that has `count` of them; `link` is asked for each twice.
    RelinkPlan(std::int32_t count, const std::function<Link(std::int32_t)>& link);

    // A path that was set wins over the map. Uses of one external object get one path: the one set
    // for any of them, else the first mapped one. Throws UsageError when two of them are set to
    // different paths. Every index in `wishes` is that of a link.
    //
    // A path that the code page could not hold is only known with other characters in place of some
    // of its own, which a map would make its name. It is not mapped unless that part goes.
    void apply(const PathWishes& wishes);

    // Throws UsageError when ids cannot be told apart or kept as asked: two for one link or for
    // uses of one object, or one for links with different paths, of which one may have it already
    // while the other is to get it. Call it when `apply` is done. Every index is that of a link;
    // `link` is asked for each.
    void require_separate_ids(const std::vector<IndexedValue>& ids,
                              const std::function<Link(std::int32_t)>& link) const;

    // Calls `set` for every link that is to get one of `ids`: those named and the other uses of
    // their objects.
    void for_each_id(const std::vector<IndexedValue>& ids,
                     const std::function<void(std::int32_t, const std::string&)>& set) const;

    // Remembers the ids that the links have now, when those that were asked for are set. `link` is
    // asked for each link twice. The plan is complete then: `apply` and `require_separate_ids` may
    // not be called any more.
    void keep_ids(const std::function<Link(std::int32_t)>& link);

    // Takes back what was asked for a link.
    void leave(std::int32_t index) { at(index).new_path = kNoText; }

    std::size_t link_count() const { return links_.size(); }
    LinkKind kind(std::int32_t index) const { return static_cast<LinkKind>(at(index).kind); }
    // In ANSI.
    const std::string& path(std::int32_t index) const { return texts_[at(index).path]; }
    // Nothing when nothing was asked. Cost: that of `map_path`.
    std::optional<std::string> new_path(std::int32_t index) const;
    std::optional<std::uint64_t> id(std::int32_t index) const;
    // Uses of one object that change together although only some of them were named.
    const std::vector<std::vector<std::int32_t>>& joined() const { return joined_; }
    // Uses of different objects that the presentation keeps in one list, which takes a single path
    // for all of them; empty when no such list was to change.
    const std::vector<std::int32_t>& inseparable() const { return inseparable_; }
    // Links that were not mapped since their paths are not known whole; ascending.
    const std::vector<std::int32_t>& not_known_whole() const { return not_known_whole_; }

  private:
    // Indexes of the links that change together, ascending.
    using Uses = std::span<const std::int32_t>;

    using TextNumber = std::uint32_t;
    static constexpr TextNumber kNoText = 0xFFFFFFFF;
    static constexpr std::uint32_t kNoId = 0xFFFFFF;
    static constexpr TextNumber kMapped = 0x80000000; // in `new_path`: what the map makes of it

    struct Object {
        std::int32_t object_list_ordinal = -1;
        std::uint32_t external_object_id = 0;

        auto operator<=>(const Object&) const = default;
    };

    struct Entry {
        TextNumber path = kNoText;
        TextNumber new_path = kNoText;
        std::uint32_t kind : 8 = 0;
        std::uint32_t id : 24 = kNoId; // a position in `ids_`; there are fewer links than that
    };

    const Entry& at(std::int32_t index) const { return links_[static_cast<std::size_t>(index)]; }
    Entry& at(std::int32_t index) { return links_[static_cast<std::size_t>(index)]; }
    // The object that the link uses.
    const Object& object_of(std::int32_t index) const {
        return objects_[static_cast<std::size_t>(index)];
    }
    TextNumber keep(std::string text);
    void keep_paths(const std::function<Link(std::int32_t)>& link);
    // The indexes of the links by what `key` gives for their objects, those of equal keys
    // ascending.
    template <class Key>
    std::vector<std::int32_t> order_by(Key key) const;
    bool change_together(std::int32_t a, std::int32_t b) const;
    // When the plan is carried out; letter case does not tell paths apart.
    bool have_one_path(std::int32_t a, std::int32_t b) const;
    std::string final_path(std::int32_t index) const;
    void require_free_ids(const std::vector<IndexedValue>& ids,
                          const std::function<Link(std::int32_t)>& link) const;
    bool are_different_objects(Uses uses) const;
    void apply_to(Uses uses, const PathWishes& wishes);

    std::deque<std::string> texts_; // by number
    std::vector<Entry> links_;
    std::vector<Object> objects_; // of the links; empty when the plan is complete
    std::vector<PathMapEntry> maps_;
    std::vector<std::uint64_t> ids_; // ascending
    std::vector<std::vector<std::int32_t>> joined_;
    std::vector<std::int32_t> inseparable_;
    std::vector<std::int32_t> not_known_whole_;
};

} // namespace pptlinks
