// The storage wrappers: which status and which parameters each COM result becomes, on scripted
// objects, and the same wrappers on real compound files.

#include "common_new/common/storage.h"
#include "tests/common_new/scripted_com.h"
#include "tests/common_new/support.h"
#include "tests/support/drive_folder.h"

#include <gtest/gtest.h>

#include <cstring>

namespace ppt::test {
namespace {

constexpr const char* kDocument = "Q:\\talk.ppt";
constexpr auto kUnlisted = static_cast<HRESULT>(0x80030109); // STG_E_DOCFILECORRUPT

TEST(ComError, BecomesAStatusAndTheSystemErrorForm) {
    const std::pair<std::uint32_t, std::int32_t> cases[] = {
        {0x80030001, 8350}, {0x80030002, 7510}, {0x80030004, 7570}, {0x80030005, 6100},
        {0x80030008, 9000}, {0x8003001D, 7550}, {0x8003001E, 7130}, {0x80030020, 6200},
        {0x80030021, 6000}, {0x80030050, 6200}, {0x80030070, 8900}, {0x800300FC, 7585},
        {0x800300FF, 8300}, {0x80030103, 5200}, {0x80030109, 8140}, {1, 8140},
    };
    for (const auto& [result, status] : cases) {
        EXPECT_EQ(j_translateComError(static_cast<HRESULT>(result)), status) << std::hex << result;
        const Texts params = error_params();
        ASSERT_EQ(params.size(), 3u);
        EXPECT_EQ(params[0], "1");
        EXPECT_EQ(std::stoul(params[1], nullptr, 16), result);
        EXPECT_NE(params[2], "") << std::hex << result;
    }
    mark_error_params();
    EXPECT_EQ(j_translateComError(S_OK), 0);
    EXPECT_EQ(error_params(), kUnchanged);
}

class Wrappers : public testing::Test {
  protected:
    Wrappers() { mark_error_params(); }

    void fail_with(HRESULT result) {
        stream_.script = {.result = result};
        storage_.script = {.result = result};
    }
    void throw_from_calls() {
        stream_.script = {.throws = true};
        storage_.script = {.throws = true};
    }
    std::int32_t open_storage(bool read_only) {
        IStorage* opened = nullptr;
        return j_openSubStorage(&storage_, WIDE("Data"), read_only, &opened);
    }
    std::int32_t open_stream(bool read_only) {
        IStream* opened = nullptr;
        return j_openStream(&storage_, WIDE("Data"), read_only, &opened);
    }
    std::int32_t read(std::int32_t count, std::int32_t* came = nullptr) {
        return j_readStream(&stream_, buffer_, count, came);
    }
    std::int32_t write(std::int32_t count) {
        return j_writeStream("D:\\copy.ppt", &stream_, buffer_, count);
    }

