// Link ids that earlier versions kept on the pages: read, given to the links, moved into the
// document properties.
#include "plugin/status.h"
#include "tests/pptlinks/code_page_guard.h"
#include "tests/rewriter/relink_fixture.h"

namespace {

using namespace rewriter_test;
using Ids = std::vector<std::uint32_t>;

class LegacyTagsTest : public RelinkTest {
  protected:
    static void add_tags(Page& page, const std::vector<std::u16string>& values) {
        for (const std::u16string& value : values) {
            page.tag(u"OBRIN-LINK-NUM=10", value);
        }
    }

    Ids ids_of(Deck& deck) {
        j_unLoadFile();
        EXPECT_EQ(load(deck), 0) << plugin_test::error_params();
        return ids();
    }

    static Ids ids() {
        Ids found;
        for (std::int32_t i = 0; i < n_getLinkCount(); ++i) {
            found.push_back(link_id(i));
        }
        return found;
    }
};

TEST_F(LegacyTagsTest, TagsGoToHyperlinksFirstAndOnToLaterSlides) {
    Deck one;
    const auto web = one.hyperlink(u"http://example.org/");
    Page& only = one.add_slide();
    only.shape(Shape().link(web)).shape(Shape().picture(u"C:\\map.wmf")).shape(Shape().link(web));
    only.tag(u"NUMBER", u"99");
    add_tags(only, {u"11", u"12", u"13"});
    EXPECT_EQ(ids_of(one), (Ids{11, 13, 12}));

    Deck two;
    const auto doc = two.hyperlink(u"C:\\a.doc");
    add_tags(two.add_slide().shape(Shape().link(doc)), {u"1", u"2", u"3"});
    Page& second = two.add_slide();
    second.shape(Shape().picture(u"C:\\map.wmf")).shape(Shape().link(doc)).shape(Shape().link(doc));
    EXPECT_EQ(ids_of(two), (Ids{1, 0, 2, 3}));
    add_tags(second, {u""});
    EXPECT_EQ(ids_of(two), (Ids{1, 0, 0, 3})) << "an empty value clears";

    Deck three;
    const auto last = three.hyperlink(u"C:\\a.doc");
    add_tags(three.add_slide().shape(Shape().link(last)), {u"1", u"2"});
    three.add_slide().shape(Shape().picture(u"C:\\map.wmf"));
    EXPECT_EQ(ids_of(three), (Ids{1, 2})) << "without a further hyperlink the rest go to others";
}

TEST_F(LegacyTagsTest, TableOfTagsHasItsLimits) {
    Deck deck;
    const auto web = deck.hyperlink(u"http://example.org/");
    Page& page = deck.add_slide();
    page.shape_count(3);
    for (int i = 0; i < 25; ++i) {
        page.shape(Shape().link(web));
        page.tag(u"OBRIN-LINK-NUM=1", u"7");
    }
    Ids expected(25, 0);
    std::fill_n(expected.begin(), 23, 7);
    EXPECT_EQ(ids_of(deck), expected);

    Deck long_value;
    const auto id = long_value.hyperlink(u"http://example.org/");
    add_tags(long_value.add_slide().shape(Shape().link(id)), {u"00000000000000000019999"});
    EXPECT_EQ(ids_of(long_value), Ids{1});

    Deck short_container;
    const auto doc = short_container.hyperlink(u"C:\\a.doc");
    short_container.add_slide().shape(Shape().link(doc)).tag(u"OBRIN-LINK-NUM=", u"1");
    EXPECT_EQ(ids_of(short_container), Ids{0});
    EXPECT_FALSE(ppt::state().ids_in_document);

    Deck malformed;
    const Bytes tag =
        container(0, record_type::kProgStringTag, {cstring(0, u"OBRIN-LINK-NUM=12345678")});
    malformed.add_slide().record(container(0, record_type::kProgTags, {tag}));
    j_unLoadFile();
    EXPECT_EQ(load(malformed), ppt::status::kDamaged);
}

TEST_F(LegacyTagsTest, RewriteMovesIdsIntoTheProperties) {
    const auto deck = [](bool with_ids) {
        Deck made;
        const auto web = made.hyperlink(u"http://example.org/");
        const auto doc = made.hyperlink(u"C:\\a.doc");
        Page& first = made.add_slide();
        first.shape(Shape().link(web)).tag(u"NUMBER", u"99");
        Page& last = made.add_slide();
        last.shape(Shape().text(Text(u"click").link(doc, 0, 5)));
        if (with_ids) {
            add_tags(first, {u"11"});
            add_tags(last, {u"12", u"13"});
        }
        return made;
    };
    // The tags of the last slide are the last record of the last object before the directory.
    Deck before = deck(true);
    Deck after = deck(false);
    expect_relinked(before, {}, after);
    ASSERT_EQ(load_again("out.ppt"), 0);
    EXPECT_FALSE(ppt::state().ids_in_document);
    EXPECT_EQ(ids(), (Ids{11, 12}));

    // A new id is no new path: the text stays.
    start("h");
    j_unLoadFile();
    ASSERT_EQ(load(before), 0);
    const id64 other = plugin_test::id(20);
    ASSERT_EQ(j_setLinkId(1, 0, &other), 0);
    relink_loaded({});
    EXPECT_EQ(
        difference(plugin_test::StoredFile(path("out.ppt")).document(), after.document_stream()),
        "");
}

TEST_F(LegacyTagsTest, TagIsCutFromNamesAndNothingElseChanges) {
    const CodePageGuard guard(1252);
    const std::u16string long_name(2000, u'\u4e2d');
    const auto deck = [&](const std::u16string& tag) {
        Deck made;
        // An object that is no container, as the storages of embedded objects are.
        made.skip_persist_ids(1)
            .loose_bytes(atom(0, 0x1011, Bytes(100, 3)))
            .directory_entry({2, 0});
        made.add_master().name(u"\u4e2d\u6587");
        made.add_slide().name(u"Title " + tag).shape(Shape().picture(u"C:\\map.wmf"));
        made.add_slide().name(long_name + tag);
        return made;
    };
    Deck before = deck(u"MORVANE-LINK-ID=77");
    Deck after = deck(u"");
    expect_relinked(before, {}, after);

    ASSERT_EQ(load(before), 0);
    id64 target{};
    ASSERT_EQ(j_getTargetFileId(0, &target), 0);
    EXPECT_EQ(target.word[0], 77U);
}

} // namespace
