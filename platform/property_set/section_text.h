// Texts of one section, in the code page that the section names. A page that cannot be converted
// here still gives and takes ASCII.
#pragma once

#include "platform/base/bytes.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace property_set {

class SectionText {
  public:
    explicit SectionText(std::uint32_t code_page);

    std::uint32_t code_page() const { return code_page_; }
    bool is_utf16() const;

    // The text up to its first terminator, or all of it when there is none; nothing when it does
    // not convert. An odd byte at the end of UTF-16 is dropped. Cost: linear in the text; what
    // stands behind the terminator is not looked at.
    std::optional<std::u16string> decode(bytes::View raw) const;

    // The text with a terminator behind it; nothing when it does not convert.
    std::optional<bytes::Bytes> encode(std::u16string_view text) const;

  private:
    std::uint32_t code_page_;
    std::uint32_t converted_as_;
};

} // namespace property_set
