// What operations cost, in calls of the backing: the same on every machine.
#include "tests/compound_file/builders.h"

namespace compound_file::test {
namespace {

constexpr std::uint64_t kMiB = 1024 * 1024;

class Cost : public testing::Test {
  protected:
    EntryId sized_stream(CompoundFile& file, std::u16string_view name, std::uint64_t size) {
        const EntryId entry = file.create_stream(kRoot, name);
        file.stream(entry)->resize(size);
        return entry;
    }

    std::shared_ptr<Medium> medium_ = std::make_shared<Medium>();
    std::unique_ptr<CompoundFile> file_ = create_on(medium_, Version::v4);
};

TEST_F(Cost, AWalkInSmallReadsFillsTheWindowOncePerStretch) {
    const auto stream = file_->stream(sized_stream(*file_, u"s", 64 * kMiB));
    medium_->reads = 0;
    std::array<std::uint8_t, 8> header{};
    for (std::uint64_t at = 0; at < 64 * kMiB; at += 24) { // a header, a short body skipped
        stream->read_at(at, header);
    }
    EXPECT_LE(medium_->reads, 64 * kMiB / (64 * 1024) + 8);
}

TEST_F(Cost, SkippingFarAheadReadsOnceWhereItLands) {
    const auto stream = file_->stream(sized_stream(*file_, u"s", 64 * kMiB));
    medium_->reads = 0;
    std::array<std::uint8_t, 8> header{};
    for (std::uint64_t at = 0; at < 64 * kMiB; at += kMiB) {
        stream->read_at(at, header);
        stream->read_at(at + 8, header);
    }
    EXPECT_EQ(medium_->reads, 64U);
}

TEST_F(Cost, ACopyTakesOneCallPerCommonRun) {
    const auto target_medium = std::make_shared<Medium>();
    const auto target_file = create_on(target_medium, Version::v4);
    target_medium->skips_copied_bytes = true;
    const EntryId whole = sized_stream(*file_, u"whole", 1024 * kMiB);
    const auto target = target_file->stream(target_file->create_stream(kRoot, u"target"));
    EXPECT_EQ(target->copy_range(*file_->stream(whole), 0, 0, 1024 * kMiB), 1024 * kMiB);
    EXPECT_LE(target_medium->copies, 3U); // the new FAT sectors lie in between
    EXPECT_LE(target_medium->reserves, 4U);

    // Two streams that grow in turns: a thousand extents each, and a FAT sector every 4 MiB.
    const auto one = file_->stream(file_->create_stream(kRoot, u"one"));
    const auto other = file_->stream(file_->create_stream(kRoot, u"other"));
    for (std::uint64_t part = 1; part <= 1000; ++part) {
        one->resize(part * kMiB);
        other->resize(part * 8192);
    }
    target_medium->copies = 0;
    target->copy_range(*one, 0, 0, 1000 * kMiB);
    EXPECT_LE(target_medium->copies, 1000U + 1000 / 4 + 5);
}

TEST_F(Cost, SmallAppendsTakeOneWriteEach) {
    constexpr std::uint64_t kAppends = 100000;
    const auto stream = file_->stream(file_->create_stream(kRoot, u"s"));
    const bytes::Bytes eight = pattern(8, 1);
    stream->write_at(0, pattern(5000, 1));
    medium_->reads = medium_->writes = medium_->reserves = 0;
    for (std::uint64_t i = 0; i < kAppends; ++i) {
        stream->write_at(5000 + 8 * i, eight);
    }
    EXPECT_EQ(medium_->reads, 0U);
    EXPECT_LE(medium_->writes, kAppends + kAppends * 8 / 4096 + 2);
    EXPECT_LE(medium_->reserves, kAppends * 8 / 4096 + 2);
    medium_->writes = 0;
    file_->flush();
    EXPECT_LE(medium_->writes, 5U);
    medium_->writes = 0;
    file_->flush();
    EXPECT_EQ(medium_->writes, 0U);
    EXPECT_EQ(faults_of(medium_), "");
}

TEST_F(Cost, AFlushWritesOnlyWhatChanged) {
    for (char16_t i = 0; i < 5000; ++i) { // in the order of names, as copies of storages do
        const std::u16string name = {u'n', static_cast<char16_t>(u'\x4E00' + i)};
        file_->create_stream(kRoot, name);
    }
    file_->flush();
    EXPECT_EQ(faults_of(medium_), ""); // which looks at colours and heights
    sized_stream(*file_, u"large", 40 * kMiB);
    file_->flush();
    medium_->writes = 0;
    file_->stream(file_->find(kRoot, u"n\x4E05"))->write_at(0, pattern(100, 1));
    file_->stream(file_->find(kRoot, u"n\x4E05"))->resize(50);
    file_->flush();
    EXPECT_LE(medium_->writes, 8U);
}

TEST_F(Cost, AReopeningJoinsItsReads) {
    sized_stream(*file_, u"s", 150 * kMiB);
    for (char16_t i = 0; i < 100; ++i) {
        file_->create_stream(kRoot, std::u16string{u'n', static_cast<char16_t>(u'\x4E00' + i)});
    }
    file_->flush();
    medium_->reads = 0;
    open_on(medium_);
    EXPECT_LE(medium_->reads, 8U);
}

TEST_F(Cost, AFileAcrossTheLockSectorLeavesItOut) {
    const EntryId entry = sized_stream(*file_, u"s", 2056 * kMiB);
    const std::uint64_t end = 2056 * kMiB;
    file_->stream(entry)->write_at(end - 5, pattern(5, 1));
    file_->flush();
    EXPECT_EQ(faults_of(medium_), "");
    EXPECT_FALSE(medium_->pages.contains(0x7FFFF000 / Medium::kPageBytes));
    file_ = open_on(medium_, Access::read_write);
    bytes::Bytes tail(5);
    file_->stream(entry)->read_at(end - 5, tail);
    EXPECT_EQ(tail, pattern(5, 1));
    file_->erase(entry);
    file_->flush();
    EXPECT_EQ(faults_of(medium_), "");
}

} // namespace
} // namespace compound_file::test
