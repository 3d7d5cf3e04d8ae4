// The version of a presentation, as its "Current User" stream tells it ([MS-PPT] CurrentUserAtom,
// majorVersion). All files of the format say 3.
#include "hostapi/hostapi.h"

namespace {

// Behind the record header: size, token, offset of the current edit, length of the user name and
// version of the document file.
constexpr std::int64_t kMajorVersionOffset = 24;

} // namespace

std::int32_t HOSTAPI_CALL j_getPowerPointVersion(IStorage* root) {
    ComPtr<IStream> current_user;
    if (FAILED(root->OpenStream(WIDE("Current User"), nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, 0,
                                current_user.put()))) {
        return 0;
    }
    LARGE_INTEGER offset{};
    offset.QuadPart = kMajorVersionOffset;
    BYTE version = 0;
    ULONG count = 0;
    if (FAILED(current_user->Seek(offset, STREAM_SEEK_SET, nullptr)) ||
        FAILED(current_user->Read(&version, 1, &count)) || count != 1) {
        return 0;
    }
    return version;
}
