// `pptlinks relink` as a user runs it: OUT is whole or not there, and the report says what changed.
#include "pptlinks/copy_check.h"
#include "tests/pptlinks/relink_run.h"

#include <sstream>

namespace pptlinks {
namespace {

using namespace presentation_builder;
using Json = nlohmann::json;

using Paths = std::vector<std::string>;

TEST_F(RelinkRun, AMapMovesEveryLinkBelowIt) {
    const RunResult result = relink({"--map", "c:/OLD=D:\\archive\\deep\\new"});
    EXPECT_EQ(result.status, 0) << result.error;
    EXPECT_EQ(result.out, "0: C:\\old\\a.doc -> D:\\archive\\deep\\new\\a.doc\n"
                          "1: C:\\old\\film.avi -> D:\\archive\\deep\\new\\film.avi\n"
                          "2: C:\\old\\a.doc -> D:\\archive\\deep\\new\\a.doc\n"
                          "out.ppt: 3 of 5 links changed\n");
    EXPECT_EQ(
        listed_paths("out.ppt"),
        (Paths{"D:\\archive\\deep\\new\\a.doc", "D:\\archive\\deep\\new\\film.avi",
               "D:\\archive\\deep\\new\\a.doc", "http://example.org/", "C:\\pictures\\map.wmf"}));
    EXPECT_EQ(names_in_folder(), (Paths{"in.ppt", "out.ppt"}));
}

TEST_F(RelinkRun, SettingOneUseChangesTheWholeObjectAndSaysSo) {
    const RunResult result = relink({"--set", "2=X:\\b.doc", "--set", "1=c:\\OLD\\film.AVI",
                                     "--set", "3=https://example.org/longer"});
    EXPECT_EQ(result.status, 0) << result.error;
    EXPECT_EQ(result.out, "0: C:\\old\\a.doc -> X:\\b.doc\n"
                          "2: C:\\old\\a.doc -> X:\\b.doc\n"
                          "3: http://example.org/ -> https://example.org/longer\n"
                          "links 0 and 2 are one object and change together\n"
                          "out.ppt: 3 of 5 links changed, 1 unchanged (same path)\n");
    EXPECT_EQ(listed_paths("out.ppt"),
              (Paths{"X:\\b.doc", "C:\\old\\film.avi", "X:\\b.doc", "https://example.org/longer",
                     "C:\\pictures\\map.wmf"}));
}

TEST_F(RelinkRun, IdsAreKeptByTheCopy) {
    const RunResult result =
        relink({"--set-id", "1=1001", "--set-id", "4=9999999999999999999", "--target-id", "77"});
    EXPECT_EQ(result.status, 0) << result.error;
    EXPECT_EQ(result.out,
              "out.ppt: 0 of 5 links changed, 2 link ids set, id of the presentation set\n");
    const Json copy = listing("out.ppt");
    EXPECT_EQ(copy["target_file_id"], "77");
    EXPECT_EQ(copy["links"][1]["id"], "1001");
    EXPECT_EQ(copy["links"][4]["id"], "9999999999999999999");
    EXPECT_TRUE(copy["links"][0]["id"].is_null());
}

TEST_F(RelinkRun, WhatCannotBeMeantIsWrongUsage) {
    expect_nothing_written(relink({"--set", "0=X:\\a", "--set", "2=X:\\b"}), 2,
                           "links 0 and 2 are one object");
    expect_nothing_written(relink({"--set", "1=X:\\a", "--set", "1=X:\\b"}), 2, "link 1");
    expect_nothing_written(relink({"--set", "1=\u4E2D", "--code-page", "1252"}), 2, "--set");
    expect_nothing_written(relink({"--set", "1=X:\\\xFF"}), 2, "not valid UTF-8");
    expect_nothing_written(relink({"--map", "C:=X:\\\xED\xA0\x80"}), 2, "not valid UTF-8");
    expect_nothing_written(run({"relink", "in.ppt"}), 2, "output");
}

TEST_F(RelinkRun, IdsThatCannotBeKeptApartAreWrongUsage) {
    expect_nothing_written(relink({"--set-id", "0=5", "--set-id", "0=6"}), 2,
                           "link 0 cannot get two different ids");
    expect_nothing_written(relink({"--set-id", "0=5", "--set-id", "2=6"}), 2,
                           "links 0 and 2 are one object and cannot get different ids");
    expect_nothing_written(relink({"--set-id", "0=5", "--set-id", "1=05"}), 2,
                           "an id belongs to one path");
    const RunResult result =
        relink({"--set", "3=c:\\OLD\\a.doc", "--set-id", "0=5", "--set-id", "2=5", "--set-id",
                "3=5", "--set-id", "1=0", "--set-id", "4=0"});
    EXPECT_EQ(result.status, 0) << "one path, and ids that are cleared: " << result.error;
}

TEST_F(RelinkRun, AnIdThatAnotherPathHasIsNotTakenFromIt) {
    ASSERT_EQ(relink({"--set-id", "0=5", "--set-id", "1=6"}).status, 0);
    const auto again = [this](std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"relink", "out.ppt", "-o", "again.ppt"});
        return run(arguments);
    };
    const RunResult taken = again({"--set-id", "4=06"});
    EXPECT_EQ(taken.status, 2);
    EXPECT_NE(taken.error.find("links 4 and 1 have different paths"), std::string::npos)
        << taken.error;
    EXPECT_FALSE(std::filesystem::exists(path("again.ppt")));
    EXPECT_EQ(again({"--set-id", "1=5", "--set-id", "0=6"}).status, 0) << "they change places";
    EXPECT_EQ(listing("again.ppt")["links"][2]["id"], "6");
    EXPECT_EQ(again({"--set-id", "4=6", "--set", "4=C:\\old\\FILM.avi"}).status, 0) << "one path";
}

