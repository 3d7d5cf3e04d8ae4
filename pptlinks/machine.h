// What the command-line host asks of the machine beside the plug-in's calls; posix/ and windows/
// answer.
#pragma once

#include <cstdint>
#include <string>
#include <system_error>

namespace pptlinks {

// The settings behind --code-page, --drive and --trust-targets. They throw UsageError for what this
// system does not take.
void use_code_page(std::uint32_t page);
void map_drive(const std::string& entry);
void trust_link_targets(bool trust);

// The path by which this system finds the file that a Windows path in the ANSI code page names, in
// the encoding of std::filesystem. Empty when its drive or share is not known here.
std::string native_path(const std::string& ansi_path);

// What tells a file from another one, and from itself after a change. All zero for a file that is
// not there.
struct FileIdentity {
    std::uint64_t volume = 0;
    std::uint64_t number = 0; // on the volume
    std::uint64_t size = 0;
    std::uint64_t written = 0; // when, in the finest units that the system keeps

    bool operator==(const FileIdentity&) const = default;
};
FileIdentity identity_of(const std::string& native);

// Whether the file may be written.
bool is_writable(const std::string& native);

// Creates an empty file that nobody else may read. The X at the end of `path` become the letters of
// a name that was free. There is one at a time. A process that is interrupted removes it, on
// Windows it leaves it.
std::error_code create_temporary_file(std::string& path);

// Gives the temporary file the permissions of the file at `old` that it will replace, or, when
// there is none, those of a new file. What replaces another is on the disk afterwards.
std::error_code finish_temporary_file(const std::string& path, const std::string& old);

// Gives the temporary file its name for good, in place of a file that has it.
std::error_code rename_temporary_file(const std::string& path, const std::string& out);

// Removes the temporary file as far as that can be done, also when it is a copy of a read-only one.
void remove_temporary_file(const std::string& path);

} // namespace pptlinks
