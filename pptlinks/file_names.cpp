#include "pptlinks/file_names.h"

#include "plugin/status.h"
#include "pptlinks/failure.h"
#include "pptlinks/machine.h"
#include "pptlinks/messages.h"
#include "pptlinks/text_encoding.h"

#include <system_error>

namespace pptlinks {

namespace {

bool is_separator(char c) {
    return c == '/' || c == '\\';
}

bool has_windows_root(const std::string& path) {
    const auto is_letter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
    const bool has_drive =
        path.size() > 2 && is_letter(path[0]) && path[1] == ':' && is_separator(path[2]);
    return has_drive || path.starts_with("\\\\");
}

std::string ansi_or_throw(const std::string& text) {
    const std::optional<std::string> ansi = ansi_from_utf8(text);
    if (!is_utf8(text) || !ansi) {
        StatusFailure failure(ppt::status::kNoUnicodeForm, {});
        if (!is_utf8(text)) {
            failure.worded_as = kNameNotUtf8;
        }
        throw failure;
    }
    return *ansi;
}

// Up to and including the last separator. In UTF-8, where no byte of a longer character is one.
std::string folder_of(const std::string& path) {
    return path.substr(0, path.find_last_of("/\\") + 1);
}

} // namespace

std::filesystem::path fs_path(const std::string& native) {
    return std::u8string(native.begin(), native.end());
}

std::string native_name(const std::filesystem::path& path) {
    const std::u8string name = path.u8string();
    return {name.begin(), name.end()};
}

std::string absolute_name(const std::string& typed) {
    if (has_windows_root(typed)) {
        return typed;
    }
    std::error_code no_current_folder;
    const std::string absolute =
        native_name(std::filesystem::absolute(fs_path(typed), no_current_folder));
    return no_current_folder ? typed : absolute;
}

FileName file_name(const std::string& typed) {
    FileName file;
    file.typed = typed;
    file.is_windows_path = has_windows_root(typed);
    if (file.is_windows_path) {
        file.ansi = ansi_or_throw(typed);
        file.native = native_path(file.ansi);
        return file;
    }
    file.native = absolute_name(typed);
    file.ansi = ansi_or_throw(file.native);
    return file;
}

FileName beside(const FileName& file, const std::string& name) {
    FileName other = file;
    other.native = native_name(fs_path(file.native).parent_path() / name);
    other.ansi = ansi_or_throw(file.is_windows_path ? folder_of(file.typed) + name : other.native);
    return other;
}

std::string folder_as_named(const FileName& file) {
    return folder_of(file.is_windows_path ? file.typed : file.native);
}

bool is_same_file(const std::string& a, const std::string& b) {
    std::error_code missing;
    return std::filesystem::equivalent(fs_path(a), fs_path(b), missing);
}

} // namespace pptlinks
