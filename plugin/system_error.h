// Windows system errors as status codes, and the system error form of the error parameters: whether
// the code is a COM result, the code in hexadecimal, and the system's message or else the code's
// symbolic name.
#pragma once

#include <cstdint>

namespace ppt {

// Sets the error parameters to the system error form of `code`, a COM result or a Windows error.
void v_setErrorParamSystem(std::uint32_t code, bool is_com_result);

// The status code of the thread's last error, whose system error form becomes the error parameters.
// A last error of 0 gives 0 and leaves the parameters alone.
std::int32_t n_translateSystemError();

} // namespace ppt
