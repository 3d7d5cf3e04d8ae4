// The letter "k" among the options: what cannot be read is left out of the tables and told in the
// error parameters, the rest is loaded, and a rewrite copies what was left out byte for byte.
// Without the letter the first of it ends the load.
#include "plugin/status.h"
#include "tests/rewriter/relink_fixture.h"
#include "tests/support/ole_storage.h"

#include <functional>

namespace {

using namespace rewriter_test;
using plugin_test::error_params;
using plugin_test::StoredFile;
using Paths = std::vector<std::string>;
namespace status = ppt::status;
namespace type = record_type;

const std::u16string kProperties(kDocumentSummaryInformation);

// A drawing without its drawing container, behind what a page has before it.
Bytes broken_drawing() {
    return container(0, type::kDrawing, {atom(0, type::kArtDrawingAtom, Bytes(8))});
}

Bytes ole_storage_to(const char* source) {
    return ole_storage({{kOleStreamName, ole_stream({{}, file_moniker({source})})}});
}

class KeepGoingTest : public RelinkTest {
  protected:
    void SetUp() override {
        RelinkTest::SetUp();
        start("hetk");
    }

    std::int32_t load_strictly(Deck& deck) {
        start("het");
        const std::int32_t result = load(deck);
        j_unLoadFile();
        start("hetk");
        return result;
    }

