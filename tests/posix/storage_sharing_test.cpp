// Who may have a file open beside whom, in one process and in two, and what happens to objects
// whose storage is gone.
#include "tests/posix/storage_fixture.h"

namespace {

using Sharing = StorageTest;
using Lifetime = StorageTest;

constexpr int kShareViolation = 0x20;

TEST_F(Sharing, ReadersShareAndWritersExcludeWithinAProcess) {
    auto writer = create("a.ppt");
    EXPECT_EQ(try_open("a.ppt", kReadRoot), STG_E_SHAREVIOLATION);
    EXPECT_EQ(try_open("a.ppt", kReadWrite), STG_E_SHAREVIOLATION);
    EXPECT_EQ(StgIsStorageFile(path("a.ppt").c_str()), STG_E_SHAREVIOLATION);
    ComPtr<IStorage> replaced;
    EXPECT_EQ(StgCreateDocfile(path("a.ppt").c_str(), kReadWrite | STGM_CREATE, 0, replaced.put()),
              STG_E_SHAREVIOLATION);
    create_stream(writer, u"still there", "x");
    writer.reset();

    auto reader = open("a.ppt");
    EXPECT_EQ(try_open("a.ppt", kReadRoot), S_OK);
    EXPECT_EQ(try_open("a.ppt", kReadWrite), STG_E_SHAREVIOLATION);
    EXPECT_EQ(content(reader, u"still there"), "x");
    reader.reset();
    EXPECT_EQ(try_open("a.ppt", kReadWrite), S_OK);
}

TEST_F(Sharing, ReadersShareAndWritersExcludeBetweenProcesses) {
    auto writer = create("a.ppt");
    EXPECT_EQ(low_byte_elsewhere([&] { return try_open("a.ppt", kReadRoot); }), kShareViolation);
    EXPECT_EQ(low_byte_elsewhere([&] { return try_open("a.ppt", kReadWrite); }), kShareViolation);
    writer.reset();

    const auto reader = open("a.ppt");
    EXPECT_EQ(low_byte_elsewhere([&] { return try_open("a.ppt", kReadRoot); }), S_OK);
    EXPECT_EQ(low_byte_elsewhere([&] { return try_open("a.ppt", kReadWrite); }), kShareViolation);
}

TEST_F(Lifetime, ObjectsOfAReleasedRootAreReverted) {
    auto root = create("a.ppt");
    auto storage = create_storage(root, u"storage");
    auto deep = create_stream(storage, u"deep", "x");
    auto stream = create_stream(root, u"stream", "x");
    root.reset();

    char byte = 0;
    STATSTG stat{};
    ComPtr<IStream> clone;
    EXPECT_EQ(stream->Read(&byte, 1, nullptr), STG_E_REVERTED);
    EXPECT_EQ(stream->Write(&byte, 1, nullptr), STG_E_REVERTED);
    EXPECT_EQ(stream->Stat(&stat, STATFLAG_NONAME), STG_E_REVERTED);
    EXPECT_EQ(stream->Commit(STGC_DEFAULT), STG_E_REVERTED);
    EXPECT_EQ(stream->Clone(clone.put()), STG_E_REVERTED);
    EXPECT_EQ(seek(deep.get(), 0), STG_E_REVERTED);
    EXPECT_EQ(try_stream(storage, u"deep"), STG_E_REVERTED);
    EXPECT_EQ(storage->Commit(STGC_DEFAULT), STG_E_REVERTED);

    EXPECT_EQ(try_open("a.ppt", kReadRoot), STG_E_SHAREVIOLATION); // they keep the file open
    stream.reset();
    storage.reset();
    deep.reset();
    EXPECT_EQ(content(open("a.ppt"), u"stream"), "x");
}

TEST_F(Lifetime, AReleasedSubStorageRevertsItsElementsAndFreesThem) {
    const auto root = create("a.ppt");
    auto storage = create_storage(root, u"storage");
    const auto orphan = create_stream(storage, u"s", "x");
    storage.reset();
    EXPECT_EQ(seek(orphan.get(), 0), STG_E_REVERTED);
    ASSERT_EQ(root->OpenStorage(u"storage", nullptr, kReadWrite, nullptr, 0, storage.put()), S_OK);
    EXPECT_EQ(content(storage, u"s"), "x");
}

TEST_F(Lifetime, DestroyingAStorageRevertsWhatIsOpenInIt) {
    const auto root = create("a.ppt");
    const auto storage = create_storage(root, u"storage");
    const auto stream = create_stream(storage, u"s", pattern(10000));
    EXPECT_EQ(root->DestroyElement(u"storage"), S_OK);
    EXPECT_EQ(seek(stream.get(), 0), STG_E_REVERTED);
    EXPECT_EQ(try_stream(storage, u"s"), STG_E_REVERTED);
    create_stream(root, u"t", pattern(10000, 2)); // may get the ids of the erased ones
    create_stream(root, u"u", pattern(10000, 3));
    EXPECT_EQ(content(root, u"t"), pattern(10000, 2));
}

TEST_F(Lifetime, ACommitMakesChangesVisibleToACopyOfTheFile) {
    const auto root = create("a.ppt");
    const auto stream = create_stream(root, u"s", pattern(20000));
    EXPECT_EQ(stream->Commit(STGC_DEFAULT), S_OK);
    std::filesystem::copy_file(native("a.ppt"), native("b.ppt"));
    EXPECT_EQ(content(open("b.ppt"), u"s"), pattern(20000));
}

} // namespace
