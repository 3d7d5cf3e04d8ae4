// What is printed: a table that no file can disturb, and JSON that every reader takes.
#include "pptlinks/json_output.h"
#include "pptlinks/terminal_text.h"
#include "pptlinks/text_encoding.h"
#include "pptlinks/text_table.h"

#include "tests/pptlinks/code_page_guard.h"

#include <nlohmann/json.hpp>

namespace pptlinks {
namespace {

using Json = nlohmann::json;

TEST(TerminalText, ShowsWhatWouldActOnTheTerminal) {
    const std::pair<WideString, std::string> cases[] = {
        {WIDE("C:\\a b.doc"), "C:\\a b.doc"},
        {WIDE("\x1B[2J\x07"), "\\x1B[2J\\x07"},
        {WideString(WIDE("\0\x7F\t"), 3), "\\x00\\x7F\\x09"},
        {WIDE("\x9B"
              "31m\x85"),
         "<U+009B>31m<U+0085>"},
        {WIDE("cod.\u202Eexe\u2066"), "cod.<U+202E>exe<U+2066>"},
        {WIDE("a\u2028b\uFEFF"), "a<U+2028>b<U+FEFF>"},
        {WIDE("\xD83D\xDE00 \u00E9\u4E2D"), "\U0001F600 \u00E9\u4E2D"},
        {WIDE("\xD83Dx\xDC00"), "<U+D83D>x<U+DC00>"},
        {WIDE("\xDB40\xDC41"), "<U+E0041>"},
        {WIDE("a\u200Db\uFE0F \u200C"), "a<U+200D>b<U+FE0F> <U+200C>"},
        {WIDE("\u0646\u200C\u0645 \u2764\uFE0F\u200D"), "\u0646\u200C\u0645 \u2764\uFE0F<U+200D>"},
        {WIDE("\u3164\u115F\uFFA0\uFDD0\xD83F\xDFFE"), "<U+3164><U+115F><U+FFA0><U+FDD0><U+1FFFE>"},
    };
    for (const auto& [text, shown] : cases) {
        EXPECT_EQ(terminal_text(text), shown);
    }
    EXPECT_EQ(terminal_text_from_utf8("a\xFF\xC3"), "a\uFFFD\uFFFD");
    EXPECT_EQ(terminal_text_from_utf8("one\ntwo"), "one\\x0Atwo");
}

using Row = std::vector<WideView>;

std::string table_of(const std::vector<TableColumn>& columns, const std::vector<Row>& rows) {
    TextTable table(columns);
    const auto add = [&](const Row& row) {
        for (const WideView cell : row) {
            table.add(cell);
        }
    };
    std::string out;
    for (const Row& row : rows) {
        add(row);
        table.measure_row();
    }
    table.append_titles_to(out);
    for (const Row& row : rows) {
        add(row);
        table.append_row_to(out);
    }
    return out;
}

TEST(TextTable, ColumnsLineUpByWhatIsSeen) {
    EXPECT_EQ(
        table_of({{"N", true}, {"PATH"}, {"TEXT"}}, {{WIDE("1"), WIDE("\u4E2D\u6587"), WIDE("x")},
                                                     {WIDE("10"), WIDE("a\u0301\x1B"), WIDE("")}}),
        " N  PATH   TEXT\n"
        " 1  \u4E2D\u6587   x\n"
        "10  a\u0301\\x1B\n");
}

TEST(TextTable, OneLongCellDoesNotWidenTheOthers) {
    const WideString wide(200, WIDE('x'));
    const std::string out = table_of({{"A"}, {"B"}}, {{wide, WIDE("1")}, {WIDE("y"), WIDE("2")}});
    EXPECT_NE(out.find("y" + std::string(61, ' ') + "2\n"), std::string::npos);
}

std::string json_of(const std::string& file, const std::vector<Link>& links) {
    std::string out;
    append_json_head(out, {file, 0, {}, std::nullopt});
    for (std::size_t i = 0; i < links.size(); ++i) {
        append_json_link(out, links[i], i, nullptr);
    }
    append_json_end(out);
    return out;
}

Link hostile_link() {
    Link link;
    for (int byte = 1; byte < 256; ++byte) {
        link.path.push_back(static_cast<char>(byte));
    }
    link.text = "\xED\xA0\x80\xF4\x90\x80\x80\x81";
    link.page = "slide 1";
    link.id = "18446744073709551615";
    return link;
}

TEST(JsonOutput, IsValidOnOneLineForAnyBytesInAnyCodePage) {
    for (const UINT code_page : {65001U, 1252U, 932U, 936U, 949U, 950U, 1255U}) {
        const CodePageGuard page(code_page);
        const std::string out = json_of("\xFF\"\\\n.ppt", {hostile_link(), {}});
        EXPECT_EQ(out.find('\n'), out.size() - 1) << code_page;
        const Json parsed = Json::parse(out); // refuses what is not UTF-8
        ASSERT_EQ(parsed["links"].size(), 2U);
        EXPECT_EQ(parsed["links"][0]["id"], "18446744073709551615");
        EXPECT_TRUE(parsed["links"][1]["id"].is_null());
        EXPECT_TRUE(parsed["target_file_id"].is_null());
    }
}

TEST(JsonOutput, TextsAreDecodedFromTheCodePage) {
    const CodePageGuard page(1252);
    Link link;
    link.path = "C:\\caf\xE9\\\x80.doc";
    EXPECT_EQ(Json::parse(json_of("a.ppt", {link}))["links"][0]["path"],
              "C:\\caf\u00E9\\\u20AC.doc");
}

TEST(TextEncoding, ArgumentsThatTheCodePageCannotHoldAreNoticed) {
    const CodePageGuard page(1252);
    EXPECT_EQ(ansi_from_utf8("caf\u00E9"), "caf\xE9");
    EXPECT_EQ(ansi_from_utf8("\u4E2D"), std::nullopt);
    EXPECT_EQ(ansi_from_utf8("?"), "?");
}

TEST(TextEncoding, NamesThatAreNotTextPassInUtf8) {
    const CodePageGuard page(65001);
    EXPECT_EQ(ansi_from_utf8("\xFF.ppt"), "\xFF.ppt");
}

} // namespace
} // namespace pptlinks
