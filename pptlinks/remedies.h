// What a user can do where the system decides: Windows knows its code page, drives and shares by
// itself, elsewhere options tell of them.
#pragma once

namespace pptlinks {

#if defined(_WIN32)
// About a name or text that the code page does not have.
inline constexpr const char* kChangeCodePage =
    "choose a name that the code page of this system has";
// About a folder that is not there.
inline constexpr const char* kFindFolder = "check the path, and connect its drive or share";
// About the source of a linked object that is not there.
inline constexpr const char* kFindSource = "connect its drive or share, or put it there first";
#else
inline constexpr const char* kChangeCodePage = "choose another --code-page";
inline constexpr const char* kFindFolder =
    "check the path, and name its drive or share with --drive";
inline constexpr const char* kFindSource =
    "map its drive or share with --drive, or use --trust-targets "
    "if this machine cannot see it";
#endif

} // namespace pptlinks
