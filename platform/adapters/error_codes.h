// Results at the door of the interfaces: one table from the engines' error codes to HRESULTs, and
// the guard that every interface method and every exported storage function runs its body under, so
// that no exception leaves an interface.
#pragma once

#include "platform/base/error.h"
#include "platform/platform.h"

namespace platform {

// A value that is of none of the known types (ERROR_NOT_SUPPORTED).
inline constexpr HRESULT kNotSupported = static_cast<HRESULT>(0x80070032);

// The HRESULT that callers see for an engine's error.
HRESULT result_of(Errc code);

// The HRESULT for the exception being handled: the table for platform::Error,
// STG_E_INSUFFICIENTMEMORY for std::bad_alloc, E_UNEXPECTED for anything else. Only to be called
// inside a catch block.
HRESULT result_of_current_exception() noexcept;

// The result of `body()`, which returns an HRESULT, or that of the exception that left it.
template <class Body>
HRESULT guarded(Body&& body) noexcept {
    try {
        return body();
    } catch (...) {
        return result_of_current_exception();
    }
}

} // namespace platform
