// `pptlinks list` as a user runs it.
#include "tests/pptlinks/list_run.h"

namespace pptlinks {
namespace {

using namespace presentation_builder;
using Json = nlohmann::json;

TEST_F(ListRun, TheTableShowsEveryLink) {
    write_deck("talk.ppt");
    const RunResult result = run({"list", "talk.ppt"});
    EXPECT_EQ(result.status, 0) << result.error;
    EXPECT_EQ(result.error, "");
    EXPECT_EQ(result.out,
              "talk.ppt: 6 links, id 7\n"
              "INDEX  KIND       PAGE      PATH                  ID  TEXT\n"
              "    0  hyperlink  master 1  http://example.org/\u00E9   -\n"
              "    1  midi       slide 1   C:\\song.mid            -\n"
              "    2  movie      slide 1   C:\\film.avi           42\n"
              "    3  picture    slide 2   \\\\srv\\pub\\map.wmf      -\n"
              "    4  hyperlink  slide 2   http://example.org/\u00E9   -  \\x1B[2J here\n"
              "    5  sound      notes 1   C:\\hm.wav              -\n");
}

TEST_F(ListRun, JsonHasOneObjectForEachFileAlsoForThoseThatFail) {
    write_deck("talk.ppt");
    Deck().write(path("empty.ppt"));
    const RunResult result = run({"list", "--json", "talk.ppt", "missing.ppt", "empty.ppt"});
    EXPECT_EQ(result.status, 1);
    const std::vector<Json> files = lines(result.out);
    ASSERT_EQ(files.size(), 3U);
    EXPECT_EQ(files[0]["file"], "talk.ppt");
    EXPECT_EQ(files[0]["status"], 0);
    EXPECT_EQ(files[0]["target_file_id"], "7");
    ASSERT_EQ(files[0]["links"].size(), 6U);
    EXPECT_EQ(files[0]["links"][2], (Json{{"index", 2},
                                          {"kind", "movie"},
                                          {"page", "slide 1"},
                                          {"path", "C:\\film.avi"},
                                          {"id", "42"},
                                          {"text", ""}}));
    EXPECT_EQ(files[0]["links"][4]["text"], "\x1B[2J here");
    EXPECT_EQ(files[1], (Json{{"file", "missing.ppt"},
                              {"status", 7510},
                              {"unread", 0},
                              {"unread_objects", Json::array()},
                              {"target_file_id", nullptr},
                              {"links", Json::array()}}));
    EXPECT_EQ(files[2]["links"].size(), 0U);
    EXPECT_NE(result.error.find("pptlinks: missing.ppt: there is no such file; "),
              std::string::npos);
}

TEST_F(ListRun, ADamagedOrForeignFileIsNamedAndTheOthersAreListed) {
    Deck damaged;
    damaged.add_slide();
    damaged.replace_current_user(bytes::Bytes(3)).write(path("damaged.ppt"));
    std::ofstream(path("plain.ppt")) << "this is no presentation";
    write_deck("talk.ppt");
    const RunResult result = run({"list", "damaged.ppt", "plain.ppt", "talk.ppt"});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.error.find("damaged.ppt: it is not a PowerPoint 97-2003 presentation"),
              std::string::npos);
    EXPECT_NE(result.error.find("plain.ppt: it is not a PowerPoint 97-2003 presentation"),
              std::string::npos);
    EXPECT_EQ(result.out.rfind("talk.ppt: 6 links", 0), 0U);
}

TEST_F(ListRun, AMissingFolderIsNoDamage) {
    const RunResult result = run({"list", "gone/talk.ppt"});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.error.find("gone/talk.ppt: its folder, drive or share is not there"),
              std::string::npos)
        << result.error;
}

TEST_F(ListRun, WrongUsageAndHelp) {
    const RunResult wrong = run({"list"});
    EXPECT_EQ(wrong.status, 2);
    EXPECT_EQ(wrong.out, "");
    EXPECT_NE(wrong.error, "");
    const RunResult help = run({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(help.out.find("pptlinks relink talk.ppt -o"), std::string::npos);
}

} // namespace
} // namespace pptlinks
