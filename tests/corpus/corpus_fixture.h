// The presentations that others wrote, and what all tests over them do with the plug-in. The files
// are looked for where PPT_CORPUS says or beside the project; without them the tests are skipped
// and say so.
#pragma once

#include "plugin/link_table.h"
#include "tests/plugin/plugin_fixture.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace corpus_test {

namespace fs = std::filesystem;
using Paths = std::vector<std::string>;

inline std::vector<fs::path> files_in(const char* folder) {
    const char* given = std::getenv("PPT_CORPUS");
    const fs::path corpus = given != nullptr ? given : PPT_DEFAULT_CORPUS;
    std::vector<fs::path> files;
    if (fs::is_directory(corpus / folder)) {
        for (const auto& entry : fs::directory_iterator(corpus / folder)) {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

class Corpus : public plugin_test::PluginTest {
  protected:
    static std::vector<fs::path> readable_files() {
        std::vector<fs::path> files = files_in("real");
        for (const fs::path& made : files_in("made")) {
            if (made.filename() != "a_media_linked.ppt") {
                files.push_back(made);
            }
        }
        return files;
    }

    void load_file(const fs::path& file) {
        ASSERT_EQ(j_loadFile(file.string().c_str(), 3), 0)
            << file << ": " << plugin_test::error_params();
    }

    // Changes every link, and every use of an object alike. Returns the paths that the copy must
    // list.
    Paths change_all(std::string (*change)(const std::string& path)) {
        std::map<std::int32_t, std::string> by_object;
        Paths expected;
        for (std::int32_t i = 0; i < n_getLinkCount(); ++i) {
            const ppt::LinkRecord& record = link(static_cast<std::size_t>(i));
            rewritten_objects_.insert(record.holder_persist_id);
            std::string changed = change(link_path(i));
            if (record.object_list_ordinal >= 0) {
                changed = by_object.try_emplace(record.object_list_ordinal, changed).first->second;
            }
            EXPECT_EQ(j_setLinkFileName(i, changed.c_str(), 0), 0);
            expected.push_back(changed);
        }
        return expected;
    }

    std::set<std::uint32_t> rewritten_objects_; // persist ids that hold links that were changed
};

} // namespace corpus_test
