// A storage over a memory block that holds a given image.
#pragma once

#include "platform/platform.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace ole_test {

class MemoryStorage {
  public:
    explicit MemoryStorage(bytes::View image, DWORD access = STGM_READWRITE)
        : memory_(GlobalAlloc(GMEM_MOVEABLE, image.size())) {
        std::copy(image.begin(), image.end(), static_cast<std::uint8_t*>(GlobalLock(memory_)));
        GlobalUnlock(memory_);
        ComPtr<ILockBytes> lock_bytes;
        EXPECT_EQ(CreateILockBytesOnHGlobal(memory_, FALSE, lock_bytes.put()), S_OK);
        EXPECT_EQ(StgOpenStorageOnILockBytes(lock_bytes.get(), nullptr,
                                             access | STGM_SHARE_EXCLUSIVE, nullptr, 0,
                                             storage_.put()),
                  S_OK);
    }
    MemoryStorage(const MemoryStorage&) = delete;
    MemoryStorage& operator=(const MemoryStorage&) = delete;
    ~MemoryStorage() {
        storage_.reset();
        GlobalFree(memory_);
    }

    IStorage* get() const { return storage_.get(); }

    bytes::Bytes image() const {
        const auto* const data = static_cast<const std::uint8_t*>(GlobalLock(memory_));
        bytes::Bytes copy(data, data + GlobalSize(memory_));
        GlobalUnlock(memory_);
        return copy;
    }

  private:
    HGLOBAL memory_;
    ComPtr<IStorage> storage_;
};

} // namespace ole_test
