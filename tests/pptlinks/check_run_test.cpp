// `pptlinks check` as a user runs it.
#include "tests/common_new/unprivileged.h"
#include "tests/pptlinks/program_run.h"
#include "tests/support/ole_storage.h"

#include "pptlinks/target_check.h"

#include <nlohmann/json.hpp>

#include <sstream>
#include <sys/stat.h>

namespace pptlinks {
namespace {

using namespace presentation_builder;
using Json = nlohmann::json;

TEST(Addresses, AreSchemesOfTwoOrMoreCharacters) {
    for (const char* address : {"http://x/", "mailto:a@b", "file:///C:/a", "FTP:", "x-y.z+1:a"}) {
        EXPECT_TRUE(is_address(address)) << address;
    }
    for (const char* path :
         {"", "C:\\a", "c:a", ":a", "1a:b", "a b:c", "http", "..\\a:b", "/a:b"}) {
        EXPECT_FALSE(is_address(path)) << path;
    }
}

class CheckRun : public ProgramRun {
  protected:
    // On drive Z, which is the test's folder. Nothing has a letter case that matters.
    void SetUp() override {
        chmod(path("").c_str(), 0755);
        for (const char* folder : {"talks", "Media", "closed"}) {
            std::filesystem::create_directory(path(folder));
        }
        for (const char* file : {"Media/Film.avi", "talks/book.xls", "closed/song.mid"}) {
            std::ofstream(path(file)) << "content";
        }
        chmod(path("closed").c_str(), 0);

        Deck deck;
        const std::uint32_t web = deck.hyperlink(u"http://example.org/");
        const std::uint32_t gone = deck.hyperlink(u"gone \x1B[2J.doc");
        const std::uint32_t nowhere = deck.declare(Hyperlink{});
        const std::uint32_t film =
            deck.movie(record_type::kExternalAviMovie, u"..\\media\\film.avi");
        const std::uint32_t song =
            deck.sound(record_type::kExternalMidiAudio, u"Z:\\closed\\song.mid");
        const Bytes source =
            composite_moniker({file_moniker({"Z:\\talks\\book.xls"}), item_moniker("Sheet1!R1C1")});
        const std::uint32_t book = deck.ole_link(
            storage_record(ole_storage({{kOleStreamName, ole_stream({{}, source})}}), true));
        deck.add_slide()
            .shape(Shape().link(web))
            .shape(Shape().link(gone))
            .shape(Shape().object(film))
            .shape(Shape().object(song))
            .shape(Shape().object(book));
        deck.add_slide()
            .shape(Shape().picture(u"\\\\srv\\none\\map.wmf"))
            .shape(Shape().picture(u"Z:\\a<b.wmf"))
            .shape(Shape().link(gone))
            .shape(Shape().link(nowhere));
        deck.write(path("talks/talk.ppt"));

        Deck good;
        const std::uint32_t mail = good.hyperlink(u"mailto:a@example.org");
        good.add_slide().shape(Shape().link(mail)).shape(Shape().picture(u"talks\\BOOK.XLS"));
        good.write(path("good.ppt"));
    }

    void TearDown() override { chmod(path("closed").c_str(), 0700); }

    RunResult check(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"check", "--drive", "Z:=" + path("")});
        const Unprivileged user;
        return run(arguments);
    }
};

TEST_F(CheckRun, NamesWhatIsNotThereAndCountsTheRest) {
    const RunResult result = check({"talks/talk.ppt", "good.ppt"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error, "");
    const std::string out = result.out;
    const std::string denied = "talks/talk.ppt: 3 midi slide 1 Z:\\closed\\song.mid: "
                               "access to it is denied";
    const std::size_t who = out.find(denied);
    ASSERT_NE(who, std::string::npos) << out;
    EXPECT_EQ(
        std::string(out).erase(who + denied.size(), out.find('\n', who) - who - denied.size()),
        "talks/talk.ppt: 1 hyperlink slide 1 gone \\x1B[2J.doc: there is no such file\n" + denied +
            "\n"
            "talks/talk.ppt: 5 picture slide 2 \\\\srv\\none\\map.wmf: "
            "its drive or share is not known here, name it with --drive\n"
            "talks/talk.ppt: 6 picture slide 2 Z:\\a<b.wmf: "
            "its name is not a valid path (see character 5)\n"
            "talks/talk.ppt: 7 hyperlink slide 2 gone \\x1B[2J.doc: there is no such file\n"
            "talks/talk.ppt: 9 links: 2 found, 5 missing, 2 not checked\n"
            "good.ppt: 2 links: 1 found, 0 missing, 1 not checked\n");
}

TEST_F(CheckRun, NothingMissingIsNoFailure) {
    const RunResult result = check({"good.ppt"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "good.ppt: 2 links: 1 found, 0 missing, 1 not checked\n");
}

TEST_F(CheckRun, AFileThatFailsIsNamedAndTheOthersAreChecked) {
    const RunResult result = check({"talks/missing.ppt", "Z:\\good.ppt", "./good.ppt"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.error.starts_with("pptlinks: talks/missing.ppt: there is no such file; "));
    EXPECT_EQ(result.out, "Z:\\good.ppt: 2 links: 1 found, 0 missing, 1 not checked\n"
                          "./good.ppt: 2 links: 1 found, 0 missing, 1 not checked\n");
}

TEST_F(CheckRun, JsonTellsForEachLinkWhereItsTargetIs) {
    const RunResult result = check({"--json", "talks/talk.ppt", "missing.ppt", "Z:\\good.ppt"});
    EXPECT_EQ(result.status, 1);
    std::istringstream lines(result.out);
    std::vector<Json> files;
    for (std::string line; std::getline(lines, line);) {
        files.push_back(Json::parse(line));
    }
    ASSERT_EQ(files.size(), 3U);
    std::vector<std::string> targets;
    for (const Json& link : files[0]["links"]) {
        targets.push_back(link["target"]);
    }
    EXPECT_EQ(targets,
              (std::vector<std::string>{"unchecked", "missing", "found", "denied", "found",
                                        "unreachable", "invalid", "missing", "unchecked"}));
    EXPECT_EQ(files[0]["links"][2]["path"], "..\\media\\film.avi");
    EXPECT_EQ(files[0]["links"][2]["found"], path("media/film.avi"));
    EXPECT_EQ(files[0]["links"][4]["found"], "Z:\\talks\\book.xls");
    EXPECT_TRUE(files[0]["links"][1]["found"].is_null());
    EXPECT_TRUE(files[0]["links"][3]["found"].is_null());
    EXPECT_EQ(files[1]["status"], 7510);
    EXPECT_EQ(files[1]["links"], Json::array());
    EXPECT_EQ(files[2]["links"][1]["found"], "Z:\\talks\\BOOK.XLS");
}

} // namespace
} // namespace pptlinks
