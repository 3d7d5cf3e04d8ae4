// Every failure becomes one sentence that names the file and says what to do.
#include "pptlinks/messages.h"

#include "plugin/status.h"

#include <gtest/gtest.h>

namespace pptlinks {
namespace {

using namespace ppt::status;

const FilesAtWork kFiles{"talk.ppt", "moved.ppt"};

std::string said(std::int32_t status, std::vector<WideString> parameters = {},
                 bool while_rewriting = false) {
    StatusFailure failure(status, std::move(parameters));
    failure.while_rewriting = while_rewriting;
    return sentence(failure, kFiles);
}

bool is_sentence(const std::string& text, const std::string& file) {
    return text.starts_with("pptlinks: " + file + ": ") && text.ends_with(").") &&
           text.find("; ") != std::string::npos && text.find("  ") == std::string::npos &&
           text.find_first_of("{}[]\n") == std::string::npos;
}

TEST(Messages, EveryStatusHasASentenceThatNamesItsFile) {
    constexpr std::int32_t kAll[] = {
        kIsDevice, kIsFolder, kNameNotUtf8, 3000, 5100, 5200, 5400, 5500, 5650, 5660, 5670,
        5700,      6000,      6100,         6200, 6300, 6400, 6505, 7130, 7140, 7145, 7155,
        7160,      7180,      7280,         7295, 7510, 7520, 7530, 7550, 7560, 7570, 7580,
        7585,      7590,      8000,         8140, 8250, 8300, 8350, 8800, 8900, 9000};
    ASSERT_EQ(message_table().size(), std::size(kAll));
    for (std::size_t i = 0; i < std::size(kAll); ++i) {
        const Message& row = message_table()[i];
        EXPECT_EQ(row.status, kAll[i]);
        const std::string copy = row.culprit == Culprit::copy ? "moved.ppt" : "talk.ppt";
        for (const std::vector<WideString>& parameters :
             {std::vector<WideString>{},
              {WIDE("one")},
              {WIDE("one"), WIDE("two")},
              {WIDE("one"), WIDE("two"), WIDE("three")},
              {WIDE("0"), WIDE("20"), WIDE("The reason.\r\n")}}) {
            EXPECT_TRUE(is_sentence(said(kAll[i], parameters), "talk.ppt"))
                << said(kAll[i], parameters);
            EXPECT_TRUE(is_sentence(said(kAll[i], parameters, true), copy))
                << said(kAll[i], parameters, true);
        }
    }
    EXPECT_TRUE(is_sentence(said(4711), "talk.ppt"));
}

TEST(Messages, ParametersAppearWhereTheyHelp) {
    EXPECT_NE(said(kIndexOutOfRange, {WIDE("7"), WIDE("3")}).find("number 7, only 3 links"),
              std::string::npos);
    EXPECT_NE(
        said(kVersionAboveCeiling, {WIDE("9"), WIDE("3")}).find("version 9 is above 3, the newest"),
        std::string::npos);
    EXPECT_NE(said(kShortRead, {WIDE("/x"), WIDE("4"), WIDE("8")}).find("(4 of 8 bytes"),
              std::string::npos);
    EXPECT_NE(said(kSystemError, {WIDE("0"), WIDE("6"), WIDE("The handle is invalid.\r\n")})
                  .find("an error (The handle is invalid); "),
              std::string::npos);
    EXPECT_NE(said(kSystemError, {WIDE("1"), WIDE("80040200"), WIDE("")}).find("(error 80040200)"),
              std::string::npos);
    // The disk of a path without a drive letter has no name.
    EXPECT_NE(said(kDiskFull, {WIDE(""), WIDE("0")}).find("the disk is full"), std::string::npos);
    // A path that looks like the flag of a system error is still a path.
    EXPECT_NE(said(kAccessDenied, {WIDE("1"), WIDE("mary")}).find("to user mary"),
              std::string::npos);
}

TEST(Messages, NothingInThemReachesTheTerminalRaw) {
    const std::string text =
        sentence(StatusFailure(kElementMissing, {WIDE("/x"), WIDE("\x1B[2J\u202E")}),
                 {"a\x1B[31m\n.ppt", {}});
    EXPECT_NE(text.find("a\\x1B[31m\\x0A.ppt"), std::string::npos) << text;
    EXPECT_NE(text.find("\"\\x1B[2J<U+202E>\""), std::string::npos) << text;
}

} // namespace
} // namespace pptlinks
