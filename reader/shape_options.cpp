#include "reader/shape_options.h"

#include "common_new/common/conversion.h"
#include "plugin/error_params.h"
#include "plugin/link_record.h"
#include "plugin/status.h"
#include "reader/utf16.h"

#include <algorithm>
#include <array>

namespace ppt {

namespace {

constexpr std::size_t kEntrySize = 6;
constexpr std::size_t kValueOffset = 2; // in an entry
constexpr std::uint16_t kIdMask = 0x3FFF;
constexpr std::uint16_t kBlipIdBit = 0x4000;
constexpr std::uint16_t kComplexBit = 0x8000;
constexpr std::uint32_t kArrayHeaderSize = 6;
constexpr std::uint16_t kHalfWordElements = 0xFFF0; // element size that stands for 4 bytes

bool is_link_indicator(std::uint16_t id) {
    return id == 0x0104 || id == 0x0186 || id == 0x01C7;
}

bool is_name(std::uint16_t id) {
    return id == kPictureName || id == kFillPictureName || id == kLinePictureName;
}

// Properties whose complex data is an array ([MS-ODRAW] IMsoArray).
bool is_array(std::uint16_t id) {
    static constexpr std::array<std::uint16_t, 15> arrays = {
        0x0145, 0x0146, 0x0151, 0x0152, 0x0155, 0x0156, 0x0157, 0x0197,
        0x01CF, 0x0383, 0x03A0, 0x054F, 0x058F, 0x05CF, 0x060F};
    return std::binary_search(arrays.begin(), arrays.end(), id);
}

} // namespace

ShapeOptions::ShapeOptions(std::uint16_t property_count, bytes::View body)
    : body_(body) {
    read_entries(property_count);
    find_name();
}

void ShapeOptions::read_entries(std::uint16_t property_count) {
    const std::size_t count = std::min<std::size_t>(property_count, body_.size() / kEntrySize);
    properties_.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint16_t word = bytes::load_u16(body_, i * kEntrySize);
        Property property;
        property.id = word & kIdMask;
        property.value = bytes::load_u32(body_, i * kEntrySize + kValueOffset);
        property.is_complex = (word & kComplexBit) != 0 || is_name(property.id);
        if (is_link_indicator(property.id)) {
            links_picture_ = property.value == 1 && (word & kBlipIdBit) == 0;
        }
        if (is_name(property.id)) {
            name_property_ = property.id;
            name_index_ = i;
            name_length_ = property.value;
        }
        properties_.push_back(property);
    }
}

// The name stands behind the complex data of the properties before it. That place is certain when
// nothing complex comes before, or when all sizes add up to exactly what the body holds.
void ShapeOptions::find_name() {
    const bool has_name = name_property_ != 0 && static_cast<std::int32_t>(name_length_) > 0;
    if (!has_name) {
        return;
    }
    const std::uint64_t begin = properties_.size() * kEntrySize;
    std::uint64_t at = begin;
    std::uint64_t name_at = begin;
    for (std::size_t i = 0; i < properties_.size(); ++i) {
        if (i == name_index_) {
            name_at = at;
        }
        at += complex_size(properties_[i], at);
    }
    if (name_at == begin || at == body_.size()) {
        name_offset_ = static_cast<std::size_t>(name_at);
    }
}

std::uint64_t ShapeOptions::complex_size(const Property& property, std::uint64_t at) const {
    if (!property.is_complex) {
        return 0;
    }
    if (!is_array(property.id) || at + kArrayHeaderSize > body_.size()) {
        return property.value;
    }
    const std::uint32_t elements = bytes::load_u16(body_, static_cast<std::size_t>(at));
    const std::uint16_t width = bytes::load_u16(body_, static_cast<std::size_t>(at) + 4);
    const std::uint32_t element_size = width == kHalfWordElements ? 4 : width;
    const bool header_not_counted =
        property.value != 0 && elements * element_size == property.value;
    return std::uint64_t{property.value} + (header_not_counted ? kArrayHeaderSize : 0);
}

std::string ShapeOptions::picture_name() const {
    const bytes::View data = body_.subspan(
        *name_offset_, std::min<std::size_t>(name_length_, body_.size() - *name_offset_));
    std::basic_string<WCHAR> name;
    for (std::size_t i = 0; i + 1 < data.size(); i += 2) {
        const WCHAR unit = static_cast<WCHAR>(bytes::load_u16(data, i));
        if (unit == 0) {
            break;
        }
        name.push_back(unit);
    }
    std::string path = ansi_from_wide(name);
    if (!b_checkLength(path, static_cast<std::int32_t>(kLinkTextLimit))) {
        throw static_cast<int>(status::kTextTooLong);
    }
    return path;
}

std::optional<bytes::Bytes>
ShapeOptions::with_picture_name(std::basic_string_view<WCHAR> name) const {
    if (!name_offset_ || *name_offset_ > body_.size() ||
        name_length_ > body_.size() - *name_offset_) {
        return std::nullopt;
    }
    bytes::Bytes stored = utf16_bytes(name);
    bytes::append_u16(stored, 0);
    const std::size_t behind = *name_offset_ + name_length_;
    bytes::Bytes body(body_.begin(), body_.begin() + static_cast<std::ptrdiff_t>(*name_offset_));
    bytes::append(body, stored);
    bytes::append(body, body_.subspan(behind));
    bytes::store_u32(body, name_index_ * kEntrySize + kValueOffset,
                     static_cast<std::uint32_t>(stored.size()));
    return body;
}

} // namespace ppt
