// Link ids and hyperlink targets where the ANSI code page, or that of the property section, has
// more than one byte for a character or lacks it altogether.
#include "linkid/hyperlink_list.h"
#include "linkid/stored_path.h"
#include "tests/plugin/plugin_fixture.h"
#include "tests/plugin/stored_file.h"
#include "tests/pptlinks/code_page_guard.h"

namespace {

using namespace ppt;
using namespace presentation_builder;
using plugin_test::error_params;
using plugin_test::id;

class LinkCodePagesTest : public plugin_test::PluginTest {
  protected:
    void rewrite_with_ids_from(std::uint32_t first, const std::string& name) {
        for (std::int32_t i = 0; i < n_getLinkCount(); ++i) {
            const id64 given = id(first + static_cast<std::uint32_t>(i));
            ASSERT_EQ(j_setLinkId(i, 0, &given), 0);
        }
        ASSERT_EQ(rewrite(name), 0) << error_params();
        ASSERT_EQ(load_again(name), 0) << error_params();
        for (std::int32_t i = 0; i < n_getLinkCount(); ++i) {
            EXPECT_EQ(link_id(i), first + static_cast<std::uint32_t>(i)) << link_path(i);
        }
    }
};

// The second bytes of Katakana are ASCII letters, '\' and ']' among them.
TEST_F(LinkCodePagesTest, EveryCharacterKeepsItsIdInEverySectionAndASecondTime) {
    const CodePageGuard shift_jis(932);
    constexpr std::uint16_t kSections[] = {932, 1252, 1200, 65001};
    for (const std::uint16_t section : kSections) {
        SCOPED_TRACE(section);
        Deck deck;
        auto& slide = deck.add_slide();
        for (char16_t letter = 0x30A1; letter <= 0x30F6; ++letter) {
            slide.shape(Shape().link(deck.hyperlink(u"Img\\" + std::u16string(1, letter) + u"9")));
        }
        slide.shape(Shape().link(deck.hyperlink(u"C:\\Book.xls!\u30BD\u30A2")));
        deck.properties(PropertyStream(section).text(u"Other", u"value").build());
        ASSERT_EQ(load(deck), 0) << error_params();
        rewrite_with_ids_from(100, "first.ppt");
        rewrite_with_ids_from(500, "second.ppt");
        j_unLoadFile();
    }
    EXPECT_EQ(stored_path("C:\\\x83\x41X.DOC", "D:\\q.ppt"), "c:\\\x83\x41x.doc");
}

TEST_F(LinkCodePagesTest, ChangeOfASecondByteIsNoChangeOfLetterCase) {
    const CodePageGuard shift_jis(932);
    Deck deck;
    deck.add_slide().shape(Shape().link(deck.hyperlink(u"C:\\\u30A2.doc")));
    ASSERT_EQ(load(deck), 0);
    ASSERT_EQ(link_path(0), "C:\\\x83\x41.doc");
    ASSERT_EQ(j_setLinkFileName(0, "C:\\\x83\x61.doc", 0), 0);
    ASSERT_EQ(rewrite("out.ppt"), 0);
    ASSERT_EQ(load_again("out.ppt"), 0);
    EXPECT_EQ(link_path(0), "C:\\\x83\x61.doc");
}

TEST_F(LinkCodePagesTest, RangesOfTextCountCharactersAndCutsFallBetweenThem) {
    const CodePageGuard shift_jis(932);
    Deck deck;
    const auto target = deck.hyperlink(u"C:\\a.doc");
    deck.add_slide()
        .shape(Shape().text(Text(u"\u65E5\u672C plan").link(target, 1, 4)))
        .shape(Shape().text(Text(std::u16string(2000, u'\u65E5')).link(target, 0, 2000)))
        .shape(Shape().text(Text(u"caf\u00D7 plan").as_bytes().link(target, 3, 5)));
    ASSERT_EQ(load(deck), 0);
    EXPECT_EQ(link_text(0), "\x96\x7B p");
    EXPECT_EQ(link(0).text_range_end, 4);
    EXPECT_EQ(link_text(1).size(), 1022u);
    EXPECT_EQ(link(1).text_range_end, 511);
    EXPECT_EQ(link_text(2), "\x81\x7E ") << "a byte of the text is a character, not a lead byte";
    EXPECT_EQ(link(2).text_range_end, 5);
}

TEST_F(LinkCodePagesTest, PropertyIsReadThoughTheCodePageLacksPartOfItsName) {
    const CodePageGuard western(1252);
    Deck deck;
    deck.add_slide().shape(Shape().link(deck.hyperlink(u"C:\\b.xls")));
    deck.properties(PropertyStream(1200).text(u"MORVANE-LINK-ID=9!\u65E5%%", u"c:\\b.xls").build());
    ASSERT_EQ(load(deck), 0);
    EXPECT_EQ(link_id(0), 9u);
}

// The address of an unchanged link is not converted there and back; every hash fits its entry.
TEST_F(LinkCodePagesTest, AddressesThatDidNotChangeKeepCharactersOutsideTheCodePage) {
    const CodePageGuard western(1252);
    Deck deck;
    deck.add_slide()
        .shape(Shape().link(deck.hyperlink(u"C:\\a.doc")))
        .shape(Shape().link(deck.hyperlink(u"C:\\\u65E5\u672C.doc")));
    const ListedHyperlink listed[] = {{u"C:\\a.doc", u"Top"}, {u"C:\\\u65E5\u672C.doc"}};
    deck.properties(PropertyStream(1200)
                        .blob(u"_PID_HLINKS", presentation_builder::hyperlink_list(listed))
                        .build());
    const auto hash = [](const std::u16string& units) {
        const std::basic_string<WCHAR> text(units.begin(), units.end());
        return n_hashHyperlinkString(text.c_str(), static_cast<std::uint32_t>(text.size() + 1));
    };
    ASSERT_EQ(load(deck), 0);
    ASSERT_EQ(j_setLinkFileName(0, "C:\\Changed.doc", 0), 0);
    ASSERT_EQ(rewrite("out.ppt"), 0);
    const ListedHyperlink expected[] = {
        {u"C:\\Changed.doc", u"Top", {hash(u"c:\\changed.doc") ^ hash(u"top"), 6, 0, 7}},
        {u"C:\\\u65E5\u672C.doc", u"", {hash(u"c:\\\u65E5\u672C.doc"), 6, 0, 7}}};
    const Bytes list = presentation_builder::hyperlink_list(expected);
    const plugin_test::StoredFile copy(path("out.ppt"));
    const Bytes& stream =
        copy.stream(std::u16string(presentation_builder::kDocumentSummaryInformation));
    EXPECT_NE(std::search(stream.begin(), stream.end(), list.begin(), list.end()), stream.end());
}

} // namespace
