// The last error: one number per thread, as the system keeps it. A call that succeeds leaves it
// alone.
#include "platform/posix/kernel.h"

namespace {

thread_local DWORD last_error = ERROR_SUCCESS;

} // namespace

DWORD GetLastError() {
    return last_error;
}

void SetLastError(DWORD error) {
    last_error = error;
}
