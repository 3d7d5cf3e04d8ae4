// The backing of lock_bytes_backing.h.
#include "platform/posix/lock_bytes_backing.h"

#include "platform/base/checked.h"
#include "platform/base/com_ptr.h"

#include <algorithm>

namespace platform {

namespace {

constexpr std::size_t kLongestCall = std::size_t{1} << 30; // counts of a call have 32 bits

[[noreturn]] void fail(HRESULT result, Errc otherwise, const char* call) {
    Errc code = otherwise;
    if (result == E_OUTOFMEMORY || result == STG_E_INSUFFICIENTMEMORY) {
        code = Errc::no_memory;
    } else if (result == STG_E_MEDIUMFULL) {
        code = Errc::medium_full;
    } else if (result == STG_E_ACCESSDENIED) {
        code = Errc::access;
    }
    throw Error(code, std::string(call) + " gave " + std::to_string(result));
}

class LockBytesBacking final : public compound_file::Backing {
  public:
    explicit LockBytesBacking(ILockBytes& lock_bytes)
        : lock_bytes_(&lock_bytes) {
        lock_bytes.AddRef();
    }

    std::size_t read_at(std::uint64_t offset, std::span<std::uint8_t> out) override {
        std::size_t done = 0;
        while (done < out.size()) {
            const auto chunk = static_cast<ULONG>(std::min(out.size() - done, kLongestCall));
            ULONG got = 0;
            const HRESULT result =
                lock_bytes_->ReadAt({checked_add(offset, done)}, out.data() + done, chunk, &got);
            if (FAILED(result)) {
                fail(result, Errc::read_fault, "ILockBytes::ReadAt");
            }
            if (got == 0) {
                break;
            }
            done += got;
        }
        return done;
    }

    void write_at(std::uint64_t offset, std::span<const std::uint8_t> data) override {
        std::size_t done = 0;
        while (done < data.size()) {
            const auto chunk = static_cast<ULONG>(std::min(data.size() - done, kLongestCall));
            ULONG put = 0;
            const HRESULT result =
                lock_bytes_->WriteAt({checked_add(offset, done)}, data.data() + done, chunk, &put);
            if (FAILED(result) || put == 0) {
                fail(result, Errc::write_fault, "ILockBytes::WriteAt");
            }
            done += put;
        }
    }

    void reserve(std::uint64_t size) override {
        if (size > this->size()) {
            set_size(size);
        }
    }

    void truncate(std::uint64_t size) override { set_size(size); }

    std::uint64_t size() const override {
        STATSTG stat{};
        const HRESULT result = lock_bytes_->Stat(&stat, STATFLAG_NONAME);
        if (FAILED(result)) {
            fail(result, Errc::read_fault, "ILockBytes::Stat");
        }
        return stat.cbSize.QuadPart;
    }

    void sync() override {
        if (const HRESULT result = lock_bytes_->Flush(); FAILED(result)) {
            fail(result, Errc::write_fault, "ILockBytes::Flush");
        }
    }

  private:
    void set_size(std::uint64_t size) {
        if (const HRESULT result = lock_bytes_->SetSize({size}); FAILED(result)) {
            fail(result, Errc::write_fault, "ILockBytes::SetSize");
        }
    }

    ComPtr<ILockBytes> lock_bytes_;
};

} // namespace

std::unique_ptr<compound_file::Backing> make_lock_bytes_backing(ILockBytes& lock_bytes) {
    return std::make_unique<LockBytesBacking>(lock_bytes);
}

} // namespace platform
