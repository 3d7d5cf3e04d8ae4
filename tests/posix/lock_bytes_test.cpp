// Storages inside a movable memory block, as the compressed object storages of a presentation are
// opened: the block is larger than the image, grows under it, and is the caller's.
#include "tests/posix/storage_fixture.h"

#include <stdexcept>

namespace {

class MemoryStorage : public StorageTest {
  protected:
    ~MemoryStorage() override { GlobalFree(block_); }

    static ComPtr<ILockBytes> lock_bytes_on(HGLOBAL memory) {
        ComPtr<ILockBytes> lock_bytes;
        EXPECT_EQ(CreateILockBytesOnHGlobal(memory, FALSE, lock_bytes.put()), S_OK);
        return lock_bytes;
    }

    static ComPtr<IStorage> open_on(HGLOBAL memory, DWORD mode) {
        ComPtr<IStorage> root;
        EXPECT_EQ(StgOpenStorageOnILockBytes(lock_bytes_on(memory).get(), nullptr, mode, nullptr, 0,
                                             root.put()),
                  S_OK);
        return root;
    }

    void fill(const std::string& image, std::size_t slack) {
        block_ = GlobalAlloc(GMEM_MOVEABLE, image.size() + slack);
        std::memcpy(GlobalLock(block_), image.data(), image.size());
        GlobalUnlock(block_);
    }

    std::string image() const {
        const std::string bytes(static_cast<const char*>(GlobalLock(block_)), GlobalSize(block_));
        GlobalUnlock(block_);
        return bytes;
    }

    // A file with one small stream.
    std::string small_image() const {
        create_stream(create("a.ppt"), u"s", "content");
        return bytes_of("a.ppt");
    }

    HGLOBAL block_ = nullptr;
};

TEST_F(MemoryStorage, OpensABlockThatIsLargerThanItsImage) {
    fill(small_image(), 1000);
    const auto root = open_on(block_, kReadRoot);
    EXPECT_EQ(content(root, u"s"), "content");
    STATSTG stat{};
    ASSERT_EQ(root->Stat(&stat, STATFLAG_DEFAULT), S_OK);
    EXPECT_EQ(take_name(stat), u"");
}

TEST_F(MemoryStorage, GrowsTheBlockAndHoldsACompleteImageAfterACommit) {
    fill(small_image(), 1000);
    const std::size_t before = GlobalSize(block_);
    const auto root = open_on(block_, kReadWrite);
    const auto stream = create_stream(root, u"\u0003LINKINFO", pattern(50000));
    ASSERT_EQ(root->Commit(STGC_DEFAULT), S_OK);
    EXPECT_GT(GlobalSize(block_), before + 40000);

    std::ofstream(native("image.ppt"), std::ios::binary) << image(); // while the storage is open
    const auto copy = open("image.ppt");
    EXPECT_EQ(content(copy, u"s"), "content");
    EXPECT_EQ(content(copy, u"\u0003LINKINFO"), pattern(50000));
}

TEST_F(MemoryStorage, TheBlockOutlivesTheStorage) {
    fill(small_image(), 0);
    create_stream(open_on(block_, kReadWrite), u"t", "more");
    EXPECT_EQ(content(open_on(block_, kReadRoot), u"t"), "more");
    EXPECT_EQ(content(open_on(block_, kReadRoot), u"s"), "content");
}

TEST_F(MemoryStorage, IsCreatedInAnEmptyBlock) {
    block_ = GlobalAlloc(GMEM_MOVEABLE, 0);
    const auto lock_bytes = lock_bytes_on(block_);
    ComPtr<IStorage> root;
    ASSERT_EQ(
        StgCreateDocfileOnILockBytes(lock_bytes.get(), kReadWrite | STGM_CREATE, 0, root.put()),
        S_OK);
    create_stream(root, u"s", "new");
    root.reset();
    EXPECT_EQ(StgCreateDocfileOnILockBytes(lock_bytes.get(), kReadWrite, 0, root.put()),
              STG_E_FILEALREADYEXISTS);
    EXPECT_EQ(content(open_on(block_, kReadRoot), u"s"), "new");
}

TEST_F(MemoryStorage, RefusesBlocksThatHoldNoStorage) {
    fill(pattern(3000), 0);
    ComPtr<IStorage> root;
    const auto lock_bytes = lock_bytes_on(block_);
    EXPECT_EQ(
        StgOpenStorageOnILockBytes(lock_bytes.get(), nullptr, kReadRoot, nullptr, 0, root.put()),
        STG_E_FILEALREADYEXISTS);
    EXPECT_EQ(
        StgOpenStorageOnILockBytes(lock_bytes.get(), nullptr, 0x10012, nullptr, 0, root.put()),
        STG_E_INVALIDFLAG);
    EXPECT_EQ(StgOpenStorageOnILockBytes(nullptr, nullptr, kReadRoot, nullptr, 0, root.put()),
              STG_E_INVALIDPOINTER);
    EXPECT_EQ(image(), pattern(3000));
}

// A byte array of somebody else that cannot grow.
class FixedArray final : public ILockBytes {
  public:
    explicit FixedArray(std::string content)
        : content_(std::move(content)) {}

