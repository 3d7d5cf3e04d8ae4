// CoInitialize: there is nothing to start here, but the results tell a first call from a later one
// of the same thread, as callers expect.
#include "platform/posix/kernel.h"

namespace {

thread_local std::uint32_t initializations = 0;

} // namespace

HRESULT CoInitialize(void* reserved) {
    if (reserved != nullptr) {
        return E_INVALIDARG;
    }
    return initializations++ == 0 ? S_OK : S_FALSE;
}

void CoUninitialize() {
    if (initializations > 0) {
        --initializations;
    }
}
