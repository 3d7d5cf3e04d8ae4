// The sentences themselves; messages.h says how a row is read.
#include "pptlinks/messages.h"
#include "pptlinks/system_wording.h"

#include "plugin/status.h"

namespace pptlinks {

namespace {

using namespace ppt::status;

constexpr const char* kSaveAgain =
    "open it in the program that made it, save it again and try once more";
constexpr const char* kGetWholeFile = "get a whole copy of the file and try again";
constexpr const char* kCheckMedium = "check the disk or the network connection and try again";
constexpr const char* kCloseOthers = "close the other program and try again";
constexpr const char* kReport = "try again, and report this with the file if it happens again";
constexpr const char* kFreeMemory = "close other programs and try again";
constexpr const char* kCheckName = "check the name and try again";

constexpr Message kMessages[] = {
    {kIsDevice, Culprit::presentation, "this is a device or a pipe",
     "copy the presentation into a file and name that"},
    {kIsFolder, Culprit::presentation, "this is a folder", "name the presentations in it"},
    {kNameNotUtf8, Culprit::copy, "its name or that of a folder above it is not valid UTF-8",
     "rename that and try again"},
    {kVersionAboveCeiling, Culprit::presentation,
     "its format version[ {1}] is above[ {2},] the newest that can be read",
     "save it as a PowerPoint 97-2003 presentation and try again"},
    {kNoFullPath, Culprit::copy, "its full path cannot be formed[ in {2} bytes]",
     "use a shorter path"},
    {kWriteFault, Culprit::copy, "writing it failed[ ({reason})]", kCheckMedium},
    {kCopyFailed, Culprit::copy, "the presentation could not be copied to it",
     "check that both folders can be reached and try again"},
    {kShortWrite, Culprit::copy, "not all of it could be written[ ({3} of {2} bytes)]",
     "free some space on the disk and try again"},
    {kSeekFromStartFailed, Culprit::presentation,
     "a place in it cannot be reached[ (offset {2})], so it is probably damaged", kSaveAgain},
    {kSeekFromHereFailed, Culprit::presentation,
     "a step within it cannot be made[ (by {2} bytes)], so it is probably damaged", kSaveAgain},
    {kSeekFromEndFailed, Culprit::presentation,
     "a place near its end cannot be reached[ (offset {2})], so it is probably damaged",
     kSaveAgain},
    {kStorageOnMemoryFailed, Culprit::presentation,
     "an object embedded in it cannot be opened[ ({1} bytes, with {2} bytes of memory free)]",
     kSaveAgain},
    {kFileInUse, Culprit::copy, "it is in use by another program", kCloseOthers},
    {kAccessDenied, Culprit::copy, "access to it is denied[ to user {2}]",
     "check the permissions of the file and its folder"},
    {kShareViolation, Culprit::copy,
     "another program uses it, or a file of this name exists already", kCloseOthers},
    {kWriteProtected, Culprit::copy, "it may not be written[ by user {2}]",
     "remove the write protection or choose another folder"},
    {kNotAPresentation, Culprit::presentation,
     "it is not a PowerPoint 97-2003 presentation, or it is protected by a password",
     "save it in that format without a password and try again"},
    {kNoUnicodeForm, Culprit::presentation,
     "a text or name cannot be written in the code page in use", kChangeCodePage},
    {kReadFault, Culprit::presentation, "reading it failed[ ({reason})]", kCheckMedium},
    {kTextTooLong, Culprit::presentation,
     "a path or another text is too long[ (it must stay below {2} bytes)]", "use a shorter path"},
    {kEndOfFile, Culprit::presentation, "it ends too early", kGetWholeFile},
    {kBadDecompression, Culprit::presentation,
     "an object embedded in it is damaged and cannot be unpacked", kSaveAgain},
    {kLoadFailed, Culprit::presentation, "loading it failed unexpectedly", kReport},
    {kShortRead, Culprit::presentation, "it ends too early[ ({2} of {3} bytes could be read)]",
     kGetWholeFile},
    {kPropertiesFailed, Culprit::presentation, "its document properties cannot be read",
     kSaveAgain},
    {kElementMissing, Culprit::presentation,
     "a part that every presentation has is missing in it[ (\"{2}\")]",
     "check that it is a PowerPoint 97-2003 presentation"},
    {kFileNotFound, Culprit::presentation, "there is no such file", kCheckName},
    {kPathNotFound, Culprit::copy, "its folder, drive or share is not there", kFindFolder},
    {kInUseByOther, Culprit::copy, "it is in use by another program", kCloseOthers},
    {kStorageWriteFault, Culprit::copy, "writing it failed[ ({reason})]", kCheckMedium},
    {kDeviceNotReady, Culprit::copy, "its drive is not ready", kCheckMedium},
    {kTooManyOpenFiles, Culprit::presentation, "too many files are open", kFreeMemory},
    {kBadPathName, Culprit::copy, "its name is not a valid path[ (see character {2})]", kCheckName},
    {kInvalidName, Culprit::copy, "its name is not valid", kCheckName},
    {kOpenFailed, Culprit::copy, "it could not be opened[ ({reason})]", kCheckMedium},
    {kSystemError, Culprit::presentation, "the system reported an error[ ({reason})]", kReport},
    {kDamaged, Culprit::presentation, "it is damaged or built in a way that is not understood",
     kSaveAgain},
    {kIndexOutOfRange, Culprit::presentation,
     "it has no link with the number[ {1}, only {2} links counted from 0]",
     "look up the number with \"pptlinks list\""},
    {kNullArgument, Culprit::presentation, "an argument is not valid[ ({reason})]", kReport},
    {kInvalidFunction, Culprit::presentation, "an operation on it is not allowed[ ({reason})]",
     kReport},
    {kOutOfMemory, Culprit::presentation,
     "there is not enough memory for it[ ({1} bytes wanted, {2} free)]", kFreeMemory},
    {kDiskFull, Culprit::copy, "the disk[ {1}] is full", "free some space and try again"},
    {kSystemOutOfMemory, Culprit::presentation, "the system has not enough memory for it",
     kFreeMemory},
};

} // namespace

std::span<const Message> message_table() {
    return kMessages;
}

} // namespace pptlinks
