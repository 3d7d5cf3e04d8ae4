// Link ids and hyperlink targets in the document properties, through whole loads and rewrites.
#include "linkid/hyperlink_list.h"
#include "linkid/link_id_tag.h"
#include "linkid/stored_path.h"
#include "plugin/status.h"
#include "tests/plugin/plugin_fixture.h"
#include "tests/plugin/stored_file.h"

#include <map>

namespace {

using namespace ppt;
using namespace presentation_builder;
using plugin_test::error_params;
using plugin_test::id;
using plugin_test::StoredFile;
using presentation_builder::Page;
using Paths = std::vector<std::string>;

class LinkPropertiesTest : public plugin_test::PluginTest {
  protected:
    // Sets ids 101, 102 ... on all links and writes them to a copy, which is then loaded.
    void store_ids(const std::string& name) {
        for (std::int32_t i = 0; i < n_getLinkCount(); ++i) {
            const id64 given = id(101 + static_cast<std::uint32_t>(i));
            ASSERT_EQ(j_setLinkId(i, 0, &given), 0);
        }
        ASSERT_EQ(rewrite(name), 0);
        ASSERT_EQ(load_again(name), 0);
    }

    static std::vector<std::uint32_t> link_ids() {
        std::vector<std::uint32_t> ids;
        for (std::int32_t i = 0; i < n_getLinkCount(); ++i) {
            ids.push_back(link_id(i));
        }
        return ids;
    }

