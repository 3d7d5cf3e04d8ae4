// ILockBytes over a movable memory block. The block is the array: its size is the array's size,
// and it is resized in place of its handle. No pointer into the block outlives one call, because
// any resize may move it.
#include "platform/adapters/com_object.h"
#include "platform/adapters/error_codes.h"
#include "platform/adapters/statstg.h"
#include "platform/posix/kernel.h"

#include <algorithm>
#include <limits>

namespace platform {

namespace {

// The block's bytes while it is locked.
class LockedBlock {
  public:
    explicit LockedBlock(HGLOBAL memory)
        : memory_(memory)
        , data_(static_cast<std::uint8_t*>(GlobalLock(memory))) {}
    LockedBlock(const LockedBlock&) = delete;
    LockedBlock& operator=(const LockedBlock&) = delete;
    ~LockedBlock() {
        if (data_ != nullptr) {
            GlobalUnlock(memory_);
        }
    }

    std::uint8_t* data() const { return data_; }

  private:
    HGLOBAL memory_;
    std::uint8_t* data_;
};

class MemoryLockBytes final : public ComObject<ILockBytes> {
  public:
    MemoryLockBytes(HGLOBAL memory, bool delete_on_release)
        : memory_(memory)
        , delete_on_release_(delete_on_release) {}

    HRESULT QueryInterface(REFIID iid, void** object) override {
        return answer(iid, object, {IID_ILockBytes});
    }

    HRESULT ReadAt(ULARGE_INTEGER offset, void* buffer, ULONG count, ULONG* read) override {
        if (read != nullptr) {
            *read = 0;
        }
        if (buffer == nullptr) {
            return STG_E_INVALIDPOINTER;
        }
        const std::uint64_t size = GlobalSize(memory_);
        const std::uint64_t available = size > offset.QuadPart ? size - offset.QuadPart : 0;
        const auto done = static_cast<ULONG>(std::min<std::uint64_t>(count, available));
        if (done > 0) {
            const LockedBlock block(memory_);
            if (block.data() == nullptr) {
                return STG_E_READFAULT;
            }
            std::memcpy(buffer, block.data() + offset.QuadPart, done);
        }
        if (read != nullptr) {
            *read = done;
        }
        return S_OK;
    }

    HRESULT WriteAt(ULARGE_INTEGER offset, const void* buffer, ULONG count,
                    ULONG* written) override {
        if (written != nullptr) {
            *written = 0;
        }
        if (buffer == nullptr) {
            return STG_E_INVALIDPOINTER;
        }
        if (count == 0) {
            return S_OK;
        }
        if (offset.QuadPart > std::numeric_limits<std::uint64_t>::max() - count) {
            return STG_E_MEDIUMFULL;
        }
        const std::uint64_t end = offset.QuadPart + count;
        if (end > GlobalSize(memory_)) {
            if (const HRESULT refused = SetSize({end}); FAILED(refused)) {
                return refused;
            }
        }
        const LockedBlock block(memory_);
        if (block.data() == nullptr) {
            return STG_E_WRITEFAULT;
        }
        std::memcpy(block.data() + offset.QuadPart, buffer, count);
        if (written != nullptr) {
            *written = count;
        }
        return S_OK;
    }

    HRESULT Flush() override { return S_OK; }

    HRESULT SetSize(ULARGE_INTEGER size) override {
        if (size.QuadPart > std::numeric_limits<std::ptrdiff_t>::max()) {
            return STG_E_INSUFFICIENTMEMORY;
        }
        const HGLOBAL resized =
            GlobalReAlloc(memory_, size.QuadPart, GMEM_MOVEABLE | GMEM_ZEROINIT);
        return resized == nullptr ? STG_E_INSUFFICIENTMEMORY : S_OK;
    }

    HRESULT LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override {
        return STG_E_INVALIDFUNCTION;
    }

    HRESULT UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override {
        return STG_E_INVALIDFUNCTION;
    }

    HRESULT Stat(STATSTG* stat, DWORD flags) override {
        if (stat == nullptr) {
            return STG_E_INVALIDPOINTER;
        }
        if (const HRESULT refused = check_stat_flags(flags); FAILED(refused)) {
            return refused;
        }
        *stat = {};
        stat->type = STGTY_LOCKBYTES;
        stat->cbSize.QuadPart = GlobalSize(memory_);
        stat->grfMode = STGM_READWRITE | STGM_SHARE_EXCLUSIVE;
        return S_OK;
    }

  private:
    ~MemoryLockBytes() override {
        if (delete_on_release_) {
            GlobalFree(memory_);
        }
    }

    HGLOBAL memory_;
    bool delete_on_release_;
};

} // namespace

} // namespace platform

HRESULT CreateILockBytesOnHGlobal(HGLOBAL memory, BOOL delete_on_release, ILockBytes** lock_bytes) {
    if (lock_bytes == nullptr) {
        return E_INVALIDARG;
    }
    *lock_bytes = nullptr;
    const HGLOBAL block = memory == nullptr ? GlobalAlloc(GMEM_MOVEABLE, 0) : memory;
    if (block == nullptr) {
        return E_OUTOFMEMORY;
    }
    const HRESULT result = platform::guarded([&] {
        *lock_bytes = new platform::MemoryLockBytes(block, delete_on_release != FALSE);
        return S_OK;
    });
    if (FAILED(result) && memory == nullptr) {
        GlobalFree(block);
    }
    return result;
}
