// The document properties: values, names and the list of hyperlinks.
#include "tests/limits/families.h"
#include "tests/property_set/raw_stream.h"
#include "tests/support/presentation_builder.h"

namespace limits {

namespace {

using namespace presentation_builder;
using property_set::PropertyId;

constexpr std::uint16_t kWestern = 1252;
constexpr PropertyId kFirstId = 2;

Bytes blob_value(const Bytes& data) {
    Bytes value;
    bytes::append_u32(value, 65);
    bytes::append_u32(value, static_cast<std::uint32_t>(data.size()));
    bytes::append(value, data);
    value.resize((value.size() + 3) / 4 * 4);
    return value;
}

Deck deck_with_links(std::size_t count) {
    Deck deck;
    const std::uint32_t target = deck.declare({std::nullopt});
    Bytes references;
    for (std::size_t i = 0; i < count; ++i) {
        bytes::append(references, external_object_ref(target));
    }
    deck.add_slide().shape(Shape().record(client_data(references)));
    return deck;
}

// Properties of these names with the same value, stored once.
Bytes sharing_a_value(const std::vector<std::string>& names, const Bytes& value,
                      std::size_t links) {
    std::vector<raw_stream::Name> entries;
    std::vector<raw_stream::Property> properties = {{}, {1, raw_stream::i2(kWestern)}};
    for (const std::string& name : names) {
        const PropertyId id = kFirstId + static_cast<PropertyId>(entries.size());
        properties.push_back({id, entries.empty() ? value : Bytes()});
        entries.push_back({id, raw_stream::latin(name)});
    }
    properties.front() = {0, raw_stream::dictionary(kWestern, entries)};
    return deck_with_links(links).properties(raw_stream::user_stream(properties)).image();
}

std::string link_id_name(std::size_t number) {
    return "MORVANE-LINK-ID=" + std::to_string(number) + "%%";
}

std::vector<std::string> link_id_names(std::size_t count) {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < count; ++i) {
        names.push_back(link_id_name(i));
    }
    return names;
}

Bytes values_at_one_offset(std::size_t count) {
    return sharing_a_value(link_id_names(count), raw_stream::lpstr(std::string(40 * count, 'x')),
                           1);
}

Bytes clipboard_values_at_one_offset(std::size_t count) {
    Bytes value = blob_value(Bytes(40 * count));
    constexpr std::uint32_t kClipboard = 71;
    bytes::store_u32(value, 0, kClipboard);
    return sharing_a_value(link_id_names(count), value, 1);
}

Bytes ended_texts_at_one_offset(std::size_t count) {
    std::u16string text(20 * count, u'x');
    text.front() = 0;
    return sharing_a_value(link_id_names(count), raw_stream::lpwstr(text), 1);
}

Bytes lists_at_one_offset(std::size_t count) {
    const std::vector<std::string> names(count, "_PID_HLINKS");
    return sharing_a_value(names, blob_value(Bytes(40 * count)), 1);
}

// Every list makes the ids before it go to all links.
Bytes lists_between_ids(std::size_t count) {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < count; ++i) {
        names.push_back(link_id_name(i));
        names.push_back("_PID_HLINKS");
    }
    std::vector<raw_stream::Name> entries;
    std::vector<raw_stream::Property> properties = {{}, {1, raw_stream::i2(kWestern)}};
    for (const std::string& name : names) {
        const PropertyId id = kFirstId + static_cast<PropertyId>(entries.size());
        properties.push_back({id, id % 2 == 0 ? raw_stream::lpstr("a") : blob_value(Bytes(4))});
        entries.push_back({id, raw_stream::latin(name)});
    }
    properties.front() = {0, raw_stream::dictionary(kWestern, entries)};
    return deck_with_links(count).properties(raw_stream::user_stream(properties)).image();
}

Bytes link_ids(std::size_t count) {
    PropertyStream properties;
    for (std::size_t i = 0; i < count; ++i) {
        const std::string number = std::to_string(i);
        const std::u16string name =
            u"MORVANE-LINK-ID=" + std::u16string(number.begin(), number.end());
        properties.ansi_text(name + u"%%", "c:\\old\\" + number);
    }
    return deck_with_links(count).properties(properties.build()).image();
}

Bytes names_without_characters(std::size_t count) {
    std::vector<raw_stream::Name> entries;
    for (std::size_t i = 0; i < count; ++i) {
        entries.push_back({kFirstId + static_cast<PropertyId>(i), Bytes()});
    }
    return deck_with_links(1)
        .properties(raw_stream::user_stream(
            {{0, raw_stream::dictionary(kWestern, entries)}, {1, raw_stream::i2(kWestern)}}))
        .image();
}

Bytes properties_without_names(std::size_t count) {
    std::vector<raw_stream::Property> properties = {{1, raw_stream::i2(kWestern)}};
    for (std::size_t i = 0; i < count; ++i) {
        properties.push_back(
            {kFirstId + static_cast<PropertyId>(i), i == 0 ? raw_stream::i4(1) : Bytes()});
    }
    return deck_with_links(1).properties(raw_stream::user_stream(properties)).image();
}

// As many hyperlinks as fit are there, and four billion are promised.
Bytes list_promising_more(std::size_t count) {
    Bytes list = hyperlink_list(std::vector<ListedHyperlink>(count, {u"", u""}));
    bytes::store_u32(list, 0, 0xFFFFFFFF);
    return deck_with_links(count)
        .properties(PropertyStream().blob(u"_PID_HLINKS", list).build())
        .image();
}

Bytes listed_hyperlinks(std::size_t count) {
    Deck deck;
    Bytes references;
    for (std::size_t i = 0; i < count; ++i) {
        bytes::append(references, external_object_ref(deck.declare({std::nullopt})));
    }
    deck.add_slide().shape(Shape().record(client_data(references)));
    const std::vector<ListedHyperlink> listed(count, {u"C:\\old\\a.doc", u""});
    return deck.properties(PropertyStream().blob(u"_PID_HLINKS", hyperlink_list(listed)).build())
        .image();
}

// A section of more than 65,536 properties is not written, so nothing in it fails a rewrite.
constexpr Family kFamilies[] = {
    {"ValuesAtOneOffset", values_at_one_offset, kMost / 10, {7280}, {7280}},
    {"ClipboardValuesAtOneOffset", clipboard_values_at_one_offset, kMost / 10, {7280}, {7280}},
    {"EndedTextsAtOneOffset", ended_texts_at_one_offset, kMost / 10, {}, {8140, 0}},
    {"ListsAtOneOffset", lists_at_one_offset, kMost / 10, {}, {8140, 0}},
    {"ListsBetweenIds", lists_between_ids, kMost / 20},
    {"LinkIds", link_ids, kMost / 10},
    {"NamesWithoutCharacters", names_without_characters, kMost},
    {"PropertiesWithoutNames", properties_without_names, kMost},
    {"ListPromisingMore", list_promising_more, kMost / 10},
    {"ListedHyperlinks", listed_hyperlinks, kMost / 10},
};

} // namespace

std::span<const Family> property_families() {
    return kFamilies;
}

} // namespace limits
