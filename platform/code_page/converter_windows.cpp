// See converter.h. Over the conversions of Windows.
#include "platform/code_page/converter.h"

#include <windows.h>

namespace code_page {
namespace {

char16_t unit_of(UINT page, const char* text, int length) {
    wchar_t units[4];
    const int count = MultiByteToWideChar(page, MB_ERR_INVALID_CHARS, text, length, units, 4);
    return count == 1 ? static_cast<char16_t>(units[0]) : char16_t{0};
}

} // namespace

Converter::Converter(std::uint32_t page)
    : page_(page) {}

Converter::~Converter() = default;

bool Converter::usable() const {
    return IsValidCodePage(page_) != FALSE;
}

char16_t Converter::unit(std::uint8_t byte) const {
    const char text = static_cast<char>(byte);
    return unit_of(page_, &text, 1);
}

char16_t Converter::unit(std::uint8_t lead, std::uint8_t trail) const {
    const char text[] = {static_cast<char>(lead), static_cast<char>(trail)};
    return unit_of(page_, text, 2);
}

std::uint16_t Converter::pair_for(char16_t unit) const {
    const wchar_t text = static_cast<wchar_t>(unit);
    char bytes[4];
    BOOL replaced = FALSE;
    const int count =
        WideCharToMultiByte(page_, WC_NO_BEST_FIT_CHARS, &text, 1, bytes, 4, nullptr, &replaced);
    if (count != 2 || replaced != FALSE) {
        return 0;
    }
    return static_cast<std::uint16_t>(static_cast<std::uint8_t>(bytes[0]) << 8 |
                                      static_cast<std::uint8_t>(bytes[1]));
}

} // namespace code_page
