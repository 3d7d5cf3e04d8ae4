// `list` and `relink` where the system has code pages, drives and permissions as this program
// arranges them, devices in the tree of files, and limits for their size.
#include "tests/pptlinks/built_program.h"
#include "tests/pptlinks/list_run.h"
#include "tests/pptlinks/relink_run.h"

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>

namespace pptlinks {
namespace {

using namespace presentation_builder;
using Json = nlohmann::json;
using Paths = std::vector<std::string>;

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

TEST_F(ListRun, TheProgramItselfEndsWithItsStatus) {
    write_deck("talk.ppt");
    const RunResult listed = BuiltProgram(path(""), {"list", "talk.ppt", "missing.ppt"}).wait();
    EXPECT_EQ(listed.status, 1);
    EXPECT_NE(listed.out.find("http://example.org/\u00E9"), std::string::npos) << listed.out;
    EXPECT_NE(listed.error.find("missing.ppt: there is no such file"), std::string::npos);
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

TEST_F(RelinkRun, ALinkThatLeadsNowhereIsNoOutput) {
    std::filesystem::create_symlink("missing/target.ppt", path("dangling.ppt"));
    std::filesystem::create_symlink("loop.ppt", path("loop.ppt"));
    for (const char* const out : {"dangling.ppt", "loop.ppt"}) {
        const RunResult result = relink({"--map", "C:\\old=D:"}, out);
        EXPECT_EQ(result.status, 1);
        EXPECT_NE(result.error.find("a symbolic link that leads to nothing; remove it"),
                  std::string::npos)
            << result.error;
        EXPECT_TRUE(std::filesystem::is_symlink(path(out)));
    }
    EXPECT_EQ(names_in_folder(), (Paths{"dangling.ppt", "in.ppt", "loop.ppt"}));
}

// For its lifetime no file grows beyond the size.
class SizeLimit {
  public:
    explicit SizeLimit(std::size_t bytes) {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{bytes, before_.rlim_max};
        EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    }
    SizeLimit(const SizeLimit&) = delete;
    SizeLimit& operator=(const SizeLimit&) = delete;
    ~SizeLimit() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, SIG_DFL);
    }

  private:
    rlimit before_{};
};

// The copy has room for the presentation as it is and not for the longer path.
TEST_F(RelinkRun, ARewriteThatFailsHalfWayLeavesTheOldFile) {
    std::ofstream(path("out.ppt")) << "the old file";
    const std::vector<std::string> wishes{"--set", "0=" + std::string(1000, 'x')};
    {
        const SizeLimit limit(before_.size());
        const RunResult result = relink(wishes);
        EXPECT_EQ(result.status, 1);
        EXPECT_TRUE(result.error.starts_with("pptlinks: ")) << result.error;
        EXPECT_EQ(result.out, "");
    }
    EXPECT_EQ(content(path("out.ppt")), "the old file");
    EXPECT_EQ(names_in_folder(), (Paths{"in.ppt", "out.ppt"}));
    EXPECT_EQ(relink(wishes).status, 0);
}

TEST_F(RelinkRun, TheWordOfTheUserIsEnoughForTheSourceOfAnObject) {
    Deck deck;
    const std::uint32_t book = linked_book(deck);
    deck.add_slide().shape(Shape().object(book));
    deck.write(path("book.ppt"));
    const std::vector<std::string> relinked{"relink",  "book.ppt", "-o",
                                            "new.ppt", "--set",    "0=Y:\\b.xls"};
    std::vector<std::string> trusted = relinked;
    trusted.emplace_back("--trust-targets");
    EXPECT_EQ(run(trusted).status, 0);
    EXPECT_EQ(listed_paths("new.ppt"), Paths{"Y:\\b.xls"});
    EXPECT_EQ(run(relinked).status, 1) << "in that run only";
    EXPECT_EQ(listed_paths("new.ppt"), Paths{"C:\\old\\book.xls"});
}

TEST_F(RelinkRun, AMapLeavesWhatTheCodePageLacks) {
    Deck deck;
    const std::uint32_t foreign = deck.hyperlink(u"C:\\\u65E5\\b.ppt");
    const std::uint32_t plain = deck.hyperlink(u"C:\\a.ppt");
    deck.add_slide().shape(Shape().link(foreign)).shape(Shape().link(plain));
    deck.write(path("foreign.ppt"));
    const RunResult result =
        run({"relink", "foreign.ppt", "-o", "new.ppt", "--map", "C:=D:", "--code-page", "1252"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "1: C:\\a.ppt -> D:\\a.ppt\n"
                          "new.ppt: 1 of 2 links changed, 1 unchanged (characters not in the code "
                          "page)\n");
    EXPECT_TRUE(result.error.starts_with(
        "pptlinks: new.ppt: link 0 (hyperlink C:\\?\\b.ppt) keeps its path"))
        << result.error;
    EXPECT_NE(result.error.find("--set, or choose another --code-page"), std::string::npos);
    EXPECT_EQ(listed_paths("new.ppt"), (Paths{"C:\\\u65E5\\b.ppt", "D:\\a.ppt"}));
}

TEST_F(RelinkRun, AnUnknownDriveIsTold) {
    expect_nothing_written(relink({}, "Q:\\out.ppt"), 1, "name it with --drive");
}

// Names of presentations are found without regard to letter case, with either separator.
TEST_F(RelinkRun, ThePresentationIsKnownByAnyOfItsNames) {
    for (const char* name : {"IN.PPT", ".\\in.ppt", "./In.ppt"}) {
        expect_nothing_written(run({"relink", name, "-o", "in.ppt", "--set", "0=D:\\new.ppt"}), 1,
                               "in.ppt: this is the presentation itself");
    }
}

TEST_F(RelinkRun, ANameThatIsNotUtf8IsTold) {
    const std::string why = "its name or that of a folder above it is not valid UTF-8; rename that";
    std::filesystem::create_directory(path("f\xE9"));
    for (const char* name : {"\xE9.ppt", "f\xE9/in.ppt"}) {
        std::filesystem::copy_file(path("in.ppt"), path(name));
        for (const char* command : {"list", "check"}) {
            const RunResult result = run({command, name});
            EXPECT_EQ(result.status, 1);
            EXPECT_NE(result.error.find(why), std::string::npos) << result.error;
        }
        std::filesystem::remove(path(name));
        const RunResult result = relink({}, name);
        EXPECT_EQ(result.status, 1);
        EXPECT_NE(result.error.find("ppt: " + why), std::string::npos) << result.error;
        EXPECT_FALSE(std::filesystem::exists(path(name)));
    }
}

TEST_F(RelinkRun, ADeviceIsNeitherReadNorReplaced) {
    EXPECT_EQ(run({"list", "/dev/full"}).error,
              "pptlinks: /dev/full: this is a device or a pipe; copy the presentation into a file "
              "and name that (status 6100).\n");
    EXPECT_EQ(run({"list", "/dev"}).error,
              "pptlinks: /dev: this is a folder; name the presentations in it (status 6100).\n");
    expect_nothing_written(relink({}, "/dev/null"), 1, "/dev/null: this is not a plain file");
}

} // namespace
} // namespace pptlinks
