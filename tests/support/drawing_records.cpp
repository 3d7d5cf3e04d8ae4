// See drawing_records.h.
#include "tests/support/drawing_records.h"

namespace presentation_builder {

namespace {

using namespace record_type;

// Bits of OfficeArtFSP.
constexpr std::uint32_t kGroupShape = 0x0001;
constexpr std::uint32_t kPatriarch = 0x0004;
constexpr std::uint32_t kHasShapeType = 0x0800;
constexpr std::uint32_t kBackground = 0x0400;

constexpr std::uint32_t kShapeIdsPerDrawing = 1024;

// The coordinates that the members of a group use: an empty rectangle would hide them.
Bytes group_bounds() {
    Bytes body;
    for (const std::uint32_t edge : {0U, 0U, 5760U, 4320U}) { // left, top, right, bottom
        bytes::append_u32(body, edge);
    }
    return atom(0, kArtGroupBounds, body, 1);
}

} // namespace

Bytes client_anchor(std::initializer_list<std::uint16_t> edges) {
    Bytes body;
    for (const std::uint16_t edge : edges) {
        bytes::append_u16(body, edge);
    }
    return atom(0, kArtClientAnchor, body);
}

ArtProperty text_property(std::uint16_t id, std::u16string_view text) {
    Bytes data = utf16(text);
    bytes::append_u16(data, 0);
    return {static_cast<std::uint16_t>(id | kComplexFlag), static_cast<std::uint32_t>(data.size()),
            data};
}

Bytes shape_options(std::span<const ArtProperty> properties) {
    Bytes body;
    for (const ArtProperty& property : properties) {
        bytes::append_u16(body, property.id);
        bytes::append_u32(body, property.value);
    }
    for (const ArtProperty& property : properties) {
        bytes::append(body, property.data);
    }
    return atom(static_cast<std::uint16_t>(properties.size()), kArtOptions, body, 3);
}

std::vector<ArtProperty> linked_picture(std::u16string_view path) {
    return {{art_property::kPicture, 1}, text_property(art_property::kPictureName, path)};
}

Bytes shape_atom(std::uint16_t shape_type, std::uint32_t shape_id, std::uint32_t flags) {
    Bytes body;
    bytes::append_u32(body, shape_id);
    bytes::append_u32(body, flags);
    return atom(shape_type, kArtShapeAtom, body, 2);
}

Bytes client_textbox(View records) {
    return container(0, kArtClientTextbox, {records});
}

Bytes client_data(View records) {
    return container(0, kArtClientData, {records});
}

Bytes shape_group(std::uint32_t shape_id, bool is_outermost, View members) {
    const std::uint32_t flags = kGroupShape | (is_outermost ? kPatriarch : 0);
    const Bytes self = container(0, kArtShape,
                                 {group_bounds(), shape_atom(0, shape_id, flags),
                                  is_outermost ? Bytes{} : client_anchor({0, 0, 5760, 4320})});
    return container(0, kArtShapeGroup, {self, members});
}

Bytes drawing(std::uint32_t drawing_id, std::uint32_t shape_count, View shapes) {
    const std::uint32_t first_shape_id = drawing_id * kShapeIdsPerDrawing;
    Bytes counts;
    bytes::append_u32(counts, shape_count);
    bytes::append_u32(counts, first_shape_id + shape_count);
    const Bytes background =
        container(0, kArtShape,
                  {shape_atom(kRectangle, first_shape_id + kShapeIdsPerDrawing - 1,
                              kBackground | kHasShapeType)});
    return container(
        0, kDrawing,
        {container(0, kArtDrawing,
                   {atom(static_cast<std::uint16_t>(drawing_id & 0xFFF), kArtDrawingAtom, counts),
                    shape_group(first_shape_id, true, shapes), background})});
}

} // namespace presentation_builder