    // The hyperlink list of a stored file, read from the raw stream by its first entry's layout.
    static HyperlinkList stored_list(const Bytes& stream) { // refers to the stream
        // The list is the only blob: type 65, size, value.
        for (std::size_t at = 0; at + 12 < stream.size(); at += 4) {
            if (bytes::load_u32(stream, at) == VT_BLOB) {
                const std::uint32_t size = bytes::load_u32(stream, at + 4);
                if (size > 4 && size <= stream.size() - at - 8) {
                    HyperlinkList list =
                        parse_hyperlink_list(bytes::View(stream).subspan(at + 8, size));
                    if (list.complete && !list.entries.empty()) {
                        return list;
                    }
                }
            }
        }
        return {};
    }
};

Deck deck_with_links() {
    Deck deck;
    Page& slide = deck.add_slide();
    slide.shape(Shape().link(deck.hyperlink(u"C:\\Data\\Report.doc")));
    slide.shape(Shape().link(deck.hyperlink(u"http://example.org/A")));
    slide.shape(Shape().link(deck.hyperlink(u"C:\\Data\\Book.xls!Sheet1")));
    return deck;
}

TEST_F(LinkPropertiesTest, IdsSurviveARewriteAndAChangeOfThePath) {
    Deck deck = deck_with_links();
    ASSERT_EQ(load(deck), 0);
    EXPECT_EQ(link_ids(), (std::vector<std::uint32_t>{0, 0, 0}));
    store_ids("ids.ppt");
    EXPECT_EQ(link_ids(), (std::vector<std::uint32_t>{101, 102, 103}));
    EXPECT_NE(link(0).property_id, 0u);

    ASSERT_EQ(j_setLinkFileName(0, "D:\\Moved\\Report.doc", 0), 0);
    ASSERT_EQ(rewrite("moved.ppt"), 0);
    ASSERT_EQ(load_again("moved.ppt"), 0);
    EXPECT_EQ(link_path(0), "D:\\Moved\\Report.doc");
    EXPECT_EQ(link_ids(), (std::vector<std::uint32_t>{101, 102, 103}));
}

TEST_F(LinkPropertiesTest, AnIdCanBeExchangedOrTakenAway) {
    Deck deck = deck_with_links();
    ASSERT_EQ(load(deck), 0);
    store_ids("ids.ppt");
    const id64 other = id(900);
    const id64 clear = id(0);
    ASSERT_EQ(j_setLinkId(0, 0, &other), 0);
    ASSERT_EQ(j_setLinkId(1, 0, &clear), 0);
    ASSERT_EQ(rewrite("changed.ppt"), 0);
    ASSERT_EQ(load_again("changed.ppt"), 0);
    EXPECT_EQ(link_ids(), (std::vector<std::uint32_t>{900, 0, 103}));
}

TEST_F(LinkPropertiesTest, UsesOfOneLinkShareItsProperty) {
    Deck deck;
    const auto shared = deck.hyperlink(u"C:\\a");
    const auto other = deck.hyperlink(u"C:\\b");
    deck.add_slide()
        .shape(Shape().link(shared))
        .shape(Shape().link(shared))
        .shape(Shape().link(other));
    ASSERT_EQ(load(deck), 0);
    struct Step {
        std::uint32_t given[3];
        std::vector<std::uint32_t> found;
    };
    // One path has one id: that of its last use, unless that use gave its id up.
    const Step steps[] = {{{1, 1, 2}, {1, 1, 2}},
                          {{2, 2, 1}, {2, 2, 1}},
                          {{0, 3, 4}, {3, 3, 4}},
                          {{0, 0, 5}, {0, 0, 5}},
                          {{6, 6, 0}, {6, 6, 0}}};
    for (const Step& step : steps) {
        for (std::int32_t i = 0; i < 3; ++i) {
            const id64 given = id(step.given[i]);
            ASSERT_EQ(j_setLinkId(i, 0, &given), 0);
        }
        ASSERT_EQ(rewrite("out.ppt"), 0);
        std::filesystem::rename(path("out.ppt"), path("next.ppt"));
        ASSERT_EQ(load_again("next.ppt"), 0);
        EXPECT_EQ(link_ids(), step.found);
    }
}

TEST_F(LinkPropertiesTest, RecordsAndHyperlinkListChangeTogetherOrNotAtAll) {
    const ListedHyperlink listed[] = {{u"C:\\old.doc"}};
    Deck deck;
    deck.add_slide().shape(Shape().link(deck.hyperlink(u"C:\\old.doc")));
    deck.properties(PropertyStream()
                        .blob(u"_PID_HLINKS", presentation_builder::hyperlink_list(listed))
                        .build());
    for (const std::int32_t flags : {2, 3}) {
        ASSERT_EQ(load(deck), 0);
        ASSERT_EQ(j_setLinkFileName(0, "C:\\new.doc", 0), 0);
        ASSERT_EQ(rewrite("out.ppt", flags), 0);
        const StoredFile copy(path("out.ppt"));
        const HyperlinkList list = stored_list(
            copy.stream(std::u16string(presentation_builder::kDocumentSummaryInformation)));
        ASSERT_EQ(list.entries.size(), 1u);
        EXPECT_EQ(list.entries[0].target(), flags == 3 ? WIDE("C:\\new.doc") : WIDE("C:\\old.doc"));
        ASSERT_EQ(load_again("out.ppt"), 0);
        EXPECT_EQ(link_path(0), flags == 3 ? "C:\\new.doc" : "C:\\old.doc");
        j_unLoadFile();
    }
}

TEST_F(LinkPropertiesTest, WhatHasNoRoomAmongThePropertiesCostsNoLink) {
    constexpr std::int32_t kLinks = 600;
    const std::vector<ListedHyperlink> listed(kLinks, {u"C:\\old.doc"});
    Deck deck;
    Page& slide = deck.add_slide();
    for (std::int32_t i = 0; i < kLinks; ++i) {
        slide.shape(Shape().link(deck.hyperlink(u"C:\\old.doc")));
    }
    deck.properties(PropertyStream()
                        .blob(u"_PID_HLINKS", presentation_builder::hyperlink_list(listed))
                        .build());
    ASSERT_EQ(load(deck), 0);
    const auto long_path = [](std::int32_t i) {
        return "D:\\" + std::string(1000, 'x') + std::to_string(i);
    };
    for (std::int32_t i = 0; i < kLinks; ++i) {
        const id64 given = id(1000 + static_cast<std::uint32_t>(i));
        ASSERT_EQ(j_setLinkFileName(i, long_path(i).c_str(), 0), 0);
        ASSERT_EQ(j_setLinkId(i, 0, &given), 0);
    }
    ASSERT_EQ(rewrite("out.ppt"), 0);

    const StoredFile copy(path("out.ppt"));
    const Bytes properties =
        copy.stream(std::u16string(presentation_builder::kDocumentSummaryInformation));
    EXPECT_EQ(stored_list(properties).entries.at(0).target(), WIDE("C:\\old.doc"));
    ASSERT_EQ(load_again("out.ppt"), 0);
    for (std::int32_t i = 0; i < kLinks; ++i) {
        ASSERT_EQ(link_path(i), long_path(i));
        ASSERT_EQ(link_id(i), 0u);
    }
}

TEST_F(LinkPropertiesTest, IdsOfTargetsBelowThePresentationsOwnFolderAreFoundAgain) {
    const std::u16string folder = [this] {
        const std::string native = folder_.string();
        return std::u16string(native.begin(), native.end());
    }();
    Deck deck;
    deck.add_slide()
        .shape(Shape().link(deck.hyperlink(folder + u"/Img/A.gif")))
        .shape(Shape().link(deck.hyperlink(u"relative.gif")));
    ASSERT_EQ(load(deck), 0);
    store_ids("ids.ppt");
    EXPECT_EQ(link_ids(), (std::vector<std::uint32_t>{101, 102}));
}

TEST_F(LinkPropertiesTest, ThePresentationsOwnIdIsStoredByItsFlagAlone) {
    Deck deck = deck_with_links();
    ASSERT_EQ(load(deck), 0);
    const id64 own = id(31);
    ASSERT_EQ(j_setTargetFileId(0, &own), 0);
    ASSERT_EQ(rewrite("own.ppt", 2), 0);
    id64 found{};
    ASSERT_EQ(load_again("own.ppt", 1), 0);
    j_getTargetFileId(0, &found);
    EXPECT_EQ(found.word[0], 0u);
    j_unLoadFile();
    ASSERT_EQ(load_again("own.ppt", 2), 0);
    j_getTargetFileId(0, &found);
    EXPECT_EQ(found.word[0], 31u);
}

TEST_F(LinkPropertiesTest, IdsFromOtherWritersAreRecognisedByAddress) {
    for (const std::uint16_t code_page : {std::uint16_t{1252}, std::uint16_t{1200}}) {
        Deck deck = deck_with_links();
        deck.properties(PropertyStream(code_page)
                            .text(u"Unrelated", u"x")
                            .text(u"MORVANE-LINK-ID=11%%", u".\\DATA/report.DOC")
                            .text(u"MORVANE-LINK-ID=12%%", u"\\data\\report.doc")
                            .ansi_text(u"MORVANE-LINK-ID=13!Sheet1%%",
                                       code_page == 1252 ? "c:\\data\\book.xls!Sheet1" : "")
                            .build());
        ASSERT_EQ(load(deck), 0) << error_params();
        EXPECT_EQ(link_id(0), 12u) << "the address without a drive; 11 names another folder";
        EXPECT_EQ(link_id(2), code_page == 1252 ? 13u : 0u);
        EXPECT_EQ(link_id(1), 0u);
        j_unLoadFile();
    }
}

TEST_F(LinkPropertiesTest, TheHyperlinkListFillsTargetsThatTheRecordsLack) {
    Deck deck;
    Page& slide = deck.add_slide();
    slide.shape(Shape().link(deck.declare({.target = std::nullopt})));
    slide.shape(Shape().link(deck.declare({.target = u"C:\\own.doc"})));
    slide.shape(Shape().link(deck.declare({.target = std::nullopt})));
    const ListedHyperlink listed[] = {
        {u"http://a.example/"}, {u"http://wrong.example/"}, {u"", u"Slide 3"}};
    deck.properties(PropertyStream()
                        .blob(u"_PID_HLINKS", presentation_builder::hyperlink_list(listed))
                        .build());
    ASSERT_EQ(load(deck), 0);
    EXPECT_EQ(link_paths(), (Paths{"http://a.example/", "C:\\own.doc", "Slide 3"}));

    // A rewrite leaves the addresses of unchanged links alone: the location stays no address.
    ASSERT_EQ(j_setLinkFileName(0, "C:\\New\\b.doc", 0), 0);
    ASSERT_EQ(rewrite("out.ppt"), 0);
    const StoredFile copy(path("out.ppt"));
    const HyperlinkList list =
        stored_list(copy.stream(std::u16string(presentation_builder::kDocumentSummaryInformation)));
    ASSERT_EQ(list.entries.size(), 3u);
    EXPECT_EQ(list.entries[0].address.size(), 2 * 13u);
    EXPECT_EQ(list.entries[0].target(), WIDE("C:\\New\\b.doc"));
    EXPECT_EQ(list.entries[1].target(), WIDE("http://wrong.example/"));
    EXPECT_EQ(list.entries[2].address.size(), 2u);
    EXPECT_EQ(list.entries[2].target(), WIDE("Slide 3"));
    ASSERT_EQ(load_again("out.ppt"), 0);
    EXPECT_EQ(link_paths(), (Paths{"C:\\New\\b.doc", "C:\\own.doc", "Slide 3"}));
}

TEST_F(LinkPropertiesTest, IdsFromTheDocumentsOwnRecordsComeBeforeThoseBehindTheList) {
    Deck deck = deck_with_links();
    deck.add_slide().name(u"unused");
    Deck tagged;
    Page& slide = tagged.add_slide().name(u"MORVANE-LINK-ID=5");
    slide.shape(Shape().link(tagged.hyperlink(u"C:\\a.doc")));
    const ListedHyperlink listed[] = {{u"C:\\a.doc"}};
    tagged.properties(PropertyStream()
                          .blob(u"_PID_HLINKS", presentation_builder::hyperlink_list(listed))
                          .text(u"MORVANE-LINK-ID=77%%", u"c:\\a.doc")
                          .build());
    ASSERT_EQ(load(tagged), 0);
    EXPECT_EQ(link_id(0), 0u);
    ASSERT_EQ(load_again("deck.ppt", 1), 0);
    EXPECT_EQ(link_id(0), 77u) << "without the flag for the own id the name is not read";
}

TEST_F(LinkPropertiesTest, AFileWithoutASummaryStreamGetsOneOnlyInTheCopy) {
    Deck deck = deck_with_links();
    ASSERT_EQ(load(deck), 0);
    ASSERT_EQ(rewrite("out.ppt", 1), 0);
    const std::u16string name(presentation_builder::kDocumentSummaryInformation);
    EXPECT_FALSE(StoredFile(path("deck.ppt")).streams().contains(name));
    EXPECT_TRUE(StoredFile(path("out.ppt")).streams().contains(name));
}

TEST_F(LinkPropertiesTest, ADamagedHyperlinkListStaysAsItIs) {
    const ListedHyperlink listed[] = {{u"C:\\a.doc"}, {u"C:\\b.doc"}};
    Bytes value = presentation_builder::hyperlink_list(listed);
    value.resize(value.size() - 20);
    Deck deck = deck_with_links();
    deck.properties(PropertyStream().blob(u"_PID_HLINKS", value).build());
    ASSERT_EQ(load(deck), 0);
    ASSERT_EQ(j_setLinkFileName(0, "C:\\changed.doc", 0), 0);
    const id64 given = id(6);
    ASSERT_EQ(j_setLinkId(0, 0, &given), 0);
    ASSERT_EQ(rewrite("out.ppt"), 0);
    const StoredFile copy(path("out.ppt"));
    const Bytes& stream =
        copy.stream(std::u16string(presentation_builder::kDocumentSummaryInformation));
    EXPECT_NE(std::search(stream.begin(), stream.end(), value.begin(), value.end()), stream.end());
    ASSERT_EQ(load_again("out.ppt"), 0);
    EXPECT_EQ(link_id(0), 6u);
}

TEST(LinkPropertyNameTest, CarriesIdAndSuffixAsFarAsThereIsRoom) {
    LinkRecord record;
    record.link_id = id(5);
    EXPECT_EQ(link_property_name(record), "MORVANE-LINK-ID=5%%");
    record.file_name = "C:\\book.xls!Sheet1!A1";
    EXPECT_EQ(link_property_name(record), "MORVANE-LINK-ID=5!Sheet1!A1%%");
    record.file_name = "C:\\[book.xls]Sheet1";
    EXPECT_EQ(link_property_name(record), "MORVANE-LINK-ID=5Sheet1%%");
    record.file_name = "C:\\[1]2.doc";
    EXPECT_EQ(link_property_name(record), "MORVANE-LINK-ID=5]2.doc%%") << "no digit behind the id";
    const std::size_t room = 259 - 17;
    record.file_name = std::string(room, '!');
    EXPECT_EQ(link_property_name(record).size(), 259u) << "no room for the end mark";
    record.file_name = record.file_name.text() + "!";
    EXPECT_EQ(link_property_name(record), "MORVANE-LINK-ID=5%%");
}

TEST(HyperlinkHashTest, TakesPairsOfLowerCasedCharacters) {
    const auto hash = [](std::u16string_view text) {
        const std::basic_string<WCHAR> terminated(text.begin(), text.end());
        return n_hashHyperlinkString(terminated.c_str(),
                                     static_cast<std::uint32_t>(terminated.size() + 1));
    };
    EXPECT_EQ(hash(u""), 0u);
    EXPECT_EQ(hash(u"a"), 0x00000061u);
    EXPECT_EQ(hash(u"AB"), 0x00620061u);
    EXPECT_EQ(hash(u"abc"), 0x00620061u ^ 0x63u);
    EXPECT_EQ(hash(u"\u00C4"), 0xC4u) << "only ASCII letters are lower-cased";
    const std::u16string start(256, u'q');
    EXPECT_EQ(hash(start + u"xyz"), hash(start + u"123")) << "256 characters take part";
}

TEST(LinkIdTagTest, IsFoundAndCutWithEverythingBehindIt) {
    EXPECT_STREQ(ps_findLinkIdTag("Cover MORVANE-LINK-ID=77 x"), "MORVANE-LINK-ID=77 x");
    EXPECT_EQ(ps_findLinkIdTag("morvane-link-id=7"), nullptr);
    std::basic_string<WCHAR> text = WIDE("Cover MORVANE-LINK-ID=77 and more");
    v_stripLinkIdTag(text);
    EXPECT_EQ(text, WIDE("Cover "));
}

} // namespace
