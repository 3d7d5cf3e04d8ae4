// Loading: what the walk finds, in which order, and how damaged presentations end.
#include "plugin/status.h"
#include "reader/presentation.h"
#include "tests/plugin/plugin_fixture.h"
#include "tests/pptlinks/code_page_guard.h"

namespace {

using namespace ppt;
using namespace presentation_builder;
using plugin_test::error_params;
using presentation_builder::Page;
using Paths = std::vector<std::string>;

class LoadTest : public plugin_test::PluginTest {};

TEST_F(LoadTest, LinksStandInTheOrderOfTheSlideListsAndTheirShapes) {
    Deck deck;
    const auto web = deck.hyperlink(u"http://example.org/");
    const auto mail = deck.hyperlink(u"mailto:a@example.org");
    const auto sound = deck.sound(0x1010, u"C:\\s\\bell.wav");
    deck.add_slide().shape(Shape().link(mail)).shape(Shape().object(sound));
    deck.add_slide().shape(Shape().text(Text(u"Visit us now").link(web, 6, 8)));
    deck.add_master().shape(Shape().link(web)).shape(Shape().picture(u"C:\\img\\logo.wmf"));
    deck.add_notes().shape(Shape().link(mail));
    ASSERT_EQ(load(deck), 0);

    EXPECT_EQ(link_paths(),
              (Paths{"http://example.org/", "C:\\img\\logo.wmf", "mailto:a@example.org",
                     "C:\\s\\bell.wav", "http://example.org/", "mailto:a@example.org"}));
    const std::vector<std::int32_t> pages{0, 0, 1, 1, 2, 3};
    for (std::size_t i = 0; i < pages.size(); ++i) {
        EXPECT_EQ(link(i).slide_index, pages[i]) << i;
    }
    EXPECT_EQ(link(0).number_on_slide, 0);
    EXPECT_EQ(link(1).number_on_slide, 1);
    EXPECT_EQ(link(1).object_list_ordinal, -1);
    EXPECT_EQ(link(3).record_type, 0x1010u);
    EXPECT_EQ(link(3).object_list_ordinal, 3) << "the list's own atom is child 0";
    EXPECT_EQ(link(5).hyperlink_ordinal, 1);
    EXPECT_EQ(link_text(4), "us");
    EXPECT_EQ(link_text(0), "") << "a hyperlink on a shape has no text";
}

TEST_F(LoadTest, ObjectsThatNoPageUsesAddNoLinks) {
    Deck deck;
    deck.hyperlink(u"http://unused.example/");
    deck.add_slide();
    ASSERT_EQ(load(deck), 0);
    EXPECT_EQ(n_getLinkCount(), 0);
    EXPECT_EQ(state().links.external_objects().size(), 1u);
}

TEST_F(LoadTest, OtherActionsJumpsAndSlideLinksAreNoLinks) {
    Deck deck;
    const auto target = deck.hyperlink(u"C:\\a.doc");
    Page& slide = deck.add_slide();
    slide.shape(Shape().link(Action{.hyperlink_id = target, .action = 2}));
    slide.shape(Shape().link(Action{.hyperlink_id = target, .jump = 1}));
    slide.shape(Shape().link(Action{.hyperlink_id = target, .hyperlink_type = 7}));
    slide.shape(Shape().link(Action{.hyperlink_id = target + 50}));
    slide.shape(Shape().link(Action{.hyperlink_id = target, .mouse_over = true}));
    ASSERT_EQ(load(deck), 0);
    EXPECT_EQ(link_paths(), Paths{"C:\\a.doc"});
}

TEST_F(LoadTest, MediaNeedAPathOfInstanceZero) {
    Deck deck;
    const auto midi = deck.sound(0x100D, u"C:\\m\\a.mid");
    const auto film = deck.movie(0x1006, u"C:\\m\\b.avi");
    const auto clip = deck.movie(0x1007, u"C:\\m\\c.mpg");
    const auto unnamed = deck.next_object_id();
    deck.external_object(media(0x1010, unnamed, u""));
    const auto other = deck.next_object_id();
    deck.external_object(media(0x1010, other, u"C:\\m\\d.wav", 1));
    const auto first = deck.next_object_id();
    const auto second = deck.next_object_id();
    deck.external_object(video_list(
        join({media(0x1005, first, u"C:\\m\\e.avi"), media(0x1005, second, u"C:\\m\\f.avi")})));
    Page& slide = deck.add_slide();
    for (const auto object : {midi, film, clip, unnamed, other, first, second}) {
        slide.shape(Shape().object(object));
    }
    ASSERT_EQ(load(deck), 0);
    EXPECT_EQ(link_paths(), (Paths{"C:\\m\\a.mid", "C:\\m\\b.avi", "C:\\m\\c.mpg", "C:\\m\\e.avi",
                                   "C:\\m\\f.avi"}));
    EXPECT_EQ(link(1).record_type, 0x1005u) << "movies are recorded as their video";
    EXPECT_EQ(link(3).object_list_ordinal, link(4).object_list_ordinal);
}

TEST_F(LoadTest, GroupsEndTheNumberingOfTheirDrawing) {
    Deck deck;
    const auto target = deck.hyperlink(u"C:\\a.doc");
    deck.add_slide()
        .shape(Shape().link(target))
        .shape(Shape::group({Shape().link(target)}))
        .shape(Shape().link(target));
    ASSERT_EQ(load(deck), 0);
    EXPECT_EQ(n_getLinkCount(), 3);
    EXPECT_EQ(link(0).number_on_slide, 0);
    EXPECT_EQ(link(1).number_on_slide, 0) << "keeps the number that its template held";
    EXPECT_EQ(link(2).number_on_slide, 0);
}

TEST_F(LoadTest, TextIsKeptOnlyWhenTheOptionsAskForIt) {
    Deck deck;
    const auto target = deck.hyperlink(u"C:\\a.doc");
    deck.add_slide()
        .shape(Shape().text(Text(u"title", 0).link(target, 0, 5)))
        .shape(Shape().text(Text(u"see the plan", 4).link(target, 4, 99)))
        .shape(Shape().text(Text(u"plain bytes", 6).as_bytes().link(target, 0, 5)));
    ASSERT_EQ(load(deck), 0);
    EXPECT_EQ(link_text(0), "") << "titles keep no text";
    EXPECT_EQ(link_text(1), "the plan");
    EXPECT_EQ(link(1).text_range_end, 12) << "cut to the text";
    EXPECT_EQ(link_text(2), "plain");
    const std::uint32_t document = state().links.document_persist_id();
    EXPECT_EQ(link(0).holder_persist_id, document);
    EXPECT_NE(link(1).holder_persist_id, document);
    j_unLoadFile();
    j_termDLL(0, 0);
    start("x");
    ASSERT_EQ(load_again("deck.ppt"), 0);
    EXPECT_EQ(n_getLinkCount(), 3);
    EXPECT_EQ(link_text(1), "");
    EXPECT_EQ(link(1).holder_persist_id, document);
}

TEST_F(LoadTest, ALongTextIsCutTo1023BytesBetweenCharacters) {
    const CodePageGuard utf8(CP_UTF8);
    Deck deck;
    const auto target = deck.hyperlink(u"C:\\a.doc");
    Page& slide = deck.add_slide();
    slide.shape(Shape().text(Text(std::u16string(2000, u'x')).link(target, 10, 2000)));
    slide.shape(Shape().text(Text(std::u16string(2000, u'\u20AC')).link(target, 0, 2000)));
    ASSERT_EQ(load(deck), 0);
    EXPECT_EQ(link_text(0).size(), 1023u);
    EXPECT_EQ(link(0).text_range_end, 1033);
    // Three bytes each in UTF-8.
    EXPECT_EQ(link_text(1).size(), 1023u);
    EXPECT_EQ(link(1).text_range_end, 341);
}

TEST_F(LoadTest, HyperlinksOfTheSlideListsOwnTextAreFound) {
    Deck deck;
    const auto target = deck.hyperlink(u"C:\\a.doc");
    deck.add_slide().outline(Text(u"bullet", 1).link(target, 0, 6));
    ASSERT_EQ(load(deck), 0);
    EXPECT_EQ(link_paths(), Paths{"C:\\a.doc"});
    EXPECT_EQ(link(0).slide_index, 0);
}

TEST_F(LoadTest, RecordsThatTheWalkDoesNotKnowAreNeverEntered) {
    const Bytes package{0x50, 0x4B, 0x03, 0x04, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
    const Bytes zip = atom(0, 0x0FAB, package, 0xF);
    Deck deck;
    const auto target = deck.hyperlink(u"C:\\a.doc");
    deck.document_record(zip).behind_document_end(zip);
    deck.add_slide().record_before_drawing(zip).shape(Shape().link(target).record(zip)).record(zip);
    ASSERT_EQ(load(deck), 0);
    EXPECT_EQ(n_getLinkCount(), 1);
}

TEST_F(LoadTest, TheNewestVersionOfEveryObjectCounts) {
    Deck deck;
    const auto old_target = deck.hyperlink(u"C:\\old.doc");
    Page& slide = deck.add_slide().shape(Shape().link(old_target));
    deck.save();
    slide.shape(Shape().link(deck.hyperlink(u"C:\\added.doc")));
    deck.save();
    deck.touch_document().save();
    ASSERT_EQ(deck.edit_count(), 3u);
    ASSERT_EQ(load(deck), 0);
    EXPECT_EQ(link_paths(), (Paths{"C:\\old.doc", "C:\\added.doc"}));
}

TEST_F(LoadTest, TheOwnIdStandsInTheNameOfTheFirstSlideWithOrWithoutLinks) {
    Deck deck;
    deck.add_master().name(u"MORVANE-LINK-ID=1");
    deck.add_slide().name(u"Cover MORVANE-LINK-ID=4711");
    deck.add_slide().name(u"MORVANE-LINK-ID=2");
    for (const std::int32_t flags : {3, 2}) {
        ASSERT_EQ(load(deck, flags), 0);
        id64 own{};
        j_getTargetFileId(0, &own);
        EXPECT_EQ(own.word[0], 4711u) << flags;
        EXPECT_TRUE(state().ids_in_document);
        j_unLoadFile();
        EXPECT_FALSE(state().ids_in_document);
    }
    ASSERT_EQ(load(deck, 1), 0);
    EXPECT_FALSE(state().ids_in_document);
}

TEST_F(LoadTest, WithoutTheLinkFlagNothingIsListed) {
    Deck deck;
    deck.add_slide().shape(Shape().link(deck.hyperlink(u"C:\\a.doc")));
    ASSERT_EQ(load(deck, 2), 0);
    EXPECT_EQ(n_getLinkCount(), 0);
}

TEST_F(LoadTest, EmptyPagesAndEmptyDrawingsAreSkipped) {
    Deck deck;
    const auto target = deck.hyperlink(u"C:\\a.doc");
    deck.add_slide().empty();
    deck.add_slide().shape(Shape().link(target)).shape_count(0);
    deck.add_slide().shape(Shape().link(target).without_type());
    ASSERT_EQ(load(deck), 0);
    EXPECT_EQ(n_getLinkCount(), 1);
    EXPECT_EQ(link(0).slide_index, 2);
}

TEST_F(LoadTest, EveryStepIsLogged) {
    Deck deck;
    deck.add_slide().shape(Shape().link(deck.hyperlink(u"C:\\a\n.doc")));
    const std::size_t before = log_lines().size();
    ASSERT_EQ(load(deck), 0);
    EXPECT_EQ(log_lines(before),
              (Paths{"Loading file " + path("deck.ppt"), "Persist directory has been read",
                     "Object array has been created", "Adding link to file C:\\a", ".doc",
                     "Link paths have been obtained", "Retrieving linkIDs from Document Properties",
                     "LinkIds have been retrieved", "File has been loaded, j_status=0"}));
}

TEST_F(LoadTest, AVersionAboveTheCeilingIsRefusedAndNothingStaysLoaded) {
    Deck deck;
    deck.add_slide();
    const std::int32_t ceiling = state().version_ceiling;
    state().version_ceiling = 1;
    const std::size_t before = log_lines().size();
    EXPECT_EQ(load(deck), status::kVersionAboveCeiling);
    EXPECT_EQ(error_params(), "3|1");
    EXPECT_EQ(log_lines(before),
              (Paths{"Loading file " + path("deck.ppt"), "File has been loaded, j_status=3000"}));
    EXPECT_EQ(state().presentation, nullptr);
    state().version_ceiling = ceiling;
}

// One way in which a presentation is damaged, and the status in which its loading ends.
struct Damage {
    const char* name;
    void (*apply)(Deck& deck);
    std::int32_t status;
};

Bytes patched(Deck& deck, std::size_t at, std::uint32_t value) {
    Bytes stream = deck.document_stream();
    bytes::store_u32(stream, at, value);
    return stream;
}

const Damage kDamages[] = {
    {"no Current User", [](Deck& deck) { deck.replace_current_user({}); },
     status::kNotAPresentation},
    {"encrypted",
     [](Deck& deck) { deck.replace_current_user(current_user_atom(8, "x", 0xF3D1C4DF)); },
     status::kNotAPresentation},
    {"no user edit", [](Deck& deck) { deck.replace_current_user(current_user_atom(0)); },
     status::kDamaged},
    {"user edit elsewhere", [](Deck& deck) { deck.replace_current_user(current_user_atom(8)); },
     status::kDamaged},
    {"user edit behind the end",
     [](Deck& deck) { deck.replace_current_user(current_user_atom(0x00FFFFFF)); },
     status::kShortRead},
    {"stream that ends inside the header of the user edit",
     [](Deck& deck) {
         deck.replace_document_stream(Bytes(10)).replace_current_user(current_user_atom(4));
     },
     status::kShortRead},
    {"ring of user edits",
     [](Deck& deck) {
         const auto edit = deck.offset_of_user_edit(0);
         deck.replace_document_stream(patched(deck, edit + 8 + 8, edit));
     },
     status::kDamaged},
    {"persist directory elsewhere",
     [](Deck& deck) {
         deck.replace_document_stream(patched(deck, deck.offset_of_user_edit(0) + 8 + 12, 0));
     },
     status::kDamaged},
    {"persist directory longer than the stream",
     [](Deck& deck) {
         deck.replace_document_stream(
             patched(deck, deck.offset_of_persist_directory(0) + 4, 0x7FFFFFF0));
     },
     status::kShortRead},
    {"document not listed",
     [](Deck& deck) {
         deck.replace_document_stream(patched(deck, deck.offset_of_user_edit(0) + 8 + 16, 77));
     },
     status::kSeekFromStartFailed},
    {"document listed nowhere by the newest directory",
     [](Deck& deck) {
         deck.touch_document().document_stream();
         const auto entry = deck.offset_of_persist_directory(1) + 8;
         deck.replace_document_stream(patched(deck, entry + 4, 0xFFFFFFFF));
     },
     status::kSeekFromStartFailed},
    {"document of another type",
     [](Deck& deck) {
         deck.replace_document_stream(patched(deck, deck.offset_of_document(), 0x03EE000F));
     },
     status::kNotAPresentation},
    {"document without children",
     [](Deck& deck) {
         deck.replace_document_stream(patched(deck, deck.offset_of_document() + 4, 0));
     },
     status::kDamaged},
    {"record longer than the stream",
     [](Deck& deck) {
         const auto list = deck.find_in_document({{0x0409, 0}, {0x0FD7, 0}, {0x0FD3, 0}});
         deck.replace_document_stream(patched(deck, list.offset + 4, 0xFFFFFFF0));
     },
     status::kDamaged},
    {"container that would lead back to itself",
     [](Deck& deck) {
         const auto drawing = deck.find_in_document({{0x0FF0, 0}});
         Bytes stream = patched(deck, drawing.offset, 0x0FAB000F);
         bytes::store_u32(stream, drawing.offset + 4, 0xFFFFFFF8);
         deck.replace_document_stream(stream);
     },
     status::kDamaged},
};

TEST_F(LoadTest, DamagedPresentationsEndInAStatusAndLeaveNothingLoaded) {
    for (const Damage& damage : kDamages) {
        Deck deck;
        deck.add_slide().shape(Shape().link(deck.hyperlink(u"C:\\a.doc")));
        deck.document_stream();
        damage.apply(deck);
        EXPECT_EQ(load(deck), damage.status) << damage.name;
        EXPECT_EQ(n_getLinkCount(), 0) << damage.name;
        EXPECT_EQ(state().presentation, nullptr) << damage.name;
    }
}

TEST_F(LoadTest, OffsetsThatADirectoryEntryOnlyAnnouncesAreIgnored) {
    Deck deck;
    deck.add_slide().shape(Shape().link(deck.hyperlink(u"C:\\a.doc")));
    const std::uint32_t entry = deck.offset_of_persist_directory(0) + 8;
    ASSERT_EQ(bytes::load_u32(deck.document_stream(), entry), (2u << 20) + 1);
    deck.replace_document_stream(patched(deck, entry, (4095u << 20) + 1));
    ASSERT_EQ(load(deck), 0);
    EXPECT_EQ(link_paths(), Paths{"C:\\a.doc"});
    EXPECT_EQ(state().presentation->persist_directory().count(), 2);
}

TEST_F(LoadTest, OnePageListedAgainAndAgainIsNotWalkedForEver) {
    Deck deck;
    auto& slide = deck.add_slide().record(Bytes(8000, 0));
    Bytes list;
    for (int i = 0; i < 1000; ++i) {
        bytes::append(list, slide_persist_atom({slide.persist_id(), 256, 0}));
    }
    deck.list_record(presentation_builder::PageKind::slide, list);
    EXPECT_EQ(load(deck), status::kDamaged);
}

TEST_F(LoadTest, MalformedMediaAndDrawingsEndTheWalk) {
    const Bytes no_video = container(0, 0x1006, {media_atom(1)});
    const Bytes no_path = container(0, 0x1010, {media_atom(1)});
    for (const Bytes& object : {no_video, no_path}) {
        Deck deck;
        deck.external_object(object).add_slide();
        EXPECT_EQ(load(deck), status::kDamaged);
    }
    Deck deck;
    deck.add_slide().record(container(0, 0x040C, {atom(0, 0xF008, Bytes(8))}));
    EXPECT_EQ(load(deck), status::kDamaged);
}

TEST_F(LoadTest, GroupsNestTo500Levels) {
    for (const auto& [levels, expected] : {std::pair{499, 0}, std::pair{501, status::kDamaged}}) {
        Deck deck;
        Shape shape = Shape().link(deck.hyperlink(u"C:\\a.doc"));
        for (int level = 1; level < levels; ++level) {
            shape = Shape::group({shape});
        }
        deck.add_slide().shape(shape);
        EXPECT_EQ(load(deck), expected) << levels;
        EXPECT_EQ(n_getLinkCount(), expected == 0 ? 1 : 0);
        j_unLoadFile();
    }
}

TEST_F(LoadTest, FailuresBeforeTheFileIsOpenLogNothing) {
    const std::size_t before = log_lines().size();
    EXPECT_EQ(j_loadFile(std::string(1024, 'x').c_str(), 3), status::kTextTooLong);
    EXPECT_EQ(j_loadFile(path("missing.ppt").c_str(), 3), status::kFileNotFound);
    std::ofstream(path("text.ppt")) << "no compound file";
    EXPECT_NE(j_loadFile(path("text.ppt").c_str(), 3), 0);
    EXPECT_TRUE(log_lines(before).empty());
}

} // namespace
