// The system's message texts, English, in wording of our own, without the line end that the system
// puts behind each.
#pragma once

#include "platform/posix/types.h"

namespace platform {

// The text for a Windows error number, for the same number in its 0x8007xxxx form or for a COM
// result; null for a code without a text.
const char* message_text(DWORD code);

} // namespace platform