TEST_F(RelinkRun, UsesOfOneObjectHaveOneId) {
    ASSERT_EQ(relink({"--set-id", "0=5", "--set-id", "1=6"}).status, 0);
    const auto ids_after = [this](std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"relink", "out.ppt", "-o", "again.ppt"});
        const RunResult result = run(arguments);
        EXPECT_EQ(result.status, 0) << result.error;
        const Json copy = listing("again.ppt");
        return Json::array({copy["links"][0]["id"], copy["links"][2]["id"], copy["links"][1]["id"]})
            .dump();
    };
    EXPECT_EQ(ids_after({"--set-id", "2=7"}), R"(["7","7","6"])");
    EXPECT_EQ(ids_after({"--set-id", "2=7", "--set", "0=D:\\new.doc"}), R"(["7","7","6"])");
    EXPECT_EQ(ids_after({"--set-id", "2=0"}), R"([null,null,"6"])");
    EXPECT_EQ(ids_after({"--set-id", "0=0", "--map", "C:=D:"}), R"([null,null,"6"])");
    EXPECT_EQ(ids_after({"--set-id", "0=6", "--set-id", "1=5", "--map", "C:=D:"}),
              R"(["6","6","5"])");
}

TEST_F(RelinkRun, WhatCouldNotBeWrittenKeepsItsId) {
    Deck deck;
    const std::uint32_t book = linked_book(deck);
    deck.add_slide().shape(Shape().object(book));
    deck.add_slide().shape(Shape().object(book));
    deck.write(path("book.ppt"));
    const RunResult both =
        run({"relink", "book.ppt", "-o", "ids.ppt", "--map", "C:=Y:", "--set-id", "1=5"});
    EXPECT_EQ(both.status, 1);
    EXPECT_NE(both.out.find(", 1 link id set"), std::string::npos) << both.out;
    EXPECT_EQ(run({"relink", "ids.ppt", "-o", "again.ppt", "--map", "C:=Y:"}).status, 1);
    const Json copy = listing("again.ppt");
    EXPECT_EQ(copy["links"][0]["path"], "C:\\old\\book.xls");
    EXPECT_EQ(copy["links"][0]["id"], "5");
    EXPECT_EQ(copy["links"][1]["id"], "5");
}

// The reader takes the first of two spellings for the second, so they share an id already.
TEST_F(RelinkRun, LinksThatShareAnIdMayKeepIt) {
    Deck deck;
    deck.add_slide()
        .shape(Shape().link(deck.hyperlink(u"film.avi")))
        .shape(Shape().link(deck.hyperlink(u".\\film.avi")));
    deck.write(path("films.ppt"));
    ASSERT_EQ(run({"relink", "films.ppt", "-o", "ids.ppt", "--set-id", "0=5"}).status, 0);
    ASSERT_EQ(listing("ids.ppt")["links"][1]["id"], "5");
    const RunResult again = run({"relink", "ids.ppt", "-o", "again.ppt", "--set-id", "0=5"});
    EXPECT_EQ(again.status, 0) << again.error;
}

TEST_F(RelinkRun, IdsAreKeptAsSeenFromTheFolder) {
    const std::string here = path("film.avi");
    ASSERT_EQ(relink({"--set", "1=" + here, "--set-id", "1=6"}).status, 0);
    std::filesystem::create_directory(path("other"));
    const RunResult moved = run({"relink", "out.ppt", "-o", "other/out.ppt"});
    EXPECT_EQ(moved.status, 1);
    EXPECT_NE(moved.error.find("link 1 (movie " + here + ") has lost its id"), std::string::npos);
    EXPECT_NE(moved.error.find("; write the copy into that folder, "), std::string::npos)
        << moved.error;
}

