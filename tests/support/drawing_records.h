// Records of the drawing on a page ([MS-ODRAW]), composed as byte values like those of
// record_builder.h.
#pragma once

#include "tests/support/record_builder.h"

#include <vector>

namespace presentation_builder {

namespace art_property {
inline constexpr std::uint16_t kPicture = 0x0104;
inline constexpr std::uint16_t kPictureName = 0x0105;
inline constexpr std::uint16_t kFillBlip = 0x0186;
inline constexpr std::uint16_t kFillBlipName = 0x0187;
inline constexpr std::uint16_t kLineBlipName = 0x01C6;
inline constexpr std::uint16_t kLineBlipFlags = 0x01C7;
} // namespace art_property

inline constexpr std::uint16_t kRectangle = 1;     // msosptRectangle
inline constexpr std::uint16_t kPictureFrame = 75; // msosptPictureFrame

// One OfficeArtFOPTE with the complex data that belongs to it.
struct ArtProperty {
    std::uint16_t id = 0; // the whole id word, flags included
    std::uint32_t value = 0;
    Bytes data{};
};

inline constexpr std::uint16_t kBlipIdFlag = 0x4000;
inline constexpr std::uint16_t kComplexFlag = 0x8000;

// A complex property holding the text and its terminator; the value is their size in bytes.
ArtProperty text_property(std::uint16_t id, std::u16string_view text);

// OfficeArtFOPT: the entries, then the complex data in their order.
Bytes shape_options(std::span<const ArtProperty> properties);

// The properties of a picture that is linked, not embedded.
std::vector<ArtProperty> linked_picture(std::u16string_view path);

// OfficeArtFSP.
Bytes shape_atom(std::uint16_t shape_type, std::uint32_t shape_id, std::uint32_t flags);

// Where a shape stands, in master units (576 to the inch): top, left, right, bottom.
Bytes client_anchor(std::initializer_list<std::uint16_t> edges);

Bytes client_textbox(View records);
Bytes client_data(View records);

// A group of shapes: an OfficeArtSpContainer for the group itself, then the members.
Bytes shape_group(std::uint32_t shape_id, bool is_outermost, View members);

// RT_Drawing: the shape count, the outermost group around `shapes`, the background shape.
Bytes drawing(std::uint32_t drawing_id, std::uint32_t shape_count, View shapes);

} // namespace presentation_builder
