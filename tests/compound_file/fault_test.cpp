// Faults of the medium: writes that fail, disks that are full, processes that are killed. The same
// changes are made each time, to a file that holds streams which they leave alone.
#include "tests/compound_file/builders.h"

namespace compound_file::test {
namespace {

constexpr std::size_t kSmallSize = 1000;
constexpr std::size_t kLargeSize = 70000;

// The file before the changes; in v4, so that the whole tree lies in one directory sector.
Medium prepared(Version version) {
    const auto medium = std::make_shared<Medium>();
    auto file = create_on(medium, version);
    add_stream(*file, kRoot, u"kept small", pattern(kSmallSize, 1));
    add_stream(*file, kRoot, u"kept large", pattern(kLargeSize, 2));
    add_stream(*file, kRoot, u"grows", pattern(3000, 3));
    add_stream(*file, kRoot, u"shrinks", pattern(90000, 4));
    add_stream(*file, kRoot, u"sinks", pattern(9000, 5));
    add_stream(*file, kRoot, u"goes", pattern(20000, 6));
    file->flush();
    return *medium;
}

using Change = void (*)(CompoundFile&);

void resize(CompoundFile& file, std::u16string_view name, std::uint64_t size) {
    file.stream(file.find(kRoot, name))->resize(size);
}

constexpr Change kChanges[] = {
    [](CompoundFile& file) {
        file.stream(file.find(kRoot, u"grows"))->write_at(2000, pattern(2000, 7));
    },
    [](CompoundFile& file) { resize(file, u"grows", 200000); },
    [](CompoundFile& file) { file.create_stream(kRoot, u"new"); },
    [](CompoundFile& file) {
        file.stream(file.find(kRoot, u"new"))->write_at(0, pattern(4000, 8));
    },
    [](CompoundFile& file) { file.flush(); },
    [](CompoundFile& file) { resize(file, u"shrinks", 5000); },
    [](CompoundFile& file) { resize(file, u"shrinks", 8000); },
    [](CompoundFile& file) { resize(file, u"sinks", 700); },
    [](CompoundFile& file) { file.erase(file.find(kRoot, u"goes")); },
    [](CompoundFile& file) { file.flush(); },
    [](CompoundFile& file) { // into what was set free
        file.stream(file.find(kRoot, u"grows"))->write_at(250000, pattern(5000, 9));
    },
    [](CompoundFile& file) { resize(file, u"new", 0); },
    [](CompoundFile& file) { file.flush(); },
};

void expect_kept(const std::shared_ptr<Medium>& medium) {
    const auto file = open_on(medium);
    EXPECT_EQ(content_at(*file, u"kept small"), pattern(kSmallSize, 1));
    EXPECT_EQ(content_at(*file, u"kept large"), pattern(kLargeSize, 2));
}

void expect_all_readable(const std::shared_ptr<Medium>& medium) {
    const auto file = open_on(medium);
    for (const EntryId entry : file->children(kRoot)) {
        EXPECT_NO_THROW(content(*file, entry));
    }
}

class Faults : public testing::TestWithParam<Version> {};

INSTANTIATE_TEST_SUITE_P(BothVersions, Faults, testing::Values(Version::v3, Version::v4),
                         [](const auto& tested) {
                             return tested.param == Version::v3 ? "v3" : "v4";
                         });

// Killed between two writes: whatever was written by then is a readable file.
TEST(KilledProcess, EveryPrefixOfTheWritesIsASoundFile) {
    const auto medium = std::make_shared<Medium>(prepared(Version::v4));
    const auto replayed = std::make_shared<Medium>(*medium);
    medium->records = true;
    auto file = open_on(medium, Access::read_write);
    for (const Change change : kChanges) {
        change(*file);
    }
    ASSERT_GT(medium->log.size(), 20U);
    for (std::size_t count = 0; count < medium->log.size(); ++count) {
        SCOPED_TRACE("after " + std::to_string(count) + " writes");
        ASSERT_EQ(faults_of(replayed, false), "");
        expect_kept(replayed);
        expect_all_readable(replayed);
        // And it can be opened for writing and changed further.
        const auto changed_on = std::make_shared<Medium>(*replayed);
        auto further = open_on(changed_on, Access::read_write);
        add_stream(*further, kRoot, u"further", pattern(30000, 10));
        add_stream(*further, kRoot, u"more", pattern(3000, 11));
        further->flush();
        ASSERT_EQ(faults_of(changed_on, false), "");
        expect_kept(changed_on);
        expect_all_readable(changed_on);
        replayed->apply(medium->log[count]);
    }
    EXPECT_EQ(faults_of(replayed), "");
}

// Growth past 109 FAT sectors goes through every kind of metadata sector.
TEST(KilledProcess, GrowthOfTheFatListsIsSoundAtEveryWrite) {
    const auto medium = std::make_shared<Medium>();
    auto file = create_on(medium, Version::v3);
    add_stream(*file, kRoot, u"kept large", pattern(kLargeSize, 2));
    add_stream(*file, kRoot, u"kept small", pattern(kSmallSize, 1));
    const EntryId entry = file->create_stream(kRoot, u"s");
    file->stream(entry)->resize(6900000);
    file->flush();
    const auto replayed = std::make_shared<Medium>(*medium);
    medium->records = true;
    file->stream(entry)->resize(7400000);
    file->flush();
    file->stream(entry)->resize(7600000);
    file->flush();
    for (const Medium::Write& write : medium->log) {
        replayed->apply(write);
        ASSERT_EQ(faults_of(replayed, false), "");
        expect_kept(replayed);
    }
    EXPECT_EQ(faults_of(replayed), "");
}

// Directory, mini FAT and mini stream grow into sectors that are full of old bytes.
TEST(KilledProcess, GrowthOfDirectoryAndMiniStreamIsSoundAtEveryWrite) {
    const auto medium = std::make_shared<Medium>();
    medium->put(0, bytes::Bytes(300000, 0x02));
    auto file = create_on(medium, Version::v3);
    add_stream(*file, kRoot, u"kept large", pattern(kLargeSize, 2));
    const EntryId storages[] = {file->create_storage(kRoot, u"storage"),
                                file->create_storage(kRoot, u"another")};
    add_stream(*file, kRoot, u"kept small", pattern(kSmallSize, 1)); // in the next sector
    file->flush();
    const auto replayed = std::make_shared<Medium>(*medium);
    medium->records = true;
    for (const EntryId storage : storages) {
        for (const char16_t* name : {u"b", u"a", u"c"}) { // no entry has to move for another
            add_stream(*file, storage, name, pattern(4000, 3));
            file->flush();
        }
    }
    for (const Medium::Write& write : medium->log) {
        replayed->apply(write);
        ASSERT_EQ(faults_of(replayed, false), "");
        expect_kept(replayed);
        const auto shown = open_on(replayed);
        for (const EntryId storage : storages) {
            for (const EntryId entry : shown->children(storage)) {
                EXPECT_EQ(content(*shown, entry), pattern(4000, 3));
            }
        }
    }
    EXPECT_EQ(faults_of(replayed), "");
}

// The nth write fails: the call reports it, the file goes on where it was once the medium is well.
TEST_P(Faults, AFailedWriteIsReportedAndCanBeMadeGood) {
    const Medium before = prepared(GetParam());
    bool failed = true;
    for (std::uint64_t failing = 0; failed; ++failing) {
        SCOPED_TRACE("write " + std::to_string(failing) + " fails");
        const auto medium = std::make_shared<Medium>(before);
        auto file = open_on(medium, Access::read_write);
        std::vector<std::shared_ptr<StreamNode>> held; // what a failure does to them must show
        for (const char16_t* name : {u"grows", u"shrinks", u"sinks"}) {
            held.push_back(file->stream(file->find(kRoot, name)));
        }
        medium->writes_until_failure = failing;
        failed = false;
        for (const Change change : kChanges) {
            try {
                change(*file);
            } catch (const platform::Error& error) {
                EXPECT_EQ(error.code(), Errc::write_fault);
                failed = true;
                medium->writes_until_failure.reset();
                file->flush();
                change(*file); // now it works
            }
        }
        EXPECT_EQ(faults_of(medium), "");
        expect_kept(medium);
        bytes::Bytes grown = pattern(2000, 3);
        const bytes::Bytes written = pattern(2000, 7);
        grown.insert(grown.end(), written.begin(), written.end());
        bytes::Bytes found = content_at(*open_on(medium), u"grows");
        EXPECT_EQ(found.size(), 255000U);
        EXPECT_TRUE(std::all_of(found.begin() + 4000, found.begin() + 250000,
                                [](std::uint8_t byte) { return byte == 0; }));
        found.resize(grown.size());
        EXPECT_EQ(found, grown);
        EXPECT_EQ(content_at(*open_on(medium), u"sinks").size(), 700U);
    }
}

TEST_P(Faults, AFailedFlushIsRememberedUntilOneSucceeds) {
    const auto medium = std::make_shared<Medium>(prepared(GetParam()));
    auto file = open_on(medium, Access::read_write);
    resize(*file, u"grows", 100000);
    medium->writes_until_failure = 0;
    EXPECT_EQ(error_of([&] { file->flush(); }), Errc::write_fault);
    medium->writes_until_failure.reset();
    EXPECT_EQ(error_of([&] { file->create_stream(kRoot, u"x"); }), Errc::write_fault);
    EXPECT_EQ(error_of([&] { resize(*file, u"grows", 10); }), Errc::write_fault);
    file->flush();
    file->create_stream(kRoot, u"x");
    file->flush();
    EXPECT_EQ(faults_of(medium), "");
}

// A full disk shows in the call that needs the space; nothing has changed then, and what is there
// can still be flushed.
TEST_P(Faults, AFullDiskChangesNothing) {
    const Medium before = prepared(GetParam());
    for (std::uint64_t room = 0; room < 60000; room += 1500) {
        SCOPED_TRACE(std::to_string(room) + " bytes left");
        const auto medium = std::make_shared<Medium>(before);
        medium->capacity = medium->size + room;
        auto file = open_on(medium, Access::read_write);
        std::map<std::u16string, std::uint64_t> sizes;
        bool full = false;
        for (std::uint32_t step = 0; !full && step < 200; ++step) {
            const std::u16string name = {u's', static_cast<char16_t>(u'a' + step % 7)};
            try {
                if (!sizes.contains(name)) {
                    file->create_stream(kRoot, name);
                    sizes[name] = 0;
                }
                const std::uint64_t size = sizes[name] + 900;
                file->stream(file->find(kRoot, name))->write_at(sizes[name], pattern(900, step));
                sizes[name] = size;
            } catch (const platform::Error& error) {
                EXPECT_EQ(error.code(), Errc::medium_full);
                full = true;
            }
        }
        EXPECT_TRUE(full);
        file->flush();
        EXPECT_EQ(faults_of(medium), "");
        expect_kept(medium);
        const auto again = open_on(medium);
        EXPECT_EQ(again->children(kRoot).size(), 6 + sizes.size());
        for (const auto& [name, size] : sizes) {
            EXPECT_EQ(content_at(*again, name).size(), size);
        }
    }
}

} // namespace
} // namespace compound_file::test