TEST_F(RelinkRun, APresentationWithoutAnIdGetsNone) {
    ASSERT_EQ(relink({"--map", "C:=D:"}).status, 0);
    const Bytes wide = utf16(u"MORVANE");
    EXPECT_EQ(content(path("out.ppt")).find("MORVANE"), std::string::npos);
    EXPECT_EQ(content(path("out.ppt")).find(std::string(wide.begin(), wide.end())),
              std::string::npos);
    ASSERT_EQ(relink({"--target-id", "7"}, "own.ppt").status, 0);
    ASSERT_EQ(run({"relink", "own.ppt", "-o", "cleared.ppt", "--target-id", "0"}).status, 0);
    EXPECT_TRUE(listing("cleared.ppt")["target_file_id"].is_null());
}

TEST_F(RelinkRun, TheCopyIsHeldAgainstThePlan) {
    const Session session{CommonArguments()};
    LoadedPresentation presentation(session, path("in.ppt"));
    RelinkPlan plan(5, [&](std::int32_t index) { return presentation.link(index); });
    plan.apply({{{1, "D:\\a"}, {4, "c:\\PICTURES\\map.wmf"}}, {}});
    const CopyCheck check(presentation, {});
    const auto found = check.differences(session, path("in.ppt"), plan, {});
    ASSERT_TRUE(found);
    EXPECT_EQ(found->other_path, std::vector<std::int32_t>{1});
    EXPECT_FALSE(found->is_as_asked());
    EXPECT_TRUE(check.differences(session, path("in.ppt"), plan, {1})->is_as_asked());
    Deck other;
    other.add_slide();
    other.write(path("other.ppt"));
    EXPECT_FALSE(check.differences(session, path("other.ppt"), plan, {}));
}

TEST_F(RelinkRun, PicturesAndDisplayedTextsChangeToo) {
    const RunResult result =
        relink({"--map", "C:=D:", "--set", "3=http://example.org/new/", "--options", "h"});
    EXPECT_EQ(result.status, 0) << result.error;
    EXPECT_EQ(result.out, "0: C:\\old\\a.doc -> D:\\old\\a.doc\n"
                          "1: C:\\old\\film.avi -> D:\\old\\film.avi\n"
                          "2: C:\\old\\a.doc -> D:\\old\\a.doc\n"
                          "3: http://example.org/ -> http://example.org/new/\n"
                          "4: C:\\pictures\\map.wmf -> D:\\pictures\\map.wmf\n"
                          "out.ppt: 5 of 5 links changed\n");
    const Json copy = listing("out.ppt");
    EXPECT_EQ(copy["links"][3]["text"], "http://example.org/new/");
    EXPECT_EQ(copy["links"][4]["path"], "D:\\pictures\\map.wmf");

    // Without these letters the words stay.
    ASSERT_EQ(relink({"--set", "3=http://example.org/new/"}, "words.ppt").status, 0);
    EXPECT_EQ(listing("words.ppt")["links"][3]["text"], "here");
}

// Link 0 is a picture whose name is not whole, 1 a hyperlink on a text whose runs are not
// understood, 2 and 3 are one linked object, 4 is an ordinary hyperlink.
TEST_F(RelinkRun, WhatCannotBeWrittenIsNamedAndTheRestIsWritten) {
    Deck deck;
    const std::uint32_t shown = deck.hyperlink(u"C:\\old\\a.doc");
    const std::uint32_t plain = deck.hyperlink(u"C:\\old\\b.doc");
    const std::uint32_t book = linked_book(deck);
    ArtProperty name = text_property(art_property::kPictureName, u"C:\\old\\map.wmf");
    name.value += 40;
    const TextRun whole[] = {{10}};
    const TextRun promises_more[] = {{10, 0x20, {}}}; // four bytes that are not there
    deck.add_slide()
        .shape(Shape(kPictureFrame).options({{art_property::kPicture, 1}, name}))
        .shape(Shape().text(
            Text(u"a red one").style(text_style(promises_more, whole)).link(shown, 2, 5)))
        .shape(Shape().object(book));
    deck.add_slide().shape(Shape().object(book)).shape(Shape().link(plain));
    deck.write(path("mixed.ppt"));
    const std::vector<std::string> arguments{"relink", "mixed.ppt", "-o",        "out.ppt",
                                             "--map",  "C:=Y:",     "--options", "h"};
    const RunResult result = run(arguments);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "1: C:\\old\\a.doc -> Y:\\old\\a.doc\n"
                          "4: C:\\old\\b.doc -> Y:\\old\\b.doc\n"
                          "out.ppt: 2 of 5 links changed, 3 unchanged (could not be written), "
                          "1 displayed text unchanged (could not be written)\n");
    const std::pair<const char*, const char*> complaints[] = {
        {"link 0 (picture C:\\old\\map.wmf) keeps its path", "anew"},
        {"link 1 (hyperlink C:\\old\\a.doc) leads to its new path", "by hand"},
        {"link 2 (ole C:\\old\\book.xls) keeps its path", "drive or share"},
        {"link 3 (ole C:\\old\\book.xls) keeps its path", "drive or share"}};
    std::istringstream lines(result.error);
    for (const auto& [problem, remedy] : complaints) {
        std::string line;
        ASSERT_TRUE(std::getline(lines, line));
        EXPECT_TRUE(line.starts_with(std::string("pptlinks: out.ppt: ") + problem)) << line;
        EXPECT_NE(line.find(remedy), std::string::npos) << line;
    }
    EXPECT_EQ(listed_paths("out.ppt"),
              (Paths{"C:\\old\\map.wmf", "Y:\\old\\a.doc", "C:\\old\\book.xls", "C:\\old\\book.xls",
                     "Y:\\old\\b.doc"}));
}

