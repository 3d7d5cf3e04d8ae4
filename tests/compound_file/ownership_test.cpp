// Files in which sectors belong to two owners, or to one though they are marked free: opening for
// writing finds out, and nobody's bytes are lost through somebody else.
#include "tests/compound_file/damaged_file.h"

namespace compound_file::test {
namespace {

using Ownership = DamagedFile;

TEST_F(Ownership, StreamsThatCrossAreReadableAndNeitherChangesNorFreesSectors) {
    set(link_at(first(a_)), first(b_)); // a runs into b after its first sector
    auto file = open_on(medium_, Access::read_write);
    EXPECT_EQ(content(*file, b_), pattern(kLarge, 2));
    EXPECT_NO_THROW(content(*file, a_));
    for (const EntryId crossed : {a_, b_}) {
        EXPECT_EQ(error_of([&] { file->stream(crossed)->write_at(0, pattern(10, 9)); }),
                  Errc::access);
        EXPECT_EQ(error_of([&] { file->stream(crossed)->resize(0); }), Errc::access);
    }
    file->stream(c_)->write_at(0, pattern(3000, 9)); // the rest stays writable
    file->erase(a_);
    file->flush();
    add_stream(*file, kRoot, u"new", pattern(20000, 10));
    file->flush();
    EXPECT_EQ(faults_of(medium_, false), "");
    EXPECT_EQ(content_at(*open_on(medium_), u"b"), pattern(kLarge, 2));
    EXPECT_EQ(content_at(*open_on(medium_), u"new"), pattern(20000, 10));
}

TEST_F(Ownership, MiniSectorsAreGuardedToo) {
    set(first_at(c_), first(d_));
    auto file = open_on(medium_, Access::read_write);
    EXPECT_EQ(error_of([&] { file->stream(c_)->resize(5000); }), Errc::access);
    EXPECT_EQ(error_of([&] { file->stream(d_)->write_at(0, pattern(10, 9)); }), Errc::access);
    file->erase(c_);
    file->flush();
    add_stream(*file, kRoot, u"new", pattern(2000, 10));
    EXPECT_EQ(content(*file, d_), pattern(kSmall, 4));
}

TEST_F(Ownership, MetadataThatCrossesAnythingForbidsWriting) {
    const Medium sound = *medium_;
    const std::uint32_t directory = get(48);
    const std::uint32_t mini_fat = get(60);
    const std::uint32_t mini_stream = first(kRoot);
    for (const std::uint32_t metadata : {0U, directory, mini_fat, mini_stream}) {
        SCOPED_TRACE("stream in sector " + std::to_string(metadata));
        *medium_ = sound;
        set(first_at(a_), metadata);
        EXPECT_EQ(content_at(*open_on(medium_), u"b"), pattern(kLarge, 2));
        EXPECT_EQ(error_of([&] { open_on(medium_, Access::read_write); }), Errc::corrupt);
        EXPECT_NE(faults_of(medium_, false), "");
    }
}

TEST_F(Ownership, AMiniFatInTheDirectoryForbidsWriting) {
    set(60, get(48));
    EXPECT_EQ(content_at(*open_on(medium_), u"b"), pattern(kLarge, 2));
    EXPECT_EQ(error_of([&] { open_on(medium_, Access::read_write); }), Errc::corrupt);
}

TEST_F(Ownership, SectorsInUseThatAreMarkedFreeAreNotGivenOut) {
    std::uint32_t last = first(a_);
    while (link(last) != kEnd) {
        last = link(last);
    }
    set(link_at(last), kFree);
    set(link_at(get(60)), kFree); // and the mini FAT's only sector
    set(mini_link_at(first(d_) + 3), kFree);
    EXPECT_NE(faults_of(medium_, false), "");
    auto file = open_on(medium_, Access::read_write);
    add_stream(*file, kRoot, u"new", pattern(20000, 9));
    add_stream(*file, kRoot, u"tiny", pattern(300, 9));
    file->flush();
    EXPECT_EQ(faults_of(medium_), "");
    file = open_on(medium_);
    EXPECT_EQ(content_at(*file, u"a"), pattern(kLarge, 1));
    EXPECT_EQ(content_at(*file, u"d"), pattern(kSmall, 4));
    EXPECT_EQ(content_at(*file, u"c"), pattern(kSmall, 3));
}

TEST_F(Ownership, AChainThatRunsBehindTheFileStaysThereWhenTheFileGrows) {
    set(first_at(b_), 70); // no sector yet
    set(first_at(d_), 20); // nor a mini sector
    set(link_at(link(first(a_))), 50);
    set(link_at(get(48)), 60); // of the directory
    auto file = open_on(medium_, Access::read_write);
    add_stream(*file, kRoot, u"new", pattern(60000, 9));
    add_stream(*file, kRoot, u"tiny", pattern(3000, 10));
    EXPECT_EQ(error_of([&] { content(*file, b_); }), Errc::read_fault);
    file->stream(a_)->resize(700);
    file->flush();
    file->erase(a_);
    file->flush();
    add_stream(*file, kRoot, u"more", pattern(60000, 11)); // not into what is not a's
    file->flush();
    file = open_on(medium_, Access::read_write);
    EXPECT_EQ(content_at(*file, u"new"), pattern(60000, 9));
    file->stream(file->find(kRoot, u"tiny"))->write_at(0, pattern(10, 10)); // not crossed by d
}

TEST_F(Ownership, AFileGrowsAtItsEndThoughOnlyLinksFarBehindItAreFree) {
    constexpr std::uint32_t kLinks = 128; // of the only FAT sector, and of the only mini FAT sector
    const std::uint64_t size = medium_->size;
    for (auto sector = static_cast<std::uint32_t>(size / 512 - 1); sector + 1 < kLinks; ++sector) {
        set(link_at(sector), kEnd);
    }
    for (std::uint32_t mini = get(size_at(kRoot)) / 64; mini + 1 < kLinks; ++mini) {
        set(mini_link_at(mini), kEnd);
    }
    auto file = open_on(medium_, Access::read_write);
    add_stream(*file, kRoot, u"new", pattern(kLarge, 9));
    add_stream(*file, kRoot, u"tiny", pattern(kSmall, 10));
    file->flush();
    constexpr std::uint64_t kAdded = 10 + 1 + 1; // large stream, mini stream, directory
    EXPECT_EQ(medium_->size, size + 512 * kAdded);
    EXPECT_EQ(faults_of(medium_), "");
    file = open_on(medium_);
    EXPECT_EQ(content_at(*file, u"new"), pattern(kLarge, 9));
    EXPECT_EQ(content_at(*file, u"tiny"), pattern(kSmall, 10));
}

TEST_F(Ownership, AChainLongerThanItsSizeIsNotFollowed) {
    std::uint32_t last = first(a_);
    while (link(last) != kEnd) {
        last = link(last);
    }
    set(link_at(last), first(b_));
    EXPECT_EQ(faults_of(medium_, false), "");
    EXPECT_NE(faults_of(medium_, true), "");
    auto file = open_on(medium_, Access::read_write);
    file->stream(a_)->resize(3 * kLarge);
    file->stream(a_)->write_at(kLarge, pattern(2 * kLarge, 9));
    file->stream(a_)->resize(0);
    add_stream(*file, kRoot, u"new", pattern(30000, 9));
    file->flush();
    EXPECT_EQ(faults_of(medium_), "");
    EXPECT_EQ(content_at(*open_on(medium_), u"b"), pattern(kLarge, 2));
}

} // namespace
} // namespace compound_file::test
