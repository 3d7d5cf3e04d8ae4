#include "reader/persist_directory.h"

#include "plugin/checked_allocation.h"
#include "plugin/status.h"

#include <algorithm>

namespace ppt {

namespace {

using Block = std::vector<std::uint32_t>;

struct Entry {
    std::uint32_t first = 0;     // first persist id
    std::uint32_t announced = 0; // number of offsets by the head word
    std::uint32_t present = 0;   // number of them that the block holds
    std::size_t offsets = 0;     // index of the first offset in the block
};

// Calls `visit` for each entry of a block until it returns false.
template <class Visit>
void for_each_entry(const Block& block, Visit visit) {
    std::size_t at = 0;
    while (at < block.size()) {
        const std::uint32_t head = block[at];
        Entry entry;
        entry.first = head & 0xFFFFF;
        entry.announced = head >> 20;
        entry.offsets = at + 1;
        entry.present = static_cast<std::uint32_t>(
            std::min<std::size_t>(entry.announced, block.size() - at - 1));
        if (!visit(entry)) {
            return;
        }
        at += 1 + std::size_t{entry.announced};
    }
}

} // namespace

std::uint32_t PersistDirectory::n_lookupPersistId(std::uint32_t id) const {
    std::uint32_t offset = kNoOffset;
    bool listed = false;
    for (const Block& block : blocks_) {
        for_each_entry(block, [&](const Entry& entry) {
            listed = entry.first <= id && id - entry.first < entry.present;
            if (listed) {
                offset = block[entry.offsets + (id - entry.first)];
            }
            return !listed;
        });
        if (listed) {
            break;
        }
    }
    return offset;
}

void PersistDirectory::v_buildObjectArray() {
    std::size_t highest = 0;
    for (const Block& block : blocks_) {
        for_each_entry(block, [&](const Entry& entry) {
            if (entry.first != 0 && entry.present != 0) {
                highest = std::max<std::size_t>(highest, entry.first + entry.present - 1);
            }
            return entry.first != 0;
        });
    }
    objects_.clear();
    resize_checked(objects_, highest);
    for (const Block& block : blocks_) {
        for_each_entry(block, [&](const Entry& entry) {
            if (entry.first == 0) {
                return false;
            }
            for (std::uint32_t i = 0; i < entry.present; ++i) {
                Object& object = objects_[entry.first + i - 1];
                object.listed = true;
                if (object.offset == 0) {
                    object.offset = block[entry.offsets + i];
                }
            }
            return true;
        });
    }
    ids_by_offset_.clear();
}

bool PersistDirectory::b_goesOnAtIdZero() const {
    bool goes_on = false;
    for (const Block& block : blocks_) {
        bool ended = false;
        for_each_entry(block, [&](const Entry& entry) {
            ended = ended || entry.first == 0;
            goes_on = goes_on || (ended && entry.first + std::uint64_t{entry.present} > 1);
            return !goes_on;
        });
    }
    return goes_on;
}

std::uint32_t PersistDirectory::n_objectOffset(std::uint32_t id) const {
    return id < 1 || id > objects_.size() ? kNoOffset : objects_[id - 1].offset;
}

bool PersistDirectory::is_listed(std::uint32_t id) const {
    return id >= 1 && id <= objects_.size() && objects_[id - 1].listed;
}

void PersistDirectory::v_setObjectOffset(std::uint32_t id, std::uint32_t offset) {
    if (id >= 1 && id <= objects_.size()) {
        objects_[id - 1].offset = offset;
        ids_by_offset_.clear();
    }
}

void PersistDirectory::v_noteObjectAtStart(std::uint32_t id) {
    if (object_at_start_ == 0 && is_listed(id) && n_objectOffset(id) == 0) {
        object_at_start_ = id;
        ids_by_offset_.clear();
    }
}

void PersistDirectory::sort_objects() const {
    if (!ids_by_offset_.empty()) {
        return;
    }
    std::uint32_t at_start = object_at_start_;
    for (std::uint32_t id = 1; id <= objects_.size(); ++id) {
        const Object& object = objects_[id - 1];
        if (!object.listed) {
            continue;
        }
        if (object.offset == 0 && at_start == 0) {
            at_start = id;
        }
        if (object.offset != 0 || id == at_start) {
            ids_by_offset_.push_back(id);
        }
    }
    std::stable_sort(ids_by_offset_.begin(), ids_by_offset_.end(),
                     [this](std::uint32_t a, std::uint32_t b) {
                         return objects_[a - 1].offset < objects_[b - 1].offset;
                     });
}

std::vector<std::uint32_t>::const_iterator
PersistDirectory::first_at_or_behind(std::uint64_t offset) const {
    sort_objects();
    return std::lower_bound(ids_by_offset_.cbegin(), ids_by_offset_.cend(), offset,
                            [this](std::uint32_t id, std::uint64_t wanted) {
                                return objects_[id - 1].offset < wanted;
                            });
}

std::int32_t PersistDirectory::n_nextObjectByOffset(std::uint32_t& offset) const {
    // A signed -1 stands before the object at offset 0.
    const std::uint64_t first = static_cast<std::uint64_t>(
        std::max<std::int64_t>(0, std::int64_t{static_cast<std::int32_t>(offset)} + 1));
    const auto next = first_at_or_behind(first);
    if (next == ids_by_offset_.end() || objects_[*next - 1].offset > 0x7FFFFFFF) {
        offset = kNoOffset;
        return -1;
    }
    offset = objects_[*next - 1].offset;
    return static_cast<std::int32_t>(*next);
}

std::vector<std::uint32_t> PersistDirectory::ids_at(std::uint32_t offset) const {
    auto next = first_at_or_behind(offset);
    std::vector<std::uint32_t> ids;
    for (; next != ids_by_offset_.end() && objects_[*next - 1].offset == offset; ++next) {
        ids.push_back(*next);
    }
    return ids;
}

std::vector<bool> PersistDirectory::ids_of_newest_block() const {
    if (blocks_.empty() || blocks_.front().empty()) {
        throw static_cast<int>(status::kDamaged);
    }
    std::vector<bool> listed(objects_.size(), false);
    for_each_entry(blocks_.front(), [&](const Entry& entry) {
        for (std::uint32_t i = 0; i < entry.present; ++i) {
            const std::uint32_t id = entry.first + i;
            if (id >= 1 && id <= listed.size()) {
                listed[id - 1] = true;
            }
        }
        return true;
    });
    return listed;
}

bool PersistDirectory::any_object_in(std::uint32_t begin, std::uint32_t end) const {
    const auto next = first_at_or_behind(begin);
    return next != ids_by_offset_.end() && objects_[*next - 1].offset < end;
}

} // namespace ppt
