// Rewriting the document container, moving everything behind it, and what stands at the end of the
// stream afterwards.
#include "plugin/status.h"
#include "reader/presentation.h"
#include "tests/plugin/plugin_fixture.h"
#include "tests/plugin/stored_file.h"

#include <algorithm>

namespace {

using namespace ppt;
using namespace presentation_builder;
using plugin_test::error_params;
using plugin_test::StoredFile;
using presentation_builder::Page;
using Paths = std::vector<std::string>;

constexpr std::uint32_t kDirectoryType = 0x1772;

class RewriteTest : public plugin_test::PluginTest {
  protected:
    // Writes a copy with the link at `index` changed and reads it back.
    void relink(std::int32_t index, const std::string& target,
                const std::string& name = "out.ppt") {
        ASSERT_EQ(j_setLinkFileName(index, target.c_str(), 0), 0);
        ASSERT_EQ(rewrite(name), 0) << error_params();
        ASSERT_EQ(load_again(name), 0) << error_params();
    }

    // The user edits of a stored file, newest first, by their offsets.
    std::vector<std::uint32_t> edit_chain(const StoredFile& file) const {
        std::vector<std::uint32_t> edits;
        std::uint32_t edit = bytes::load_u32(file.stream(u"Current User"), 16);
        while (edit != 0) {
            edits.push_back(edit);
            EXPECT_EQ(record_at(file.document(), edit).type, 0x0FF5);
            edit = bytes::load_u32(file.document(), edit + 8 + 8);
        }
        return edits;
    }

