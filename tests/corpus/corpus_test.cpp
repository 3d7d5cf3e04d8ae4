// Presentations by many versions of the application and by other programs: what is in them is
// listed, and rewriting them changes what was asked and nothing else.
#include "reader/presentation.h"
#include "tests/corpus/corpus_fixture.h"
#include "tests/plugin/stored_file.h"
#include "tests/pptlinks/code_page_guard.h"

namespace {

using namespace ppt;
using namespace corpus_test;
using plugin_test::error_params;
using plugin_test::StoredFile;
using presentation_builder::record_at;
using presentation_builder::RecordAt;

class CorpusTest : public Corpus {
  protected:
    // Everything that is not part of the change keeps its bytes: all other streams, and all objects
    // but the document container and the pages whose links changed.
    void expect_rest_unchanged(const fs::path& before, const std::string& after,
                               bool links_changed) {
        const StoredFile original(before.string());
        const StoredFile copy(path(after));
        for (const auto& [name, data] : original.streams()) {
            const bool rewritten = name == u"PowerPoint Document" || name == u"Current User" ||
                                   name == u"\u0005DocumentSummaryInformation";
            if (!rewritten) {
                EXPECT_EQ(copy.streams().at(name), data);
            }
        }
        expect_objects_unchanged(before, original, copy, path(after), links_changed);
    }

    struct Objects {
        std::map<std::uint32_t, std::uint32_t> offsets; // by persist id
        std::uint32_t document = 0;
    };

    static Objects objects_of(const std::string& file) {
        Objects objects;
        j_unLoadFile();
        EXPECT_EQ(j_loadFile(file.c_str(), 0), 0);
        PersistDirectory& directory = state().presentation->persist_directory();
        for (std::uint32_t id = 1; id <= static_cast<std::uint32_t>(directory.count()); ++id) {
            objects.offsets[id] = directory.n_objectOffset(id);
        }
        objects.document = state().presentation->current_user_edit().document_persist_id;
        j_unLoadFile();
        return objects;
    }

