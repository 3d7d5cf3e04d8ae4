#include "reader/readable_size.h"

#include "common_new/common/storage.h"
#include "plugin/failure.h"

namespace ppt {

namespace {

std::uint64_t seek(IStream* stream, std::uint64_t offset, DWORD origin) {
    LARGE_INTEGER to{};
    to.QuadPart = static_cast<std::int64_t>(offset);
    ULARGE_INTEGER position{};
    require_success(j_translateComError(stream->Seek(to, origin, &position)));
    return position.QuadPart;
}

bool is_readable(IStream* stream, std::uint64_t offset) {
    seek(stream, offset, STREAM_SEEK_SET);
    std::uint8_t byte = 0;
    ULONG read = 0;
    const HRESULT result = stream->Read(&byte, 1, &read);
    require_memory_of(result);
    return SUCCEEDED(result) && read == 1;
}

} // namespace

std::uint64_t n_readableSize(IStream* stream, std::uint64_t claimed) {
    const std::uint64_t position = seek(stream, 0, STREAM_SEEK_CUR);
    std::uint64_t readable = claimed;
    if (claimed > 0 && !is_readable(stream, claimed - 1)) {
        std::uint64_t least = 0;
        for (std::uint64_t most = claimed - 1; least < most;) {
            const std::uint64_t middle = least + (most - least) / 2;
            if (is_readable(stream, middle)) {
                least = middle + 1;
            } else {
                most = middle;
            }
        }
        readable = least;
    }
    seek(stream, position, STREAM_SEEK_SET);
    return readable;
}

} // namespace ppt
