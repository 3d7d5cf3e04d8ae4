// A property set stream behind its IStream, read and written as a whole.
#pragma once

#include "platform/base/bytes.h"
#include "platform/platform.h"
#include "platform/property_set/format.h"

namespace platform {

// Streams above this size are not read: no property set is as large.
inline constexpr std::uint64_t kMaxPropertyStream = property_set::kMaxLargeStreamSize;

// All bytes of the stream; its size field is not relied on. Leaves the position anywhere.
HRESULT read_property_stream(IStream& stream, bytes::Bytes& content);

// Makes `content` the whole of the stream: grows it first, writes, cuts last, and flushes. After a
// failure the stream has its old or its new length.
HRESULT write_property_stream(IStream& stream, bytes::View content);

} // namespace platform
