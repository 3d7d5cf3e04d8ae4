// The persist directory: which object of the document stream each persist id names ([MS-PPT]
// PersistDirectoryAtom, PersistDirectoryEntry).
//
// Every user edit has a block of entries, the newest edit's block first. The object array made of
// them holds for each id the offset of its newest version. An offset of 0 is a real place (the
// document container stands there in most files) but also what ids without an object have; which
// ids some block really lists is kept apart.
//
// Offsets that an entry announces but its block does not hold are ignored, and so is every entry
// behind them: the block ends there.
#pragma once

#include <cstdint>
#include <vector>

namespace ppt {

inline constexpr std::uint32_t kNoOffset = 0xFFFFFFFF;

class PersistDirectory {
  public:
    virtual ~PersistDirectory() = default;

    // Appends the body of one persist directory record as 32-bit words, newest edit first.
    void append_block(std::vector<std::uint32_t> words) { blocks_.push_back(std::move(words)); }

    // The offset that the newest block listing the id gives it, or kNoOffset.
    std::uint32_t n_lookupPersistId(std::uint32_t id) const;

    // Fills the object array. Throws 8800. Cost: linear in the blocks' words and the highest id,
    // which is at most 2^20 + 4093.
    void v_buildObjectArray();

    // Whether a block has entries from persist id 0 on, where the object array ends: ids that are
    // looked up there would not be in a new directory.
    bool b_goesOnAtIdZero() const;

    // The number of entries of the object array: the highest persist id found.
    std::int32_t count() const { return static_cast<std::int32_t>(objects_.size()); }

    // The object's offset (0 for an id without an object); kNoOffset for an id outside 1 to count.
    std::uint32_t n_objectOffset(std::uint32_t id) const;
    bool is_listed(std::uint32_t id) const;

    // Moves an object. Ids outside 1 to count are ignored.
    void v_setObjectOffset(std::uint32_t id, std::uint32_t offset);

    // Of several ids that are listed at offset 0, `id` is the one whose object stands there. The
    // first call that names a listed id at offset 0 decides; without one it is the lowest such id.
    void v_noteObjectAtStart(std::uint32_t id);

    // The listed id with the smallest offset greater than `offset` (signed comparison; -1 finds the
    // first) and the lowest id among those that share it; sets `offset` to its place. -1 and
    // kNoOffset when there is none. Constant after the first call, which sorts.
    std::int32_t n_nextObjectByOffset(std::uint32_t& offset) const;

    // All ids whose object stands at `offset`, lowest first. Logarithmic, like the above.
    std::vector<std::uint32_t> ids_at(std::uint32_t offset) const;

    // For each id from 1 to count, at index id - 1, whether the newest block has an entry for it.
    // Throws 8140 when there is no block or it is empty.
    std::vector<bool> ids_of_newest_block() const;

    // Whether an object starts in [begin, end).
    bool any_object_in(std::uint32_t begin, std::uint32_t end) const;

  private:
    struct Object {
        std::uint32_t offset = 0;
        bool listed = false;
    };

    void sort_objects() const;
    // In the list of ids by offset.
    std::vector<std::uint32_t>::const_iterator first_at_or_behind(std::uint64_t offset) const;

    std::vector<std::vector<std::uint32_t>> blocks_;
    std::vector<Object> objects_; // index: persist id - 1
    std::uint32_t object_at_start_ = 0;
    mutable std::vector<std::uint32_t> ids_by_offset_; // listed ids; empty until asked for
};

} // namespace ppt
