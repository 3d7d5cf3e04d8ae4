// Damaged and hostile files: what can be read is read, the rest is an error, and nothing takes more
// time or memory than the file is long.
#include "tests/compound_file/damaged_file.h"

#include <random>

namespace compound_file::test {
namespace {

using Damage = DamagedFile;

TEST_F(Damage, HeadersMustFitTogether) {
    struct Case {
        std::uint64_t at;
        std::uint8_t value;
        Errc expected;
    };
    const Medium sound = *medium_;
    for (const Case& broken : {Case{0, 0xD1, Errc::not_compound_file}, Case{26, 5, Errc::corrupt},
                               Case{26, 4, Errc::corrupt}, Case{28, 0xFF, Errc::corrupt},
                               Case{30, 12, Errc::corrupt}, Case{32, 7, Errc::corrupt},
                               Case{51, 0xFF, Errc::corrupt}, Case{79, 0x10, Errc::corrupt}}) {
        *medium_ = sound;
        medium_->put(broken.at, bytes::Bytes{broken.value});
        EXPECT_EQ(error_of([&] { open_on(medium_); }), broken.expected) << "byte " << broken.at;
    }
    for (const std::uint64_t size : {std::uint64_t{0}, std::uint64_t{7}}) {
        medium_->set_size(size);
        EXPECT_EQ(error_of([&] { open_on(medium_); }), Errc::not_compound_file);
    }
    *medium_ = sound;
    medium_->set_size(511);
    EXPECT_EQ(error_of([&] { open_on(medium_); }), Errc::corrupt);
    *medium_ = sound;
    set(56, 8192); // another cutoff: read as if it were 4096, never written
    EXPECT_EQ(content_at(*open_on(medium_), u"a"), pattern(kLarge, 1));
    EXPECT_EQ(error_of([&] { open_on(medium_, Access::read_write); }), Errc::corrupt);
    EXPECT_NE(faults_of(medium_, false), "");
}

TEST_F(Damage, CountsOfTheHeaderAreNotBelieved) {
    set(44, 0xFFFFFFFF);
    set(64, 0xFFFFFFFF);
    set(72, 0x7FFFFFFF);
    EXPECT_EQ(content_at(*open_on(medium_), u"b"), pattern(kLarge, 2));
    EXPECT_EQ(content_at(*open_on(medium_), u"d"), pattern(kSmall, 4));
}

TEST_F(Damage, ListsOfTheFatThatRepeatAreCorrupt) {
    set(44, 2);
    set(80, 0); // FAT sector 0 again
    EXPECT_EQ(error_of([&] { open_on(medium_); }), Errc::corrupt);
    const auto large = std::make_shared<Medium>();
    auto file = create_on(large, Version::v3);
    add_stream(*file, kRoot, u"s", pattern(7500000, 1));
    file->flush();
    std::array<std::uint8_t, 4> first_difat{};
    large->get(68, first_difat);
    const std::uint64_t difat = 512 * (std::uint64_t{bytes::load_u32(first_difat, 0)} + 1);
    large->put(difat + 508, first_difat);           // a DIFAT sector behind itself
    large->put(44, bytes::Bytes{0xFF, 0xFF, 0, 0}); // and a count that wants more of it
    bytes::Bytes slot(4);
    large->get(difat, slot);
    for (std::uint32_t at = 0; at < 508; at += 4) { // all slots taken
        std::array<std::uint8_t, 4> found{};
        large->get(difat + at, found);
        if (bytes::load_u32(found, 0) == kFree) {
            bytes::Bytes made_up;
            bytes::append_u32(made_up, 1000 + at);
            large->put(difat + at, made_up);
        }
    }
    EXPECT_EQ(error_of([&] { open_on(large); }), Errc::corrupt);
}

TEST_F(Damage, AShortChainIsReadUpToItsEndAndNeverPaddedWithZeros) {
    set(link_at(link(first(a_))), kEnd); // two sectors instead of ten
    auto file = open_on(medium_, Access::read_write);
    const auto stream = file->stream(a_);
    bytes::Bytes there(2000);
    EXPECT_EQ(stream->read_at(0, there), 1024U);
    EXPECT_EQ(error_of([&] { stream->read_at(1024, there); }), Errc::read_fault);
    EXPECT_EQ(stream->read_at(kLarge, there), 0U);
    EXPECT_EQ(error_of([&] { stream->write_at(1000, pattern(100, 9)); }), Errc::write_fault);
    EXPECT_EQ(error_of([&] { stream->resize(6000); }), Errc::corrupt);
    const auto b = file->stream(b_);
    EXPECT_EQ(error_of([&] { b->copy_range(*stream, 0, 0, kLarge); }), Errc::read_fault);
    stream->write_at(1000, pattern(24, 9));
    stream->resize(700);
    file->flush();
    EXPECT_EQ(faults_of(medium_, false), "");
    EXPECT_EQ(content_at(*open_on(medium_), u"a").size(), 700U);
}

TEST_F(Damage, LoopsEndAtTheirFirstRepeat) {
    set(link_at(link(link(first(a_)))), first(a_));
    set(size_at(a_), 0x7FFFFFFF);
    set(mini_link_at(first(c_)), first(c_));
    const auto file = open_on(medium_);
    bytes::Bytes there(100000);
    EXPECT_EQ(file->stream(a_)->read_at(0, there), 3 * 512U);
    EXPECT_EQ(file->stream(c_)->read_at(0, there), 64U);
    EXPECT_NE(faults_of(medium_, false), "");
    set(link_at(get(48)), get(48)); // the directory behind itself
    EXPECT_EQ(open_on(medium_)->info(a_).name, u"a");
}

TEST_F(Damage, ALoopEndsAtItsFirstRepeatHoweverLittleMoreIsClaimed) {
    std::uint32_t last = first(a_);
    while (link(last) != kEnd) {
        last = link(last);
    }
    set(link_at(last), first(a_));
    bytes::Bytes there(100000);
    for (std::uint32_t sectors = 10; sectors < 40; ++sectors) {
        set(size_at(a_), 512 * sectors);
        EXPECT_EQ(open_on(medium_)->stream(a_)->read_at(0, there), 10 * 512U);
    }
}

TEST_F(Damage, AFileCutShortIsReadAsFarAsItGoes) {
    std::uint32_t last = first(b_);
    while (link(last) != kEnd) {
        last = link(last);
    }
    medium_->set_size(512 * (std::uint64_t{last} + 1) + 10);
    const auto file = open_on(medium_);
    bytes::Bytes there(kLarge);
    EXPECT_EQ(file->stream(b_)->read_at(0, there), 9 * 512U + 10);
    EXPECT_EQ(error_of([&] { file->stream(b_)->read_at(9 * 512 + 10, there); }), Errc::read_fault);
    EXPECT_EQ(content(*file, a_), pattern(kLarge, 1));
}

TEST_F(Damage, ABrokenTreeHidesNothingAndIsBuiltAnewWhenChanged) {
    const EntryId top = get(entry_at(kRoot) + 76);
    const std::uint64_t left = entry_at(top) + 68;
    const std::uint64_t right = entry_at(top) + 72;
    const std::uint32_t old_left = get(left);
    set(left, get(right)); // in the wrong order
    set(right, old_left);
    set(entry_at(old_left) + 72, top);        // a loop
    set(entry_at(old_left) + 68, 0x12345678); // out of range
    set(entry_at(a_) + 76, b_);               // a child below a stream
    EXPECT_NE(faults_of(medium_, false), "");
    auto file = open_on(medium_, Access::read_write);
    const std::size_t known = file->children(kRoot).size();
    EXPECT_NE(file->find(kRoot, u"storage"), kNoEntry);
    file->create_stream(kRoot, u"x");
    file->flush();
    set(entry_at(a_) + 76, kFree);
    EXPECT_EQ(faults_of(medium_, false), "");
    EXPECT_EQ(open_on(medium_)->children(kRoot).size(), known + 1);
}

TEST_F(Damage, EntriesThatMakeNoSenseCountAsFree) {
    medium_->put(entry_at(a_) + 66, bytes::Bytes{3});  // an unknown type
    medium_->put(entry_at(c_) + 64, bytes::Bytes{13}); // a name of half a unit
    medium_->put(entry_at(d_), bytes::Bytes{'B'});     // the name of b, in the other case
    medium_->put(entry_at(kRoot) + 66, bytes::Bytes{1});
    auto file = open_on(medium_, Access::read_write);
    EXPECT_EQ(file->find(kRoot, u"a"), kNoEntry);
    EXPECT_EQ(file->find(kRoot, u"c"), kNoEntry);
    EXPECT_EQ(content_at(*file, u"B"), pattern(kLarge, 2)); // the first in tree order
    EXPECT_EQ(file->create_stream(kRoot, u"new"), a_);
    file->flush();
    EXPECT_EQ(faults_of(medium_, false), "");
}

TEST_F(Damage, OldFilesWithGarbageInTheUpperHalfOfASizeAreRead) {
    set(size_at(a_) + 4, 0xDEADBEEF);
    auto file = open_on(medium_, Access::read_write);
    EXPECT_EQ(content(*file, a_), pattern(kLarge, 1));
    file->stream(a_)->resize(100);
    file->flush();
    EXPECT_EQ(get(size_at(a_) + 4), 0U);
}

// Everything a caller may do, on a file that may be broken in any way.
void exercise(const std::shared_ptr<Medium>& medium, Access access) {
    auto file = open_on(medium, access);
    std::vector<EntryId> storages = {kRoot};
    std::vector<EntryId> streams;
    while (!storages.empty()) {
        const EntryId storage = storages.back();
        storages.pop_back();
        for (const EntryId id : file->children(storage)) {
            (file->info(id).type == EntryType::storage ? storages : streams).push_back(id);
        }
    }
    const auto attempt = [](const auto& action) {
        try {
            action();
        } catch (const platform::Error&) {
        }
    };
    bytes::Bytes buffer(3000);
    for (const EntryId id : streams) {
        attempt([&] {
            for (std::uint64_t at = 0; file->stream(id)->read_at(at, buffer) > 0; at += 3000) {
            }
        });
        attempt([&] { file->stream(id)->write_at(100, pattern(6000, 1)); });
        attempt([&] { file->stream(id)->resize(id % 2 == 0 ? 70 : 9000); });
        attempt([&] { file->stream(id)->copy_range(*file->stream(streams[0]), 10, 20, 5000); });
    }
    attempt([&] { file->create_stream(kRoot, u"new"); });
    attempt([&] { file->flush(); });
    if (!streams.empty()) {
        attempt([&] { file->erase(streams[streams.size() / 2]); });
    }
    attempt([&] { file->erase(file->find(kRoot, u"storage")); });
    attempt([&] { file->flush(); });
    file->check(true);
}

TEST_F(Damage, RandomDamageEndsInErrorsOnly) {
    const Medium sound = *medium_;
    const std::uint64_t places[] = {0, kFat, 512 * (std::uint64_t{get(48)} + 1), mini_link_at(0),
                                    entry_at(4)};
    constexpr std::uint32_t kLikely[] = {0, 1, 2, 5, 30, 127, 128, 4096, kEnd, kFree, 0x80000000};
    for (std::uint32_t seed = 0; seed < 250; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 random(seed);
        *medium_ = sound;
        for (std::uint32_t edit = 0; edit <= seed % 6; ++edit) {
            const std::uint64_t at = places[random() % std::size(places)] + 4 * (random() % 128);
            if (random() % 2 == 0) {
                set(at, kLikely[random() % std::size(kLikely)]);
            } else {
                medium_->put(at + random() % 4, bytes::Bytes{static_cast<std::uint8_t>(random())});
            }
        }
        medium_->reads = medium_->writes = 0;
        for (const Access access : {Access::read, Access::read_write}) {
            try {
                exercise(medium_, access);
            } catch (const platform::Error&) {
            }
        }
        ASSERT_LT(medium_->reads + medium_->writes, 2000U);
        ASSERT_LT(medium_->size, 1000000U);
    }
}

} // namespace
} // namespace compound_file::test
