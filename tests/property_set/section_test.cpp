// Sections that are made, ids that are given out, values that are decoded, and damage.
#include "tests/property_set/edits.h"

namespace property_set {
namespace {

using namespace std::string_view_literals;

using platform::Errc;
using raw_stream::dictionary;
using raw_stream::i2;
using raw_stream::i4;
using raw_stream::latin;

TEST(MissingSection, IsMadeInAnEmptyStreamAndBehindALoneDocumentSection) {
    const auto document = raw_stream::section({{1, i2(932)}, {2, raw_stream::lpstr("abc\0"sv)}});
    const bytes::Bytes found[]{{}, raw_stream::stream({{kDocumentFormat, document}})};
    for (const bytes::Bytes& stream : found) {
        EXPECT_EQ(failure_of([&] { open_user(stream); }), Errc::not_found);
        PropertySet made = PropertySet::create(stream, kUserDefinedFormat, 1252);
        EXPECT_TRUE(made.changed());
        put(made, u"name", wide(u"value"));
        const bytes::Bytes written = made.encode();
        EXPECT_EQ(bytes::load_u32(written, 24), 2u);
        EXPECT_EQ(bytes::load_u32(written, 44), 68u) << "the document section is the first";
        EXPECT_EQ(bytes::load_u32(written, 64) % 4, 0u);
        EXPECT_EQ(made.section().text().code_page(), 1200u);
        if (!stream.empty()) {
            EXPECT_EQ(raw_stream::parse(written, kDocumentFormat).whole, document);
        }
        PropertySet again = PropertySet::create(written, kUserDefinedFormat, 1252);
        EXPECT_FALSE(again.changed());
        EXPECT_EQ(id_of(again, u"name"), 2u);
        put(again, u"name", wide(u"value"));
        EXPECT_EQ(again.encode(), written);
    }
}

TEST(MissingSection, HasNoPlaceInAnyOtherStream) {
    const auto content = raw_stream::section({{1, i2(1252)}});
    const bytes::Bytes streams[]{
        raw_stream::stream({{kDocumentFormat, content}, {raw_stream::kOtherFormat, content}}),
        raw_stream::stream({{raw_stream::kOtherFormat, content}}),
    };
    for (const bytes::Bytes& stream : streams) {
        EXPECT_EQ(failure_of([&] { PropertySet::create(stream, kUserDefinedFormat, 1252); }),
                  Errc::unsupported);
    }
}

TEST(NewIds, AreTheSmallestThatNothingUses) {
    PropertySet set = open_user(raw_stream::user_stream({
        {0, dictionary(1252, {{4, latin("no value")}})},
        {1, i2(1252)},
        {2, i4(2)},
        {7, i4(7)},
        {5 | kCompanionBit, i4(5)},
    }));
    const Assignment request[]{{u"a", wide(u"1")},
                               {u"b", wide(u"2")},
                               {PropertyId{8}, wide(u"3")},
                               {u"A", wide(u"4")},
                               {u"c", wide(u"5")}};
    set.write(request, 2);
    EXPECT_EQ(id_of(set, u"a"), 3u);
    EXPECT_EQ(id_of(set, u"b"), 6u) << "4 has a name, 5 a companion";
    EXPECT_EQ(id_of(set, u"c"), 9u) << "7 has a value, 8 gets one in the same request";
    EXPECT_EQ(set.section().read(PropertyId{3}), wide(u"4")) << "the last value wins";
    drop(set, u"b");
    put(set, u"d", wide(u"6"));
    EXPECT_EQ(id_of(set, u"d"), 6u) << "a deleted id is free again";
}

TEST(NewIds, EndBelowTheCompanions) {
    PropertySet set =
        open_user(raw_stream::user_stream({{1, i2(1252)}, {kCompanionBit - 2, i4(0)}}));
    const Assignment request[]{{u"a", wide(u"1")}, {u"b", wide(u"2")}};
    EXPECT_EQ(failure_of([&] { set.write(request, kCompanionBit - 2); }), Errc::too_large);
    EXPECT_FALSE(set.changed());
    set.write({request, 1}, kCompanionBit - 2);
    EXPECT_EQ(id_of(set, u"a"), kCompanionBit - 1);
}

TEST(ReservedIds, AreNeitherWrittenNorDeletedNorListed) {
    PropertySet set = open_user(raw_stream::user_stream(
        {{1, i2(1252)}, {kLocaleId, i4(9)}, {3 | kCompanionBit, i4(3)}, {3, i4(3)}}));
    for (const PropertyId id : {kDictionaryId, kCodePageId, kLocaleId, kBehaviourId}) {
        EXPECT_EQ(failure_of([&] { put(set, id, wide(u"x")); }), Errc::invalid_argument);
        EXPECT_EQ(failure_of([&] { drop(set, id); }), Errc::invalid_argument);
        EXPECT_EQ(failure_of([&] { rename(set, id, u"x"); }), Errc::invalid_argument);
    }
    EXPECT_EQ(set.section().list().size(), 2u);
    drop(set, PropertyId{3});
    EXPECT_EQ(set.section().list().front().id, 3 | kCompanionBit) << "a companion stays";
}

TEST(Values, OfEveryDecodedTypeComeBackAsWritten) {
    for (const std::uint16_t code_page : std::initializer_list<std::uint16_t>{1200, 1252}) {
        const Value values[]{
            {Type::i2, std::int16_t{-2}},
            {Type::i4, std::int32_t{-70000}},
            {Type::boolean, true},
            {Type::ui4, std::uint32_t{0xFFFFFFFF}},
            {Type::filetime, std::uint64_t{1} << 60},
            {Type::lpstr, std::u16string(u"caf\u00E9")},
            wide(u"\u3042"),
            wide(u""),
            {Type::blob, bytes::Bytes{1, 2, 3}},
            {Type::blob, bytes::Bytes{}},
            {Type::cf, Clipboard{3, {9, 8, 7}}},
        };
        PropertySet set = open_user(raw_stream::user_stream({{1, i2(code_page)}}));
        PropertyId id = 2;
        for (const Value& value : values) {
            put(set, id++, value);
        }
        const PropertySet reread = open_user(set.encode());
        id = 2;
        for (const Value& value : values) {
            EXPECT_EQ(reread.section().read(id), value) << "property " << id;
            ++id;
        }
    }
}

TEST(Values, StringsAreCutAtTheirTerminator) {
    const PropertySet set = open_user(raw_stream::user_stream({
        {1, i2(1252)},
        {2, raw_stream::lpstr("pad\0\0\0\0\0"sv)},
        {3, raw_stream::lpstr("")},
        {4, raw_stream::lpstr("bare")},
    }));
    EXPECT_EQ(set.section().read(PropertyId{2}), (Value{Type::lpstr, std::u16string(u"pad")}));
    EXPECT_EQ(set.section().read(PropertyId{3}), (Value{Type::lpstr, std::u16string()}));
    EXPECT_EQ(set.section().read(PropertyId{4}), (Value{Type::lpstr, std::u16string(u"bare")}));
}

TEST(Values, OneThatCannotBeReadDisturbsNoOther) {
    const PropertySet set = open_user(raw_stream::user_stream({
        {1, i2(4711)},
        {2, {0x03, 0x10, 0, 0, 1, 0, 0, 0, 5, 0, 0, 0}},    // a vector
        {3, {31, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 'x', 0}}, // more units than there are
        {4, raw_stream::lpstr("\x80\0"sv)},                 // not ASCII in an unknown page
        {5, i4(5)},
    }));
    EXPECT_EQ(failure_of([&] { set.section().read(PropertyId{2}); }), Errc::unsupported);
    EXPECT_EQ(failure_of([&] { set.section().read(PropertyId{3}); }), Errc::corrupt);
    EXPECT_EQ(set.section().read(PropertyId{4}), (Value{Type::lpstr, bytes::Bytes{0x80}}));
    EXPECT_EQ(set.section().list().front().type, 0x1003);
    EXPECT_EQ(set.section().list().size(), 4u);
}

TEST(Damage, LeavesASectionReadableButNotWritable) {
    const auto good = raw_stream::user_stream({{1, i2(1252)}, {2, i4(2)}, {3, i4(3)}});
    const std::size_t section = bytes::load_u32(good, 64);
    const std::pair<std::size_t, std::uint32_t> damages[]{
        {4, 0xFFFFFFFF},  // more properties than there is room for
        {28, 4},          // a value among the pairs
        {28, 0x7FFFFFFF}, // a value behind the end
        {24, 2},          // an id twice
    };
    for (const auto& [at, value] : damages) {
        bytes::Bytes stream = good;
        bytes::store_u32(stream, section + at, value);
        PropertySet set = open_user(stream);
        EXPECT_NE(set.section().damage(), "");
        EXPECT_EQ(failure_of([&] { put(set, u"new", wide(u"x")); }), Errc::corrupt);
        EXPECT_EQ(set.encode(), stream);
        if (at != 4) {
            EXPECT_EQ(set.section().read(PropertyId{2}), (Value{Type::i4, std::int32_t{2}}));
        }
    }
}

TEST(Damage, AWrongSizeFieldHidesNothing) {
    auto stream = raw_stream::user_stream({{1, i2(1252)}, {2, raw_stream::lpwstr(u"to the end")}});
    const std::size_t section = bytes::load_u32(stream, 64);
    const std::uint32_t right = bytes::load_u32(stream, section);
    for (const std::uint32_t size : {0u, right - 8, right, 0xFFFFFFFFu}) {
        bytes::store_u32(stream, section, size);
        PropertySet set = open_user(stream);
        put(set, PropertyId{9}, wide(u"x"));
        EXPECT_EQ(open_user(set.encode()).section().read(PropertyId{2}), wide(u"to the end"));
    }
}

TEST(Damage, SharedOffsetsDoNotMultiplyIntoHugeSections) {
    std::vector<raw_stream::Property> properties{{1, i2(1252)}, {2, bytes::Bytes(100'000, 1)}};
    for (PropertyId id = 3; id < 10'000; ++id) {
        properties.push_back({id, {}});
    }
    PropertySet set = open_user(raw_stream::user_stream(properties));
    EXPECT_EQ(failure_of([&] { put(set, u"new", wide(u"x")); }), Errc::too_large);
    drop(set, PropertyId{3});
    EXPECT_EQ(failure_of([&] { set.encode(); }), Errc::too_large);
}

} // namespace
} // namespace property_set