    static std::uint32_t directory_of(const StoredFile& file, std::uint32_t edit) {
        return bytes::load_u32(file.document(), edit + 8 + 12);
    }
};

TEST_F(RewriteTest, NameAndTargetOfAChangedHyperlinkBecomeTheNewPath) {
    Deck deck;
    const auto first = deck.hyperlink(u"C:\\unchanged.doc");
    const auto named =
        deck.declare({.target = u"C:\\a.doc", .friendly = u"A", .location = u"Bookmark"});
    const auto bare = deck.declare({.target = std::nullopt});
    deck.add_slide()
        .shape(Shape().link(first))
        .shape(Shape().link(named))
        .shape(Shape().link(bare));
    ASSERT_EQ(load(deck), 0);
    const Bytes old = deck.document_stream();
    ASSERT_EQ(j_setLinkFileName(2, "http://new.example/", 0), 0);
    relink(1, "C:\\longer\\b.doc");

    const StoredFile copy(path("out.ppt"));
    const auto list = find_record(copy.document(), 0, {{0x0409, 0}});
    EXPECT_TRUE(structure_faults(copy.document(), 0).empty());
    const auto hyperlinks = children_of(copy.document(), list);
    const auto old_hyperlinks = children_of(old, find_record(old, 0, {{0x0409, 0}}));
    EXPECT_TRUE(
        std::equal(old.begin() + static_cast<std::ptrdiff_t>(old_hyperlinks[1].offset),
                   old.begin() + static_cast<std::ptrdiff_t>(old_hyperlinks[1].end()),
                   copy.document().begin() + static_cast<std::ptrdiff_t>(hyperlinks[1].offset)))
        << "an unchanged hyperlink keeps its bytes";
    const std::int64_t letters = 15;
    EXPECT_EQ(hyperlinks[2].length - old_hyperlinks[2].length,
              2 * (letters - 8) + 2 * (letters - 1));
    EXPECT_EQ(hyperlinks[3].length - old_hyperlinks[3].length, 8 + 2 * 19);
    const auto location = children_of(copy.document(), hyperlinks[2]).back();
    EXPECT_EQ(location.instance, 3);
    EXPECT_EQ(location.length, 2 * 8u);
    EXPECT_EQ(link_paths(),
              (Paths{"C:\\unchanged.doc", "C:\\longer\\b.doc", "http://new.example/"}));
}

TEST_F(RewriteTest, MediaKeepEverythingBesideTheirPath) {
    Deck deck;
    const auto midi = deck.sound(0x100D, u"C:\\a.mid");
    const auto film = deck.movie(0x1007, u"C:\\b.avi");
    const auto extra = deck.next_object_id();
    const Bytes third = atom(0, 0x0FAB, Bytes{1, 2, 3});
    deck.external_object(
        container(0, 0x1010, {media_atom(extra), cstring(0, u"C:\\c.wav"), third}));
    const auto one = deck.next_object_id();
    const auto two = deck.next_object_id();
    deck.external_object(video_list(
        join({media(0x1005, one, u"C:\\d.avi"), third, media(0x1005, two, u"C:\\e.avi")})));
    const auto last = deck.sound(0x1010, u"C:\\last.wav");
    Page& slide = deck.add_slide();
    for (const auto object : {midi, film, extra, one, last}) {
        slide.shape(Shape().object(object));
    }
    ASSERT_EQ(load(deck), 0);
    ASSERT_EQ(n_getLinkCount(), 5);
    for (std::int32_t i = 0; i < 4; ++i) {
        const std::string target = "D:\\moved\\" + std::to_string(i);
        ASSERT_EQ(j_setLinkFileName(i, target.c_str(), 0), 0);
    }
    relink(4, "x");
    EXPECT_EQ(link_paths(),
              (Paths{"D:\\moved\\0", "D:\\moved\\1", "D:\\moved\\2", "D:\\moved\\3", "x"}));
    const StoredFile copy(path("out.ppt"));
    EXPECT_TRUE(structure_faults(copy.document(), 0).empty());
    EXPECT_EQ(find_all(copy.document(), 0, 0x0FAB).size(), 2u) << "unknown children stay";
}

TEST_F(RewriteTest, AChangeThroughTheSecondUseOfAnObjectIsNotLost) {
    Deck deck;
    const auto shared = deck.hyperlink(u"C:\\shared.doc");
    deck.add_slide().shape(Shape().link(shared));
    deck.add_slide().shape(Shape().link(shared));
    ASSERT_EQ(load(deck), 0);
    relink(1, "C:\\moved.doc");
    EXPECT_EQ(link_paths(), (Paths{"C:\\moved.doc", "C:\\moved.doc"}));
}

// Shorter, equal and longer targets in decks of different builds, rewritten twice over.
struct Layout {
    const char* name;
    void (*build)(Deck& deck);
};

void build_plain(Deck& deck) {
    const auto link = deck.hyperlink(u"C:\\folder\\target.doc");
    deck.add_master().shape(Shape().link(link));
    deck.add_slide().shape(Shape().link(link));
    deck.add_notes().shape(Shape().link(link));
}

const Layout kLayouts[] = {
    {"document first", build_plain},
    {"a page at offset 0",
     [](Deck& deck) {
         deck.document_last();
         build_plain(deck);
     }},
    {"loose bytes in front",
     [](Deck& deck) {
         deck.loose_bytes(Bytes(37, 0xAB));
         build_plain(deck);
     }},
    {"ids without an object",
     [](Deck& deck) {
         deck.skip_persist_ids(5);
         build_plain(deck);
         deck.skip_persist_ids(3);
         deck.add_slide();
     }},
    {"three saves",
     [](Deck& deck) {
         build_plain(deck);
         deck.save();
         deck.add_slide().shape(Shape().link(deck.hyperlink(u"C:\\second.doc")));
         deck.save();
         deck.touch_document().save();
     }},
    {"records behind the end atom, other streams",
     [](Deck& deck) {
         deck.behind_document_end(atom(0, 0x0FAB, Bytes(9, 7)));
         deck.pictures(300'000);
         deck.stream(u"Custom/Deep", Bytes(5000, 3));
         build_plain(deck);
     }},
    {"DIFAT sectors",
     [](Deck& deck) {
         deck.pictures(8'000'000);
         build_plain(deck);
     }},
    {"version 4",
     [](Deck& deck) {
         deck.version(compound_file::Version::v4).pictures(10'000);
         build_plain(deck);
     }},
};

TEST_F(RewriteTest, EveryLayoutSurvivesTwoRewritesWithItsOtherStreams) {
    for (const Layout& layout : kLayouts) {
        for (const std::string target :
             {"C:\\t", "C:\\folder\\changed.doc", "D:\\far\\longer\\path.doc"}) {
            SCOPED_TRACE(std::string(layout.name) + ", " + target);
            Deck deck;
            layout.build(deck);
            ASSERT_EQ(load(deck), 0) << error_params();
            const Paths before = link_paths();
            const StoredFile original(path("deck.ppt"));
            relink(0, target, "once.ppt");
            Paths expected = before;
            std::replace(expected.begin(), expected.end(), before[0], target);
            EXPECT_EQ(link_paths(), expected);
            const std::string again = target + "2";
            relink(0, again, "twice.ppt");
            std::replace(expected.begin(), expected.end(), target, again);
            EXPECT_EQ(link_paths(), expected);
            j_unLoadFile();

            const StoredFile copy(path("twice.ppt"));
            EXPECT_EQ(edit_chain(copy).size(), edit_chain(original).size());
            for (const auto& [name, data] : original.streams()) {
                if (name != u"PowerPoint Document" && name != u"Current User") {
                    EXPECT_EQ(copy.streams().at(name), data);
                }
            }
            const auto newest = record_at(copy.document(), edit_chain(copy)[0]);
            EXPECT_EQ(newest.end(), copy.document().size()) << "nothing stale behind the edit";
        }
    }
}

// What `gsf`, an independent reader of compound files, finds in a stream.
Bytes read_by_gsf(const std::string& file, const std::u16string& stream) {
    std::string command =
        "gsf cat '" + file + "' '" + std::string(stream.begin(), stream.end()) + "'";
    Bytes data;
    std::FILE* pipe = popen(command.c_str(), "r");
    for (int byte = std::fgetc(pipe); byte != EOF; byte = std::fgetc(pipe)) {
        data.push_back(static_cast<std::uint8_t>(byte));
    }
    pclose(pipe);
    return data;
}

TEST_F(RewriteTest, AnIndependentReaderFindsEveryStreamAsWeDo) {
    if (std::system("command -v gsf >/dev/null 2>&1") != 0) {
        GTEST_SKIP() << "gsf is not installed";
    }
    Deck deck;
    deck.pictures(20'000).stream(u"Custom/Deep", Bytes(5000, 3));
    build_plain(deck);
    ASSERT_EQ(load(deck), 0);
    relink(0, "D:\\somewhere else\\altogether.doc");
    j_unLoadFile();
    const StoredFile copy(path("out.ppt"));
    EXPECT_EQ(copy.streams().size(), 5u);
    for (const auto& [name, data] : copy.streams()) {
        EXPECT_EQ(read_by_gsf(path("out.ppt"), name), data);
    }
}

TEST_F(RewriteTest, ObjectsBehindAChangeMoveByIt) {
    Deck deck;
    const auto link = deck.hyperlink(u"C:\\a.doc");
    Page& slide = deck.add_slide().shape(Shape().link(link));
    Page& other = deck.add_slide();
    ASSERT_EQ(load(deck), 0);
    const std::uint32_t growth = 6;
    relink(0, "C:\\a.docabc"); // three characters
    const PersistDirectory& moved = state().presentation->persist_directory();
    EXPECT_EQ(moved.n_objectOffset(1), deck.offset_of_document());
    EXPECT_EQ(moved.n_objectOffset(slide.persist_id()), deck.offset_of(slide) + growth);
    EXPECT_EQ(moved.n_objectOffset(other.persist_id()), deck.offset_of(other) + growth);
}

TEST_F(RewriteTest, IdsThatShareAnObjectMoveTogether) {
    Deck deck;
    const auto link = deck.hyperlink(u"C:\\a.doc");
    Page& slide = deck.add_slide().shape(Shape().link(link));
    Deck twin;
    const auto twin_link = twin.hyperlink(u"C:\\a.doc");
    Page& twin_slide = twin.add_slide().shape(Shape().link(twin_link));
    const std::uint32_t shared = deck.offset_of(slide);
    twin.directory_entry({.id = 9, .offset = shared});
    ASSERT_EQ(twin.offset_of(twin_slide), shared);
    ASSERT_EQ(load(twin), 0);
    relink(0, "C:\\longer.doc");
    const PersistDirectory& moved = state().presentation->persist_directory();
    EXPECT_EQ(moved.n_objectOffset(9), moved.n_objectOffset(twin_slide.persist_id()));
    EXPECT_NE(moved.n_objectOffset(9), shared);
}

TEST_F(RewriteTest, TheDocumentIsFoundBehindALowerIdThatSharesItsPlace) {
    Deck deck;
    deck.loose_bytes(Bytes(16, 0xAB));
    deck.add_slide().shape(Shape().link(deck.hyperlink(u"C:\\a.doc")));
    Deck twin = deck;
    twin.directory_entry({.id = 9, .offset = deck.offset_of_document()});
    Bytes stream = twin.document_stream();
    bytes::store_u32(stream, twin.offset_of_user_edit(0) + 8 + 16, 9); // the document's id
    twin.replace_document_stream(stream);
    ASSERT_EQ(load(twin), 0);
    relink(0, "C:\\longer.doc");
    EXPECT_EQ(link_paths(), Paths{"C:\\longer.doc"});
}

TEST_F(RewriteTest, TheContainerThatWasReadIsRewrittenAtOffsetZeroToo) {
    Deck deck;
    deck.add_slide().shape(Shape().link(deck.hyperlink(u"C:\\a.doc")));
    deck.save();
    deck.touch_document().save();
    const std::uint32_t entry = 12; // of the document, behind the header and the head word
    Bytes stream = deck.document_stream();
    bytes::store_u32(stream, deck.offset_of_persist_directory(1) + entry, 0);
    bytes::store_u32(stream, deck.offset_of_persist_directory(0) + entry,
                     deck.offset_of_document());
    deck.replace_document_stream(stream);
    ASSERT_EQ(load(deck), 0);
    relink(0, "C:\\longer.doc");
    EXPECT_EQ(link_paths(), Paths{"C:\\longer.doc"});
    EXPECT_EQ(state().presentation->persist_directory().n_objectOffset(1), 0u);
}

TEST_F(RewriteTest, OnlyTheKnownPartOfAnOlderUserEditIsReadAndWritten) {
    Deck deck;
    deck.add_slide().shape(Shape().link(deck.hyperlink(u"C:\\a.doc")));
    deck.save();
    deck.touch_document().save();
    Bytes stream = deck.document_stream();
    bytes::store_u32(stream, deck.offset_of_user_edit(0) + 4, 0x7FFFFFFF); // its length
    deck.replace_document_stream(stream);
    ASSERT_EQ(load(deck), 0);
    relink(0, "C:\\longer.doc");
    EXPECT_EQ(link_paths(), Paths{"C:\\longer.doc"});
    EXPECT_EQ(state().presentation->user_edits().size(), 2u);
}

TEST_F(RewriteTest, ContainersInThePlaceOfStringsAreNeverTakenForText) {
    const Bytes inner = atom(0, 0x0FAB, Bytes(30, 5));
    const Bytes odd = atom(1, 0x0FBA, inner, 0xF);
    Deck deck;
    const auto good = deck.next_object_id();
    deck.external_object(
        container(0, 0x0FD7, {atom(0, 0x0FD3, Bytes{9, 0, 0, 0}), odd, cstring(1, u"C:\\a.doc")}));
    deck.add_slide().shape(Shape().link(9));
    ASSERT_EQ(load(deck), 0);
    relink(0, "C:\\b");
    const StoredFile copy(path("out.ppt"));
    EXPECT_NE(std::search(copy.document().begin(), copy.document().end(), odd.begin(), odd.end()),
              copy.document().end());
    EXPECT_EQ(link_paths(), Paths{"C:\\b"});
    j_unLoadFile();

    Deck videos;
    videos.external_object(video_list(join(
        {media(0x1005, good, u"C:\\v.avi"), container(0, 0x1005, {media_atom(good + 1), odd})})));
    videos.add_slide().shape(Shape().object(good));
    EXPECT_EQ(load(videos), 0);
    ASSERT_EQ(j_setLinkFileName(0, "C:\\changed", 0), 0);
    EXPECT_EQ(rewrite("videos.ppt"), status::kDamaged);
}

TEST_F(RewriteTest, AnObjectBehindTheEndOfTheStreamEndsTheCopying) {
    Deck deck;
    constexpr std::uint32_t kNowhere = 0x00100000;
    Page& slide = deck.add_slide();
    slide.shape(Shape().link(deck.hyperlink(u"C:\\a.doc")));
    deck.directory_entry({9, kNowhere});
    ASSERT_EQ(load(deck), 0);
    ASSERT_EQ(j_setLinkFileName(0, "C:\\changed", 0), 0);
    const std::size_t before = log_lines().size();
    EXPECT_EQ(rewrite("out.ppt"), status::kShortRead);
    const std::uint32_t copied_from = deck.offset_of(slide);
    EXPECT_EQ(error_params(), path("deck.ppt") + "|" +
                                  std::to_string(deck.document_stream().size() - copied_from) +
                                  "|" + std::to_string(kNowhere - copied_from));
    EXPECT_EQ(log_lines(before),
              (Paths{"Rewriting file " + path("deck.ppt"), "Link paths have been rewritten",
                     "File has been rewritten, j_status=7180"}));
}

TEST_F(RewriteTest, WithoutAChangeOnlyTheEndOfTheStreamIsWritten) {
    Deck deck;
    deck.skip_persist_ids(2);
    deck.add_slide().shape(Shape().link(deck.hyperlink(u"C:\\a.doc")));
    ASSERT_EQ(load(deck), 0);
    const Bytes old = deck.document_stream();
    const std::uint32_t directory = deck.offset_of_persist_directory(0);
    ASSERT_EQ(rewrite("out.ppt"), 0);
    const StoredFile copy(path("out.ppt"));
    const Bytes& document = copy.document();
    EXPECT_TRUE(std::equal(old.begin(), old.begin() + directory, document.begin()));
    const auto written = record_at(document, directory);
    EXPECT_EQ(written.type, kDirectoryType);
    // All four ids in one run; 2 and 3 have no object.
    EXPECT_EQ(written.length, 4 + 4 * 4u);
    EXPECT_EQ(bytes::load_u32(document, written.body()), (4u << 20) + 1);
    EXPECT_EQ(bytes::load_u32(document, written.body() + 8), 0u);
    EXPECT_EQ(edit_chain(copy), std::vector<std::uint32_t>{directory + 8 + 20});
}

TEST_F(RewriteTest, RunsOfMoreThan4095IdsAreSplit) {
    Deck deck;
    deck.skip_persist_ids(5000);
    deck.add_slide().shape(Shape().link(deck.hyperlink(u"C:\\a.doc")));
    ASSERT_EQ(load(deck), 0);
    ASSERT_EQ(rewrite("out.ppt"), 0);
    const StoredFile copy(path("out.ppt"));
    const std::uint32_t directory = directory_of(copy, edit_chain(copy)[0]);
    EXPECT_EQ(bytes::load_u32(copy.document(), directory + 8), (4095u << 20) + 1);
    EXPECT_EQ(bytes::load_u32(copy.document(), directory + 8 + 4 * 4096), (907u << 20) + 4096);
    ASSERT_EQ(load_again("out.ppt"), 0);
    EXPECT_EQ(n_getLinkCount(), 1);
}

// The last bytes of the stream in unusual order; what belongs to nobody's edit must survive.
TEST_F(RewriteTest, NothingBesideTheOldDirectoryAndEditIsOverwritten) {
    const Bytes stray{'s', 't', 'r', 'a', 'y', '!'};
    struct Case {
        const char* name;
        void (*rearrange)(Bytes& stream, std::uint32_t directory, std::uint32_t& edit,
                          const Bytes& stray);
        bool appended;
    };
    const Case cases[] = {
        {"bytes behind the edit",
         [](Bytes& stream, std::uint32_t, std::uint32_t&, const Bytes& more) {
             bytes::append(stream, more);
         },
         true},
        {"bytes between directory and edit",
         [](Bytes& stream, std::uint32_t, std::uint32_t& edit, const Bytes& more) {
             stream.insert(stream.begin() + edit, more.begin(), more.end());
             edit += static_cast<std::uint32_t>(more.size());
         },
         false},
    };
    for (const Case& unusual : cases) {
        SCOPED_TRACE(unusual.name);
        Deck deck;
        deck.add_slide().shape(Shape().link(deck.hyperlink(u"C:\\a.doc")));
        Bytes stream = deck.document_stream();
        std::uint32_t edit = deck.offset_of_user_edit(0);
        unusual.rearrange(stream, deck.offset_of_persist_directory(0), edit, stray);
        deck.replace_document_stream(stream).replace_current_user(current_user_atom(edit));
        ASSERT_EQ(load(deck), 0);
        relink(0, "C:\\much longer than before.doc");
        EXPECT_EQ(link_paths(), Paths{"C:\\much longer than before.doc"});
        const StoredFile copy(path("out.ppt"));
        const auto found =
            std::search(copy.document().begin(), copy.document().end(), stray.begin(), stray.end());
        EXPECT_NE(found, copy.document().end());
        const std::uint32_t new_edit = edit_chain(copy)[0];
        EXPECT_EQ(found < copy.document().begin() + new_edit, true);
        EXPECT_EQ(record_at(copy.document(), new_edit).end(), copy.document().size());
        j_unLoadFile();
    }
}

TEST_F(RewriteTest, ALongUserEditKeepsWhatItHadBehindIts28Bytes) {
    Deck deck;
    deck.add_slide().shape(Shape().link(deck.hyperlink(u"C:\\a.doc")));
    Bytes stream = deck.document_stream();
    const std::uint32_t edit = deck.offset_of_user_edit(0);
    bytes::store_u32(stream, edit + 4, 32);
    bytes::append_u32(stream, 0xCAFEF00D);
    deck.replace_document_stream(stream);
    ASSERT_EQ(load(deck), 0);
    relink(0, "C:\\b.docx");
    const StoredFile copy(path("out.ppt"));
    const auto newest = record_at(copy.document(), edit_chain(copy)[0]);
    EXPECT_EQ(newest.length, 28u);
    ASSERT_EQ(newest.end() + 4, copy.document().size());
    EXPECT_EQ(bytes::load_u32(copy.document(), newest.end()), 0xCAFEF00D);
}

TEST_F(RewriteTest, FailuresBeforeTheCopyIsOpenLeaveThePresentationLoaded) {
    Deck deck;
    deck.add_slide().shape(Shape().link(deck.hyperlink(u"C:\\a.doc")));
    ASSERT_EQ(load(deck), 0);
    const std::size_t before = log_lines().size();
    EXPECT_EQ(rewrite("no such folder/out.ppt"), status::kPathNotFound);
    EXPECT_EQ(rewrite(std::string(1024, 'x')), status::kTextTooLong);
    EXPECT_TRUE(log_lines(before).empty());
    EXPECT_EQ(n_getLinkCount(), 1);

    std::string padded = path("out.ppt") + "   ";
    EXPECT_EQ(j_rewriteFile(padded.data(), 3), 0);
    EXPECT_STREQ(padded.c_str(), path("out.ppt").c_str()) << "trailing blanks are cut in place";
    EXPECT_EQ(n_getLinkCount(), 0) << "a rewrite unloads";
    EXPECT_EQ(log_lines(before),
              (Paths{"Rewriting file " + path("deck.ppt"), "Link paths have been rewritten",
                     "LinkIds have been reset", "File has been rewritten, j_status=0"}));
}

TEST_F(RewriteTest, TheLoadedFileIsNeverWritten) {
    Deck deck;
    deck.add_slide().shape(Shape().link(deck.hyperlink(u"C:\\a.doc")));
    ASSERT_EQ(load(deck), 0);
    const std::string before = bytes_of("deck.ppt");
    ASSERT_EQ(j_setLinkFileName(0, "C:\\b.docx", 0), 0);
    ASSERT_EQ(rewrite("out.ppt"), 0);
    EXPECT_EQ(bytes_of("deck.ppt"), before);
}

} // namespace
