// See property_stream.h.
#include "platform/adapters/property_stream.h"

#include "platform/adapters/statstg.h"

#include <algorithm>

namespace platform {
namespace {

constexpr std::size_t kChunk = 64 * 1024;

HRESULT go_to_start(IStream& stream) {
    return stream.Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, nullptr);
}

HRESULT write_all(IStream& stream, bytes::View content) {
    while (!content.empty()) {
        ULONG written = 0;
        const HRESULT result =
            stream.Write(content.data(), static_cast<ULONG>(content.size()), &written);
        if (FAILED(result)) {
            return result;
        }
        if (written == 0 || written > content.size()) {
            return STG_E_MEDIUMFULL;
        }
        content = content.subspan(written);
    }
    return S_OK;
}

} // namespace

HRESULT read_property_stream(IStream& stream, bytes::Bytes& content) {
    content.clear();
    if (const HRESULT result = go_to_start(stream); FAILED(result)) {
        return result;
    }
    STATSTG stat{};
    if (SUCCEEDED(stream.Stat(&stat, STATFLAG_NONAME))) {
        content.reserve(static_cast<std::size_t>(
                            std::min<std::uint64_t>(stat.cbSize.QuadPart, kMaxPropertyStream)) +
                        kChunk);
    }
    for (;;) {
        const std::size_t had = content.size();
        content.resize(had + kChunk);
        ULONG read = 0;
        const HRESULT result = stream.Read(content.data() + had, static_cast<ULONG>(kChunk), &read);
        if (FAILED(result)) {
            return result;
        }
        content.resize(had + std::min<std::size_t>(read, kChunk));
        if (read == 0) {
            return S_OK;
        }
        if (content.size() > kMaxPropertyStream) {
            return STG_E_DOCFILETOOLARGE;
        }
    }
}

HRESULT write_property_stream(IStream& stream, bytes::View content) {
    STATSTG stat{};
    HRESULT result = stream.Stat(&stat, STATFLAG_NONAME);
    if (SUCCEEDED(result) && stat.cbSize.QuadPart < content.size()) {
        result = stream.SetSize(large(content.size()));
    }
    if (SUCCEEDED(result)) {
        result = go_to_start(stream);
    }
    if (SUCCEEDED(result)) {
        result = write_all(stream, content);
    }
    if (SUCCEEDED(result) && stat.cbSize.QuadPart > content.size()) {
        result = stream.SetSize(large(content.size()));
    }
    return SUCCEEDED(result) ? stream.Commit(STGC_DEFAULT) : result;
}

} // namespace platform
