// The command line: what is taken, and what is wrong usage.
#include "pptlinks/arguments.h"

#include <gtest/gtest.h>

namespace pptlinks {
namespace {

auto parse(std::vector<const char*> arguments) {
    arguments.insert(arguments.begin(), "pptlinks");
    return parse_arguments(static_cast<int>(arguments.size()), arguments.data());
}

TEST(Arguments, AListing) {
    const auto list = std::get<ListArguments>(
        parse({"list", "--drive", "Z:=/mnt/z", "a.ppt", "--drive", "\\\\srv\\pub=/mnt/pub",
               "--code-page", "1252", "b.ppt", "--json"}));
    EXPECT_EQ(list.files, (std::vector<std::string>{"a.ppt", "b.ppt"}));
    EXPECT_EQ(list.common.drives, (std::vector<std::string>{"Z:=/mnt/z", "\\\\srv\\pub=/mnt/pub"}));
    EXPECT_EQ(list.common.code_page, 1252U);
    EXPECT_EQ(list.common.options, "het");
    EXPECT_TRUE(list.json);
}

TEST(Arguments, ACheck) {
    const auto check =
        std::get<CheckArguments>(parse({"check", "a.ppt", "--json", "--drive", "Z:=/mnt/z"}));
    EXPECT_EQ(check.files, std::vector<std::string>{"a.ppt"});
    EXPECT_EQ(check.common.drives, std::vector<std::string>{"Z:=/mnt/z"});
    EXPECT_TRUE(check.json);
}

TEST(Arguments, ARelinking) {
    const auto relink = std::get<RelinkArguments>(
        parse({"relink", "--set", "3=http://x/?a=b", "in.ppt", "--map", "C:\\a b=D:\\c", "-o",
               "out.ppt", "--set", "0=-x", "--set-id", "4=0", "--target-id", "9999999999999999999",
               "--options", "", "--trust-targets"}));
    EXPECT_EQ(relink.file, "in.ppt");
    EXPECT_EQ(relink.out, "out.ppt");
    ASSERT_EQ(relink.paths.size(), 2U);
    EXPECT_EQ(relink.paths[0].index, 3);
    EXPECT_EQ(relink.paths[0].value, "http://x/?a=b");
    EXPECT_EQ(relink.paths[1].value, "-x");
    ASSERT_EQ(relink.maps.size(), 1U);
    EXPECT_EQ(relink.maps[0].from, "C:\\a b");
    EXPECT_EQ(relink.maps[0].to, "D:\\c");
    EXPECT_EQ(relink.ids.at(0).value, "0");
    EXPECT_EQ(relink.target_id, "9999999999999999999");
    EXPECT_EQ(relink.common.options, "");
    EXPECT_TRUE(relink.trust_targets);
    const auto plain = std::get<RelinkArguments>(parse({"relink", "a", "-o", "b"}));
    EXPECT_EQ(plain.common.options, "t");
    EXPECT_FALSE(plain.trust_targets);
}

TEST(Arguments, WrongUsageIsExplainedAndEndsWithTwo) {
    const std::vector<std::vector<const char*>> wrong = {
        {},
        {"lst", "a.ppt"},
        {"list"},
        {"list", "a.ppt", "--options", "hex"},
        {"list", "a.ppt", "--trust-targets"},
        {"check"},
        {"check", "a.ppt", "-o", "b.ppt"},
        {"list", "a.ppt", "--code-page", "latin"},
        {"list", "a.ppt", "--code-page", "-1"},
        {"relink", "a.ppt"},
        {"relink", "a.ppt", "b.ppt", "-o", "c.ppt"},
        {"relink", "a.ppt", "-o", "b.ppt", "--set", "x=C:\\a"},
        {"relink", "a.ppt", "-o", "b.ppt", "--set", "-1=C:\\a"},
        {"relink", "a.ppt", "-o", "b.ppt", "--set", "99999999999=C:\\a"},
        {"relink", "a.ppt", "-o", "b.ppt", "--set", "1="},
        {"relink", "a.ppt", "-o", "b.ppt", "--map", "C:\\a"},
        {"relink", "a.ppt", "-o", "b.ppt", "--map", "=D:"},
        {"relink", "a.ppt", "-o", "b.ppt", "--set-id", "1=twelve"},
        {"relink", "a.ppt", "-o", "b.ppt", "--set-id", "1=10000000000000000000"},
        {"relink", "a.ppt", "-o", "b.ppt", "--target-id", ""},
    };
    for (const auto& arguments : wrong) {
        const auto parsed = parse(arguments);
        const auto* const result = std::get_if<PrintAndExit>(&parsed);
        ASSERT_NE(result, nullptr) << testing::PrintToString(arguments);
        EXPECT_EQ(result->status, kExitWrongUsage) << testing::PrintToString(arguments);
        EXPECT_FALSE(result->error.empty());
        EXPECT_TRUE(result->out.empty());
    }
}

TEST(Arguments, HelpAndVersionAreNoFailure) {
    for (const auto& arguments : std::vector<std::vector<const char*>>{{"--help"},
                                                                       {"list", "--help"},
                                                                       {"check", "--help"},
                                                                       {"relink", "--help"},
                                                                       {"--version"}}) {
        const auto result = std::get<PrintAndExit>(parse(arguments));
        EXPECT_EQ(result.status, 0);
        EXPECT_FALSE(result.out.empty());
        EXPECT_TRUE(result.error.empty());
    }
}

} // namespace
} // namespace pptlinks
