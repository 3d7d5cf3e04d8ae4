// Sizes of streams: every boundary of the format, reached in every way, in both versions; copies
// between streams.
#include "tests/compound_file/builders.h"

namespace compound_file::test {
namespace {

class Sizes : public testing::TestWithParam<Version> {
  protected:
    std::uint64_t sector() const { return GetParam() == Version::v3 ? 512 : 4096; }
    std::uint64_t links() const { return sector() / 4; }

    std::vector<std::uint64_t> small_sizes() const {
        return {0, 1, 63, 64, 65, 512, 513, 4095, 4096, 4097, 8193, 20000};
    }

    // The largest stream in a file of that many full FAT sectors, beside one sector of directory.
    std::uint64_t filling(std::uint64_t fat_sectors) const {
        const std::uint64_t difat =
            fat_sectors <= 109 ? 0 : (fat_sectors - 109 + links() - 2) / (links() - 1);
        return (fat_sectors * links() - fat_sectors - difat - 1) * sector();
    }

    std::shared_ptr<Medium> medium_ = std::make_shared<Medium>();
};

INSTANTIATE_TEST_SUITE_P(BothVersions, Sizes, testing::Values(Version::v3, Version::v4),
                         [](const auto& tested) {
                             return tested.param == Version::v3 ? "v3" : "v4";
                         });

TEST_P(Sizes, EverySizeIsReachedFromEveryOther) {
    for (const std::uint64_t from : small_sizes()) {
        for (const std::uint64_t to : small_sizes()) {
            SCOPED_TRACE(std::to_string(from) + " to " + std::to_string(to));
            const auto medium = std::make_shared<Medium>();
            medium->put(0, bytes::Bytes(70001, 0xAB)); // a block with old bytes, larger than needed
            auto file = create_on(medium, GetParam());
            const bytes::Bytes before = pattern(from, 1);
            const EntryId entry = add_stream(*file, kRoot, u"changed", before);
            add_stream(*file, kRoot, u"small", pattern(100, 2));
            add_stream(*file, kRoot, u"large", pattern(5000, 3));
            file->flush();
            file->stream(entry)->resize(to);
            bytes::Bytes after = before;
            after.resize(to);
            EXPECT_EQ(content(*file, entry), after);
            file->stream(entry)->resize(from); // and back: zeros, never old bytes
            after.resize(from);
            std::fill(after.begin() + static_cast<std::ptrdiff_t>(std::min(from, to)), after.end(),
                      std::uint8_t{0});
            EXPECT_EQ(content(*file, entry), after);
            file->flush();
            EXPECT_EQ(faults_of(medium), "");
            const auto again = open_on(medium);
            EXPECT_EQ(content_at(*again, u"changed"), after);
            EXPECT_EQ(content_at(*again, u"small"), pattern(100, 2));
            EXPECT_EQ(content_at(*again, u"large"), pattern(5000, 3));
        }
    }
}

TEST_P(Sizes, AppendingInPiecesGivesTheSameAsOneWrite) {
    auto file = create_on(medium_, GetParam());
    const auto stream = file->stream(file->create_stream(kRoot, u"s"));
    const auto other = file->stream(file->create_stream(kRoot, u"other"));
    const bytes::Bytes whole = pattern(30011, 5);
    std::size_t done = 0;
    for (std::size_t piece = 1; done < whole.size(); piece = piece * 2 % 997 + 1) {
        piece = std::min(piece, whole.size() - done);
        stream->write_at(done, bytes::View(whole).subspan(done, piece));
        other->write_at(done, bytes::View(whole).subspan(done, piece)); // so that both have holes
        done += piece;
    }
    file->flush();
    EXPECT_EQ(faults_of(medium_), "");
    EXPECT_EQ(content_at(*open_on(medium_), u"s"), whole);
    EXPECT_EQ(content_at(*open_on(medium_), u"other"), whole);
}

TEST_P(Sizes, TheFatGrowsAtItsBoundaries) {
    for (const std::uint64_t fat_sectors :
         {std::uint64_t{1}, std::uint64_t{109}, 109 + links() - 1}) {
        for (const std::uint64_t extra : {std::uint64_t{0}, std::uint64_t{1}}) {
            SCOPED_TRACE(std::to_string(fat_sectors) + " FAT sectors and " + std::to_string(extra));
            const auto medium = std::make_shared<Medium>();
            const std::uint64_t size = filling(fat_sectors) + extra;
            auto file = create_on(medium, GetParam());
            const EntryId entry = file->create_stream(kRoot, u"s");
            const auto stream = file->stream(entry);
            stream->resize(size - sector()); // created ...
            const bytes::Bytes end = pattern(sector(), 9);
            stream->write_at(size - end.size(), end); // ... and appended to
            stream->resize(size - 60000);             // cut
            file->flush();
            file = open_on(medium, Access::read_write);
            file->stream(entry)->resize(size); // and grown again
            file->stream(entry)->write_at(size - 10, bytes::View(end).first(10));
            file->flush();
            EXPECT_EQ(faults_of(medium), "");
            bytes::Bytes tail(sector());
            open_on(medium)->stream(entry)->read_at(size - tail.size(), tail);
            bytes::Bytes expected(sector() - 10);
            expected.insert(expected.end(), end.begin(), end.begin() + 10);
            EXPECT_EQ(tail, expected);
        }
    }
}

TEST_P(Sizes, SharedHandlesSeeEachOthersChanges) {
    auto file = create_on(medium_, GetParam());
    const EntryId entry = add_stream(*file, kRoot, u"s", pattern(100, 1));
    const auto one = file->stream(entry);
    const auto other = file->stream(entry);
    bytes::Bytes seen(100);
    other->read_at(0, seen);
    one->write_at(50, pattern(10000, 2));
    EXPECT_EQ(other->size(), 10050U);
    other->read_at(0, seen);
    EXPECT_TRUE(std::equal(seen.begin() + 50, seen.end(), pattern(50, 2).begin()));
    one->resize(60);
    EXPECT_EQ(other->read_at(0, seen), 60U);
    EXPECT_EQ(other->read_at(60, seen), 0U);
}

TEST_P(Sizes, CopiesMoveBytesBetweenAndInsideStreams) {
    auto source_file = create_on(std::make_shared<Medium>(), Version::v3);
    auto file = create_on(medium_, GetParam());
    bytes::Bytes from = pattern(50000, 1);
    bytes::Bytes to = pattern(20000, 2);
    const auto source = source_file->stream(add_stream(*source_file, kRoot, u"source", from));
    const auto target = file->stream(add_stream(*file, kRoot, u"target", to));
    EXPECT_EQ(target->copy_range(*source, 777, 25001, 30000), 30000U); // behind the end
    to.resize(25001);
    to.insert(to.end(), from.begin() + 777, from.begin() + 30777);
    EXPECT_EQ(content(*file, file->find(kRoot, u"target")), to);
    EXPECT_EQ(target->copy_range(*source, 49000, 0, 30000), 1000U); // up to the source's end
    std::copy(from.begin() + 49000, from.end(), to.begin());
    EXPECT_EQ(target->copy_range(*source, 50000, 0, 1), 0U);
    // Overlapping, in both directions and past the end.
    EXPECT_EQ(target->copy_range(*target, 100, 1300, 40000), 40000U);
    std::copy_backward(to.begin() + 100, to.begin() + 40100, to.begin() + 41300);
    EXPECT_EQ(target->copy_range(*target, 5000, 4999, 20000), 20000U);
    std::copy(to.begin() + 5000, to.begin() + 25000, to.begin() + 4999);
    const std::size_t half = to.size() / 2;
    EXPECT_EQ(target->copy_range(*target, half, half + 4000, to.size()), to.size() - half);
    const bytes::Bytes moved(to.begin() + static_cast<std::ptrdiff_t>(half), to.end());
    to.resize(to.size() + 4000);
    std::copy(moved.begin(), moved.end(), to.begin() + static_cast<std::ptrdiff_t>(half) + 4000);
    EXPECT_EQ(content(*file, file->find(kRoot, u"target")), to);
    // A small stream that becomes a large one by copying itself behind itself.
    const EntryId small = add_stream(*file, kRoot, u"small", pattern(3000, 3));
    file->stream(small)->copy_range(*file->stream(small), 0, 3000, 3000);
    bytes::Bytes doubled = pattern(3000, 3);
    doubled.insert(doubled.end(), doubled.begin(), doubled.begin() + 3000);
    file->flush();
    EXPECT_EQ(faults_of(medium_), "");
    EXPECT_EQ(content_at(*open_on(medium_), u"target"), to);
    EXPECT_EQ(content_at(*open_on(medium_), u"small"), doubled);
}

TEST(SizeLimits, TheFormatsEndIsRefusedAndNothingHasChanged) {
    const auto medium = std::make_shared<Medium>();
    auto file = create_on(medium, Version::v3);
    const EntryId entry = add_stream(*file, kRoot, u"s", pattern(5000, 1));
    for (const std::uint64_t size : {std::uint64_t{0x7FFFFFFF}, std::uint64_t{0x80000001},
                                     std::uint64_t{0xFFFFFFFFFFFFFFFF}}) {
        EXPECT_EQ(error_of([&] { file->stream(entry)->resize(size); }), Errc::too_large);
    }
    EXPECT_EQ(error_of([&] { file->stream(entry)->write_at(0xFFFFFFFFFFFFFFFF, pattern(2, 1)); }),
              Errc::too_large);
    file->flush();
    EXPECT_EQ(faults_of(medium), "");
    EXPECT_EQ(content_at(*open_on(medium), u"s"), pattern(5000, 1));
}

} // namespace
} // namespace compound_file::test
