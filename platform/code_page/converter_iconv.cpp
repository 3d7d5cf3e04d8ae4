// See converter.h. Over the C library's iconv, one character at a time.
#include "platform/code_page/converter.h"

#include "platform/code_page/page_names.h"

#include <iconv.h>

#include <array>
#include <optional>

namespace code_page {
namespace {

const iconv_t kNone = reinterpret_cast<iconv_t>(-1);

iconv_t open(const char* to, const char* from) {
    return to != nullptr && from != nullptr ? iconv_open(to, from) : kNone;
}

void close(iconv_t descriptor) {
    if (descriptor != kNone) {
        iconv_close(descriptor);
    }
}

// The two bytes that `input` converts to, or nothing when it converts to more, to fewer, or not at
// all. Converters that hold a character back to join it with the next are flushed.
template <std::size_t Size>
std::optional<std::array<std::uint8_t, 2>> two_bytes(iconv_t descriptor,
                                                     std::array<std::uint8_t, Size> input) {
    std::array<char, 8> output{};
    char* in = reinterpret_cast<char*>(input.data());
    char* out = output.data();
    std::size_t in_left = input.size();
    std::size_t out_left = output.size();
    iconv(descriptor, nullptr, nullptr, nullptr, nullptr);
    if (iconv(descriptor, &in, &in_left, &out, &out_left) != 0 || in_left != 0 ||
        iconv(descriptor, nullptr, nullptr, &out, &out_left) != 0 ||
        output.size() - out_left != 2) {
        return std::nullopt;
    }
    return std::array<std::uint8_t, 2>{static_cast<std::uint8_t>(output[0]),
                                       static_cast<std::uint8_t>(output[1])};
}

template <std::size_t Size>
char16_t unit_of(iconv_t to_utf16, std::array<std::uint8_t, Size> input) {
    const auto converted = two_bytes(to_utf16, input);
    return converted ? static_cast<char16_t>((*converted)[0] | ((*converted)[1] << 8))
                     : char16_t{0};
}

} // namespace

Converter::Converter(std::uint32_t page)
    : to_utf16_(open("UTF-16LE", iconv_name(page)))
    , from_utf16_(open(iconv_name(page), "UTF-16LE")) {}

Converter::~Converter() {
    close(to_utf16_);
    close(from_utf16_);
}

bool Converter::usable() const {
    return to_utf16_ != kNone && from_utf16_ != kNone;
}

char16_t Converter::unit(std::uint8_t byte) const {
    return unit_of(to_utf16_, std::array<std::uint8_t, 1>{byte});
}

char16_t Converter::unit(std::uint8_t lead, std::uint8_t trail) const {
    return unit_of(to_utf16_, std::array<std::uint8_t, 2>{lead, trail});
}

std::uint16_t Converter::pair_for(char16_t unit) const {
    const auto pair =
        two_bytes(from_utf16_, std::array<std::uint8_t, 2>{static_cast<std::uint8_t>(unit),
                                                           static_cast<std::uint8_t>(unit >> 8)});
    return pair ? static_cast<std::uint16_t>((*pair)[0] << 8 | (*pair)[1]) : std::uint16_t{0};
}

} // namespace code_page
