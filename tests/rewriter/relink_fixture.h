// Relinks decks and compares the copy with a second deck, described as the first one should have
// become: every byte of the document stream counts.
#pragma once

#include "tests/plugin/plugin_fixture.h"
#include "tests/plugin/stored_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

namespace rewriter_test {

using namespace presentation_builder;

inline std::string narrow(std::u16string_view text) {
    return {text.begin(), text.end()};
}

// The first record of the two streams that differs, as a sentence; empty when they are equal.
inline std::string difference(const Bytes& found, const Bytes& expected) {
    if (found == expected) {
        return {};
    }
    const auto at = static_cast<std::size_t>(
        std::mismatch(found.begin(), found.end(), expected.begin(), expected.end()).first -
        found.begin());
    std::string path;
    std::size_t offset = 0;
    for (bool inside = true; inside && offset + 8 <= expected.size();) {
        const RecordAt record = record_at(expected, offset);
        inside = at < record.end();
        char type[16];
        std::snprintf(type, sizeof type, " %04X", record.type);
        path += inside ? type : "";
        offset =
            inside && record.is_container() && at >= record.body() ? record.body() : record.end();
        inside = !inside || (record.is_container() && at >= record.body());
    }
    return "differs at " + std::to_string(at) + " in" + path + "; sizes " +
           std::to_string(found.size()) + " and " + std::to_string(expected.size());
}

class RelinkTest : public plugin_test::PluginTest {
  protected:
    using NewPaths = std::map<std::int32_t, std::u16string>; // by link index
    using Indexes = std::vector<std::uint32_t>;

    // Relinks `before` and expects the copy's document stream to be that of `after`.
    void expect_relinked(Deck& before, const NewPaths& paths, Deck& after) {
        j_unLoadFile();
        ASSERT_EQ(load(before), 0) << plugin_test::error_params();
        relink_loaded(paths);
        const plugin_test::StoredFile copy(path("out.ppt"));
        EXPECT_EQ(difference(copy.document(), after.document_stream()), "");
        expect_sound_containers(copy.document());
    }

    // The same for a deck that is loaded.
    void relink_loaded(const NewPaths& paths) {
        for (const auto& [index, target] : paths) {
            ASSERT_EQ(j_setLinkFileName(index, ansi(target).c_str(), 0), 0);
        }
        ASSERT_EQ(rewrite("out.ppt"), 0) << plugin_test::error_params();
    }

    static void expect_sound_containers(const Bytes& stream) {
        std::size_t offset = 0;
        while (offset < stream.size()) {
            EXPECT_EQ(structure_faults(stream, offset), std::vector<std::string>{});
            offset = record_at(stream, offset).end();
        }
        EXPECT_EQ(offset, stream.size());
    }

    static std::string ansi(const std::u16string& text) {
        const std::basic_string<WCHAR> wide(text.begin(), text.end());
        std::string out(4 * text.size() + 1, '\0');
        WideCharToMultiByte(CP_ACP, 0, wide.c_str(), -1, out.data(), static_cast<int>(out.size()),
                            nullptr, nullptr);
        return out.c_str();
    }

    static const Indexes& not_written() { return ppt::state().links_not_written; }
};

} // namespace rewriter_test
