// A shape's option table ([MS-ODRAW] OfficeArtFOPT): which picture file it links, if any, and where
// the file's name stands.
//
// The body holds one 6-byte entry per property and then the complex data of the properties that
// have such, in the order of their entries. Arrays among the complex data may be 6 bytes longer
// than their entry says. Entries that the body does not hold are ignored.
#pragma once

#include "platform/platform.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ppt {

// Names of linked files: of the shape's picture, its fill picture and its line picture.
inline constexpr std::uint16_t kPictureName = 0x0105;
inline constexpr std::uint16_t kFillPictureName = 0x0187;
inline constexpr std::uint16_t kLinePictureName = 0x01C6;

class ShapeOptions {
  public:
    // `body` must outlive the object.
    ShapeOptions(std::uint16_t property_count, bytes::View body);

    // Whether the last link indicator is 1 and not a blip id, or there is none.
    bool links_picture() const { return links_picture_; }

    // Whether there is a name that is not empty and whose place is certain.
    bool finds_picture_name() const { return name_offset_.has_value(); }
    std::uint16_t name_property() const { return name_property_; }

    // The name up to its terminator, in the ANSI code page. Throws the status code of the
    // conversion, 7140 for a name of 1024 bytes or more.
    std::string picture_name() const;

    // The body with another name, given without its terminator, in place of the present one; every
    // other byte stays as it is. Null when the place of the name is not certain or the body does
    // not hold the name to its end.
    std::optional<bytes::Bytes> with_picture_name(std::basic_string_view<WCHAR> name) const;

  private:
    struct Property {
        std::uint16_t id = 0;
        bool is_complex = false;
        std::uint32_t value = 0;
    };

    void read_entries(std::uint16_t property_count);
    void find_name();
    std::uint64_t complex_size(const Property& property, std::uint64_t at) const;

    bytes::View body_;
    std::vector<Property> properties_;
    bool links_picture_ = true;
    std::uint16_t name_property_ = 0;
    std::size_t name_index_ = 0; // of its entry
    std::uint32_t name_length_ = 0;
    std::optional<std::size_t> name_offset_; // in the body
};

} // namespace ppt
