// Reading a section: pairs first, then the extent of each value, then what governs the rest (code
// page, behaviour, dictionary).
#include "platform/property_set/section.h"

#include "platform/base/checked.h"

#include <algorithm>

namespace property_set {
namespace {

constexpr std::uint32_t kCaseMatters = 1;

struct Pair {
    PropertyId id = 0;
    std::uint32_t offset = 0;
    RawBytes value; // empty when the offset is out of range
};

struct Pairs {
    std::uint32_t size_field = 0;
    std::vector<Pair> list; // ids are unique
    std::string damage;
};

void note(std::string& damage, const std::string& sentence) {
    if (damage.empty()) {
        damage = sentence;
    }
}

Pairs read_pairs(bytes::View extent) {
    Pairs pairs;
    bytes::Cursor cursor(extent);
    pairs.size_field = cursor.u32();
    const std::uint32_t stated = cursor.u32();
    const std::size_t room = std::min(cursor.remaining() / kPairSize, kMostProperties);
    if (!cursor.ok() || stated > room) {
        note(pairs.damage, "section states " + std::to_string(stated) + " properties, room for " +
                               std::to_string(room));
    }
    const std::size_t count = std::min<std::size_t>(stated, room);
    std::vector<PropertyId> seen;
    pairs.list.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        Pair pair;
        pair.id = cursor.u32();
        pair.offset = cursor.u32();
        seen.push_back(pair.id);
        pairs.list.push_back(pair);
    }
    std::sort(seen.begin(), seen.end());
    if (const auto twice = std::adjacent_find(seen.begin(), seen.end()); twice != seen.end()) {
        note(pairs.damage, "section lists property " + std::to_string(*twice) + " twice");
    }
    return pairs;
}

// Where the value at the last offset ends: where the section says that it ends itself, unless that
// would cut off what lies inside the extent.
std::size_t end_of_last(const Pairs& pairs, const RawBytes& extent, std::uint32_t last) {
    const std::size_t stated = std::min<std::size_t>(pairs.size_field, extent.size());
    if (stated < last + kTypeSize) {
        return extent.size();
    }
    const bool is_dictionary =
        std::any_of(pairs.list.begin(), pairs.list.end(), [last](const Pair& pair) {
            return pair.offset == last && pair.id == kDictionaryId;
        });
    const bool too_short = claimed_size(extent.view().subspan(last)) > stated - last;
    return is_dictionary || too_short ? extent.size() : stated;
}

void find_values(Pairs& pairs, const RawBytes& extent) {
    const std::size_t lowest = kSectionHeaderSize + pairs.list.size() * kPairSize;
    std::vector<std::uint32_t> offsets;
    for (const Pair& pair : pairs.list) {
        if (pair.offset >= lowest && platform::fits(pair.offset, kTypeSize, extent.size())) {
            offsets.push_back(pair.offset);
        } else {
            note(pairs.damage, "property " + std::to_string(pair.id) + " at offset " +
                                   std::to_string(pair.offset) + " of " + std::to_string(lowest) +
                                   " to " + std::to_string(extent.size()));
        }
    }
    std::sort(offsets.begin(), offsets.end());
    offsets.erase(std::unique(offsets.begin(), offsets.end()), offsets.end());
    if (offsets.empty()) {
        return;
    }
    const std::size_t end = end_of_last(pairs, extent, offsets.back());
    for (Pair& pair : pairs.list) {
        const auto own = std::lower_bound(offsets.begin(), offsets.end(), pair.offset);
        if (own != offsets.end() && *own == pair.offset) {
            const std::size_t next = own + 1 == offsets.end() ? end : *(own + 1);
            pair.value = extent.part(pair.offset, next - pair.offset);
        }
    }
}

const Pair* find_pair(const Pairs& pairs, PropertyId id) {
    const auto found = std::find_if(pairs.list.begin(), pairs.list.end(),
                                    [id](const Pair& pair) { return pair.id == id; });
    return found == pairs.list.end() ? nullptr : &*found;
}

// The number behind the type, 0 without such a property. Zeros stand for what a value lacks: a copy
// of the section has them there, and must not mean something else.
std::uint32_t number_of(const Pair* pair) {
    std::uint32_t number = 0;
    if (pair != nullptr) {
        const bytes::View raw = pair->value.view();
        const std::size_t end = std::min(raw.size(), kTypeSize + sizeof number);
        for (std::size_t i = kTypeSize; i < end; ++i) {
            number |= std::uint32_t{raw[i]} << (8 * (i - kTypeSize));
        }
    }
    return number;
}

SectionText text_of(const Pairs& pairs, std::uint32_t default_code_page) {
    const auto code_page = static_cast<std::uint16_t>(number_of(find_pair(pairs, kCodePageId)));
    return SectionText(code_page != 0 ? code_page : default_code_page);
}

bool case_matters(const Pairs& pairs, std::uint16_t version) {
    return version != 0 && number_of(find_pair(pairs, kBehaviourId)) == kCaseMatters;
}

} // namespace

Section Section::parse(const RawBytes& extent, std::uint16_t version,
                       std::uint32_t default_code_page) {
    Pairs pairs = read_pairs(extent.view());
    find_values(pairs, extent);
    Section section(text_of(pairs, default_code_page), case_matters(pairs, version));
    section.next_place_ = extent.size();
    for (const Pair& pair : pairs.list) {
        if (section.by_id_.emplace(pair.id, section.properties_.size()).second) {
            section.properties_.push_back({pair.id, pair.value, pair.offset});
        }
    }
    const Property* dictionary = section.property(kDictionaryId);
    if (dictionary != nullptr && !section.dictionary_.parse(dictionary->raw)) {
        note(pairs.damage, "dictionary of " + std::to_string(dictionary->raw.size()) +
                               " bytes does not hold its entries");
    }
    section.damage_ = pairs.damage;
    return section;
}

} // namespace property_set
