// Operations on the paths of links: comparing them, writing them relative to the presentation that
// holds the links (the master) and resolving them against it. Paths are ANSI, at most 1023 bytes.
// Only `v_resolveLinkPath` asks the system anything.
//
// A null argument throws 8300, a path that is too long 7140 with the path and its limit as error
// parameters, a path whose parts do not fit 8000; each as an `int`.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace ppt {

// Equal up to ASCII letter case, '/' for '\', and a leading ".\" and then a leading ".." skipped.
bool b_pathsEqual(const char* first, const char* second);

// Whether a hyperlink address stored in the document names another place than a link's file name.
// A file name's drive does not count when the address has none.
bool b_linkAddressesDiffer(const char* address, const char* file_name);

// The normal form of an address: its pieces between '!' joined without it, those that are a single
// apostrophe left out, the leading ".\" and ".." skipped, '/' as '\', ASCII upper case. Two
// addresses of which both or none have a drive do not differ exactly when their keys are equal; for
// an address without a drive, take the key of the file name behind its drive (has_drive in
// split_path.h). Cost: linear.
std::string link_address_key(std::string_view address);

// The target as seen from the master's folder: without the folder when it lies below it, else
// without the master's drive or share when it lies there, else unchanged. Never with "..".
void v_makeRelativePath(const char* target, const char* master, std::string* output);

// The absolute path of a link: unchanged when it has a drive or begins with two separators, else
// from the master's drive or folder on, and as its UNC name where that is on a network drive.
void v_resolveLinkPath(const char* link_path, const char* master, std::string* output);

// The text with its ASCII letters in lower case. The bytes of double-byte characters are none.
std::string ascii_lower(std::string_view text);

// Whether one of the characters +=@^*{}[]<>;'| makes the name unusable; the error parameters become
// the name and the 1-based position in bytes. The search ends at the first '?', which is none.
bool b_hasSpecialCharacter(std::string_view name);

// Sets the error parameters to the drive of the path (or an empty text) and the number; leaves them
// when the path does not split.
void v_setErrorParamDriveAndNumber(std::string_view path, std::int32_t number);

} // namespace ppt