    void expect_objects_unchanged(const fs::path& before, const StoredFile& original,
                                  const StoredFile& copy, const std::string& after,
                                  bool links_changed) {
        const Objects old_objects = objects_of(before.string());
        const Objects new_objects = objects_of(after);
        EXPECT_EQ(old_objects.document, new_objects.document);
        for (const auto& [id, offset] : old_objects.offsets) {
            const bool absent = offset == 0 && new_objects.offsets.at(id) == 0;
            const bool rewritten =
                links_changed && (id == old_objects.document || rewritten_objects_.contains(id));
            if (absent || rewritten) {
                continue;
            }
            const RecordAt old_record = record_at(original.document(), offset);
            const RecordAt new_record = record_at(copy.document(), new_objects.offsets.at(id));
            ASSERT_EQ(old_record.length, new_record.length) << id;
            EXPECT_TRUE(std::equal(
                original.document().begin() + static_cast<std::ptrdiff_t>(old_record.offset),
                original.document().begin() + static_cast<std::ptrdiff_t>(old_record.end()),
                copy.document().begin() + static_cast<std::ptrdiff_t>(new_record.offset)))
                << "object " << id;
        }
    }
};

TEST_F(CorpusTest, LinksAreListedAsAnIndependentReadingFoundThem) {
    const std::map<std::string, int> expected = {
        {"42520.ppt", 19},        {"bug58718_008524.ppt", 4}, {"WithLinks.ppt", 4},
        {"41246-1.ppt", 8},       {"42486.ppt", 1},           {"60003.ppt", 2},
        {"iisd_report.ppt", 1},   {"testPPT_groups.ppt", 1},  {"53446.ppt", 1},
        {"testPPT_2imgs.ppt", 1}, {"a_text_links.ppt", 11},   {"a_picture_linked.ppt", 3},
        {"b_hyperlinks.ppt", 9},  {"b_movies.ppt", 4}};
    const std::vector<fs::path> files = readable_files();
    if (files.empty()) {
        GTEST_SKIP() << "no corpus of real presentations was found";
    }
    for (const fs::path& file : files) {
        load_file(file);
        const auto found = expected.find(file.filename().string());
        EXPECT_EQ(n_getLinkCount(), found == expected.end() ? 0 : found->second) << file;
        for (const std::string& target : link_paths()) {
            EXPECT_NE(target, "") << file;
        }
        j_unLoadFile();
    }
}

// Read from the records by hand: where the external objects lead, in the order in which the pages
// use them, and the words under the ranges. Words count in boxes of their own only: the bodies of
// WithLinks.ppt stand in the slide list, its other link in notes.
TEST_F(CorpusTest, PathsAndDisplayedTextsAreThoseOfTheRecords) {
    using Link = std::pair<std::string, std::string>; // path and displayed text, in UTF-8
    const std::map<std::string, std::vector<Link>> expected = {
        {"a_picture_linked.ppt",
         {{"src/assets/pic.png", ""},
          {"../../C:/Pics/missing.png", ""},
          {"http://127.0.0.1:9/none.png", ""}}},
        {"b_movies.ppt",
         {{"C:\\Media\\film.avi", ""},
          {"..\\media\\clip.avi", ""},
          {"\\\\server\\share\\film.avi", ""},
          {"C:\\Media\\film.mpg", ""}}},
        {"a_text_links.ppt",
         {{"http://example.com/page?a=1&b=2#frag", "http"},
          {"https://example.com/", "https"},
          {"mailto:nobody@example.com?subject=hi", "mailto"},
          {"file:///tmp/deck/src/assets/target.doc", "relative"},
          {"file:///tmp/deck/other/target.xls", "parent"},
          {"file:///C:/Data/Reports/target.xls", "absolute"},
          {"file://server/share/dir/target.doc", "unc"},
          {"file:///tmp/deck/src/%5C%5Cserver%5Cshare%5Cdir%5Ctarget.doc", "backslashunc"},
          {"file:///tmp/deck/src/assets/B\u00FCcher-\u6587\u66F8.doc", "umlaut"},
          {"file:///C:/Data/deck.ppt#Slide%203", "frag"},
          {"ftp://ftp.example.com/f.txt", "ftp"}}},
        {"testPPT_2imgs.ppt",
         {{"C:\\Documents and Settings\\Nick\\Desktop\\Embeded\\empty.mp3", ""}}},
        {"testPPT_groups.ppt", {{"http://tika.apache.org/", "tika link"}}},
        {"WithLinks.ppt",
         {{"http://jakarta.apache.org/poi/", ""},
          {"http://slashdot.org/", ""},
          {"http://jakarta.apache.org/poi/hssf/", ""},
          {"http://jakarta.apache.org/hslf/", ""}}}};
    const std::vector<fs::path> files = readable_files();
    if (files.empty()) {
        GTEST_SKIP() << "no corpus of real presentations was found";
    }
    const CodePageGuard guard(65001);
    std::size_t compared = 0;
    for (const fs::path& file : files) {
        const auto links = expected.find(file.filename().string());
        if (links == expected.end()) {
            continue;
        }
        load_file(file);
        std::vector<Link> found;
        for (std::int32_t i = 0; i < n_getLinkCount(); ++i) {
            found.emplace_back(link_path(i), link_text(i));
        }
        EXPECT_EQ(found, links->second) << file;
        ++compared;
    }
    EXPECT_EQ(compared, expected.size()) << "files are missing";
}

TEST_F(CorpusTest, ARewriteWithoutChangesKeepsEverything) {
    const std::vector<fs::path> files = readable_files();
    if (files.empty()) {
        GTEST_SKIP() << "no corpus of real presentations was found";
    }
    for (const fs::path& file : files) {
        SCOPED_TRACE(file.string());
        load_file(file);
        const Paths before = link_paths();
        ASSERT_EQ(rewrite("once.ppt"), 0) << error_params();
        ASSERT_EQ(load_again("once.ppt"), 0) << error_params();
        EXPECT_EQ(link_paths(), before);
        ASSERT_EQ(rewrite("twice.ppt"), 0) << error_params();
        expect_rest_unchanged(file, "twice.ppt", false);
        EXPECT_EQ(StoredFile(path("twice.ppt")).document(),
                  StoredFile(path("once.ppt")).document());
    }
}

TEST_F(CorpusTest, EveryPathCanBecomeShorterEqualOrLonger) {
    const std::vector<fs::path> files = readable_files();
    if (files.empty()) {
        GTEST_SKIP() << "no corpus of real presentations was found";
    }
    struct Change {
        const char* name;
        std::string (*change)(const std::string& path);
    };
    const Change changes[] = {
        {"shorter", [](const std::string& path) { return path.substr(0, 3); }},
        {"equal", [](const std::string& path) { return std::string(path).replace(0, 1, 1, '~'); }},
        {"longer", [](const std::string& path) { return path + "/a much longer ending.html"; }}};
    for (const fs::path& file : files) {
        for (const Change& change : changes) {
            rewritten_objects_.clear();
            SCOPED_TRACE(file.string() + ", " + change.name);
            load_file(file);
            const Paths expected = change_all(change.change);
            ASSERT_EQ(rewrite("once.ppt"), 0) << error_params();
            ASSERT_EQ(load_again("once.ppt"), 0) << error_params();
            EXPECT_EQ(link_paths(), expected);
            const Paths again = change_all([](const std::string& path) { return path + "2"; });
            ASSERT_EQ(rewrite("twice.ppt"), 0) << error_params();
            ASSERT_EQ(load_again("twice.ppt"), 0) << error_params();
            EXPECT_EQ(link_paths(), again);
            expect_rest_unchanged(file, "twice.ppt", !again.empty());
        }
    }
}

// The movies that another program wrote without a video container inside.
TEST_F(CorpusTest, KeepingGoingLoadsAFileWhoseMoviesAreOfAnotherForm) {
    const std::vector<fs::path> files = files_in("made");
    const auto file = std::find_if(files.begin(), files.end(), [](const fs::path& made) {
        return made.filename() == "a_media_linked.ppt";
    });
    if (file == files.end()) {
        GTEST_SKIP() << "no corpus of presentations with linked movies was found";
    }
    EXPECT_EQ(j_loadFile(file->string().c_str(), 3), 8140);
    start("hetk");
    load_file(*file);
    EXPECT_EQ(n_getLinkCount(), 0);
    std::string told = "7";
    for (int number = 2; number <= 8; ++number) {
        told += "|8140|movie|" + std::to_string(number);
    }
    EXPECT_EQ(error_params(), told);
    ASSERT_EQ(rewrite("copy.ppt"), 0) << error_params();
    ASSERT_EQ(load_again("copy.ppt"), 0);
    EXPECT_EQ(error_params(), told);
    expect_rest_unchanged(*file, "copy.ppt", false);
}

TEST_F(CorpusTest, NothingIsLeftOutOfFilesThatCanBeRead) {
    const std::vector<fs::path> files = readable_files();
    if (files.empty()) {
        GTEST_SKIP() << "no corpus of real presentations was found";
    }
    for (const fs::path& file : files) {
        load_file(file);
        const Paths paths = link_paths();
        j_unLoadFile();
        start("hetk");
        load_file(file);
        EXPECT_EQ(error_params(), "0") << file;
        EXPECT_EQ(link_paths(), paths) << file;
        j_unLoadFile();
        start("het");
    }
}

// Whether the damage is to the compound file itself, and the system's own storages notice it
// elsewhere than ours.
bool system_decides(const std::string& name) {
#if defined(_WIN32)
    return name == "fuzzed-4.ppt" || name == "fuzzed-7.ppt";
#else
    return name.empty();
#endif
}

// Their damage is that of the whole file: keeping going ends in the same status.
TEST_F(CorpusTest, DamagedFilesEndInTheirStatus) {
    const std::map<std::string, std::int32_t> others = {{"user-edit-ring.ppt", 8140},
                                                        {"fuzzed-3.ppt", 8140},
                                                        {"fuzzed-5.ppt", 8140},
                                                        {"fuzzed-6.ppt", 7295}};
    const std::vector<fs::path> files = files_in("damaged");
    if (files.empty()) {
        GTEST_SKIP() << "no corpus of damaged presentations was found";
    }
    for (const fs::path& file : files) {
        const std::string name = file.filename().string();
        const auto other = others.find(name);
        const std::int32_t expected = other == others.end() ? 6400 : other->second;
        for (const char* options : {"het", "hetk"}) {
            start(options);
            const std::int32_t status = j_loadFile(file.string().c_str(), 3);
            EXPECT_TRUE(status == expected || (system_decides(name) && status != 0))
                << file << ' ' << options << ' ' << status;
            EXPECT_EQ(n_getLinkCount(), 0) << file;
        }
    }
}

} // namespace
