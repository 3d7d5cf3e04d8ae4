#include "platform/ole_link/link_stream.h"

#include "platform/base/error.h"

#include <utility>

namespace ole_link {

namespace {

constexpr std::uint32_t kVersion = 0x02000001;
constexpr std::uint32_t kLinkedObject = 1;
constexpr std::size_t kHeadSize = 16;
constexpr std::size_t kFlagsOffset = 4;
constexpr std::size_t kSizeSize = 4;
constexpr std::uint32_t kClassFollows = 0xFFFFFFFF;

void assign(bytes::Bytes& bytes, bytes::View data) {
    bytes.assign(data.begin(), data.end());
}

// Behind the monikers the class of the source is announced, unless the stream ends there.
bool ends_like_monikers(bytes::Cursor cursor) {
    return cursor.ok() && (cursor.remaining() == 0 || cursor.u32() == kClassFollows);
}

} // namespace

// False when the moniker does not lie inside the stream.
bool LinkStream::read_moniker(bytes::Cursor& cursor, bool size_counts_itself, Stored& moniker) {
    moniker.size = cursor.u32();
    std::size_t size = moniker.size;
    if (size_counts_itself && size != 0) {
        if (size < kSizeSize) {
            return false;
        }
        size -= kSizeSize;
    }
    assign(moniker.data, cursor.take(size));
    return cursor.ok();
}

void LinkStream::append_moniker(bytes::Bytes& out, const Stored& moniker) {
    bytes::append_u32(out, moniker.size);
    bytes::append(out, moniker.data);
}

bool LinkStream::read_monikers(bytes::Cursor& cursor, bool sizes_count_themselves) {
    sizes_count_themselves_ = sizes_count_themselves;
    return read_moniker(cursor, sizes_count_themselves, reserved_) &&
           read_moniker(cursor, sizes_count_themselves, relative_) &&
           read_moniker(cursor, sizes_count_themselves, absolute_);
}

LinkStream LinkStream::parse(bytes::View data) {
    LinkStream stream;
    bytes::Cursor head(data);
    assign(stream.head_, head.take(kHeadSize));
    if (!head.ok() || bytes::load_u32(data, 0) != kVersion) {
        throw platform::Error(platform::Errc::corrupt, "head of an OLE stream");
    }
    stream.is_link_ = (bytes::load_u32(data, kFlagsOffset) & kLinkedObject) != 0;
    if (!stream.is_link_) {
        assign(stream.rest_, head.take(head.remaining()));
        return stream;
    }
    // Writers disagree whether the size of a moniker counts its own four bytes; what stands behind
    // the monikers tells.
    bytes::Cursor counting = head;
    bytes::Cursor plain = head;
    bytes::Cursor* end = nullptr;
    if (stream.read_monikers(counting, true) && ends_like_monikers(counting)) {
        end = &counting;
    } else if (stream.read_monikers(plain, false)) {
        end = &plain;
    } else {
        throw platform::Error(platform::Errc::corrupt,
                              "monikers of an OLE stream of " + std::to_string(data.size()));
    }
    assign(stream.rest_, end->take(end->remaining()));
    return stream;
}

void LinkStream::set_absolute_source(bytes::Bytes moniker) {
    LinkStream changed = *this;
    const std::size_t own = sizes_count_themselves_ && !moniker.empty() ? kSizeSize : 0;
    changed.relative_ = {};
    changed.absolute_ = {static_cast<std::uint32_t>(moniker.size() + own), std::move(moniker)};
    // What stands behind the monikers of a damaged stream may make their sizes count otherwise.
    if (parse(changed.serialise()).absolute_.data != changed.absolute_.data) {
        throw platform::Error(platform::Errc::corrupt, "OLE stream with a new source");
    }
    *this = std::move(changed);
}

bytes::Bytes LinkStream::serialise() const {
    bytes::Bytes out = head_;
    if (is_link_) {
        append_moniker(out, reserved_);
        append_moniker(out, relative_);
        append_moniker(out, absolute_);
    }
    bytes::append(out, rest_);
    return out;
}

} // namespace ole_link
