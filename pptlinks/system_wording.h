// What pptlinks says where the system decides: Windows knows its code page, drives and shares by
// itself, elsewhere options tell of them. On Windows these options are refused, so no text there
// names them.
#pragma once

namespace pptlinks {

#if defined(_WIN32)
// Of the options in the help; one without a name is not shown.
inline constexpr const char* kSettingsGroup = "";

// Examples in the help, with their line ends.
inline constexpr const char* kCheckOnDrives = "";
inline constexpr const char* kListOnDrives = "";
inline constexpr const char* kTrustTargets = "";

// What a user can do about a name or text that the code page does not have.
inline constexpr const char* kChangeCodePage =
    "choose a name that the code page of this system has";
// What else than naming the whole path a user can do about one that the code page does not have.
inline constexpr const char* kOrChangeCodePage = "";
// About a folder that is not there.
inline constexpr const char* kFindFolder = "check the path, and connect its drive or share";
// About the source of a linked object that is not there.
inline constexpr const char* kFindSource = "connect its drive or share, or put it there first";
#else
inline constexpr const char* kSettingsGroup = "Options";

inline constexpr const char* kCheckOnDrives =
    R"(  pptlinks check --drive 'C:=/mnt/c' --drive '\\srv\pub=/mnt/pub' *.ppt
)";
inline constexpr const char* kListOnDrives =
    R"(  pptlinks list --drive 'Z:=/mnt/z' --drive '\\srv\pub=/mnt/pub' 'Z:\talks\q3.ppt'
)";
inline constexpr const char* kTrustTargets =
    R"(  pptlinks relink talk.ppt -o new.ppt --set '2=\\srv\pub\Book.xls!Sheet1' --trust-targets
)";

inline constexpr const char* kChangeCodePage = "choose another --code-page";
inline constexpr const char* kOrChangeCodePage = ", or choose another --code-page";
inline constexpr const char* kFindFolder =
    "check the path, and name its drive or share with --drive";
inline constexpr const char* kFindSource =
    "map its drive or share with --drive, or use --trust-targets if this machine cannot see it";
#endif

} // namespace pptlinks
