// Where the objects of a rewritten stream stand, and how the new persist directory says it.
#include "plugin/status.h"
#include "reader/persist_directory.h"
#include "rewriter/persist_writer.h"
#include "rewriter/shift_table.h"

#include <gtest/gtest.h>

namespace {

using namespace ppt;
using Words = std::vector<std::uint32_t>;

TEST(ShiftTable, OffsetsMoveByTheChangesOfObjectsThatStartedBefore) {
    ShiftTable shifts;
    EXPECT_EQ(shifts.moved(130), 130u);
    shifts.add(100, 6);
    shifts.add(125, -30);
    EXPECT_EQ(shifts.moved(99), 99u);
    EXPECT_EQ(shifts.moved(100), 100u) << "an object's own change does not move it";
    EXPECT_EQ(shifts.moved(125), 131u);
    EXPECT_EQ(shifts.moved(130), 106u) << "by its old offset, not by where it is moved on the way";
    shifts.add(200, -300);
    EXPECT_THROW(shifts.moved(201), int) << "no offset is negative";
}

TEST(NewPersistDirectory, ListsWhatMovedAndWhatTheNewestOneListed) {
    PersistDirectory directory;
    directory.append_block({(1u << 20) + 6, 60, (1u << 20) + 3, 900});
    directory.append_block({(7u << 20) + 1, 10, 800, 30, 40, 50, 61, 70});
    directory.v_buildObjectArray();
    const bytes::Bytes body = n_buildPersistDirectory(directory, 500);
    Words words;
    for (std::size_t at = 0; at < body.size(); at += 4) {
        words.push_back(bytes::load_u32(body, at));
    }
    EXPECT_EQ(words, (Words{(2u << 20) + 2, 800, 900, (1u << 20) + 6, 60}));
    EXPECT_EQ(n_buildPersistDirectory(directory, 0).size(), 4 * 8u) << "nothing moved: every id";
    PersistDirectory empty;
    EXPECT_TRUE(n_buildPersistDirectory(empty, 500).empty());
}

TEST(PersistDirectory, KeepsAnObjectAtOffsetZeroApartFromIdsWithoutOne) {
    PersistDirectory directory;
    directory.append_block({(1u << 20) + 2, 0, (2u << 20) + 5, 80, 40, (9u << 20) + 20, 300});
    directory.v_buildObjectArray();
    EXPECT_EQ(directory.count(), 20) << "announced offsets that the block lacks do not count";
    EXPECT_TRUE(directory.is_listed(2));
    EXPECT_FALSE(directory.is_listed(1));
    EXPECT_EQ(directory.n_objectOffset(1), 0u);
    EXPECT_EQ(directory.n_objectOffset(21), kNoOffset);
    std::vector<std::int32_t> visited;
    std::uint32_t offset = kNoOffset;
    for (std::int32_t id = 0; (id = directory.n_nextObjectByOffset(offset)) > 0;) {
        visited.push_back(id);
    }
    EXPECT_EQ(visited, (std::vector<std::int32_t>{2, 6, 5, 20}));
    EXPECT_EQ(offset, kNoOffset);
}

} // namespace
