// Files as backings: sharing, error codes, copies inside the kernel.
#include "tests/compound_file/builders.h"
#include "tests/support/temporary_folder.h"

#include <filesystem>
#include <fstream>

#if !defined(_WIN32)
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace compound_file::test {
namespace {

namespace fs = std::filesystem;

class FileBacking : public testing::Test {
  protected:
    void SetUp() override { folder_ = make_temporary_folder("compound"); }
    void TearDown() override { fs::remove_all(folder_); }

    std::string path(const std::string& name) const { return (folder_ / name).string(); }

    fs::path folder_;
};

TEST_F(FileBacking, AnOpenForWritingExcludesAllOthers) {
    create_file(path("f"), false);
    {
        const auto reader = open_file(path("f"), Access::read);
        const auto second_reader = open_file(path("f"), Access::read);
        EXPECT_EQ(error_of([&] { open_file(path("f"), Access::read_write); }), Errc::sharing);
    }
    const auto writer = open_file(path("f"), Access::read_write);
    EXPECT_EQ(error_of([&] { open_file(path("f"), Access::read); }), Errc::sharing);
    writer->write_at(0, pattern(10, 1));
    EXPECT_EQ(error_of([&] { create_file(path("f"), true); }), Errc::sharing);
    EXPECT_EQ(fs::file_size(path("f")), 10U); // not emptied before the lock was held
}

TEST_F(FileBacking, OpenErrorsAreToldApart) {
    create_file(path("f"), false);
    EXPECT_EQ(error_of([&] { create_file(path("f"), false); }), Errc::exists);
    EXPECT_EQ(error_of([&] { open_file(path("none"), Access::read); }), Errc::not_found);
    EXPECT_EQ(error_of([&] { open_file(path("no/where"), Access::read); }), Errc::path_not_found);
    EXPECT_EQ(error_of([&] { open_file(path("f/below"), Access::read); }), Errc::path_not_found);
    EXPECT_EQ(error_of([&] { open_file(folder_.string(), Access::read); }), Errc::is_directory);
    EXPECT_EQ(error_of([&] { open_file(folder_.string(), Access::read_write); }),
              Errc::is_directory);
    EXPECT_EQ(
        error_of([&] { CompoundFile::open(open_file(path("f"), Access::read), Access::read); }),
        Errc::not_compound_file);
}

#if !defined(_WIN32)
TEST_F(FileBacking, WhatIsNoOrdinaryFileOrMayNotBeWrittenIsRefused) {
    ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(error_of([&] { open_file(path("pipe"), Access::read); }), Errc::access);
    if (::geteuid() != 0) {
        create_file(path("f"), false);
        fs::permissions(path("f"), fs::perms::owner_read);
        EXPECT_EQ(error_of([&] { open_file(path("f"), Access::read_write); }), Errc::access);
    }
}
#endif

TEST_F(FileBacking, BytesAreReadWrittenAndCopied) {
    const bytes::Bytes data = pattern(3000000, 1);
    const auto source = create_file(path("source"), false);
    source->write_at(0, data);
    const auto target = create_file(path("target"), false);
    EXPECT_EQ(target->copy_from(*source, 1000, 500, 5000000), data.size() - 1000);
    EXPECT_EQ(target->size(), data.size() - 500);
    EXPECT_EQ(target->copy_from(*target, 500, 1500, 2000000), 2000000U); // overlapping
    EXPECT_EQ(target->copy_from(*target, data.size(), 0, 10), 0U);       // behind the end
    bytes::Bytes expected(500);
    expected.insert(expected.end(), data.begin() + 1000, data.end());
    std::copy_backward(expected.begin() + 500, expected.begin() + 2000500,
                       expected.begin() + 2001500);
    bytes::Bytes found(expected.size() + 100);
    EXPECT_EQ(target->read_at(0, found), expected.size());
    found.resize(expected.size());
    EXPECT_EQ(found, expected);
    target->reserve(4000000);
    EXPECT_EQ(fs::file_size(path("target")), 4000000U);
    target->reserve(100);
    EXPECT_EQ(target->size(), 4000000U);
    TestBacking memory(std::make_shared<Medium>());
    EXPECT_EQ(memory.copy_from(*source, 5, 0, 100), 100U); // a backing without a descriptor
    EXPECT_EQ(target->copy_from(memory, 0, 0, 100), 100U);
}

TEST_F(FileBacking, ACompoundFileLivesInAFile) {
    {
        auto file = CompoundFile::create(create_file(path("f"), false), Version::v3);
        add_stream(*file, kRoot, u"small", pattern(100, 1));
        add_stream(*file, kRoot, u"large", pattern(1000000, 2));
        file->flush();
    }
    auto source = CompoundFile::open(open_file(path("f"), Access::read), Access::read);
    auto copy = CompoundFile::create(create_file(path("copy"), false), Version::v4);
    const EntryId entry = copy->create_stream(kRoot, u"copied");
    copy->stream(entry)->copy_range(*source->stream(source->find(kRoot, u"large")), 0, 3, 1000000);
    copy->flush();
    EXPECT_EQ(copy->check(true), std::vector<std::string>{});
    bytes::Bytes expected(3);
    const bytes::Bytes large = pattern(1000000, 2);
    expected.insert(expected.end(), large.begin(), large.end());
    EXPECT_EQ(content_at(*copy, u"copied"), expected);
}

} // namespace
} // namespace compound_file::test
