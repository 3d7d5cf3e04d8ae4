// Whatever a presentation, a file name or an argument holds: what the program prints is valid UTF-8
// in which nothing acts on a terminal, hides or adds a line.
#include "tests/pptlinks/program_run.h"
#include "tests/support/ole_storage.h"

#include <nlohmann/json.hpp>

#include <sstream>

namespace pptlinks {
namespace {

using namespace presentation_builder;
using Json = nlohmann::json;

// The code points of a text; none when it is not valid UTF-8. Written apart from the program's own
// decoding.
std::optional<std::u32string> code_points(const std::string& text) {
    std::u32string points;
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i++]);
        const int tail = lead < 0x80 ? 0 : lead < 0xC2 ? -1 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
        if (tail < 0 || lead > 0xF4 || text.size() - i < static_cast<std::size_t>(tail)) {
            return std::nullopt;
        }
        char32_t point = tail == 0 ? lead : lead & (0x3FU >> tail);
        for (int k = 0; k < tail; ++k) {
            const auto next = static_cast<unsigned char>(text[i++]);
            if (next >> 6 != 2) {
                return std::nullopt;
            }
            point = point << 6 | (next & 0x3FU);
        }
        const bool is_shortest = tail == 0 || point >= (tail == 1   ? 0x80U
                                                        : tail == 2 ? 0x800U
                                                                    : 0x10000U);
        if (!is_shortest || point > 0x10FFFF || (point >= 0xD800 && point < 0xE000)) {
            return std::nullopt;
        }
        points.push_back(point);
    }
    return points;
}

bool is_safe(char32_t point) {
    constexpr char32_t kHidden[] = {0x00AD, 0x061C, 0x180E, 0x200B, 0x200C, 0x200D, 0x200E, 0x200F,
                                    0x2028, 0x2029, 0x202A, 0x202B, 0x202C, 0x202D, 0x202E, 0x2060,
                                    0x2066, 0x2067, 0x2068, 0x2069, 0xFEFF, 0xFFF9, 0xE0041};
    return point == '\n' || (point >= 0x20 && point < 0x7F) ||
           (point >= 0xA0 &&
            std::find(std::begin(kHidden), std::end(kHidden), point) == std::end(kHidden));
}

void expect_safe(const std::string& text) {
    const std::optional<std::u32string> points = code_points(text);
    ASSERT_TRUE(points) << "not UTF-8: " << testing::PrintToString(text);
    EXPECT_TRUE(std::all_of(points->begin(), points->end(), is_safe))
        << testing::PrintToString(text);
}