    bool throws = false;

    HRESULT QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG AddRef() override { return 1; }
    ULONG Release() override { return 1; }
    HRESULT ReadAt(ULARGE_INTEGER offset, void* buffer, ULONG count, ULONG* read) override {
        if (throws) {
            throw std::runtime_error("array is gone");
        }
        *read = static_cast<ULONG>(content_.copy(static_cast<char*>(buffer), count,
                                                 std::min(offset.QuadPart, content_.size())));
        return S_OK;
    }
    HRESULT WriteAt(ULARGE_INTEGER offset, const void* buffer, ULONG count,
                    ULONG* written) override {
        if (offset.QuadPart + count > content_.size()) {
            return STG_E_MEDIUMFULL;
        }
        std::memcpy(content_.data() + offset.QuadPart, buffer, count);
        *written = count;
        return S_OK;
    }
    HRESULT Flush() override { return S_OK; }
    HRESULT SetSize(ULARGE_INTEGER) override { return STG_E_MEDIUMFULL; }
    HRESULT LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    HRESULT UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    HRESULT Stat(STATSTG* stat, DWORD) override {
        *stat = {};
        stat->cbSize.QuadPart = content_.size();
        return S_OK;
    }

  private:
    std::string content_;
};

TEST_F(MemoryStorage, ReportsWhatAForeignArrayRefuses) {
    FixedArray array(small_image());
    ComPtr<IStorage> root;
    ASSERT_EQ(StgOpenStorageOnILockBytes(&array, nullptr, kReadWrite, nullptr, 0, root.put()),
              S_OK);
    {
        const auto stream = open_stream(root, u"s", kReadWrite);
        const std::string large = pattern(100000);
        EXPECT_EQ(stream->Write(large.data(), 100000, nullptr), STG_E_MEDIUMFULL);
        EXPECT_EQ(content(stream.get()), "content"); // nothing has changed
        EXPECT_EQ(position(stream.get()), 7U);
    }
    root.reset();
    array.throws = true;
    EXPECT_EQ(StgOpenStorageOnILockBytes(&array, nullptr, kReadWrite, nullptr, 0, root.put()),
              E_UNEXPECTED);
}

TEST_F(MemoryStorage, TheByteArrayReadsWritesAndResizes) {
    block_ = GlobalAlloc(GMEM_MOVEABLE, 4);
    const auto lock_bytes = lock_bytes_on(block_);
    ULONG count = 0;
    EXPECT_EQ(lock_bytes->WriteAt({6}, "xy", 2, &count), S_OK);
    EXPECT_EQ(count, 2U);
    EXPECT_EQ(image(), std::string("\0\0\0\0\0\0xy", 8)); // what was added is zero
    char buffer[8]{};
    EXPECT_EQ(lock_bytes->ReadAt({7}, buffer, 8, &count), S_OK);
    EXPECT_EQ(count, 1U);
    EXPECT_EQ(buffer[0], 'y');
    EXPECT_EQ(lock_bytes->ReadAt({kWholeRest}, buffer, 8, &count), S_OK);
    EXPECT_EQ(count, 0U);
    EXPECT_EQ(lock_bytes->WriteAt({kWholeRest}, "xy", 2, &count), STG_E_MEDIUMFULL);
    EXPECT_EQ(lock_bytes->SetSize({kWholeRest}), STG_E_INSUFFICIENTMEMORY);
    EXPECT_EQ(lock_bytes->SetSize({3}), S_OK);
    STATSTG stat{};
    EXPECT_EQ(lock_bytes->Stat(&stat, STATFLAG_DEFAULT), S_OK);
    EXPECT_EQ(stat.cbSize.QuadPart, 3U);
}

} // namespace