// The section names a property twice, so it keeps its bytes.
TEST_F(RelinkRun, IdsThatThePropertiesDoNotTakeAreNamed) {
    Deck deck;
    deck.add_slide().shape(Shape().link(deck.hyperlink(u"C:\\old\\a.doc")));
    Bytes properties = PropertyStream()
                           .text(u"one", u"1")
                           .text(u"two", u"2")
                           .blob(u"_PID_HLINKS", hyperlink_list({}))
                           .build();
    const std::size_t section = bytes::load_u32(properties, 0x2C + 0x14);
    const std::size_t entries = section + 8;
    bytes::store_u32(properties, entries + 8 * 3, bytes::load_u32(properties, entries + 8 * 2));
    deck.properties(properties);
    deck.write(path("twice.ppt"));
    const RunResult result =
        run({"relink", "twice.ppt", "-o", "out.ppt", "--set-id", "0=4242", "--target-id", "99"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error, "pptlinks: out.ppt: link 0 (hyperlink C:\\old\\a.doc) has lost its id, "
                            "which the document properties did not take.\n"
                            "pptlinks: out.ppt: its document properties did not take the id of the "
                            "presentation.\n");
}

TEST_F(RelinkRun, IdsOfLinksWithOnePathAreOne) {
    const RunResult result = relink(
        {"--set", "3=c:\\OLD\\film.avi", "--set-id", "1=8", "--set-id", "3=9", "--set-id", "4=7"});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.error.find("link 1 (movie C:\\old\\film.avi) has not the id"),
              std::string::npos)
        << result.error;
    EXPECT_NE(result.out.find(", 2 link ids set\n"), std::string::npos) << result.out;
    const Json copy = listing("out.ppt");
    EXPECT_EQ(copy["links"][1]["id"], copy["links"][3]["id"]);
    EXPECT_EQ(copy["links"][4]["id"], "7");
}

// Ids that stand on the pages move to where all ids are kept.
TEST_F(RelinkRun, IdsOfOldPresentationsAreKept) {
    Deck deck;
    const std::uint32_t doc = deck.hyperlink(u"C:\\old\\a.doc");
    deck.add_slide().shape(Shape().link(doc)).tag(u"OBRIN-LINK-NUM=1", u"31");
    deck.write(path("tagged.ppt"));
    const std::string before = listing("tagged.ppt")["links"][0].dump();
    ASSERT_NE(before.find("\"id\":\"31\""), std::string::npos) << before;
    ASSERT_EQ(run({"relink", "tagged.ppt", "-o", "out.ppt", "--set", "0=D:\\b"}).status, 0);
    EXPECT_EQ(listing("out.ppt")["links"][0]["id"], "31");
}

TEST_F(RelinkRun, AFailureLeavesNothingBehind) {
    expect_nothing_written(relink({"--set", "5=X:\\a"}), 1,
                           "in.ppt: it has no link with the number 5");
    expect_nothing_written(relink({"--set-id", "9=1"}), 1, "number 9, only 5 links");
    expect_nothing_written(relink({"--set", "0=" + std::string(1024, 'x')}), 1, "too long");
    expect_nothing_written(relink({}, "in.ppt"), 1, "in.ppt: this is the presentation itself");
    expect_nothing_written(
        relink({}, "./../" + std::filesystem::path(path("")).parent_path().filename().string() +
                       "/in.ppt"),
        1, "this is the presentation itself");
    expect_nothing_written(relink({}, "."), 1, "this is a folder");
    expect_nothing_written(relink({}, "no/out.ppt"), 1, "no/out.ppt: its folder does not exist");
    expect_nothing_written(run({"relink", "missing.ppt", "-o", "out.ppt"}), 1,
                           "missing.ppt: there");
}

} // namespace
} // namespace pptlinks
