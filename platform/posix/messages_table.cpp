// The message texts: Windows error numbers and COM results, each table sorted by code.
#include "platform/posix/messages.h"

#include <algorithm>
#include <iterator>

namespace platform {

namespace {

struct Message {
    DWORD code;
    const char* text;
};

constexpr Message kSystemMessages[] = {
    {0, "The operation was successful."},
    {1, "The function is not valid here."},
    {2, "The file was not found."},
    {3, "The path was not found."},
    {4, "No more files can be opened."},
    {5, "Access is denied."},
    {6, "The handle is not valid."},
    {7, "The memory control blocks are damaged."},
    {8, "There is not enough memory for this operation."},
    {9, "The address of the memory block is not valid."},
    {10, "The environment is not correct."},
    {11, "The format of the program is not correct."},
    {12, "The access code is not valid."},
    {13, "The data is not valid."},
    {14, "There is not enough memory to complete this operation."},
    {15, "The drive was not found."},
    {16, "The current directory cannot be removed."},
    {17, "The file cannot be moved to another disk drive."},
    {18, "There are no more files."},
    {19, "The medium is write-protected."},
    {20, "The device was not found."},
    {21, "The device is not ready."},
    {22, "The device does not know the command."},
    {23, "A checksum of the data is wrong."},
    {24, "The length of the command is wrong."},
    {25, "The drive cannot find the given place on the disk."},
    {26, "The disk cannot be accessed."},
    {27, "The sector was not found."},
    {28, "The printer is out of paper."},
    {29, "The device could not be written to."},
    {30, "The device could not be read from."},
    {31, "The device is not working as it should."},
    {32, "The file is in use by another process."},
    {33, "A part of the file is locked by another process."},
    {34, "The wrong disk is in the drive."},
    {35, "An unknown system error occurred."},
    {36, "Too many files are open for sharing."},
    {38, "The end of the file was reached."},
    {39, "The disk is full."},
    {50, "The request is not supported."},
    {53, "The network path was not found."},
    {65, "Access to the network is denied."},
    {67, "The network name was not found."},
    {80, "The file exists already."},
    {82, "The folder or file cannot be created."},
    {83, "A critical error handler failed."},
    {87, "A parameter is not correct."},
    {89, "No more processes can be started now."},
    {108, "The disk is in use or locked by another process."},
    {109, "The pipe was closed at its other end."},
    {110, "The device or file cannot be opened."},
    {111, "The file name is too long."},
    {112, "There is not enough space on the disk."},
    {114, "The handle of the target is not valid."},
    {122, "The buffer is too small for the data."},
    {123, "The name of the file, folder or drive is not valid."},
    {124, "The level of information is not known to this call."},
    {128, "There are no child processes to wait for."},
    {129, "The program cannot run in this mode."},
    {130, "The handle of an open disk can only be used for direct access."},
    {131, "The position would lie before the start of the file."},
    {132, "The position of this device or file cannot be changed."},
    {145, "The folder is not empty."},
    {157, "The memory block was discarded."},
    {158, "The block or range is not locked."},
    {161, "The path is not valid."},
    {164, "No more threads can be started."},
    {167, "The range of the file cannot be locked."},
    {183, "A file of this name exists already and cannot be created."},
    {188, "The program file has no valid starting code segment."},
    {189, "The program file has no valid stack segment."},
    {190, "The module type of the program file is not valid."},
    {191, "The program file is marked as damaged or incomplete."},
    {192, "The program file marks a data segment as both fixed and iterated."},
    {193, "The file is not a valid program."},
    {194, "An iterated data segment of the program is too large."},
    {195, "The program file has a data segment that is too large."},
    {196, "The system cannot run this program."},
    {197, "The system is not set up to run this program."},
    {198, "A segment of the program has no room for its relocations."},
    {199, "The automatic data segment of the program is too large."},
    {200, "The code segment is too large."},
    {201, "A relocation chain of the program leads out of its segment."},
    {202, "A relocation chain of the program is endless."},
    {206, "The file name or its extension is too long."},
    {215, "Signals cannot be nested."},
    {223, "The file is too large."},
    {234, "More data is available than the buffer holds."},
    {267, "The name is not that of a folder."},
    {317, "There is no text for this message number."},
    {1004, "The flags are not valid."},
    {1113, "A character has no counterpart in the other code page."},
    {1117, "An input or output error occurred on the device."},
    {1200, "The name of the device is not valid."},
    {1201, "The device is not connected now, but its connection is remembered."},
    {1203, "The network path is wrong or no network can take it."},
    {1222, "There is no network."},
    {1332, "An account name was not found."},
    {1815, "The resource does not exist in this language."},
    {1816, "The quota does not allow for this request."},
    {1921, "The name cannot be resolved."},
    {2250, "The drive is not connected to a network share."},
};

constexpr Message kComMessages[] = {
    {0x80004001, "The function does not exist in this object."},
    {0x80004002, "The object does not have this interface."},
    {0x80004003, "A pointer is not valid."},
    {0x80004004, "The operation was cancelled."},
    {0x80004005, "The operation failed for a reason that has no code of its own."},
    {0x8000FFFF, "The operation failed in a way that was not expected."},
    {0x80030001, "The storage cannot do this operation."},
    {0x80030002, "The file, stream or storage was not found."},
    {0x80030003, "The path of the storage was not found."},
    {0x80030004, "No more storages can be opened."},
    {0x80030005, "Access to the storage is denied."},
    {0x80030006, "The storage has been closed or is not valid."},
    {0x80030008, "There is not enough memory for this operation of the storage."},
    {0x80030009, "A pointer given to the storage is not valid."},
    {0x80030012, "There are no more elements."},
    {0x80030013, "The medium of the storage is write-protected."},
    {0x80030019, "The position in the stream could not be set."},
    {0x8003001D, "The storage could not be written to the disk."},
    {0x8003001E, "The storage could not be read from the disk."},
    {0x80030020, "The storage is in use elsewhere."},
    {0x80030021, "A part of the storage is locked."},
    {0x80030050, "An element of this name exists already."},
    {0x80030057, "A parameter given to the storage is not correct."},
    {0x80030070, "There is not enough space on the disk for the storage."},
    {0x800300FA, "The call to the storage ended in an unexpected way."},
    {0x800300FB, "The file is not a valid compound file."},
    {0x800300FC, "The name of the stream or storage is not valid."},
    {0x800300FD, "An unexpected error occurred in the storage."},
    {0x800300FE, "The storage does not have this function."},
    {0x800300FF, "A flag given to the storage is not valid."},
    {0x80030100, "The storage is busy."},
    {0x80030101, "The storage was changed by others since it was opened."},
    {0x80030102, "The storage or stream was closed by its parent."},
    {0x80030103, "The storage cannot be saved."},
    {0x80030104, "The format of the compound file belongs to an older version."},
    {0x80030105, "The format of the compound file belongs to a newer version."},
    {0x80030106, "The storage needs a sharing service that is not there."},
    {0x80030109, "The compound file is damaged."},
    {0x80030111, "The compound file is too large for its format."},
    {0x80040000, "The description of a verb is not valid."},
    {0x80040004, "There is no connection of this number."},
    {0x80040154, "The class of the object is not registered on this machine."},
    {0x800401E3, "The operation is not available for this moniker."},
    {0x800401E4, "The text is not a valid name of an object."},
    {0x800401E5, "The object that the name means was not found."},
    {0x800401EA, "The file of the link could not be opened."},
    {0x800401F0, "COM was not started in this thread."},
};

constexpr bool precedes(const Message& a, const Message& b) {
    return a.code < b.code;
}

static_assert(std::is_sorted(std::begin(kSystemMessages), std::end(kSystemMessages), precedes));
static_assert(std::is_sorted(std::begin(kComMessages), std::end(kComMessages), precedes));

template <std::size_t size>
const char* find(const Message (&messages)[size], DWORD code) {
    const auto found = std::lower_bound(
        std::begin(messages), std::end(messages), code,
        [](const Message& message, DWORD wanted) { return message.code < wanted; });
    return found != std::end(messages) && found->code == code ? found->text : nullptr;
}

} // namespace

const char* message_text(DWORD code) {
    constexpr DWORD kSystemFacility = 0x80070000;
    const bool is_system_form = (code & 0xFFFF0000) == kSystemFacility;
    if (const char* text = find(kSystemMessages, is_system_form ? code & 0xFFFF : code)) {
        return text;
    }
    return find(kComMessages, code);
}

} // namespace platform
