// A property set stream ([MS-OLEPS]) as the application stores it under the name U+0005
// "DocumentSummaryInformation": a document section and, unless left out, the user-defined section
// with the properties given here. Written independently of the property set engine.
#pragma once

#include "platform/base/bytes.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace presentation_builder {

inline constexpr std::u16string_view kDocumentSummaryInformation =
    u"\u0005DocumentSummaryInformation";

class PropertyStream {
  public:
    // Of the user-defined section. Names are stored as UTF-16 in code page 1200, as UTF-8 in 65001
    // and as the low bytes of their units in any other.
    explicit PropertyStream(std::uint16_t code_page = 1252);

    // VT_LPWSTR.
    PropertyStream& text(std::u16string_view name, std::u16string_view value);
    // VT_LPSTR; the bytes are in the section's code page.
    PropertyStream& ansi_text(std::u16string_view name, std::string_view value);
    // VT_BLOB.
    PropertyStream& blob(std::u16string_view name, bytes::View value);
    // A single section: the document's.
    PropertyStream& without_user_defined();

    bytes::Bytes build() const;

  private:
    struct Property {
        std::u16string name;
        bytes::Bytes value; // type word included, padded
    };

    bytes::Bytes dictionary() const;
    bytes::Bytes user_defined_section() const;

    std::uint16_t code_page_;
    bool has_user_defined_ = true;
    std::vector<Property> properties_;
};

// One hyperlink of the value of `_PID_HLINKS`.
struct ListedHyperlink {
    std::u16string target;
    std::u16string location{};
    std::array<std::uint32_t, 4> integers{7, 6, 0, 7}; // the first is the hash
};

// The value of `_PID_HLINKS`, to be stored as a blob.
bytes::Bytes hyperlink_list(std::span<const ListedHyperlink> links);

} // namespace presentation_builder
