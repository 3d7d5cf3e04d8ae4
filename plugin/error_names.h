// Symbolic names of system error codes, as the platform's error header gives them.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ppt {

struct ErrorName {
    std::uint32_t code;
    const char* name;
};

// Sorted by code, each code once. Win32 error numbers stand in their 0x8007xxxx form.
extern const ErrorName kErrorNames[];
extern const std::size_t kErrorNameCount;

// The name of a COM result or of a Win32 error number in its 0x8007xxxx form, at most 99
// characters; "Unknown or new error" for a code that has none, and an empty text for one that
// applications define for themselves (FACILITY_ITF from 512, FACILITY_CONTROL from 600). Never
// null. Cost: a binary search.
const char* error_name(std::uint32_t code);

} // namespace ppt
