// --map: a leading path is replaced whole names at a time.
#include "pptlinks/path_map.h"

#include "tests/pptlinks/code_page_guard.h"

namespace pptlinks {
namespace {

struct Case {
    std::string from;
    std::string to;
    std::string path;
    std::optional<std::string> mapped;
};

std::optional<std::string> map_one(const Case& c) {
    return map_path({{c.from, c.to}}, c.path);
}

TEST(PathMap, ReplacesALeadingPathAtTheEndOfAName) {
    const Case cases[] = {
        {"C:\\old", "D:\\new", "C:\\old\\a.doc", "D:\\new\\a.doc"},
        {"C:\\old", "D:\\new", "C:\\old", "D:\\new"},
        {"C:\\old", "D:\\new", "C:\\older\\a.doc", {}},
        {"C:\\old", "D:\\new", "C:\\ol", {}},
        {"C:\\old", "D:\\new", "D:\\C:\\old", {}},
        {"c:/OLD", "D:\\new", "C:\\old\\Sub/A.DOC", "D:\\new\\Sub/A.DOC"},
        {"C:\\", "D:\\", "C:\\a.doc", "D:\\a.doc"},
        {"C:\\old\\", "D:\\new\\", "C:\\old\\a.doc", "D:\\new\\a.doc"},
        {"C:\\old\\", "D:\\new", "C:\\old", "D:\\new"},
        {"C:\\old", "D:\\", "C:\\old\\a.doc", "D:\\a.doc"},
        {"\\\\srv\\pub", "Z:", "//SRV/pub/a.doc", "Z:/a.doc"},
        {"http://old.example", "https://new.example", "HTTP://old.example/x?y",
         "https://new.example/x?y"},
        {"/", "/mnt", "/a.doc", "/mnt/a.doc"},
        {"/", "/mnt", "a.doc", {}},
        {"/", "/mnt", "", {}},
        {"old.doc", "new.doc", "OLD.DOC", "new.doc"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(map_one(c), c.mapped) << c.from << " on " << c.path;
    }
}

TEST(PathMap, TheFirstEntryThatMatchesCounts) {
    const std::vector<PathMapEntry> entries{{"C:\\a\\b", "X:"}, {"C:\\a", "Y:"}, {"C:\\a", "Z:"}};
    EXPECT_EQ(map_path(entries, "C:\\a\\b\\f"), "X:\\f");
    EXPECT_EQ(map_path(entries, "C:\\a\\c\\f"), "Y:\\c\\f");
}

// 0x83 0x5C is one character whose second byte looks like a separator, 0x83 0x41 one whose second
// byte looks like a letter.
TEST(PathMap, TwoByteCharactersAreWhole) {
    const CodePageGuard page(932);
    EXPECT_EQ(map_one({"C:\\\x83\x5C", "D:", "C:\\\x83\x5C\\f", {}}), "D:\\f");
    EXPECT_EQ(map_one({"C:\\\x83",
                       "D:",
                       "C:\\\x83\x5C"
                       "f",
                       {}}),
              std::nullopt);
    EXPECT_EQ(map_one({"C:\\\x83\x41", "D:", "C:\\\x83\x61\\f", {}}), std::nullopt);
    EXPECT_EQ(map_one({"C:\\a", "D:\\\x83\x5C", "C:\\a\\f", {}}), "D:\\\x83\x5C\\f");
}

} // namespace
} // namespace pptlinks
