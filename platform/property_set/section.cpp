// A section as a whole: looking things up, and writing it out.
#include "platform/property_set/section.h"

#include "platform/base/error.h"
#include "platform/code_page/code_page.h"

#include <algorithm>
#include <numeric>

namespace property_set {
namespace {

using platform::Errc;
using platform::Error;

constexpr std::uint32_t kNewLocale = 0x0409;
constexpr std::uint32_t kEmptyDictionary = 0;

bool only_zeros(bytes::View raw) {
    return std::all_of(raw.begin(), raw.end(), [](std::uint8_t byte) { return byte == 0; });
}

// Whether both are the same but for zeros at the end of the longer one.
bool same_but_padding(bytes::View a, bytes::View b) {
    const std::size_t common = std::min(a.size(), b.size());
    return std::equal(a.begin(), a.begin() + static_cast<std::ptrdiff_t>(common), b.begin()) &&
           only_zeros(a.subspan(common)) && only_zeros(b.subspan(common));
}

} // namespace

bytes::Bytes Section::fresh(const FormatId& format) {
    Section section(SectionText(code_page::kUtf16), false);
    const auto add = [&section](PropertyId id, bytes::Bytes raw) {
        section.set_value(id, RawBytes(std::move(raw)));
    };
    if (format == kUserDefinedFormat) {
        bytes::Bytes dictionary;
        bytes::append_u32(dictionary, kEmptyDictionary);
        add(kDictionaryId, std::move(dictionary));
    }
    add(kCodePageId,
        encode_value({Type::i2, static_cast<std::int16_t>(code_page::kUtf16)}, section.text_));
    if (format == kUserDefinedFormat) {
        add(kLocaleId, encode_value({Type::ui4, kNewLocale}, section.text_));
    }
    return section.encode();
}

const Section::Property* Section::property(PropertyId id) const {
    const auto found = by_id_.find(id);
    return found == by_id_.end() ? nullptr : &properties_[found->second];
}

std::optional<PropertyId> Section::resolve(const PropertyKey& key) const {
    if (const auto* id = std::get_if<PropertyId>(&key)) {
        return *id;
    }
    return dictionary_.find(std::get<std::u16string>(key));
}

std::optional<Value> Section::read(const PropertyKey& key) const {
    const std::optional<PropertyId> id = resolve(key);
    const Property* found = id && *id != kDictionaryId ? property(*id) : nullptr;
    if (found == nullptr) {
        return std::nullopt;
    }
    return decode_value(found->raw.view(), text_);
}

std::vector<PropertyInfo> Section::list() const {
    std::vector<PropertyInfo> infos;
    infos.reserve(by_id_.size());
    for (const Property& listed : properties_) {
        if (listed.removed || !is_ordinary(listed.id)) {
            continue;
        }
        PropertyInfo& info = infos.emplace_back();
        info.id = listed.id;
        info.type = type_of(listed.raw.view());
        if (const std::u16string* name = dictionary_.name_of(listed.id)) {
            info.name = *name;
        }
    }
    return infos;
}

std::vector<Section::Property> Section::to_write() const {
    std::vector<Property> result;
    result.reserve(by_id_.size() + 1);
    std::copy_if(properties_.begin(), properties_.end(), std::back_inserter(result),
                 [](const Property& listed) { return !listed.removed; });
    if (!dictionary_.changed()) {
        return result;
    }
    const auto dictionary = std::find_if(result.begin(), result.end(), [](const Property& listed) {
        return listed.id == kDictionaryId;
    });
    RawBytes raw(dictionary_.encode());
    if (dictionary != result.end()) {
        dictionary->raw = std::move(raw);
    } else {
        result.push_back({kDictionaryId, std::move(raw), next_place_});
    }
    return result;
}

std::uint64_t Section::size_of(std::span<const Property> written) {
    std::uint64_t size = kSectionHeaderSize + kPairSize * written.size();
    for (const Property& property : written) {
        size += aligned(property.raw.size());
    }
    return size;
}

bytes::Bytes Section::encode() const {
    const std::vector<Property> written = to_write();
    const std::size_t values_at = kSectionHeaderSize + kPairSize * written.size();
    const std::uint64_t size = size_of(written);
    if (size > kMaxLargeStreamSize) {
        throw Error(Errc::too_large, "property section of " + std::to_string(size) + " bytes, " +
                                         std::to_string(kMaxLargeStreamSize) + " allowed");
    }
    std::vector<std::size_t> by_place(written.size());
    std::iota(by_place.begin(), by_place.end(), std::size_t{0});
    std::stable_sort(by_place.begin(), by_place.end(), [&written](std::size_t a, std::size_t b) {
        return written[a].place < written[b].place;
    });

    bytes::Bytes out(values_at);
    out.reserve(static_cast<std::size_t>(size));
    for (const std::size_t index : by_place) {
        const std::size_t pair_at = kSectionHeaderSize + kPairSize * index;
        bytes::store_u32(out, pair_at, written[index].id);
        bytes::store_u32(out, pair_at + sizeof(PropertyId), static_cast<std::uint32_t>(out.size()));
        bytes::append(out, written[index].raw.view());
        align(out);
    }
    bytes::store_u32(out, 0, static_cast<std::uint32_t>(out.size()));
    bytes::store_u32(out, sizeof(std::uint32_t), static_cast<std::uint32_t>(written.size()));
    return out;
}

bool Section::same_content(const Section& other) const {
    const std::vector<Property> own = to_write();
    const std::vector<Property> others = other.to_write();
    return std::equal(own.begin(), own.end(), others.begin(), others.end(),
                      [](const Property& a, const Property& b) {
                          return a.id == b.id && same_but_padding(a.raw.view(), b.raw.view());
                      });
}

} // namespace property_set