    // Expects the rest of the deck to load, and what was left out to be told.
    void expect_left_out(Deck& deck, const std::string& told, const Paths& paths) {
        j_unLoadFile();
        ASSERT_EQ(load(deck), 0) << error_params();
        EXPECT_EQ(error_params(), told);
        EXPECT_EQ(link_paths(), paths);
    }
};

TEST_F(KeepGoingTest, ALoadTellsThatNothingWasLeftOut) {
    Deck deck;
    deck.add_slide().shape(Shape().link(deck.hyperlink(u"http://a/")));
    expect_left_out(deck, "0", {"http://a/"});
}

struct UnreadableObject {
    const char* name;
    std::function<void(Deck&)> add;
    std::int32_t status;
    const char* kind;
};

Bytes media_without_path(std::uint16_t of_type) {
    return container(0, of_type, {media_atom(7)});
}

const UnreadableObject kUnreadableObjects[] = {
    {"movie around another container",
     [](Deck& deck) {
         deck.external_object(
             container(0, type::kExternalMciMovie, {media(type::kExternalMidiAudio, 7, u"x")}));
     },
     status::kDamaged, "movie"},
    {"empty movie",
     [](Deck& deck) { deck.external_object(container(0, type::kExternalAviMovie, {})); },
     status::kDamaged, "movie"},
    {"one video of a list",
     [](Deck& deck) {
         deck.external_object(video_list(join({media(type::kExternalVideo, 7, u"C:\\7.avi"),
                                               media_without_path(type::kExternalVideo)})));
     },
     status::kDamaged, "movie"},
    {"sound without a path",
     [](Deck& deck) { deck.external_object(media_without_path(type::kExternalWavAudioLink)); },
     status::kDamaged, "sound"},
    {"midi without a path",
     [](Deck& deck) { deck.external_object(media_without_path(type::kExternalMidiAudio)); },
     status::kDamaged, "midi"},
    {"hyperlink whose atom is cut",
     [](Deck& deck) {
         deck.external_object(container(0, type::kExternalHyperlink,
                                        {atom(0, type::kExternalHyperlinkAtom, Bytes(3))}));
     },
     status::kDamaged, "hyperlink"},
    {"storage with another zlib header",
     [](Deck& deck) {
         Bytes record = storage_record(ole_storage_to("C:\\x.xls"), true);
         record[13] = 0xDA;
         deck.ole_link(record);
     },
     status::kDamaged, "ole"},
    {"storage that does not unpack",
     [](Deck& deck) { deck.ole_link(storage_record_claiming(ole_storage_to("C:\\x.xls"), 9)); },
     status::kBadDecompression, "ole"},
    {"storage that is no storage",
     [](Deck& deck) { deck.ole_link(storage_record(Bytes(3000, 'x'), false)); },
     status::kStorageOnMemoryFailed, "ole"},
    {"storage without its stream",
     [](Deck& deck) {
         deck.ole_link(storage_record(ole_storage({{u"Contents", Bytes(9)}}), true));
     },
     status::kElementMissing, "ole"},
    {"storage that does not exist",
     [](Deck& deck) { deck.external_object(external_ole_link(7, 4000)); },
     status::kSeekFromStartFailed, "ole"},
    {"object that is longer than the list",
     [](Deck& deck) {
         Bytes record = container(0, type::kExternalAviMovie, {});
         bytes::store_u32(record, 4, 0x00100000);
         deck.external_object(record);
     },
     status::kDamaged, "object"},
    {"atom that is longer than the stream",
     [](Deck& deck) {
         Bytes record = atom(0, 0x0FFF, {});
         bytes::store_u32(record, 4, 0x7FFFFFFF);
         deck.external_object(record);
     },
     status::kDamaged, "object"},
};

TEST_F(KeepGoingTest, AnExternalObjectIsLeftOutAndCopiedAsItIs) {
    for (const UnreadableObject& object : kUnreadableObjects) {
        SCOPED_TRACE(object.name);
        const auto deck = [&](const std::u16string& song, const std::u16string& web) {
            Deck made;
            const auto first = made.sound(type::kExternalMidiAudio, song);
            const auto second = made.hyperlink(web);
            object.add(made);
            made.add_master().shape(Shape().link(second));
            made.add_slide().shape(Shape().object(first)).shape(Shape().object(7));
            return made;
        };
        Deck before = deck(u"C:\\song.mid", u"http://a/");
        Deck after = deck(u"D:\\a longer song.mid", u"b:");
        EXPECT_EQ(load_strictly(before), object.status);
        // The list's own atom is its first child.
        expect_left_out(before, "1|" + std::to_string(object.status) + "|" + object.kind + "|4",
                        {"http://a/", "C:\\song.mid"});
        relink_loaded({{0, u"b:"}, {1, u"D:\\a longer song.mid"}});
        EXPECT_EQ(difference(StoredFile(path("out.ppt")).document(), after.document_stream()), "");
    }
}

// Only a rewrite walks what stands behind the path, and it would fail as a whole.
TEST_F(KeepGoingTest, ASoundWithDamageBehindItsPathIsLeftOut) {
    Bytes record_longer_than_the_sound = atom(0, 0x0FFF, Bytes(4));
    bytes::store_u32(record_longer_than_the_sound, 4, 5);
    Deck deck;
    deck.external_object(
        container(0, type::kExternalWavAudioLink,
                  {media_atom(7), cstring(0, u"C:\\7.wav"), record_longer_than_the_sound}));
    const auto web = deck.hyperlink(u"http://a/");
    deck.add_slide().shape(Shape().object(7)).shape(Shape().link(web));
    EXPECT_EQ(load_strictly(deck), 0);
    expect_left_out(deck, "1|8140|sound|2", {"http://a/"});
    relink_loaded({{0, u"b:"}});
}

TEST_F(KeepGoingTest, ObjectsBehindOneThatIsLeftOutKeepTheirPlaces) {
    Deck deck;
    deck.external_object(
        container(0, type::kExternalHyperlink, {atom(0, type::kExternalHyperlinkAtom, {})}));
    const auto listed = deck.declare(Hyperlink{}); // its target stands in the properties only
    deck.external_object(media_without_path(type::kExternalMidiAudio));
    const auto song = deck.sound(type::kExternalMidiAudio, u"C:\\song.mid");
    deck.add_slide().shape(Shape().link(listed)).shape(Shape().object(song));
    const ListedHyperlink targets[] = {{u"C:\\first.doc"}, {u"C:\\second.doc"}};
    deck.properties(PropertyStream().blob(u"_PID_HLINKS", hyperlink_list(targets)).build());
    expect_left_out(deck, "2|8140|hyperlink|2|8140|midi|4", {"C:\\second.doc", "C:\\song.mid"});
}

TEST_F(KeepGoingTest, APageIsLeftOutWithAllItsLinks) {
    const auto deck = [](const std::u16string& map) {
        Deck made;
        const auto web = made.hyperlink(u"http://a/");
        made.add_master().record_before_drawing(broken_drawing());
        made.add_slide().shape(Shape().picture(map));
        made.add_slide()
            .shape(Shape().link(web))
            .shape(Shape().picture(u"C:\\lost.wmf"))
            .record(broken_drawing());
        made.add_slide().shape(Shape().picture(map));
        made.list_record(PageKind::slide, slide_persist_atom({4000, 300, 0}));
        made.list_record(PageKind::slide, atom(0, type::kSlidePersistAtom, Bytes(2)));
        made.add_notes().shape(Shape().link(web));
        return made;
    };
    Deck before = deck(u"C:\\map.wmf");
    Deck after = deck(u"D:\\maps\\map.wmf");
    EXPECT_EQ(load_strictly(before), status::kDamaged);
    expect_left_out(before, "4|8140|master|1|8140|slide|2|5650|slide|4|8140|slide|5",
                    {"C:\\map.wmf", "C:\\map.wmf", "http://a/"});
    EXPECT_EQ(link(1).slide_index, 3) << "pages keep their numbers";
    expect_relinked(before, {{0, u"D:\\maps\\map.wmf"}, {1, u"D:\\maps\\map.wmf"}}, after);
}

TEST_F(KeepGoingTest, APageThatNoDirectoryListsIsNotThatAtOffsetZero) {
    Deck deck;
    deck.skip_persist_ids(1); // id 2
    deck.add_slide().shape(Shape().picture(u"C:\\map.wmf"));
    deck.list_record(PageKind::slide, slide_persist_atom({2, 300, 0}));
    EXPECT_EQ(load_strictly(deck), 0);
    expect_left_out(deck, "1|5650|slide|2", {"C:\\map.wmf"});
}

TEST_F(KeepGoingTest, ASlideListThatCannotBeReadToItsEndCostsNoPageInFrontOfIt) {
    const auto deck = [](const std::u16string& map) {
        Bytes record = atom(0, 0x0FFF, {});
        bytes::store_u32(record, 4, 0x00100000);
        Deck made;
        made.add_slide().shape(Shape().picture(map));
        made.add_slide().shape(Shape().picture(map));
        made.list_record(PageKind::slide, record);
        return made;
    };
    Deck before = deck(u"C:\\map.wmf");
    Deck after = deck(u"D:\\maps\\map.wmf");
    expect_left_out(before, "1|8140|slide|0", {"C:\\map.wmf", "C:\\map.wmf"});
    relink_loaded({{0, u"D:\\maps\\map.wmf"}, {1, u"D:\\maps\\map.wmf"}});
    EXPECT_EQ(difference(StoredFile(path("out.ppt")).document(), after.document_stream()), "");
    EXPECT_EQ(not_written(), Indexes{});
}

TEST_F(KeepGoingTest, AnObjectThatTakesAPageForItsStorageCostsNoPage) {
    const auto deck = [](const std::u16string& map) {
        Deck made;
        made.external_object(external_ole_link(7, 2));
        made.add_slide().shape(Shape().picture(map)); // persist id 2
        return made;
    };
    Deck before = deck(u"C:\\map.wmf");
    Deck after = deck(u"D:\\maps\\map.wmf");
    expect_left_out(before, "1|8140|ole|2", {"C:\\map.wmf"});
    expect_relinked(before, {{0, u"D:\\maps\\map.wmf"}}, after);
}

TEST_F(KeepGoingTest, ALinkOfTheSlideListIsLeftOutWithoutItsPage) {
    Deck deck;
    const auto web = deck.hyperlink(u"http://a/");
    deck.add_slide().shape(Shape().link(web));
    deck.list_record(PageKind::slide, container(0, type::kInteractiveInfo,
                                                {atom(0, type::kInteractiveInfoAtom, Bytes(8))}));
    deck.list_record(PageKind::slide, interactive_info({web}));
    EXPECT_EQ(load_strictly(deck), status::kDamaged);
    expect_left_out(deck, "1|8140|slide|1", {"http://a/", "http://a/"});
}

// The ids of a page that was read move into the properties; a page that was not keeps its own.
TEST_F(KeepGoingTest, TagsOfAPageThatIsLeftOutStay) {
    const auto deck = [](bool with_ids) {
        Deck made;
        const auto web = made.hyperlink(u"http://a/");
        Page& good = made.add_slide();
        good.shape(Shape().link(web)).tag(u"NUMBER", u"99");
        if (with_ids) {
            good.tag(u"OBRIN-LINK-NUM=10", u"11");
        }
        made.add_slide()
            .shape(Shape().link(web))
            .name(u"MORVANE-LINK-ID=77")
            .tag(u"OBRIN-LINK-NUM=10", u"12")
            .record(broken_drawing());
        return made;
    };
    Deck before = deck(true);
    Deck after = deck(false);
    expect_left_out(before, "1|8140|slide|2", {"http://a/"});
    EXPECT_EQ(link_id(0), 11u);
    expect_relinked(before, {}, after);

    Deck only_bad;
    only_bad.add_slide()
        .name(u"MORVANE-LINK-ID=77")
        .tag(u"OBRIN-LINK-NUM=10", u"12")
        .record(broken_drawing());
    expect_left_out(only_bad, "1|8140|slide|1", {});
    id64 target{};
    ASSERT_EQ(j_getTargetFileId(0, &target), 0);
    EXPECT_NE(b_id64IsClear(&target), 0);
    EXPECT_FALSE(ppt::state().ids_in_document);
}

// The tags of a page without shapes are first looked at when they are to go.
TEST_F(KeepGoingTest, APageWhoseDamageShowsOnlyInTheRewriteKeepsItsBytes) {
    const auto deck = [](bool with_ids, const std::u16string& map) {
        Deck made;
        const auto web = made.hyperlink(u"http://a/");
        made.add_master().shape_count(0).record(
            container(0, type::kProgTags,
                      {atom(0, type::kCString, Bytes(60)),
                       container(0, type::kProgStringTag, {cstring(0, u"OBRIN-LINK-NUM=1")})}));
        Page& page = made.add_slide();
        page.shape(Shape().link(web)).shape(Shape().picture(map)).tag(u"NUMBER", u"99");
        if (with_ids) {
            page.tag(u"OBRIN-LINK-NUM=10", u"11");
        }
        return made;
    };
    Deck before = deck(true, u"C:\\map.wmf");
    Deck after = deck(false, u"D:\\maps\\map.wmf");
    expect_left_out(before, "0", {"http://a/", "C:\\map.wmf"});
    expect_relinked(before, {{1, u"D:\\maps\\map.wmf"}}, after);
    EXPECT_EQ(not_written(), Indexes{});
}

// One entry leads behind the stream, one into the document container, which is rewritten.
TEST_F(KeepGoingTest, EntriesOfThePersistDirectoryThatLeadNowhereStay) {
    Deck deck;
    deck.skip_persist_ids(2); // ids 2 and 3
    deck.directory_entry({2, 0x00100000}).directory_entry({3, 40});
    const auto web = deck.hyperlink(u"http://a/");
    deck.external_object(external_ole_link(7, 3));
    deck.add_slide().shape(Shape().link(web)).shape(Shape().picture(u"C:\\map.wmf"));
    expect_left_out(deck, "1|8140|ole|3", {"http://a/", "C:\\map.wmf"});
    relink_loaded({{0, u"http://longer/"}, {1, u"D:\\maps\\map.wmf"}});
    ASSERT_EQ(load_again("out.ppt"), 0);
    EXPECT_EQ(link_paths(), (Paths{"http://longer/", "D:\\maps\\map.wmf"}));
}

// What lacks in a storage is no failing device.
// The object array ends at persist id 0, and a new directory lists what the array holds.
TEST_F(KeepGoingTest, ADocumentThatOnlyALookupFindsIsNotRewritten) {
    Deck deck;
    deck.add_slide().shape(Shape().link(deck.hyperlink(u"http://a/")));
    deck.directory_entry({.id = 0, .offset = 0});
    expect_left_out(deck, "1|5650|slide|1", {});
    EXPECT_EQ(rewrite("out.ppt"), status::kDamaged);
}

TEST_F(KeepGoingTest, AStorageThatEndsTooEarlyIsLeftOut) {
    Bytes image = ole_storage_to("C:\\book.xls");
    image.resize(image.size() - 700);
    Deck deck;
    deck.ole_link(storage_record(image, false));
    deck.add_slide();
    EXPECT_EQ(load_strictly(deck), status::kReadFault);
    expect_left_out(deck, "1|8140|ole|2", {});
}

TEST_F(KeepGoingTest, AnObjectWhoseStorageCanOnlyBeReadIsReportedAsNotWritten) {
#if defined(_WIN32)
    GTEST_SKIP() << "the system's StgOpenStorageOnILockBytes refuses such a storage with 5700";
#endif
    constexpr std::size_t kMiniStreamCutoff = 56; // in a compound file's header
    Bytes image = ole_storage_to("C:\\book.xls");
    bytes::store_u32(image, kMiniStreamCutoff, 8192);
    const auto deck = [&](const std::u16string& web) {
        Deck made;
        const auto book = made.ole_link(storage_record(image, false));
        const auto page = made.hyperlink(web);
        made.add_slide().shape(Shape().object(book)).shape(Shape().link(page));
        return made;
    };
    Deck before = deck(u"http://a/");
    Deck after = deck(u"http://longer/");
    const NewPaths paths{{0, u"C:\\new.xls"}, {1, u"http://longer/"}};
    expect_left_out(before, "0", {"C:\\book.xls", "http://a/"});
    expect_relinked(before, paths, after);
    EXPECT_EQ(not_written(), Indexes{0});

    start("het");
    ASSERT_EQ(load(before), 0);
    ASSERT_EQ(j_setLinkFileName(0, "C:\\new.xls", 0), 0);
    EXPECT_EQ(rewrite("out.ppt"), status::kStorageOnMemoryFailed);
}

TEST_F(KeepGoingTest, DocumentPropertiesThatCannotBeReadAreCopied) {
    Deck deck;
    deck.add_slide().shape(Shape().link(deck.hyperlink(u"http://a/")));
    deck.properties(
        PropertyStream().text(u"MORVANE-LINK-ID", u"5").text(u"_PID_HLINKS", u"no list").build());
    EXPECT_EQ(load_strictly(deck), status::kPropertiesFailed);
    expect_left_out(deck, "1|7280|properties|0", {"http://a/"});
    relink_loaded({{0, u"http://b/"}});
    const StoredFile copy(path("out.ppt"));
    EXPECT_EQ(copy.stream(kProperties), StoredFile(path("deck.ppt")).stream(kProperties));
    ASSERT_EQ(load_again("out.ppt"), 0);
    EXPECT_EQ(link_paths(), Paths{"http://b/"});

    const id64 id = plugin_test::id(6);
    ASSERT_EQ(j_setLinkId(0, 0, &id), 0);
    EXPECT_EQ(rewrite("other.ppt"), status::kPropertiesFailed) << "an id would be lost";
    ASSERT_EQ(load_again("out.ppt"), 0);
    ASSERT_EQ(j_setTargetFileId(0, &id), 0);
    EXPECT_EQ(rewrite("other.ppt"), status::kPropertiesFailed);
}

// One bit of the section's format id is enough for that.
TEST_F(KeepGoingTest, DocumentPropertiesWithoutAPlaceForIdsCostOnlyIds) {
    Deck deck;
    deck.add_slide().shape(Shape().link(deck.hyperlink(u"http://a/")));
    Bytes properties = PropertyStream().text(u"name", u"value").build();
    constexpr std::size_t kFormatOfSecondSection = 0x30;
    properties[kFormatOfSecondSection] ^= 1;
    deck.properties(properties);
    ASSERT_EQ(load(deck), 0) << error_params();
    relink_loaded({{0, u"b:"}});
    EXPECT_EQ(StoredFile(path("out.ppt")).stream(kProperties), properties);

    ASSERT_EQ(load(deck), 0);
    const id64 id{{7, 0}};
    EXPECT_EQ(j_setLinkId(0, 0, &id), 0);
    EXPECT_EQ(rewrite("other.ppt"), status::kDamaged) << "the id would be lost";
}

TEST_F(KeepGoingTest, DocumentPropertiesThatEndTooEarlyAreLeftOut) {
#if defined(_WIN32)
    GTEST_SKIP() << "the system reads on behind the end of the sectors without a failure";
#endif
    constexpr std::size_t kSizeInEntry = 120; // of a stream, in its directory entry
    Deck deck;
    deck.add_slide().shape(Shape().link(deck.hyperlink(u"http://a/")));
    deck.properties(PropertyStream().text(u"MORVANE-LINK-ID", u"5").build());
    deck.write(path("deck.ppt"));
    std::string file = bytes_of("deck.ppt");
    std::string name;
    for (const char16_t unit : kProperties) {
        name += {static_cast<char>(unit), '\0'};
    }
    const std::size_t entry = file.find(name);
    ASSERT_NE(entry, std::string::npos);
    file.replace(entry + kSizeInEntry, 2, {'\xA0', '\x0F'}); // 4000
    std::ofstream(path("cut.ppt"), std::ios::binary) << file;

    start("het");
    EXPECT_EQ(load_again("cut.ppt"), status::kPropertiesFailed);
    start("hetk");
    ASSERT_EQ(load_again("cut.ppt"), 0) << error_params();
    EXPECT_EQ(error_params(), "1|7280|properties|0");
    EXPECT_EQ(link_paths(), Paths{"http://a/"});
    relink_loaded({{0, u"http://b/"}});
    ASSERT_EQ(load_again("out.ppt"), 0);
    EXPECT_EQ(link_paths(), Paths{"http://b/"});
}

TEST_F(KeepGoingTest, TheFirstHundredAreNamedAndAllAreCounted) {
    Deck deck;
    for (int i = 0; i < 150; ++i) {
        deck.external_object(media_without_path(type::kExternalMidiAudio));
    }
    deck.add_slide();
    j_unLoadFile();
    ASSERT_EQ(load(deck), 0);
    const std::string told = error_params();
    EXPECT_TRUE(told.starts_with("150|8140|midi|2|8140|midi|3|")) << told;
    EXPECT_TRUE(told.ends_with("|8140|midi|101")) << told;
}

TEST_F(KeepGoingTest, WhatIsStructuralStillEndsTheLoad) {
    Deck cut;
    cut.add_slide().shape(Shape().picture(u"C:\\map.wmf"));
    Bytes stream = cut.document_stream();
    const RecordAt document = record_at(stream, cut.offset_of_document());
    Bytes no_document = stream;
    bytes::store_u16(no_document, document.offset + 2, type::kSlide);
    cut.replace_document_stream(no_document);
    EXPECT_EQ(load(cut), status::kNotAPresentation);
    Bytes no_edit = stream;
    bytes::store_u16(no_edit, cut.offset_of_user_edit(0) + 2, type::kSlide);
    cut.replace_document_stream(no_edit);
    EXPECT_EQ(load(cut), status::kDamaged);
    Bytes no_directory = stream;
    bytes::store_u16(no_directory, cut.offset_of_persist_directory(0) + 2, type::kSlide);
    cut.replace_document_stream(no_directory);
    EXPECT_EQ(load(cut), status::kDamaged);
    Bytes long_list = stream;
    const RecordAt list = cut.find_in_document({{type::kSlideListWithText}});
    bytes::store_u32(long_list, list.offset + 4, 0x00100000);
    cut.replace_document_stream(long_list);
    EXPECT_EQ(load(cut), status::kDamaged) << "the list does not end inside the document";
}

} // namespace