    const DocumentPath path_{kDocument};
    ScriptedStream stream_;
    ScriptedStorage storage_;
    char buffer_[16] = {};
};

TEST_F(Wrappers, NullArgumentsTouchNothing) {
    IStorage* storage = nullptr;
    IStream* stream = nullptr;
    const WCHAR* const name = WIDE("a");
    EXPECT_EQ(j_openStorageFile(nullptr, true, &storage), 8300);
    EXPECT_EQ(j_openSubStorage(&storage_, nullptr, true, &storage), 8300);
    EXPECT_EQ(j_openStream(nullptr, name, true, &stream), 8300);
    EXPECT_EQ(j_openStream(&storage_, nullptr, true, &stream), 8300);
    EXPECT_EQ(j_readStream(nullptr, buffer_, 1), 8300);
    EXPECT_EQ(j_readStream(&stream_, nullptr, 1), 8300);
    EXPECT_EQ(j_writeStream(nullptr, &stream_, buffer_, 1), 8300);
    EXPECT_EQ(j_writeStream("", nullptr, buffer_, 1), 8300);
    EXPECT_EQ(j_writeStream("", &stream_, nullptr, 1), 8300);
    EXPECT_EQ(j_seekStream(nullptr, &stream_, 0, 0), 8300);
    EXPECT_EQ(j_seekStream("", nullptr, 0, 0), 8300);
    EXPECT_EQ(j_copyStream(nullptr, &stream_, 1), 8300);
    EXPECT_EQ(j_copyStream(&stream_, nullptr, 1), 8300);
    EXPECT_EQ(stream_.count_asked, 0u);
    EXPECT_EQ(error_params(), kUnchanged);
}

TEST_F(Wrappers, ExceptionsInsideThePlatformAre8000) {
    throw_from_calls();
    EXPECT_EQ(open_storage(true), 8000);
    EXPECT_EQ(open_stream(true), 8000);
    EXPECT_EQ(read(1), 8000);
    EXPECT_EQ(write(1), 8000);
    EXPECT_EQ(j_seekStream("name", &stream_, 0, 0), 8000);
    EXPECT_EQ(j_copyStream(&stream_, &stream_, 1), 8000);
    EXPECT_EQ(error_params(), kUnchanged);
}

TEST_F(Wrappers, StoragesAndStreamsOpenInTheirModes) {
    EXPECT_EQ(open_storage(true), 0);
    EXPECT_EQ(storage_.mode_asked, 0x20u);
    EXPECT_EQ(open_storage(false), 0);
    EXPECT_EQ(storage_.mode_asked, 0x12u);
    EXPECT_EQ(open_stream(true), 0);
    EXPECT_EQ(storage_.mode_asked, 0x10u);
    EXPECT_EQ(open_stream(false), 0);
    EXPECT_EQ(storage_.mode_asked, 0x12u);
    EXPECT_EQ(error_params(), kUnchanged);
}

TEST_F(Wrappers, AFailedOpenNamesTheElement) {
    const Texts element = {kDocument, "Data"};
    fail_with(STG_E_ACCESSDENIED);
    EXPECT_EQ(open_storage(true), 6100);
    EXPECT_EQ(error_params(), Texts({"Data", user_name()}));
    EXPECT_EQ(open_storage(false), 6300);
    EXPECT_EQ(error_params(), Texts({"Data", user_name()}));
    EXPECT_EQ(open_stream(false), 6100);
    EXPECT_EQ(error_params(), element);
    fail_with(STG_E_FILENOTFOUND);
    EXPECT_EQ(open_storage(true), 7295);
    EXPECT_EQ(error_params(), element);
    EXPECT_EQ(open_stream(true), 7295);
    EXPECT_EQ(error_params(), element);
    fail_with(STG_E_INVALIDNAME);
    EXPECT_EQ(open_storage(true), 7585);
    EXPECT_EQ(open_stream(true), 7295);
    fail_with(kUnlisted);
    EXPECT_EQ(open_storage(true), 8140);
    EXPECT_EQ(open_stream(true), 8140);
    EXPECT_EQ(error_params(), element);
}

TEST_F(Wrappers, ReadingTellsShortReadsAndFailures) {
    std::int32_t came = -1;
    stream_.script = {.moved = 8};
    EXPECT_EQ(read(8, &came), 0);
    EXPECT_EQ(came, 8);
    EXPECT_EQ(error_params(), kUnchanged);
    stream_.script = {.moved = 4};
    EXPECT_EQ(read(8, &came), 7180);
    EXPECT_EQ(came, 4);
    EXPECT_EQ(error_params(), Texts({kDocument, "4", "8"}));
    stream_.script = {.result = S_FALSE, .moved = 8};
    EXPECT_EQ(read(8, &came), 8140) << "all bytes came, but with S_FALSE";
    EXPECT_EQ(came, 8);
    EXPECT_EQ(error_params(), Texts({kDocument}));
    fail_with(STG_E_ACCESSDENIED);
    EXPECT_EQ(read(8), 6100);
    EXPECT_EQ(error_params(), Texts({kDocument, user_name()}));
    fail_with(STG_E_READFAULT);
    EXPECT_EQ(read(8), 7130);
    EXPECT_EQ(error_params(), Texts({kDocument}));
}

TEST_F(Wrappers, WritingTellsShortWritesAndFailures) {
    const char* const copy = "D:\\copy.ppt";
    stream_.script = {.moved = 8};
    EXPECT_EQ(write(8), 0);
    EXPECT_EQ(error_params(), kUnchanged);
    stream_.script = {.moved = 5};
    EXPECT_EQ(write(8), 5500);
    EXPECT_EQ(error_params(), Texts({copy, "8", "5"}));
    for (const HRESULT denied : {STG_E_ACCESSDENIED, STG_E_LOCKVIOLATION}) {
        fail_with(denied);
        EXPECT_EQ(write(8), 6300);
        EXPECT_EQ(error_params(), Texts({copy, user_name()}));
    }
    fail_with(STG_E_MEDIUMFULL);
    EXPECT_EQ(write(8), 8900);
    EXPECT_EQ(error_params(), Texts({"D:", "8"}));
    fail_with(STG_E_WRITEFAULT);
    EXPECT_EQ(write(8), 7550);
    EXPECT_EQ(error_params(), Texts({copy}));
}

TEST_F(Wrappers, SeekingAnswersByItsOrigin) {
    std::uint32_t position = 1;
    stream_.script = {.moved = 0x1'0000'0010};
    EXPECT_EQ(j_seekStream("name", &stream_, -4, 1, &position), 0);
    EXPECT_EQ(position, 0x10u);
    EXPECT_EQ(stream_.move_asked, -4);
    EXPECT_EQ(stream_.origin_asked, 1u);
    fail_with(STG_E_INVALIDFUNCTION);
    const std::pair<std::int32_t, std::int32_t> cases[] = {
        {0, 5650}, {1, 5660}, {2, 5670}, {3, 5670}, {-1, 5670}};
    for (const auto& [origin, status] : cases) {
        EXPECT_EQ(j_seekStream("name", &stream_, -4, origin, &position), status);
        EXPECT_EQ(error_params(), Texts({"name"}));
    }
    EXPECT_EQ(position, 0x10u);
    EXPECT_EQ(j_seekStream("", &stream_, -4, 2), 5670);
    EXPECT_EQ(error_params(), Texts({kDocument, "-4"}));
}

TEST_F(Wrappers, PlaceInFrontOfTheStartIsNoPlaceWhateverTheStreamSays) {
    std::uint32_t position = 1;
    stream_.script = {.moved = 0xFFFF'FFFF'FFFF'FFFC};
    EXPECT_EQ(j_seekStream("name", &stream_, -4, 0, &position), 5650);
    EXPECT_EQ(position, 1u);
    EXPECT_EQ(stream_.move_asked, 0) << "back to the start";
}

TEST_F(Wrappers, CopyingComparesTheCounts) {
    stream_.script = {.moved = 8, .written = 8};
    EXPECT_EQ(j_copyStream(&stream_, &stream_, 8), 0);
    stream_.script = {};
    EXPECT_EQ(j_copyStream(&stream_, &stream_, -1), 0) << "the rest of an empty source";
    EXPECT_EQ(stream_.count_asked, UINT64_MAX);
    EXPECT_EQ(error_params(), kUnchanged);
    stream_.script = {.moved = 3, .written = 3};
    EXPECT_EQ(j_copyStream(&stream_, &stream_, 8), 7180);
    EXPECT_EQ(error_params(), Texts({kDocument, "3", "8"}));
    stream_.script = {.moved = 8, .written = 2};
    EXPECT_EQ(j_copyStream(&stream_, &stream_, 8), 5500);
    EXPECT_EQ(error_params(), Texts({kDocument, "2", "8"}));
    EXPECT_EQ(j_copyStream(&stream_, &stream_, -2), 7180);
    fail_with(STG_E_MEDIUMFULL);
    EXPECT_EQ(j_copyStream(&stream_, &stream_, 8), 8900);
    EXPECT_EQ(error_params(), Texts({"Q:", "8"}));
    fail_with(STG_E_READFAULT);
    EXPECT_EQ(j_copyStream(&stream_, &stream_, 8), 7130);
    EXPECT_EQ(error_params()[1], "8003001e");
}

class CompoundFile : public testing::Test {
  protected:
    static constexpr DWORD kCreate = STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE;

    CompoundFile() { mark_error_params(); }

    // A file with a sub-storage "Sub" and a stream "Data" of 12 bytes; empty if that fails.
    ComPtr<IStorage> create() {
        ComPtr<IStorage> root;
        ComPtr<IStorage> sub;
        ComPtr<IStream> data;
        const bool made = StgCreateDocfile(WIDE("Q:\\talk.ppt"), kCreate, 0, root.put()) == S_OK &&
                          root->CreateStorage(WIDE("Sub"), kCreate, 0, 0, sub.put()) == S_OK &&
                          root->CreateStream(WIDE("Data"), kCreate, 0, 0, data.put()) == S_OK &&
                          j_writeStream(kDocument, data.get(), "twelve bytes", 12) == 0;
        return made ? root : ComPtr<IStorage>();
    }
    std::int32_t open(bool read_only, ComPtr<IStorage>& root) {
        return j_openStorageFile(WIDE("Q:\\talk.ppt"), read_only, root.put());
    }

    const TempFolder folder_{make_drive_folder("common_new")};
    const DocumentPath path_{kDocument};
};

TEST_F(CompoundFile, AShortReadAtTheEndGivesBothCounts) {
    ASSERT_TRUE(create());
    ComPtr<IStorage> root;
    ASSERT_EQ(open(true, root), 0);
    ComPtr<IStream> data;
    ASSERT_EQ(j_openStream(root.get(), WIDE("Data"), true, data.put()), 0);
    std::uint32_t position = 0;
    EXPECT_EQ(j_seekStream("Data", data.get(), -4, 2, &position), 0);
    EXPECT_EQ(position, 8u);
    char bytes[8] = {};
    std::int32_t came = 0;
    EXPECT_EQ(j_readStream(data.get(), bytes, 8, &came), 7180);
    EXPECT_EQ(came, 4);
    EXPECT_EQ(error_params(), Texts({kDocument, "4", "8"}));
    EXPECT_EQ(std::string(bytes, 4), "ytes");
    EXPECT_EQ(j_seekStream("Data", data.get(), -13, 2), 5670);
    EXPECT_EQ(error_params(), Texts({"Data"}));
}

TEST_F(CompoundFile, MissingElementsAndFilesHaveTheirCodes) {
    ComPtr<IStorage> root;
    EXPECT_EQ(open(true, root), 7510);
    EXPECT_EQ(error_params(), Texts({kDocument}));
    ASSERT_TRUE(create());
    ASSERT_EQ(open(true, root), 0);
    ComPtr<IStorage> sub;
    ComPtr<IStream> data;
#if defined(_WIN32) // which opens a storage in another for one user only
    EXPECT_EQ(j_openSubStorage(root.get(), WIDE("Sub"), true, sub.put()), 8350);
#else
    EXPECT_EQ(j_openSubStorage(root.get(), WIDE("Sub"), true, sub.put()), 0);
    EXPECT_EQ(j_openSubStorage(root.get(), WIDE("Gone"), true, sub.put()), 7295);
#endif
    EXPECT_EQ(j_openStream(root.get(), WIDE("Gone"), true, data.put()), 7295);
    EXPECT_EQ(error_params(), Texts({kDocument, "Gone"}));
}

TEST_F(CompoundFile, AFileHeldExclusivelyIsInUse) {
    const ComPtr<IStorage> holder = create();
    ASSERT_TRUE(holder);
    for (const bool read_only : {true, false}) {
        ComPtr<IStorage> root;
        EXPECT_EQ(open(read_only, root), 7530);
        EXPECT_EQ(error_params(), Texts({kDocument}));
    }
}

TEST_F(CompoundFile, AStorageOnMemoryLeavesTheBlockToItsOwner) {
    ASSERT_TRUE(create());
    const std::string content = folder_.read("talk.ppt");
    const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, content.size());
    ASSERT_NE(memory, nullptr);
    std::memcpy(GlobalLock(memory), content.data(), content.size());
    GlobalUnlock(memory);
    {
        ComPtr<IStorage> root;
        ComPtr<ILockBytes> lock_bytes;
        EXPECT_EQ(j_openStorageOnMemory(memory, true, root.put(), lock_bytes.put()), 0);
        EXPECT_TRUE(lock_bytes);
        ComPtr<IStream> data;
        EXPECT_EQ(j_openStream(root.get(), WIDE("Data"), true, data.put()), 0);
    }
    EXPECT_EQ(GlobalSize(memory), content.size());
    EXPECT_EQ(GlobalFree(memory), nullptr);
}

TEST_F(CompoundFile, MemoryThatHoldsNoStorageIsNamedByItsSize) {
    const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, 600);
    ComPtr<IStorage> root;
    ComPtr<ILockBytes> lock_bytes;
    EXPECT_EQ(j_openStorageOnMemory(memory, true, root.put(), lock_bytes.put()), 5700);
    EXPECT_TRUE(lock_bytes) << "handed out although the storage could not be opened";
    const Texts params = error_params();
    ASSERT_EQ(params.size(), 2u);
    EXPECT_EQ(params[0], "600");
    EXPECT_GT(std::stol(params[1]), 0);
    lock_bytes.reset();
    EXPECT_EQ(GlobalFree(memory), nullptr);
}

} // namespace
} // namespace ppt::test
