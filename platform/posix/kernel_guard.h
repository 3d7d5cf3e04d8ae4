// What the kernel calls answer when memory runs out inside them: like the system's own they fail
// and say so in the last error. No exception leaves them.
#pragma once

#include "platform/posix/kernel.h"

#include <new>
#include <stdexcept>

namespace platform {

// The result of `body()`, or `failure` when there was no memory for it.
template <class Result, class Body>
Result guarded_by_last_error(Result failure, Body&& body) {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    } catch (const std::length_error&) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    }
    return failure;
}

} // namespace platform
