// Presentations of which not everything can be read, as a user meets them.
#include "tests/pptlinks/program_run.h"

#include <nlohmann/json.hpp>

namespace pptlinks {
namespace {

using namespace presentation_builder;
using Json = nlohmann::json;

class UnreadRun : public ProgramRun {
  protected:
    // One good link, a movie that is none, a slide that is not there.
    void write_deck(const std::string& name) {
        Deck deck;
        const std::uint32_t web = deck.hyperlink(u"http://example.org/");
        deck.external_object(container(0, record_type::kExternalAviMovie, {}));
        deck.add_slide().shape(Shape().link(web));
        deck.list_record(PageKind::slide, slide_persist_atom({4000, 300, 0}));
        deck.write(path(name));
    }

    static constexpr const char* kComplaints =
        "pptlinks: talk.ppt: external object 3 (movie) could not be read: it is damaged or built "
        "in a way that is not understood (status 8140).\n"
        "pptlinks: talk.ppt: slide 2 could not be read: a place in it cannot be reached, so it is "
        "probably damaged (status 5650).\n";
};

TEST_F(UnreadRun, ListAndCheckNameWhatIsMissingAndFail) {
    write_deck("talk.ppt");
    const RunResult listed = run({"list", "talk.ppt"});
    EXPECT_EQ(listed.status, 1);
    EXPECT_EQ(listed.error, kComplaints);
    EXPECT_EQ(listed.out, "talk.ppt: 1 link, 2 objects could not be read\n"
                          "INDEX  KIND       PAGE     PATH                 ID  TEXT\n"
                          "    0  hyperlink  slide 1  http://example.org/   -\n");
    const RunResult checked = run({"check", "talk.ppt"});
    EXPECT_EQ(checked.status, 1);
    EXPECT_EQ(checked.error, kComplaints);
    EXPECT_EQ(checked.out, "talk.ppt: 1 link: 0 found, 0 missing, 1 not checked, 2 objects could "
                           "not be read\n");
}

TEST_F(UnreadRun, JsonCountsAndNamesIt) {
    write_deck("talk.ppt");
    for (const char* command : {"list", "check"}) {
        const RunResult result = run({command, "--json", "talk.ppt"});
        EXPECT_EQ(result.status, 1);
        const Json file = Json::parse(result.out);
        EXPECT_EQ(file["status"], 0);
        EXPECT_EQ(file["links"].size(), 1U);
        EXPECT_EQ(file["unread"], 2);
        EXPECT_EQ(file["unread_objects"],
                  (Json{{{"object", "movie"}, {"number", 3}, {"status", 8140}},
                        {{"object", "slide"}, {"number", 2}, {"status", 5650}}}));
    }
}

TEST_F(UnreadRun, ManyAreCountedAndTheFirstNamed) {
    Deck deck;
    for (int i = 0; i < 103; ++i) {
        deck.external_object(container(0, record_type::kExternalAviMovie, {}));
    }
    deck.add_slide();
    deck.write(path("talk.ppt"));
    const RunResult result = run({"list", "talk.ppt"});
    EXPECT_EQ(result.out, "talk.ppt: no links, 103 objects could not be read\n");
    EXPECT_EQ(std::count(result.error.begin(), result.error.end(), '\n'), 101);
    EXPECT_TRUE(result.error.ends_with("pptlinks: talk.ppt: 3 more objects could not be read.\n"))
        << result.error;
}

TEST_F(UnreadRun, RelinkWritesTheCopyAndSaysWhatItDoesNotKnow) {
    write_deck("talk.ppt");
    const RunResult result = run(
        {"relink", "talk.ppt", "-o", "new.ppt", "--map", "http://example.org=http://example.net"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error, kComplaints);
    EXPECT_EQ(result.out, "0: http://example.org/ -> http://example.net/\n"
                          "new.ppt: 1 of 1 link changed, 2 objects could not be read\n");
    EXPECT_NE(run({"list", "new.ppt"}).out.find("http://example.net/"), std::string::npos);
}

TEST_F(UnreadRun, StrictFailsOnTheFirst) {
    write_deck("talk.ppt");
    const std::string sentence =
        "pptlinks: talk.ppt: it is damaged or built in a way that is not understood; open it in "
        "the "
        "program that made it, save it again and try once more (status 8140).\n";
    for (const char* command : {"list", "check"}) {
        const RunResult result = run({command, "--strict", "talk.ppt"});
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.error, sentence);
        EXPECT_EQ(result.out, "");
    }
    const RunResult result = run({"relink", "--strict", "talk.ppt", "-o", "new.ppt"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error, sentence);
    EXPECT_EQ(names_in_folder(), std::vector<std::string>{"talk.ppt"});
}

} // namespace
} // namespace pptlinks
