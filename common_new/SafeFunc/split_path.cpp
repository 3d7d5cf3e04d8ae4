#include "common_new/SafeFunc/split_path.h"

#include "common_new/assert_report.h"
#include "platform/platform.h"

namespace ppt {

namespace {

bool ends_in_separator(std::string_view text) {
    bool separator = false;
    for (std::size_t at = 0; at < text.size(); at += character_size(text, at)) {
        separator = is_separator(text[at]);
    }
    return separator;
}

} // namespace

std::size_t character_size(std::string_view text, std::size_t at) {
    const bool whole = at + 1 < text.size();
    return whole && IsDBCSLeadByte(static_cast<BYTE>(text[at])) != FALSE ? 2 : 1;
}

std::string_view whole_characters(std::string_view text, std::size_t size) {
    std::size_t end = 0;
    while (end < text.size() && end + character_size(text, end) <= size) {
        end += character_size(text, end);
    }
    return text.substr(0, end);
}

PathParts split_path(std::string_view path) {
    PathParts parts;
    if (has_drive(path)) {
        parts.drive = path.substr(0, 2);
        path.remove_prefix(2);
    }
    std::size_t name_begin = 0;
    std::size_t dot = path.size();
    for (std::size_t at = 0; at < path.size(); at += character_size(path, at)) {
        if (is_separator(path[at])) {
            name_begin = at + 1;
            dot = path.size();
        } else if (path[at] == '.') {
            dot = at;
        }
    }
    parts.directory = path.substr(0, name_begin);
    parts.file_name = path.substr(name_begin, dot - name_begin);
    parts.extension = path.substr(dot);
    return parts;
}

bool b_splitPath(std::string_view path, std::size_t directory_capacity, PathParts* parts) {
    *parts = split_path(path);
    const bool fits = parts->directory.size() < directory_capacity &&
                      parts->file_name.size() < kNameCapacity &&
                      parts->extension.size() < kNameCapacity;
    if (!fits) {
        *parts = PathParts();
    }
    return fits;
}

std::int32_t n_makePath(std::string* destination, std::size_t size, std::string_view drive,
                        std::string_view directory, std::string_view file_name,
                        std::string_view extension) {
    if (destination == nullptr) {
        report_assertion("destination != nullptr", kSourceSafeFunc);
        return kMakePathInvalid;
    }
    if (size == 0) {
        report_assertion("size > 0", kSourceSafeFunc);
        return kMakePathInvalid;
    }
    std::string path;
    if (!drive.empty()) {
        path += drive.front();
        path += ':';
    }
    path += directory;
    if (!directory.empty() && !ends_in_separator(directory)) {
        path += '\\';
    }
    path += file_name;
    if (!extension.empty() && extension.front() != '.') {
        path += '.';
    }
    path += extension;
    if (path.size() >= size) {
        report_assertion("path.size() < size", kSourceSafeFunc);
        destination->clear();
        return kMakePathNoRoom;
    }
    *destination = std::move(path);
    return 0;
}

} // namespace ppt
