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

// False when the moniker does not lie inside the stream.
bool read_moniker(bytes::Cursor& cursor, bool size_counts_itself, bytes::Bytes& moniker) {
    std::size_t size = cursor.u32();
    if (size_counts_itself && size != 0) {
        if (size < kSizeSize) {
            return false;
        }
        size -= kSizeSize;
    }
    assign(moniker, cursor.take(size));
    return cursor.ok();
}

void append_moniker(bytes::Bytes& out, const bytes::Bytes& moniker, bool size_counts_itself) {
    const std::size_t own = size_counts_itself && !moniker.empty() ? kSizeSize : 0;
    bytes::append_u32(out, static_cast<std::uint32_t>(moniker.size() + own));
    bytes::append(out, moniker);
}

// Behind the monikers the class of the source is announced, unless the stream ends there.
bool ends_like_monikers(bytes::Cursor cursor) {
    return cursor.ok() && (cursor.remaining() == 0 || cursor.u32() == kClassFollows);
}

} // namespace

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
    relative_.clear();
    absolute_ = std::move(moniker);
}

bytes::Bytes LinkStream::serialise() const {
    bytes::Bytes out = head_;
    if (is_link_) {
        append_moniker(out, reserved_, sizes_count_themselves_);
        append_moniker(out, relative_, sizes_count_themselves_);
        append_moniker(out, absolute_, sizes_count_themselves_);
    }
    bytes::append(out, rest_);
    return out;
}

} // namespace ole_link
