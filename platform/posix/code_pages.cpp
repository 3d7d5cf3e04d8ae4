// Code pages as the system offers them, over platform/code_page/, and the choice of the ANSI code
// page: settings, then PPT_CODE_PAGE, then the codeset of the locale that the environment names.
#include "platform/base/bytes.h"
#include "platform/code_page/code_page.h"
#include "platform/posix/ansi_text.h"
#include "platform/posix/kernel_guard.h"
#include "platform/posix/locale_code_page.h"
#include "platform/posix/settings.h"
#include "platform/unicode/utf8.h"

#include <charconv>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace {

// UTF-16 is a page of the engine but none that text can be given in here.
bool is_text_page(UINT page) {
    return page != code_page::kUtf16 && code_page::known(page);
}

UINT initial_ansi_page() {
    if (const char* chosen = std::getenv("PPT_CODE_PAGE"); chosen != nullptr) {
        const std::string_view text(chosen);
        UINT page = 0;
        const auto parsed = std::from_chars(text.data(), text.data() + text.size(), page);
        if (parsed.ec == std::errc() && parsed.ptr == text.data() + text.size() &&
            is_text_page(page)) {
            return page;
        }
    }
    const UINT page = platform::code_page_of_locale();
    return is_text_page(page) ? page : CP_UTF8;
}

UINT& ansi_page() {
    static UINT page = initial_ansi_page();
    return page;
}

int fail(DWORD error) {
    SetLastError(error);
    return 0;
}

bytes::View view_of(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

// Gives converted text to the caller by the buffer rules that both conversions share.
template <class Unit>
int deliver(const void* text, std::size_t length, Unit* destination, int destination_size) {
    if (length > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        return fail(ERROR_INVALID_PARAMETER);
    }
    if (destination_size > 0) {
        if (length > static_cast<std::size_t>(destination_size)) {
            return fail(ERROR_INSUFFICIENT_BUFFER);
        }
        std::memcpy(destination, text, length * sizeof(Unit));
    }
    return static_cast<int>(length);
}

// The rules on arguments that both conversions share.
bool are_arguments_valid(UINT page, const void* source, int source_length, const void* destination,
                         int destination_size) {
    return is_text_page(page) && source != nullptr && source_length != 0 && destination_size >= 0 &&
           (destination_size == 0 || (destination != nullptr && destination != source));
}

template <class Unit>
std::basic_string_view<Unit> source_text(const Unit* source, int length) {
    if (length >= 0) {
        return {source, static_cast<std::size_t>(length)};
    }
    return {source, std::char_traits<Unit>::length(source) + 1};
}

} // namespace

UINT GetACP() {
    return ansi_page();
}

BOOL IsDBCSLeadByte(BYTE byte) {
    return code_page::is_lead_byte(GetACP(), byte) ? TRUE : FALSE;
}

int MultiByteToWideChar(UINT code_page, DWORD flags, const char* source, int source_length,
                        WCHAR* destination, int destination_size) {
    const UINT page = code_page == CP_ACP ? GetACP() : code_page;
    if (!are_arguments_valid(page, source, source_length, destination, destination_size)) {
        return fail(ERROR_INVALID_PARAMETER);
    }
    if ((flags & ~MB_ERR_INVALID_CHARS) != 0) {
        return fail(ERROR_INVALID_FLAGS);
    }
    const bytes::View text = view_of(source_text(source, source_length));
    return platform::guarded_by_last_error(0, [&] {
        const auto wide = flags == MB_ERR_INVALID_CHARS ? code_page::decode(page, text)
                                                        : code_page::decode_lossy(page, text);
        return wide ? deliver(wide->data(), wide->size(), destination, destination_size)
                    : fail(ERROR_NO_UNICODE_TRANSLATION);
    });
}

int WideCharToMultiByte(UINT code_page, DWORD flags, const WCHAR* source, int source_length,
                        char* destination, int destination_size, const char* default_character,
                        BOOL* used_default) {
    const UINT page = code_page == CP_ACP ? GetACP() : code_page;
    if (!are_arguments_valid(page, source, source_length, destination, destination_size)) {
        return fail(ERROR_INVALID_PARAMETER);
    }
    const bool is_utf8 = page == CP_UTF8;
    if (is_utf8 && (default_character != nullptr || used_default != nullptr)) {
        return fail(ERROR_INVALID_PARAMETER);
    }
    if ((flags & ~(is_utf8 ? WC_ERR_INVALID_CHARS : WC_NO_BEST_FIT_CHARS)) != 0) {
        return fail(ERROR_INVALID_FLAGS);
    }
    const std::u16string_view text = source_text(source, source_length);
    const char replacement = default_character == nullptr ? '?' : *default_character;
    return platform::guarded_by_last_error(0, [&] {
        bool replaced = false;
        const auto ansi = flags == WC_ERR_INVALID_CHARS
                              ? code_page::encode(page, text)
                              : code_page::encode_lossy(page, text, replacement, &replaced);
        if (!ansi) {
            return fail(ERROR_NO_UNICODE_TRANSLATION);
        }
        if (used_default != nullptr) {
            *used_default = replaced ? TRUE : FALSE;
        }
        return deliver(ansi->data(), ansi->size(), destination, destination_size);
    });
}

namespace platform {

bool set_ansi_code_page(UINT code_page) {
    if (!is_text_page(code_page)) {
        return false;
    }
    ansi_page() = code_page;
    return true;
}

std::optional<std::string> ansi_to_utf8(std::string_view text) {
    if (GetACP() == CP_UTF8) {
        return std::string(text);
    }
    const auto wide = code_page::decode(GetACP(), view_of(text));
    return wide ? unicode::utf16_to_utf8(*wide) : std::nullopt;
}

std::string utf8_to_ansi(std::string_view text) {
    const auto wide = unicode::utf8_to_utf16(text);
    if (GetACP() == CP_UTF8 || !wide) {
        return std::string(text);
    }
    const auto ansi = code_page::encode(GetACP(), *wide);
    return ansi ? std::string(ansi->begin(), ansi->end()) : std::string(text);
}

} // namespace platform
