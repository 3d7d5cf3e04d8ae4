#include "platform/adapters/display_name.h"

#include "platform/code_page/code_page.h"
#include "platform/platform.h"

#include <algorithm>
#include <new>

namespace platform {

namespace {

constexpr char16_t kDelimiter = u'!';

std::string ansi_text(std::u16string_view text) {
    const auto ansi = code_page::encode_lossy(GetACP(), text, '?');
    return ansi ? std::string(ansi->begin(), ansi->end()) : std::string();
}

bool is_ascii(std::u16string_view text) {
    return std::all_of(text.begin(), text.end(), [](char16_t unit) { return unit < 0x80; });
}

// The length of the longest beginning, whole or in front of a '!', that is an existing file; 0 when
// there is none.
std::size_t existing_file(std::u16string_view name) {
    std::size_t length = name.size();
    while (length > 0 && !is_file(name.substr(0, length))) {
        length = name.rfind(kDelimiter, length - 1);
        length = length == std::u16string_view::npos ? 0 : length;
    }
    return length;
}

} // namespace

DWORD attributes_of(std::u16string_view path) {
    const std::string ansi = ansi_text(path);
    if (ansi.empty()) {
        return INVALID_FILE_ATTRIBUTES;
    }
    const DWORD attributes = GetFileAttributesA(ansi.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES && GetLastError() == ERROR_NOT_ENOUGH_MEMORY) {
        throw std::bad_alloc();
    }
    return attributes;
}

bool is_file(std::u16string_view path) {
    const DWORD attributes = attributes_of(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

std::u16string wide_text(const ole_link::Text& text) {
    if (text.wide) {
        return *text.wide;
    }
    const bytes::View ansi(reinterpret_cast<const std::uint8_t*>(text.ansi.data()),
                           text.ansi.size());
    return code_page::decode_lossy(GetACP(), ansi).value_or(std::u16string());
}

ole_link::Text stored_text(std::u16string_view text) {
    ole_link::Text stored{ansi_text(text)};
    if (!is_ascii(text)) {
        stored.wide = text;
    }
    return stored;
}

std::u16string display_name_of_items(const ole_link::Moniker& source) {
    std::u16string name;
    for (const ole_link::Item& item : source.items) {
        name += wide_text(item.delimiter) + wide_text(item.name);
    }
    return name;
}

std::u16string display_name(const ole_link::Moniker& source) {
    return (source.file ? wide_text(*source.file) : std::u16string()) +
           display_name_of_items(source);
}

SourceName split_display_name(std::u16string_view name, std::u16string_view known_items) {
    std::size_t length = existing_file(name);
    const bool has_known_items =
        !known_items.empty() && name.size() > known_items.size() && name.ends_with(known_items);
    if (length == 0 && has_known_items) {
        length = name.size() - known_items.size();
    }
    if (length == 0) {
        const std::size_t separator = name.find_last_of(u"\\/");
        const std::size_t component = separator == std::u16string_view::npos ? 0 : separator + 1;
        length = std::min(name.find(kDelimiter, component), name.size());
    }
    return {name.substr(0, length), name.substr(length)};
}

} // namespace platform
