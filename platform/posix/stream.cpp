// IStream over a stream node; see stream.h.
#include "platform/posix/stream.h"

#include "platform/adapters/error_codes.h"
#include "platform/adapters/statstg.h"
#include "platform/base/com_ptr.h"
#include "platform/posix/storage_modes.h"

#include <algorithm>
#include <limits>
#include <vector>

namespace platform {

namespace {

constexpr std::size_t kCopyBuffer = 256 * 1024;
constexpr std::uint64_t kHighestPosition = std::numeric_limits<std::int64_t>::max();

template <class Count, class Value>
void store(Count* out, Value value) {
    if (out != nullptr) {
        *out = value;
    }
}

} // namespace

StreamObject::~StreamObject() {
    if (can_write(mode_) && !element_->is_reverted()) {
        guarded([&] {
            element_->engine().flush();
            return S_OK;
        });
    }
}

HRESULT StreamObject::QueryInterface(REFIID iid, void** object) {
    return answer(iid, object, {IID_IStream, IID_ISequentialStream, IID_StreamObject});
}

HRESULT StreamObject::check_readable() const {
    if (element_->is_reverted()) {
        return STG_E_REVERTED;
    }
    return can_read(mode_) ? S_OK : STG_E_ACCESSDENIED;
}

HRESULT StreamObject::check_writable() const {
    if (element_->is_reverted()) {
        return STG_E_REVERTED;
    }
    return can_write(mode_) ? S_OK : STG_E_ACCESSDENIED;
}

HRESULT StreamObject::Read(void* buffer, ULONG count, ULONG* read) {
    store(read, 0U);
    if (buffer == nullptr) {
        return STG_E_INVALIDPOINTER;
    }
    if (const HRESULT refused = check_readable(); FAILED(refused)) {
        return refused;
    }
    return guarded([&] {
        const std::size_t done =
            node_->read_at(position_, {static_cast<std::uint8_t*>(buffer), count});
        position_ += done;
        store(read, static_cast<ULONG>(done));
        return S_OK;
    });
}

HRESULT StreamObject::Write(const void* buffer, ULONG count, ULONG* written) {
    store(written, 0U);
    if (buffer == nullptr) {
        return STG_E_INVALIDPOINTER;
    }
    if (const HRESULT refused = check_writable(); FAILED(refused)) {
        return refused;
    }
    if (count == 0) {
        return S_OK; // does not grow the stream up to the position
    }
    return guarded([&] {
        node_->write_at(position_, {static_cast<const std::uint8_t*>(buffer), count});
        position_ += count;
        store(written, count);
        return S_OK;
    });
}

HRESULT StreamObject::Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* position) {
    if (element_->is_reverted()) {
        return STG_E_REVERTED;
    }
    std::uint64_t base = 0;
    if (origin == STREAM_SEEK_CUR) {
        base = position_;
    } else if (origin == STREAM_SEEK_END) {
        base = node_->size();
    } else if (origin != STREAM_SEEK_SET) {
        return STG_E_INVALIDFUNCTION;
    }
    const auto distance = static_cast<std::uint64_t>(move.QuadPart);
    const bool before_start = move.QuadPart < 0 && base < 0 - distance;
    const bool too_far = move.QuadPart >= 0 && distance > kHighestPosition - base;
    if (before_start || too_far) {
        return STG_E_INVALIDFUNCTION;
    }
    position_ = base + distance; // a negative move wraps around to the difference
    store(position, ULARGE_INTEGER{position_});
    return S_OK;
}

HRESULT StreamObject::SetSize(ULARGE_INTEGER size) {
    if (const HRESULT refused = check_writable(); FAILED(refused)) {
        return refused;
    }
    return guarded([&] {
        node_->resize(size.QuadPart);
        return S_OK;
    });
}

HRESULT StreamObject::CopyTo(IStream* destination, ULARGE_INTEGER count, ULARGE_INTEGER* read,
                             ULARGE_INTEGER* written) {
    store(read, ULARGE_INTEGER{0});
    store(written, ULARGE_INTEGER{0});
    if (destination == nullptr) {
        return STG_E_INVALIDPOINTER;
    }
    if (const HRESULT refused = check_readable(); FAILED(refused)) {
        return refused;
    }
    Copied copied;
    const HRESULT result = guarded([&] {
        const std::uint64_t size = node_->size();
        const std::uint64_t available = size > position_ ? size - position_ : 0;
        const std::uint64_t wanted = std::min(count.QuadPart, available);
        ComPtr<IStream> own;
        destination->QueryInterface(IID_StreamObject, own.put_void());
        return own ? copy_to_own(static_cast<StreamObject&>(*own.get()), wanted, copied)
                   : copy_to_foreign(*destination, wanted, copied);
    });
    store(read, ULARGE_INTEGER{copied.read});
    store(written, ULARGE_INTEGER{copied.written});
    return result;
}

HRESULT StreamObject::copy_to_own(StreamObject& destination, std::uint64_t count, Copied& copied) {
    if (const HRESULT refused = destination.check_writable(); FAILED(refused)) {
        return refused;
    }
    if (count == 0) {
        return S_OK;
    }
    const std::uint64_t from = position_;
    const std::uint64_t to = destination.position_;
    const std::uint64_t done = destination.node_->copy_range(*node_, from, to, count);
    position_ = from + done;
    destination.position_ = to + done;
    copied = {done, done};
    return S_OK;
}

HRESULT StreamObject::copy_to_foreign(IStream& destination, std::uint64_t count, Copied& copied) {
    std::vector<std::uint8_t> buffer(std::min<std::uint64_t>(count, kCopyBuffer));
    while (copied.read < count) {
        const auto chunk = std::min<std::uint64_t>(buffer.size(), count - copied.read);
        const std::size_t got = node_->read_at(position_, {buffer.data(), chunk});
        if (got == 0) {
            return S_OK;
        }
        position_ += got;
        copied.read += got;
        ULONG put = 0;
        const HRESULT result = destination.Write(buffer.data(), static_cast<ULONG>(got), &put);
        copied.written += put;
        if (FAILED(result) || put < got) {
            return result;
        }
    }
    return S_OK;
}

HRESULT StreamObject::Commit(DWORD) {
    if (element_->is_reverted()) {
        return STG_E_REVERTED;
    }
    return guarded([&] {
        element_->engine().flush();
        return S_OK;
    });
}

HRESULT StreamObject::Revert() {
    return element_->is_reverted() ? STG_E_REVERTED : S_OK;
}

HRESULT StreamObject::LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) {
    return STG_E_INVALIDFUNCTION;
}

HRESULT StreamObject::UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) {
    return STG_E_INVALIDFUNCTION;
}

HRESULT StreamObject::Stat(STATSTG* stat, DWORD flags) {
    if (stat == nullptr) {
        return STG_E_INVALIDPOINTER;
    }
    if (const HRESULT refused = check_stat_flags(flags); FAILED(refused)) {
        return refused;
    }
    if (element_->is_reverted()) {
        return STG_E_REVERTED;
    }
    return guarded([&] {
        const compound_file::EntryInfo info = element_->engine().info(element_->entry());
        *stat = describe(info, info.name, mode_, flags);
        return S_OK;
    });
}

HRESULT StreamObject::Clone(IStream** clone) {
    if (clone == nullptr) {
        return STG_E_INVALIDPOINTER;
    }
    *clone = nullptr;
    if (element_->is_reverted()) {
        return STG_E_REVERTED;
    }
    return guarded([&] {
        *clone = new StreamObject(element_, node_, mode_, position_);
        return S_OK;
    });
}

} // namespace platform
