// See section_text.h.
#include "platform/property_set/section_text.h"

#include "platform/code_page/code_page.h"

#include <algorithm>

namespace property_set {
namespace {

constexpr std::uint32_t kAscii = 20127;

bytes::View up_to_zero_unit(bytes::View raw) {
    std::size_t end = 0;
    while (end + 1 < raw.size() && bytes::load_u16(raw, end) != 0) {
        end += 2;
    }
    return raw.first(end);
}

} // namespace

SectionText::SectionText(std::uint32_t code_page)
    : code_page_(code_page)
    , converted_as_(code_page::known(code_page) ? code_page : kAscii) {}

bool SectionText::is_utf16() const {
    return code_page_ == code_page::kUtf16;
}

std::optional<std::u16string> SectionText::decode(bytes::View raw) const {
    if (is_utf16()) {
        return code_page::decode_lossy(code_page::kUtf16, up_to_zero_unit(raw));
    }
    const auto terminator = std::find(raw.begin(), raw.end(), std::uint8_t{0});
    return code_page::decode(converted_as_, {raw.begin(), terminator});
}

std::optional<bytes::Bytes> SectionText::encode(std::u16string_view text) const {
    auto encoded = code_page::encode(converted_as_, text);
    if (encoded) {
        encoded->resize(encoded->size() + (is_utf16() ? 2 : 1));
    }
    return encoded;
}

} // namespace property_set
