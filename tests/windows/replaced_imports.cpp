// Puts our engines in place of single functions of the system in whatever this file is linked into:
// code that was compiled to call the system's functions calls through the pointers below, which
// otherwise the loader fills.
#include "platform/platform.h"

#if defined(__i386__)
#define IMPORT_POINTER(name, argument_bytes) __asm__("__imp__" #name "@" #argument_bytes)
#else
#define IMPORT_POINTER(name, argument_bytes) __asm__("__imp_" #name)
#endif

#define REPLACED(name, argument_bytes)                                                             \
    extern decltype(&::name) const pointer_to_##name IMPORT_POINTER(name, argument_bytes);         \
    decltype(&::name) const pointer_to_##name = &::name;

extern "C" {
REPLACED(StgOpenPropStg, 20)
REPLACED(StgCreatePropStg, 24)
REPLACED(OleLoad, 16)
REPLACED(OleSave, 12)
REPLACED(MkParseDisplayName, 16)
}
