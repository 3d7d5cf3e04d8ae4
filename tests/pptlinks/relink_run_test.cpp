// `pptlinks relink` as a user runs it: OUT is whole or not there, and the report says what changed.
#include "tests/pptlinks/program_run.h"

#include <nlohmann/json.hpp>

#include <sys/stat.h>

namespace pptlinks {
namespace {

using namespace presentation_builder;
using Json = nlohmann::json;

class RelinkRun : public ProgramRun {
  protected:
    // Links 0 and 2 are one hyperlink; 1 is a movie, 3 a hyperlink in text, 4 a linked picture.
    void SetUp() override {
        const std::uint32_t doc = deck_.hyperlink(u"C:\\old\\a.doc");
        const std::uint32_t film =
            deck_.movie(record_type::kExternalAviMovie, u"C:\\old\\film.avi");
        const std::uint32_t web = deck_.hyperlink(u"http://example.org/");
        deck_.add_slide().shape(Shape().link(doc)).shape(Shape().object(film));
        deck_.add_slide()
            .shape(Shape().link(doc))
            .shape(Shape().text(Text(u"see here").link(web, 4, 8)))
            .shape(Shape().picture(u"C:\\pictures\\map.wmf"));
        deck_.write(path("in.ppt"));
        before_ = content(path("in.ppt"));
    }

    void TearDown() override { EXPECT_EQ(content(path("in.ppt")), before_); }

    RunResult relink(std::vector<std::string> arguments, const std::string& out = "out.ppt") {
        std::vector<std::string> all{"relink", "in.ppt", "-o", out};
        all.insert(all.end(), arguments.begin(), arguments.end());
        return run(all);
    }

    Json listing(const std::string& file) {
        const RunResult result = run({"list", "--json", file});
        EXPECT_EQ(result.status, 0) << result.error;
        return Json::parse(result.out);
    }

    std::vector<std::string> listed_paths(const std::string& file) {
        std::vector<std::string> paths;
        const Json listed = listing(file);
        for (const Json& link : listed["links"]) {
            paths.push_back(link["path"]);
        }
        return paths;
    }

    void expect_nothing_written(const RunResult& result, int status, const std::string& reason) {
        EXPECT_EQ(result.status, status);
        EXPECT_NE(result.error.find(reason), std::string::npos) << result.error;
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(names_in_folder(), (std::vector<std::string>{"in.ppt"}));
    }

    Deck deck_;
    std::string before_;
};

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

TEST_F(RelinkRun, ANewFileHasOrdinaryPermissionsAReplacedOneKeepsItsOwn) {
    const mode_t mask = umask(0);
    umask(mask);
    const auto mode_of = [&](const std::string& name) {
        struct stat status {};
        EXPECT_EQ(stat(path(name).c_str(), &status), 0);
        return status.st_mode & 07777;
    };
    ASSERT_EQ(relink({"--map", "C:\\old=D:"}).status, 0);
    EXPECT_EQ(mode_of("out.ppt"), 0666 & ~mask);

    chmod(path("in.ppt").c_str(), 0444);
    EXPECT_EQ(relink({"--map", "C:\\old=D:"}, "of_read_only.ppt").status, 0);
    EXPECT_EQ(mode_of("of_read_only.ppt"), 0666 & ~mask);

    std::ofstream(path("old.ppt")) << "the old file";
    chmod(path("old.ppt").c_str(), 0640);
    std::filesystem::create_symlink("old.ppt", path("link.ppt"));
    ASSERT_EQ(relink({"--map", "C:\\old=D:"}, "link.ppt").status, 0);
    EXPECT_TRUE(std::filesystem::is_symlink(path("link.ppt")));
    EXPECT_EQ(mode_of("old.ppt"), 0640);
    EXPECT_EQ(content(path("old.ppt")), content(path("out.ppt")));
}

TEST_F(RelinkRun, WhatCannotBeMeantIsWrongUsage) {
    expect_nothing_written(relink({"--set", "0=X:\\a", "--set", "2=X:\\b"}), 2,
                           "links 0 and 2 are one object");
    expect_nothing_written(relink({"--set", "1=X:\\a", "--set", "1=X:\\b"}), 2, "link 1");
    expect_nothing_written(relink({"--set", "1=\u4E2D", "--code-page", "1252"}), 2, "--set");
    expect_nothing_written(run({"relink", "in.ppt"}), 2, "output");
}

TEST_F(RelinkRun, WhatStandsOnThePagesIsRefused) {
    expect_nothing_written(relink({"--set", "4=C:\\x.wmf"}), 1, "link 4 is a linked picture");
    expect_nothing_written(relink({"--map", "C:=D:"}), 1, "linked picture");
    expect_nothing_written(relink({"--set", "3=http://x/", "--options", "het"}), 1,
                           "link 3 is a hyperlink in text");
    // The same path in other letters changes nothing, so there is nothing to refuse.
    EXPECT_EQ(relink({"--set", "4=c:\\PICTURES\\map.wmf"}).status, 0);
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
    expect_nothing_written(relink({}, "/dev/null"), 1, "/dev/null: this is not a plain file");
    expect_nothing_written(relink({}, "Q:\\out.ppt"), 1, "name it with --drive");
    expect_nothing_written(run({"relink", "missing.ppt", "-o", "out.ppt"}), 1,
                           "missing.ppt: there");
}

// The copy has room for the presentation as it is and not for the longer path.
TEST_F(RelinkRun, ARewriteThatFailsHalfWayLeavesTheOldFile) {
    std::ofstream(path("out.ppt")) << "the old file";
    const std::vector<std::string> arguments{"relink",  "in.ppt", "-o",
                                             "out.ppt", "--set",  "0=" + std::string(1000, 'x')};
    const RunResult result = run(arguments, before_.size());
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.error.starts_with("pptlinks: ")) << result.error;
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(content(path("out.ppt")), "the old file");
    EXPECT_EQ(names_in_folder(), (Paths{"in.ppt", "out.ppt"}));
    EXPECT_EQ(run(arguments).status, 0);
}

} // namespace
} // namespace pptlinks
