// Names: how they are stored in each code page, and what each change does to them.
#include "platform/code_page/code_page.h"
#include "tests/property_set/edits.h"

namespace property_set {
namespace {

using raw_stream::dictionary;
using raw_stream::latin;
using raw_stream::utf16;

// A user-defined section in a code page (0: names none) with names for the ids 2, 3, ... and values
// for all of them.
bytes::Bytes named_stream(std::uint16_t code_page, const std::vector<raw_stream::Name>& names,
                          raw_stream::Lengths lengths = raw_stream::Lengths::as_the_format_says) {
    std::vector<raw_stream::Property> properties{{0, dictionary(code_page, names, lengths)}};
    if (code_page != 0) {
        properties.push_back({1, raw_stream::i2(code_page)});
    }
    for (const raw_stream::Name& name : names) {
        properties.push_back({name.id, raw_stream::i4(name.id)});
    }
    return raw_stream::user_stream(properties);
}

TEST(Dictionary, NamesOfEveryLengthInEveryCodePage) {
    for (const std::uint16_t code_page :
         std::initializer_list<std::uint16_t>{1200, 1252, 932, 65001, 0}) {
        const std::uint32_t stored_as = code_page != 0 ? code_page : 1252;
        PropertySet set = open_user(named_stream(code_page, {}));
        std::vector<std::u16string> names;
        for (const std::size_t length : {1u, 2u, 3u, 4u, 5u, 255u, 260u}) {
            std::u16string name(length, u'n');
            name.front() = stored_as == 932 ? u'\u3042' : u'\u00E9';
            name.back() = u'z';
            names.push_back(name);
            put(set, name, wide(name));
        }
        const bytes::Bytes written = set.encode();
        const PropertySet reread = open_user(written);
        EXPECT_EQ(names_of(reread), names) << code_page;
        std::vector<raw_stream::Name> stored;
        for (PropertyId id = 2; id < 2 + names.size(); ++id) {
            EXPECT_EQ(reread.section().read(id), wide(names[id - 2]));
            auto encoded = code_page::encode(stored_as, names[id - 2]).value();
            encoded.resize(encoded.size() + (stored_as == 1200 ? 2 : 1));
            stored.push_back({id, encoded});
        }
        EXPECT_EQ(raw_stream::parse(written, kUserDefinedFormat).values.at(kDictionaryId),
                  dictionary(code_page, stored));
    }
}

// It would lead to an id that goes by another name, which a new owner of the name took along.
TEST(Dictionary, ASecondNameOfAnIdIsNobodysName) {
    const std::vector<raw_stream::Name> names{{2, latin("A")}, {2, latin("B")}, {3, latin("C")}};
    PropertySet set = open_user(raw_stream::user_stream({{0, dictionary(1252, names)},
                                                         {1, raw_stream::i2(1252)},
                                                         {2, raw_stream::i4(2)},
                                                         {3, raw_stream::i4(3)}}));
    EXPECT_EQ(id_of(set, u"B"), std::nullopt);
    rename(set, 3, u"B");
    EXPECT_EQ(names_of(set), (std::vector<std::u16string>{u"A", u"B"}));
    EXPECT_EQ(id_of(set, u"B"), 3u);
}

TEST(Dictionary, ByteCountsWithUtf16AreReadAndBecomeUnitCounts) {
    const std::vector<raw_stream::Name> names{{2, utf16(u"odd")}, {3, utf16(u"even")}};
    PropertySet set = open_user(named_stream(1200, names, raw_stream::Lengths::in_bytes));
    EXPECT_EQ(set.section().damage(), "");
    EXPECT_EQ(names_of(set), (std::vector<std::u16string>{u"odd", u"even"}));
    rename(set, 3, u"third");
    EXPECT_EQ(raw_stream::parse(set.encode(), kUserDefinedFormat).values.at(kDictionaryId),
              dictionary(1200, {{2, utf16(u"odd")}, {3, utf16(u"third")}}));
}

TEST(Dictionary, NamesThatDoNotConvertSurviveChanges) {
    const bytes::Bytes broken{0x81, 0xFF, 'x', 0}; // no character of page 932
    PropertySet set = open_user(named_stream(932, {{2, broken}, {3, latin("plain")}}));
    EXPECT_EQ(names_of(set), (std::vector<std::u16string>{u"", u"plain"}));
    rename(set, 3, u"renamed");
    EXPECT_EQ(raw_stream::parse(set.encode(), kUserDefinedFormat).values.at(kDictionaryId),
              dictionary(932, {{2, broken}, {3, latin("renamed")}}));
}

TEST(Dictionary, ANameThatThePageLacksIsRefusedBeforeAnythingChanges) {
    for (const std::uint16_t code_page : std::initializer_list<std::uint16_t>{
             1252, 4711}) { // the second cannot be converted at all
        PropertySet set = open_user(named_stream(code_page, {{2, latin("a")}}));
        const Assignment both[]{{u"b", wide(u"1")}, {u"\u3042", wide(u"2")}};
        EXPECT_EQ(failure_of([&] { set.write(both, 2); }), platform::Errc::invalid_name);
        EXPECT_FALSE(set.changed());
        rename(set, 2, u"ascii");
        EXPECT_EQ(names_of(open_user(set.encode())), std::vector<std::u16string>{u"ascii"});
    }
    PropertySet set = open_user(named_stream(1200, {{2, utf16(u"a")}}));
    for (const std::u16string& name :
         {std::u16string(), std::u16string(261, u'n'), std::u16string(u"a\0b", 3)}) {
        EXPECT_EQ(failure_of([&] { rename(set, 2, name); }), platform::Errc::invalid_name);
    }
}

TEST(Dictionary, LetterCaseCountsOnlyWhereTheSetSaysSo) {
    for (const std::uint16_t version : std::initializer_list<std::uint16_t>{0, 1}) {
        const std::vector<raw_stream::Property> properties{
            {0, dictionary(1200, {{2, utf16(u"\u00C4rger")}})},
            {1, raw_stream::i2(1200)},
            {2, raw_stream::i4(2)},
            {kBehaviourId, {19, 0, 0, 0, 1, 0, 0, 0}},
        };
        PropertySet set = open_user(raw_stream::user_stream(properties, version));
        put(set, u"\u00E4RGER", wide(u"new"));
        const bool one_name = version == 0;
        EXPECT_EQ(set.section().list().size(), one_name ? 1u : 2u);
        EXPECT_EQ(names_of(set).front(), u"\u00C4rger");
    }
}

TEST(Dictionary, RenamingTakesTheNameFromItsHolder) {
    PropertySet set =
        open_user(named_stream(1252, {{2, latin("one")}, {3, latin("two")}, {4, latin("three")}}));
    rename(set, 2, u"THREE");
    EXPECT_EQ(names_of(set), (std::vector<std::u16string>{u"THREE", u"two", u""}));
    EXPECT_EQ(id_of(set, u"three"), 2u);
    rename(set, 4, u"four"); // nameless by now: goes to the end
    EXPECT_EQ(raw_stream::parse(set.encode(), kUserDefinedFormat).values.at(kDictionaryId),
              dictionary(1252, {{2, latin("THREE")}, {3, latin("two")}, {4, latin("four")}}));
    const PropertyId ids[]{2, 3, 4};
    set.section().remove_names(ids);
    EXPECT_EQ(names_of(open_user(set.encode())), (std::vector<std::u16string>{u"", u"", u""}));
}

TEST(Dictionary, TheFirstOfTwoEntriesCounts) {
    PropertySet set = open_user(raw_stream::user_stream({
        {0,
         dictionary(
             1252,
             {{2, latin("name")}, {3, latin("NAME")}, {2, latin("second")}, {1, latin("page")}})},
        {1, raw_stream::i2(1252)},
        {2, raw_stream::i4(2)},
        {3, raw_stream::i4(3)},
    }));
    EXPECT_EQ(id_of(set, u"Name"), 2u);
    EXPECT_EQ(names_of(set), (std::vector<std::u16string>{u"name", u"NAME"}));
    EXPECT_EQ(id_of(set, u"page"), std::nullopt) << "a reserved id has no name";
    drop(set, PropertyId{2});
    EXPECT_EQ(id_of(set, u"Name"), 3u);
}

TEST(Dictionary, ANameWithoutAValueGetsItsValueThere) {
    PropertySet set = open_user(raw_stream::user_stream(
        {{0, dictionary(1252, {{40, latin("empty")}})}, {1, raw_stream::i2(1252)}}));
    EXPECT_EQ(set.section().read(u"empty"), std::nullopt);
    put(set, u"empty", wide(u"full"));
    EXPECT_EQ(open_user(set.encode()).section().read(PropertyId{40}), wide(u"full"));
}

} // namespace
} // namespace property_set
