// The displayed texts of hyperlinks: what is replaced, what moves, and what stays.
#include "tests/pptlinks/code_page_guard.h"
#include "tests/rewriter/relink_fixture.h"

#include <chrono>

namespace {

using namespace rewriter_test;
using Texts = std::vector<std::u16string>;

class ClientTextTest : public RelinkTest {
  protected:
    // A deck with one slide and on it one text box; the hyperlinks are declared in order, so their
    // ids count from 1.
    static Deck deck_of(const Texts& targets, const Text& text) {
        Deck deck;
        for (const std::u16string& target : targets) {
            deck.hyperlink(target);
        }
        deck.add_slide().shape(Shape().text(text));
        return deck;
    }

    static Bytes runs(std::initializer_list<std::uint32_t> paragraphs,
                      std::initializer_list<std::uint32_t> characters) {
        return text_style(plain(paragraphs), plain(characters));
    }

    static std::vector<TextRun> plain(std::initializer_list<std::uint32_t> counts) {
        std::vector<TextRun> list;
        for (const std::uint32_t count : counts) {
            list.push_back({count});
        }
        return list;
    }
};

TEST_F(ClientTextTest, NewPathTakesItsPlaceInTextRunsAndRange) {
    for (const bool as_bytes : {false, true}) {
        const auto deck = [&](const std::u16string& target, std::uint32_t size) {
            Text text(u"Visit " + target + u" today");
            text.style(runs({13 + size}, {6, size, 7}))
                .link(1, 6, 6 + size)
                .record(text_special_info(plain({7 + size, 6})))
                .record(text_header(4)) // an empty text with runs of its own
                .record(runs({1}, {1}));
            return deck_of({target}, as_bytes ? text.as_bytes() : text);
        };
        Deck before = deck(u"C:\\a.ppt", 8);
        Deck after = deck(u"D:\\b\\c.ppt", 10);
        expect_relinked(before, {{0, u"D:\\b\\c.ppt"}}, after);
        EXPECT_EQ(not_written(), Indexes{});
        ASSERT_EQ(load_again("out.ppt"), 0);
        EXPECT_EQ(link_text(0), "D:\\b\\c.ppt");
    }
}

// A box with several links and a run for each piece of its text.
Text box_of(const Texts& paths) {
    std::u16string text;
    std::vector<std::pair<std::size_t, std::size_t>> ranges;
    std::vector<TextRun> characters;
    for (const std::u16string& link : paths) {
        text += u"and ";
        characters.push_back({4});
        ranges.emplace_back(text.size(), text.size() + link.size());
        characters.push_back({static_cast<std::uint32_t>(link.size()), 0x00040000, Bytes(4, 9)});
        text += link;
    }
    text += u".";
    characters.push_back({2});
    const TextRun paragraph{static_cast<std::uint32_t>(text.size() + 1), 0x800, Bytes(2, 1)};
    Text box(text);
    box.style(text_style({&paragraph, 1}, characters));
    std::uint32_t id = 0;
    for (const auto& [begin, end] : ranges) {
        box.link(++id, static_cast<std::uint32_t>(begin), static_cast<std::uint32_t>(end));
    }
    return box;
}

TEST_F(ClientTextTest, AnyMixOfLinksInOneBoxKeepsEveryLinkOnItsOwnWords) {
    const Texts old_paths = {u"C:\\one.doc", u"C:\\folder\\two.doc", u"C:\\3.doc"};
    for (const std::u16string target : {u"D:\\1", u"\\\\server\\share\\folder\\longer.doc"}) {
        for (int changed = 1; changed < 8; ++changed) {
            Texts new_paths = old_paths;
            NewPaths paths;
            for (int link = 0; link < 3; ++link) {
                if ((changed & (1 << link)) != 0) {
                    new_paths[static_cast<std::size_t>(link)] = target + char16_t(u'0' + link);
                    paths[link] = target + char16_t(u'0' + link);
                }
            }
            for (const bool as_bytes : {false, true}) {
                Text old_box = box_of(old_paths);
                Text new_box = box_of(new_paths);
                Deck before = deck_of(old_paths, as_bytes ? old_box.as_bytes() : old_box);
                Deck after = deck_of(new_paths, as_bytes ? new_box.as_bytes() : new_box);
                expect_relinked(before, paths, after);
                EXPECT_EQ(not_written(), Indexes{});
            }
        }
    }
}

TEST_F(ClientTextTest, SeveralBoxesAndGroupsAreAllRewritten) {
    const auto deck = [](const Texts& targets) {
        Deck made;
        const auto one = made.hyperlink(targets[0]);
        const auto two = made.hyperlink(targets[1]);
        const auto text = [&](std::uint32_t id, const std::u16string& words) {
            return Shape().text(Text(words).link(id, 0, static_cast<std::uint32_t>(words.size())));
        };
        made.add_slide()
            .shape(Shape().text(
                Text(targets[0] + targets[1])
                    .link(one, 0, static_cast<std::uint32_t>(targets[0].size()))
                    .link(two, static_cast<std::uint32_t>(targets[0].size()),
                          static_cast<std::uint32_t>(targets[0].size() + targets[1].size()))))
            .shape(Shape().link(one))
            .shape(Shape::group(
                {Shape(), Shape::group({text(two, targets[1])}), text(one, targets[0])}))
            .shape(Shape().picture(u"C:\\map.wmf"))
            .record(atom(0, 0x7777, Bytes(70'000, 5)));
        made.add_notes().shape(text(two, targets[1]));
        return made;
    };
    Deck before = deck({u"C:\\a.doc", u"C:\\b.doc"});
    Deck after = deck({u"D:\\longer\\a.doc", u"E:\\b"});
    const std::u16string a = u"D:\\longer\\a.doc";
    const std::u16string b = u"E:\\b";
    expect_relinked(before, {{0, a}, {1, b}, {2, a}, {3, b}, {4, a}, {6, b}}, after);
    EXPECT_EQ(not_written(), Indexes{});
}

TEST_F(ClientTextTest, RangeOverSeveralRunsGivesItsWordsToTheFirst) {
    const auto deck = [](const std::u16string& target, Bytes style) {
        const auto end = static_cast<std::uint32_t>(4 + target.size());
        return deck_of({target},
                       Text(u"see " + target + u"; then stop").style(style).link(1, 4, end));
    };
    // "see C:\a.ppt; then stop" has 23 characters; the link covers 4 to 12.
    Deck before = deck(u"C:\\a.ppt", runs({6, 18}, {6, 3, 5, 10}));
    Deck after = deck(u"D:\\long.ppt", runs({6 - 2 + 11, 18 - 6}, {6 - 2 + 11, 0, 5 - 3, 10}));
    expect_relinked(before, {{0, u"D:\\long.ppt"}}, after);
}

TEST_F(ClientTextTest, ParagraphMarkAtTheEndOfARangeStays) {
    const auto deck = [](const std::u16string& target) {
        const auto size = static_cast<std::uint32_t>(target.size());
        return deck_of(
            {target},
            Text(target + u"\rnext").style(runs({size + 1, 5}, {size + 6})).link(1, 0, size + 1));
    };
    Deck before = deck(u"C:\\a.doc");
    Deck after = deck(u"D:\\bcd.doc");
    expect_relinked(before, {{0, u"D:\\bcd.doc"}}, after);
    EXPECT_EQ(not_written(), Indexes{});
}

TEST_F(ClientTextTest, LinkWithoutWordsOfItsOwnGetsNone) {
    struct Range {
        std::uint32_t start, end;
    };
    for (const char* const options : {"h", "ht"}) {
        start(options);
        // Paragraph marks alone, nothing, and an end in front of its start.
        for (const Range& range : {Range{3, 4}, Range{3, 3}, Range{6, 2}}) {
            const auto deck = [&](const Texts& targets, const std::u16string& words) {
                const auto size = static_cast<std::uint32_t>(words.size());
                return deck_of(targets, Text(u"one\rtwo " + words)
                                            .link(1, range.start, range.end)
                                            .link(2, 8, 8 + size));
            };
            Deck before = deck({u"C:\\a.doc", u"C:\\b.doc"}, u"C:\\b.doc");
            Deck after = deck({u"D:\\new", u"D:\\other"}, u"D:\\other");
            expect_relinked(before, {{0, u"D:\\new"}, {1, u"D:\\other"}}, after);
            EXPECT_EQ(not_written(), Indexes{0}) << options << ' ' << range.start;
        }
    }
}

TEST_F(ClientTextTest, FieldsBookmarksAndMasterRunsFollowTheirCharacters) {
    const auto deck = [](const std::u16string& target) {
        const auto end = static_cast<std::uint32_t>(2 + target.size());
        Text text(u"* " + target + u" * of 9");
        text.link(1, 2, end).record(master_text({end + 1, 7}));
        text.record(text_field(record_type::kFooterAtom, 0));
        for (const std::uint16_t type : {record_type::kSlideNumberAtom, record_type::kDateTimeAtom,
                                         record_type::kGenericDateAtom, record_type::kHeaderAtom}) {
            text.record(text_field(type, end + 1));
        }
        text.record(text_field(record_type::kRtfDateTimeAtom, end + 1, 128))
            .record(text_bookmark(0, 1))
            .record(text_bookmark(2, end))
            .record(text_bookmark(end + 3, end + 5));
        return deck_of({target}, text);
    };
    Deck before = deck(u"C:\\a.doc");
    for (const std::u16string target : {u"D:\\longer.doc", u"D:\\1"}) {
        Deck after = deck(target);
        expect_relinked(before, {{0, target}}, after);
        EXPECT_EQ(not_written(), Indexes{});
    }
}

TEST_F(ClientTextTest, LinkOverAFieldKeepsItsWordsAndIsReported) {
    start("h");
    const auto deck = [](const Texts& targets, const std::u16string& second) {
        const auto end = static_cast<std::uint32_t>(8 + second.size());
        return deck_of(targets, Text(u"slide * " + second)
                                    .link(1, 0, 7)
                                    .link(2, 8, end)
                                    .record(text_field(record_type::kSlideNumberAtom, 6)));
    };
    Deck before = deck({u"C:\\a.doc", u"C:\\b.doc"}, u"C:\\b.doc");
    Deck after = deck({u"D:\\a.doc", u"D:\\longer.doc"}, u"D:\\longer.doc");
    expect_relinked(before, {{0, u"D:\\a.doc"}, {1, u"D:\\longer.doc"}}, after);
    EXPECT_EQ(not_written(), Indexes{0});
}

TEST_F(ClientTextTest, RangeThatReachesFarBehindTheTextStaysInOrder) {
    Action jump;
    jump.hyperlink_id = 1;
    jump.hyperlink_type = 7;
    const auto deck = [&](const std::u16string& target) {
        const auto size = static_cast<std::uint32_t>(target.size());
        return deck_of({target},
                       Text(target + u" next").link(1, 0, size).link(jump, size, 0xFFFFFFFF));
    };
    Deck before = deck(u"C:\\a.doc");
    Deck after = deck(u"D:\\longer.doc");
    expect_relinked(before, {{0, u"D:\\longer.doc"}}, after);
}

TEST_F(ClientTextTest, OptionsDecideWhichTextsFollowTheirPath) {
    const Texts old_targets = {u"C:\\a.doc", u"C:\\b.doc"};
    const Texts new_targets = {u"D:\\long\\a.doc", u"D:\\b.doc"};
    const auto deck = [](const Texts& targets, const std::u16string& first,
                         const std::u16string& second) {
        const auto size = static_cast<std::uint32_t>(first.size());
        const auto end = static_cast<std::uint32_t>(size + second.size());
        return deck_of(targets, Text(first + second).link(1, 0, size).link(2, size, end));
    };
    struct Case {
        const char* options;
        std::u16string first, second;
    };
    for (const Case& expected :
         {Case{"e", u"click", u"D:\\b.doc"}, Case{"h", u"D:\\long\\a.doc", u"D:\\b.doc"},
          Case{"t", u"click", u"c:/B.DOC"}, Case{"", u"click", u"c:/B.DOC"}}) {
        start(expected.options);
        Deck before = deck(old_targets, u"click", u"c:/B.DOC");
        Deck after = deck(new_targets, expected.first, expected.second);
        expect_relinked(before, {{0, new_targets[0]}, {1, new_targets[1]}}, after);
        EXPECT_EQ(not_written(), Indexes{}) << "a text that is not to follow is not missing";
    }
}

TEST_F(ClientTextTest, TextWhoseRunsAreNotUnderstoodStaysAsItIs) {
    const TextRun whole{9};
    const TextRun promises_more{9, 0x20, {}}; // four bytes that are not there
    const auto deck = [](const std::u16string& target, const Bytes& style, const Bytes& info) {
        return deck_of({target}, Text(u"C:\\a.doc").style(style).link(1, 0, 8).record(info));
    };
    const Bytes one_run_too_many = runs({9}, {9, 0});
    const Bytes missing_fields = text_style({&promises_more, 1}, {&whole, 1});
    const Bytes good = runs({9}, {9});
    const Bytes good_info = text_special_info({&whole, 1});
    const Bytes missing_info = text_special_info({&promises_more, 1});
    for (const auto& [style, info] :
         {std::pair(one_run_too_many, good_info), std::pair(missing_fields, good_info),
          std::pair(good, missing_info)}) {
        Deck before = deck(u"C:\\a.doc", style, info);
        Deck after = deck(u"D:\\a", style, info);
        expect_relinked(before, {{0, u"D:\\a"}}, after);
        EXPECT_EQ(not_written(), Indexes{0});
    }
}

TEST_F(ClientTextTest, BytesBecomeCharactersWhenTheyHaveTo) {
    const auto deck = [](const std::u16string& target, bool as_bytes) {
        const auto end = static_cast<std::uint32_t>(3 + target.size());
        Text text(u"\u00e9\u00e9 " + target);
        return deck_of({target}, (as_bytes ? text.as_bytes() : text).link(1, 3, end));
    };
    for (const UINT code_page : {UINT{CP_UTF8}, UINT{932}}) {
        const CodePageGuard guard(code_page);
        Deck before = deck(u"C:\\a.doc", true);
        Deck fits = deck(u"D:\\bcd.doc", true);
        expect_relinked(before, {{0, u"D:\\bcd.doc"}}, fits);
        Deck does_not = deck(u"D:\\\u30c6.doc", false);
        expect_relinked(before, {{0, u"D:\\\u30c6.doc"}}, does_not);
        ASSERT_EQ(load_again("out.ppt"), 0);
        EXPECT_EQ(link_text(0), ansi(u"D:\\\u30c6.doc"));
    }
    const CodePageGuard guard(1252);
    Deck before = deck(u"C:\\\u00e9.doc", true);
    Deck after = deck(u"D:\\\u00fc\u00fc.doc", true);
    expect_relinked(before, {{0, u"D:\\\u00fc\u00fc.doc"}}, after);
}

TEST_F(ClientTextTest, LinksThatShareTheirWordsAgreeOrTheSecondIsReported) {
    Action over;
    over.hyperlink_id = 2;
    over.mouse_over = true;
    const auto deck = [&](const Texts& targets, const std::u16string& words) {
        const auto size = static_cast<std::uint32_t>(words.size());
        return deck_of(targets, Text(words + u" end").link(1, 0, size).link(over, 0, size));
    };
    Deck before = deck({u"C:\\a.doc", u"C:\\a.doc"}, u"C:\\a.doc");
    Deck agreed = deck({u"D:\\longer.doc", u"D:\\longer.doc"}, u"D:\\longer.doc");
    expect_relinked(before, {{0, u"D:\\longer.doc"}, {1, u"D:\\longer.doc"}}, agreed);
    EXPECT_EQ(not_written(), Indexes{});
    Deck apart = deck({u"D:\\longer.doc", u"E:\\b"}, u"D:\\longer.doc");
    expect_relinked(before, {{0, u"D:\\longer.doc"}, {1, u"E:\\b"}}, apart);
    EXPECT_EQ(not_written(), Indexes{1});
}

TEST_F(ClientTextTest, RangesThatAreNoLinksMoveAndLinksWithoutRangeTakeTheNextFreeOne) {
    start("h");
    // The link has no range and so covers the whole text; the jump to a slide has one.
    Action jump;
    jump.hyperlink_id = 1;
    jump.hyperlink_type = 7;
    Action click;
    click.hyperlink_id = 1;
    const auto deck = [&](const std::u16string& target, const std::u16string& text,
                          std::uint32_t begin, std::uint32_t end) {
        return deck_of({target}, Text(text).link(jump, begin, end).record(interactive_info(click)));
    };
    Deck whole = deck(u"C:\\a.doc", u"xx C:\\a.doc yy", 3, 11);
    Deck replaced = deck(u"D:\\b", u"D:\\b", 0, 4);
    expect_relinked(whole, {{0, u"D:\\b"}}, replaced);

    const auto moved = [&](const std::u16string& target) {
        const auto size = static_cast<std::uint32_t>(target.size());
        return deck_of({target},
                       Text(target + u" next").link(1, 0, size).link(jump, size + 1, size + 5));
    };
    Deck before = moved(u"C:\\a.doc");
    Deck after = moved(u"D:\\b");
    expect_relinked(before, {{0, u"D:\\b"}}, after);
}

TEST_F(ClientTextTest, BoxWithTwoTextsNeverPutsALinkIntoTheWrongOne) {
    start("h");
    const auto deck = [](const Texts& targets, const std::u16string& words) {
        Deck made;
        made.hyperlink(targets[0]);
        made.hyperlink(targets[1]);
        const auto size = static_cast<std::uint32_t>(words.size());
        made.add_slide().shape(Shape()
                                   .text(Text(u"C:\\a.doc first").link(1, 0, 8))
                                   .text(Text(u"to the " + words).link(2, 7, 7 + size)));
        return made;
    };
    Deck before = deck({u"C:\\a.doc", u"C:\\b.doc"}, u"C:\\b.doc");
    Deck after = deck({u"D:\\a", u"D:\\longer.doc"}, u"D:\\longer.doc");
    expect_relinked(before, {{0, u"D:\\a"}, {1, u"D:\\longer.doc"}}, after);
    EXPECT_EQ(not_written(), Indexes{0});
}

TEST_F(ClientTextTest, TextsBehindTheThousandthStayAndCostStaysLinear) {
    const auto deck = [](std::size_t count, const std::u16string& target, std::size_t changed) {
        Texts targets(count, target);
        Texts words(count, u"C:\\folder\\a.doc");
        std::fill_n(words.begin(), changed, target);
        return deck_of(targets, box_of(words));
    };
    constexpr std::size_t kLinks = 1100;
    const std::u16string target = u"D:\\b.doc";
    Deck before = deck(kLinks, u"C:\\folder\\a.doc", 0);
    Deck after = deck(kLinks, target, 1000);
    NewPaths paths;
    for (std::int32_t link = 0; link < static_cast<std::int32_t>(kLinks); ++link) {
        paths[link] = target;
    }
    const auto begin = std::chrono::steady_clock::now();
    expect_relinked(before, paths, after);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
    EXPECT_EQ(not_written().size(), 100U);
    EXPECT_EQ(not_written().front(), 1000U);
}

} // namespace
