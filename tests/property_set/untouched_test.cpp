// What nobody asked to change comes out byte for byte.
#include "platform/compound_file/compound_file.h"
#include "tests/property_set/edits.h"

#include <cstdlib>
#include <filesystem>

namespace property_set {
namespace {

using namespace std::string_view_literals;

using raw_stream::parse;

// Adds a property, writes, reads, deletes it, writes: nothing else may have moved by a byte.
void expect_rest_untouched(const bytes::Bytes& original) {
    PropertySet set = open_user(original);
    EXPECT_EQ(set.encode(), original);
    if (!set.section().damage().empty()) {
        return;
    }
    put(set, u"added for a moment", wide(u"value"));
    const PropertyId added = id_of(set, u"added for a moment").value();
    const bytes::Bytes with = set.encode();
    PropertySet again = open_user(with);
    drop(again, added);
    const bytes::Bytes without = again.encode();

    const auto before = parse(original, kUserDefinedFormat);
    for (const bytes::Bytes& changed : {with, without}) {
        auto after = parse(changed, kUserDefinedFormat);
        EXPECT_EQ(after.values.erase(added), changed == with ? 1u : 0u);
        for (const auto& [id, value] : before.values) {
            if (id != kDictionaryId) {
                auto written = after.values.at(id);
                EXPECT_LT(written.size() - value.size(), 4u);
                written.resize(value.size());
                EXPECT_EQ(written, value) << "property " << id;
            }
        }
        EXPECT_TRUE(std::equal(before.order.begin(), before.order.end(), after.order.begin()));
        EXPECT_TRUE(std::equal(original.begin(), original.begin() + 28, changed.begin()));
    }
    EXPECT_EQ(names_of(open_user(without)), names_of(open_user(original)));
}

TEST(Untouched, ValuesOfAnyKindKeepTheirBytes) {
    const bytes::Bytes vector_without_padding{0x1E, 0x10, 0, 0, 2, 0, 0,   0,   3, 0, 0, 0, 'a',
                                              'b',  0,    3, 0, 0, 0, 'c', 'd', 0, 0, 0, 0, 0};
    const auto dictionary = raw_stream::dictionary(
        1252, {{2, raw_stream::latin("Vector")}, {9, raw_stream::latin("no value")}});
    expect_rest_untouched(raw_stream::user_stream({
        {4, {0x77, 0x77, 1, 2, 3, 4, 5}}, // a type nobody knows, ends unaligned
        {2, vector_without_padding},      // starts unaligned
        {1, raw_stream::i2(1252)},        // behind others, as the dictionary
        {0, dictionary},
        {7, raw_stream::lpstr("long\0rest"sv)},
        {2 | kCompanionBit, raw_stream::lpwstr(u"companion")},
        {8, {}}, // shares the companion's offset
    }));
}

// A copy has zeros behind a value that is cut: 1252 begins with 0xE4.
TEST(Untouched, ACutCodePageMeansWhatItMeansInACopy) {
    PropertySet set = open_user(raw_stream::user_stream(
        {{1, {2, 0, 0, 0, 0xE4}}, {2, raw_stream::lpstr("\xC4\0"sv)}, {3, raw_stream::i4(3)}}));
    const Value before = set.section().read(PropertyId{2}).value();
    put(set, PropertyId{3}, {Type::i4, 4});
    EXPECT_EQ(open_user(set.encode()).section().read(PropertyId{2}), before);
}

TEST(Untouched, OtherSectionsKeepTheirPhysicalExtentAndPlace) {
    auto document = raw_stream::section({{1, raw_stream::i2(1252)}});
    document[0] = 8; // claims to be shorter than it is
    document.insert(document.end(), {'s', 'l', 'a', 'c', 'k'});
    const auto user = raw_stream::section({{1, raw_stream::i2(1252)}, {5, raw_stream::i4(5)}});
    for (const bool user_first : {false, true}) {
        const raw_stream::Section first{kUserDefinedFormat, user};
        const raw_stream::Section second{kDocumentFormat, document};
        const auto stream =
            user_first ? raw_stream::stream({first, second}) : raw_stream::stream({second, first});
        PropertySet set = open_user(stream);
        put(set, u"grows", wide(std::u16string(100, u'x')));
        auto kept = parse(set.encode(), kDocumentFormat).whole;
        kept.resize(document.size());
        EXPECT_EQ(kept, document);
        EXPECT_EQ(parse(set.encode(), kUserDefinedFormat).values.at(5), raw_stream::i4(5));
    }
}

TEST(Untouched, WritingWhatIsThereAlreadyIsNoChange) {
    PropertySet set = open_user(
        raw_stream::user_stream({{1, raw_stream::i2(1200)}, {2, raw_stream::lpwstr(u"same")}}));
    put(set, PropertyId{2}, wide(u"same"));
    drop(set, PropertyId{77});
    EXPECT_FALSE(set.changed());
    put(set, PropertyId{2}, wide(u"other"));
    EXPECT_TRUE(set.changed());
    EXPECT_FALSE(set.reverted().changed());
}

TEST(Untouched, RealDocuments) {
    const char* set_by_user = std::getenv("PPT_CORPUS");
    const std::filesystem::path corpus = set_by_user ? set_by_user : PPT_DEFAULT_CORPUS;
    if (!std::filesystem::is_directory(corpus / "real")) {
        GTEST_SKIP() << "no corpus of real documents at " << corpus;
    }
    int user_sections = 0;
    for (const auto& entry : std::filesystem::directory_iterator(corpus / "real")) {
        SCOPED_TRACE(entry.path().filename());
        using namespace compound_file;
        const auto file =
            CompoundFile::open(open_file(entry.path().string(), Access::read), Access::read);
        const EntryId id = file->find(kRoot, u"\005DocumentSummaryInformation");
        if (id == kNoEntry) {
            continue;
        }
        bytes::Bytes stream(file->stream(id)->size());
        ASSERT_EQ(file->stream(id)->read_at(0, stream), stream.size());
        if (read_layout(stream).find(kUserDefinedFormat)) {
            EXPECT_EQ(open_user(stream).section().damage(), "");
            expect_rest_untouched(stream);
            ++user_sections;
        } else {
            PropertySet made = PropertySet::create(stream, kUserDefinedFormat, 1252);
            EXPECT_EQ(parse(made.encode(), kDocumentFormat).values,
                      parse(stream, kDocumentFormat).values);
        }
    }
    EXPECT_GT(user_sections, 0);
}

} // namespace
} // namespace property_set
