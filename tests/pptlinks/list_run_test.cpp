// `pptlinks list` as a user runs it.
#include "tests/pptlinks/program_run.h"

#include <nlohmann/json.hpp>

#include <sstream>

namespace pptlinks {
namespace {

using namespace presentation_builder;
using Json = nlohmann::json;

class ListRun : public ProgramRun {
  protected:
    // A link of every kind that is found, on pages of every kind.
    void write_deck(const std::string& name) {
        Deck deck;
        const std::uint32_t web = deck.hyperlink(u"http://example.org/\u00E9");
        const std::uint32_t song = deck.sound(record_type::kExternalMidiAudio, u"C:\\song.mid");
        const std::uint32_t wav = deck.sound(record_type::kExternalWavAudioLink, u"C:\\hm.wav");
        const std::uint32_t film = deck.movie(record_type::kExternalAviMovie, u"C:\\film.avi");
        deck.add_master().shape(Shape().link(web));
        deck.add_slide().shape(Shape().object(song)).shape(Shape().object(film));
        deck.add_slide()
            .shape(Shape().picture(u"\\\\srv\\pub\\map.wmf"))
            .shape(Shape().text(Text(u"see \x1B[2J here").link(web, 4, 13)));
        deck.add_notes().shape(Shape().object(wav));
        deck.properties(PropertyStream()
                            .text(u"MORVANE-LINK-ID=42%%", u"c:\\film.avi")
                            .text(u"MORVANE-LINK-ID", u"7")
                            .build());
        deck.write(path(name));
    }

    static std::vector<Json> lines(const std::string& out) {
        std::vector<Json> objects;
        std::istringstream stream(out);
        for (std::string line; std::getline(stream, line);) {
            objects.push_back(Json::parse(line));
        }
        return objects;
    }
};

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

TEST_F(ListRun, CodePageDrivesAndOptionsReachThePlugIn) {
    write_deck("talk.ppt");
    const std::string drive = "Z:=" + path("");
    const RunResult mapped = run({"list", "--json", "--drive", drive, "--code-page", "1252",
                                  "--options", "", "Z:\\TALK.ppt"});
    ASSERT_EQ(mapped.status, 0) << mapped.error;
    const Json file = lines(mapped.out).at(0);
    EXPECT_EQ(file["links"][0]["path"], "http://example.org/\u00E9");
    EXPECT_EQ(file["links"][4]["text"], "");

    EXPECT_EQ(run({"list", "talk.ppt", "--code-page", "4711"}).status, 2);
    EXPECT_EQ(run({"list", "talk.ppt", "--drive", "nonsense"}).status, 2);
    EXPECT_EQ(run({"list", "Y:\\talk.ppt"}).status, 1);
    const RunResult foreign = run({"list", "--code-page", "1252", "\u4E2D.ppt"});
    EXPECT_EQ(foreign.status, 1);
    EXPECT_NE(foreign.error.find("\u4E2D.ppt: a text or name cannot be written"),
              std::string::npos);
}

TEST_F(ListRun, WrongUsageAndHelp) {
    const RunResult wrong = run({"list"});
    EXPECT_EQ(wrong.status, 2);
    EXPECT_EQ(wrong.out, "");
    EXPECT_NE(wrong.error, "");
    const RunResult help = run({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(help.out.find("pptlinks relink talk.ppt -o"), std::string::npos);
    const RunResult device = run({"list", "/dev/full"});
    EXPECT_EQ(device.status, 1);
}

TEST_F(ListRun, TheProgramItselfEndsWithItsStatus) {
    write_deck("talk.ppt");
    const RunResult listed = run_built({"list", "talk.ppt", "missing.ppt"});
    EXPECT_EQ(listed.status, 1);
    EXPECT_NE(listed.out.find("http://example.org/\u00E9"), std::string::npos) << listed.out;
    EXPECT_NE(listed.error.find("missing.ppt: there is no such file"), std::string::npos);
}

} // namespace
} // namespace pptlinks