std::size_t lines_of(const std::string& text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

// Every kind of harm: escapes in both forms, line ends, reordering, hiding, halves of pairs.
const std::u16string kHostile = u"\x1B[31m\x1B]0;t\x07\x9B"
                                u"2J\x90\x7F\x08\r\n\t\u202Egpj\u2066\u2069\u200E\u061C\u2028\u2029"
                                u"\u200B\u200D\uFEFF\u00AD\xDB40\xDC41\xD83Dx\xDC00\uFFF9";

// The same as bytes, with some that are no UTF-8: overlong, a surrogate, beyond the last, cut.
const std::string kHostileBytes =
    "\x1B[31m\x07\x9B"
    "2J\x7F\r\n\xE2\x80\xAEgpj\xE2\x81\xA6\xE2\x80\x8B\xC2\x9B\xC0\x9B\xED\xA0\x80\xF4\x90\x80\x80"
    "\xFE\xE2\x80";

class HostileText : public ProgramRun {
  protected:
    void expect_safe_output(const std::vector<std::string>& arguments, std::size_t error_lines) {
        const RunResult result = run(arguments);
        SCOPED_TRACE(testing::PrintToString(arguments));
        expect_safe(result.out);
        expect_safe(result.error);
        EXPECT_EQ(lines_of(result.error), error_lines) << result.error;
    }

    // Hostile text wherever a presentation has text that the program shows.
    void write_deck(const std::string& name) {
        Deck deck;
        const std::uint32_t web = deck.hyperlink(u"http://a/" + kHostile);
        const std::uint32_t song = deck.sound(record_type::kExternalMidiAudio, u"C:\\" + kHostile);
        const std::uint32_t film = deck.movie(record_type::kExternalAviMovie, u"no\x01such\x01one");
        const std::uint32_t book = deck.ole_link(storage_record(
            ole_storage({{kOleStreamName, ole_stream({{}, file_moniker({kHostileBytes})})}}),
            true));
        deck.external_object(container(0, record_type::kExternalMciMovie, {}));
        deck.add_slide()
            .name(kHostile)
            .shape(Shape().text(Text(u"see " + kHostile).link(web, 0, 30)))
            .shape(Shape().text(
                Text(u"bytes \x1B\x80\x9B\xFF\xE2\x80\xAE").as_bytes().link(web, 0, 14)))
            .shape(Shape().object(song))
            .shape(Shape().object(film))
            .shape(Shape().object(book))
            .shape(Shape().picture(u"..\\" + kHostile));
        deck.properties(PropertyStream()
                            .text(u"MORVANE-LINK-ID", kHostile)
                            .text(u"MORVANE-LINK-ID=4" + kHostile + u"%%", u"no\x01such\x01one")
                            .build());
        deck.write(path(name));
    }
};

TEST_F(HostileText, OfAPresentationIsShownAndNeverSent) {
    write_deck("talk.ppt");
    for (const char* code_page : {"65001", "1252", "932", "936", "949", "950", "1251", "874"}) {
        for (const char* command : {"list", "check"}) {
            SCOPED_TRACE(code_page);
            const RunResult text = run({command, "--code-page", code_page, "talk.ppt"});
            EXPECT_EQ(text.status, 1) << text.error;
            expect_safe(text.out);
            expect_safe(text.error);
            const RunResult json = run({command, "--json", "--code-page", code_page, "talk.ppt"});
            expect_safe(json.out);
            expect_safe(json.error);
            EXPECT_LE(lines_of(json.out), 1U);
        }
    }
    const RunResult listed = run({"list", "talk.ppt"});
    EXPECT_EQ(lines_of(listed.out), 8U) << listed.out;
}

TEST_F(HostileText, JsonKeepsItAsEscapes) {
    write_deck("talk.ppt");
    const Json file = Json::parse(run({"list", "--json", "talk.ppt"}).out);
    EXPECT_EQ(
        file["links"][2]["path"],
        "C:\\\x1B[31m\x1B]0;t\x07\u009B2J\u0090\x7F\x08\r\n\t\u202Egpj\u2066\u2069\u200E\u061C"
        "\u2028\u2029\u200B\u200D\uFEFF\u00AD\U000E0041\uFFFDx\uFFFD\uFFF9");
}

TEST_F(HostileText, OfAPresentationIsSafeInWhatRelinkTells) {
    write_deck("talk.ppt");
    expect_safe_output({"relink", "talk.ppt", "-o", "new.ppt", "--map", "http://a=" + kHostileBytes,
                        "--set", "3=" + kHostileBytes, "--set", "4=" + kHostileBytes, "--set",
                        "5=x" + kHostileBytes},
                       2);
}

TEST_F(HostileText, OfFileNamesIsSafe) {
    const std::string name = kHostileBytes + ".ppt";
    const std::string copy = "new" + name;
    write_deck(name);
    std::ofstream(path("plain" + name)) << "this is no presentation";
    for (const char* command : {"list", "check"}) {
        expect_safe_output({command, name}, 1); // the movie that cannot be read
        expect_safe_output({command, "--json", name}, 1);
        expect_safe_output({command, "--strict", name}, 1);
        expect_safe_output({command, "missing" + name, "plain" + name}, 2);
        expect_safe_output({command, "--code-page", "1252", "missing" + name}, 1);
    }
    expect_safe_output({"relink", name, "-o", copy}, 1);
    expect_safe_output({"relink", name, "-o", name}, 1);
    expect_safe_output({"relink", name, "-o", "none" + kHostileBytes + "/" + copy}, 1);
    expect_safe_output({"relink", "missing" + name, "-o", copy}, 1);
    expect_safe_output({"relink", "Q:\\" + name, "-o", copy}, 1);
    expect_safe_output({"relink", name, "-o", "Q:\\" + copy}, 1);
}

// The second line tells of --help; an argument adds none.
TEST_F(HostileText, OfWrongArgumentsIsSafe) {
    write_deck("talk.ppt");
    const std::string& bad = kHostileBytes;
    const std::vector<std::vector<std::string>> wrong = {
        {bad},
        {"--" + bad},
        {"list", "--" + bad, "talk.ppt"},
        {"list", "-" + bad, "talk.ppt"},
        {"list", "talk.ppt", "--options", bad},
        {"list", "talk.ppt", "--code-page", bad},
        {"list", "talk.ppt", "--json=" + bad},
        {"check", "talk.ppt", "--strict=" + bad},
        {"relink", "talk.ppt", "more" + bad, "-o", "new.ppt"},
        {"relink", "talk.ppt", "-o", "new.ppt", "--set", bad},
        {"relink", "talk.ppt", "-o", "new.ppt", "--set", bad + "=x"},
        {"relink", "talk.ppt", "-o", "new.ppt", "--map", bad},
        {"relink", "talk.ppt", "-o", "new.ppt", "--set-id", "1=" + bad},
        {"relink", "talk.ppt", "-o", "new.ppt", "--target-id", bad}};
    for (const std::vector<std::string>& arguments : wrong) {
        expect_safe_output(arguments, 2);
    }
    expect_safe_output({"list", "talk.ppt", "--drive", bad}, 1);
    expect_safe_output({"relink", "talk.ppt", "-o", "new.ppt", "--code-page", "1252", "--set",
                        "0=\xE4\xB8\xAD" + bad},
                       2);
}

} // namespace
} // namespace pptlinks
