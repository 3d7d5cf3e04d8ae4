// How failures travel: inside loading and rewriting a status code is thrown as an `int`; at the
// places that return statuses again every exception becomes one.
#pragma once

#include "platform/platform.h"
#include "plugin/status.h"

#include <cstdint>
#include <new>

namespace ppt {

// Throws every status but 0.
inline void require_success(std::int32_t status) {
    if (status != status::kSuccess) {
        throw static_cast<int>(status);
    }
}

// Whether memory ran out, that of the plug-in or that of the system. Such a failure tells nothing
// about the file: whoever makes another status of failures, or goes on in spite of them, lets this
// one through.
inline bool is_out_of_memory(std::int32_t status) {
    return status == status::kOutOfMemory || status == status::kSystemOutOfMemory;
}

// Throws the status when memory ran out.
inline void require_memory(std::int32_t status) {
    if (is_out_of_memory(status)) {
        throw static_cast<int>(status);
    }
}

// The same for a COM result.
inline void require_memory_of(HRESULT result) {
    if (result == STG_E_INSUFFICIENTMEMORY || result == E_OUTOFMEMORY) {
        throw static_cast<int>(status::kSystemOutOfMemory);
    }
}

// The status that `call` returns or throws; 8800 when memory ran out; what `unexpected` gives for
// any other exception.
template <class Call, class Unexpected>
std::int32_t status_of(Call call, Unexpected unexpected) {
    try {
        return call();
    } catch (int failure) {
        return failure;
    } catch (const std::bad_alloc&) {
        return status::kOutOfMemory;
    } catch (...) {
        return unexpected();
    }
}

// The same with a fixed status for unexpected exceptions.
template <class Call>
std::int32_t status_or(std::int32_t unexpected, Call call) {
    return status_of(call, [unexpected] { return unexpected; });
}

} // namespace ppt
