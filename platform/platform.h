// The system underneath the plug-in. Everything above platform/ includes this header and no other
// of this folder.
//
// On Windows it is the system itself. Elsewhere the same names, arguments, result codes and
// last-error values are declared by platform/posix/ and implemented there over our own engines.
#pragma once

#include "platform/base/bytes.h"
#include "platform/base/com_ptr.h"

#if defined(_WIN32)
#include <windows.h>

#include <lmcons.h>
#include <objbase.h>
#include <ole2.h>
#include <propidl.h>
#include <winnetwk.h>

#include "platform/windows/text_log.h"
#define WIDE(text) L##text
#else
#include "platform/posix/kernel.h"
#include "platform/posix/monikers.h"
#include "platform/posix/ole_link.h"
#include "platform/posix/property_storage.h"
#include "platform/posix/storage.h"
#include "platform/posix/types.h"
#define WIDE(text) u##text
#endif
