// A presentation with links of several kinds, to be relinked.
#pragma once

#include "tests/pptlinks/program_run.h"
#include "tests/support/ole_storage.h"

#include <nlohmann/json.hpp>

namespace pptlinks {

class RelinkRun : public ProgramRun {
  protected:
    // Links 0 and 2 are one hyperlink; 1 is a movie, 3 a hyperlink in text, 4 a linked picture.
    void SetUp() override {
        using namespace presentation_builder;
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

    // A linked OLE object whose source is C:\old\book.xls; returns its object id.
    static std::uint32_t linked_book(presentation_builder::Deck& deck) {
        using namespace presentation_builder;
        const Bytes stream = ole_stream({{}, file_moniker({"C:\\old\\book.xls"})});
        return deck.ole_link(storage_record(ole_storage({{kOleStreamName, stream}}), true));
    }

    RunResult relink(std::vector<std::string> arguments, const std::string& out = "out.ppt") {
        std::vector<std::string> all{"relink", "in.ppt", "-o", out};
        all.insert(all.end(), arguments.begin(), arguments.end());
        return run(all);
    }

    nlohmann::json listing(const std::string& file) {
        const RunResult result = run({"list", "--json", file});
        EXPECT_EQ(result.status, 0) << result.error;
        return nlohmann::json::parse(result.out);
    }

    std::vector<std::string> listed_paths(const std::string& file) {
        std::vector<std::string> paths;
        const nlohmann::json listed = listing(file);
        for (const nlohmann::json& link : listed["links"]) {
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

    presentation_builder::Deck deck_;
    std::string before_;
};

} // namespace pptlinks
