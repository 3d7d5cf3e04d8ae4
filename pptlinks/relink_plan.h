// Which link gets which path: the user's --set and --map applied to the links of a presentation.
//
// A path may be long and have millions of uses, which take 12 bytes of a file each: the plan keeps
// each text once, and 20 bytes for a link. It stays good when the presentation is unloaded.
#pragma once

#include "pptlinks/arguments.h"
#include "pptlinks/session.h"

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

namespace pptlinks {

struct PathWishes {
    std::map<std::int32_t, std::string> paths; // by index, ANSI
    std::vector<PathMapEntry> maps;            // ANSI
};

struct PlannedLink {
    LinkKind kind = LinkKind::hyperlink;
    std::int32_t object_list_ordinal = -1;
    std::uint32_t external_object_id = 0;
    // Texts of the plan, in ANSI; each stands at one place only.
    const std::string* path = nullptr;
    const std::string* new_path = nullptr; // null: nothing was asked
};

class RelinkPlan {
  public:
    // The next link of the presentation.
    void add(const Link& link);

    // A path that was set wins over the map. Uses of one external object get one path: the one set
    // for any of them, else the first mapped one. Throws UsageError when two of them are set to
    // different paths. Every index in `wishes` is that of a link.
    //
    // A path that the code page could not hold is only known with other characters in place of some
    // of its own, which a map would make its name. It is not mapped unless that part goes.
    void apply(const PathWishes& wishes);

    // Throws UsageError when ids cannot be told apart or kept as asked: two for one link or for
    // uses of one object, or one for links with different paths. Call it when `apply` is done.
    // Every index is that of a link.
    void require_separate_ids(const std::vector<IndexedValue>& ids) const;

    // Takes back what was asked for a link.
    void leave(std::int32_t index) { at(index).new_path = kNoText; }

    std::size_t link_count() const { return links_.size(); }
    PlannedLink link(std::int32_t index) const;
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

    // Numbers of texts.
    using TextNumber = std::uint32_t;
    static constexpr TextNumber kNoText = 0xFFFFFFFF;

    struct Entry {
        std::int32_t object_list_ordinal = -1;
        std::uint32_t external_object_id = 0;
        TextNumber path = kNoText;
        TextNumber new_path = kNoText;
        LinkKind kind = LinkKind::hyperlink;
    };

    const Entry& at(std::int32_t index) const { return links_[static_cast<std::size_t>(index)]; }
    Entry& at(std::int32_t index) { return links_[static_cast<std::size_t>(index)]; }
    TextNumber kept(const std::string& text);
    const std::string* text(TextNumber number) const;
    bool is_before(std::int32_t a, std::int32_t b) const;
    bool change_together(std::int32_t a, std::int32_t b) const;
    // When the plan is carried out; letter case does not tell paths apart.
    bool have_one_path(std::int32_t a, std::int32_t b) const;
    bool are_different_objects(Uses uses) const;
    void apply_to(Uses uses, const PathWishes& wishes);

    std::unordered_map<std::string, TextNumber> numbers_;
    std::vector<const std::string*> texts_; // by number
    std::vector<Entry> links_;
    std::vector<std::vector<std::int32_t>> joined_;
    std::vector<std::int32_t> inseparable_;
    std::vector<std::int32_t> not_known_whole_;
};

} // namespace pptlinks
