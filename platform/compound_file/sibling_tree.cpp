// Red-black insertion with parent links, and the untrusting walk.
#include "platform/compound_file/sibling_tree.h"

#include <bit>
#include <optional>

namespace compound_file {
namespace {

// The walk of one tree; a class because its steps share much state.
class Walk {
  public:
    Walk(std::span<const Entry> entries, EntryId storage, SectorSet& visited,
         const std::function<void(TreeFault, const std::string&)>& fault)
        : entries_(entries)
        , storage_(storage)
        , visited_(visited)
        , fault_(fault) {}

    void run(const std::function<void(EntryId, EntryId)>& found) {
        EntryId at = entries_[storage_].child;
        Step above;
        for (;;) {
            while (accept(at)) {
                check_colours(at, above.id);
                path_.push_back({at, above.id, above.blacks + (entries_[at].red ? 0U : 1U)});
                above = path_.back();
                at = entries_[at].left;
            }
            check_height(above.blacks);
            if (path_.empty()) {
                return;
            }
            above = path_.back();
            path_.pop_back();
            check_order(above.id);
            found(above.id, above.up);
            at = entries_[above.id].right;
        }
    }

  private:
    struct Step {
        EntryId id = kNoEntry;
        EntryId up = kNoEntry;
        unsigned blacks = 0;
    };

    void fault(TreeFault kind, const std::string& what) {
        fault_(kind, "storage " + std::to_string(storage_) + ": " + what);
    }

    bool accept(EntryId at) {
        if (at == kNoEntry) {
            return false;
        }
        if (at >= entries_.size() || entries_[at].type == EntryType::free || at == kRoot) {
            fault(TreeFault::links, "link to no entry, " + std::to_string(at));
            return false;
        }
        if (visited_.contains(at)) {
            fault(TreeFault::links, "second link to entry " + std::to_string(at));
            return false;
        }
        visited_.insert(at);
        return true;
    }

    void check_colours(EntryId at, EntryId up) {
        if (entries_[at].red && (up == kNoEntry || entries_[up].red)) {
            fault(TreeFault::colours,
                  (up == kNoEntry ? "red top, entry " : "red below red, entry ") +
                      std::to_string(at));
        }
    }

    void check_height(unsigned blacks) {
        if (!height_) {
            height_ = blacks;
        } else if (*height_ != blacks && !height_reported_) {
            height_reported_ = true;
            fault(TreeFault::colours, "unequal numbers of black entries on the paths, " +
                                          std::to_string(*height_) + " and " +
                                          std::to_string(blacks));
        }
    }

    void check_order(EntryId id) {
        if (previous_ != kNoEntry && !key_less(entries_[previous_].key, entries_[id].key)) {
            fault(TreeFault::links, "wrong order or a name twice, entry " + std::to_string(id));
        }
        previous_ = id;
    }

    std::span<const Entry> entries_;
    EntryId storage_;
    SectorSet& visited_;
    const std::function<void(TreeFault, const std::string&)>& fault_;
    std::vector<Step> path_;
    std::optional<unsigned> height_;
    bool height_reported_ = false;
    EntryId previous_ = kNoEntry;
};

} // namespace

void walk_siblings(std::span<const Entry> entries, EntryId storage, SectorSet& visited,
                   const std::function<void(EntryId, EntryId)>& found,
                   const std::function<void(TreeFault, const std::string&)>& fault) {
    Walk(entries, storage, visited, fault).run(found);
}

void SiblingTree::set_colour(EntryId id, bool red) {
    if (entries_[id].red != red) {
        entries_[id].red = red;
        touch_(id);
    }
}

void SiblingTree::replace_child(EntryId up, EntryId old_child, EntryId new_child) {
    if (up == kNoEntry) {
        entries_[storage_].child = new_child;
        touch_(storage_);
        return;
    }
    Entry& parent = entries_[up];
    (parent.left == old_child ? parent.left : parent.right) = new_child;
    touch_(up);
}

void SiblingTree::rotate(EntryId top, bool to_left) {
    Entry& lowered = entries_[top];
    const EntryId raised_id = to_left ? lowered.right : lowered.left;
    Entry& raised = entries_[raised_id];
    const EntryId moved = to_left ? raised.left : raised.right;
    (to_left ? lowered.right : lowered.left) = moved;
    (to_left ? raised.left : raised.right) = top;
    if (moved != kNoEntry) {
        entries_[moved].up = top;
    }
    raised.up = lowered.up;
    lowered.up = raised_id;
    replace_child(raised.up, top, raised_id);
    touch_(top);
    touch_(raised_id);
}

void SiblingTree::insert(EntryId id) {
    EntryId up = kNoEntry;
    EntryId at = entries_[storage_].child;
    bool goes_left = false;
    while (at != kNoEntry) {
        up = at;
        goes_left = key_less(entries_[id].key, entries_[at].key);
        at = goes_left ? entries_[at].left : entries_[at].right;
    }
    Entry& added = entries_[id];
    added.left = added.right = kNoEntry;
    added.up = up;
    added.red = true;
    touch_(id);
    if (up == kNoEntry) {
        entries_[storage_].child = id;
        touch_(storage_);
    } else {
        (goes_left ? entries_[up].left : entries_[up].right) = id;
        touch_(up);
    }
    repair(id);
}

void SiblingTree::repair(EntryId id) {
    while (is_red(entries_[id].up)) {
        EntryId up = entries_[id].up;
        const EntryId above = entries_[up].up; // there, since the top is black
        const bool on_left = entries_[above].left == up;
        const EntryId uncle = on_left ? entries_[above].right : entries_[above].left;
        if (is_red(uncle)) {
            set_colour(up, false);
            set_colour(uncle, false);
            set_colour(above, true);
            id = above;
            continue;
        }
        const bool inner = (on_left ? entries_[up].right : entries_[up].left) == id;
        if (inner) {
            rotate(up, on_left);
            up = id;
        }
        set_colour(up, false);
        set_colour(above, true);
        rotate(above, !on_left);
        break;
    }
    set_colour(entries_[storage_].child, false);
}

void SiblingTree::build(std::span<const EntryId> sorted) {
    const unsigned rows = static_cast<unsigned>(std::bit_width(sorted.size()));
    const EntryId top = build_part(sorted, kNoEntry, rows > 0 ? rows - 1 : 0);
    if (top != kNoEntry && entries_[top].red) {
        entries_[top].red = false;
        touch_(top);
    }
    if (entries_[storage_].child != top) {
        entries_[storage_].child = top;
        touch_(storage_);
    }
}

// Recursion as deep as the tree has rows, at most 32.
EntryId SiblingTree::build_part(std::span<const EntryId> sorted, EntryId up, unsigned rows_below) {
    if (sorted.empty()) {
        return kNoEntry;
    }
    const std::size_t middle = sorted.size() / 2;
    const EntryId id = sorted[middle];
    const unsigned rows = rows_below > 0 ? rows_below - 1 : 0;
    const EntryId left = build_part(sorted.first(middle), id, rows);
    const EntryId right = build_part(sorted.subspan(middle + 1), id, rows);
    Entry& entry = entries_[id];
    const bool red = rows_below == 0;
    entry.up = up;
    if (entry.left != left || entry.right != right || entry.red != red) {
        entry.left = left;
        entry.right = right;
        entry.red = red;
        touch_(id);
    }
    return id;
}

} // namespace compound_file
