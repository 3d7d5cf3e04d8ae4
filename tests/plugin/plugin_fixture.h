// Drives the plug-in as a host does, on decks made by the builder, in a folder of its own.
#pragma once

#include "hostapi/hostapi.h"
#include "plugin/error_params.h"
#include "plugin/exports.h"
#include "plugin/state.h"
#include "tests/support/presentation_builder.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace plugin_test {

inline id64 id(std::uint32_t value) {
    return {{value, 0}};
}

// The error parameters with '|' for the separator.
inline std::string error_params() {
    const ppt::ErrorParamArray* params = ps_getErrorParamArray();
    std::string text;
    for (const WCHAR* unit = params->text; unit != nullptr && *unit != 0; ++unit) {
        text += *unit == 1 ? '|' : static_cast<char>(*unit);
    }
    return text;
}

class PluginTest : public testing::Test {
  protected:
    void SetUp() override {
        folder_ = make_temporary_folder("ppt");
        start("het");
    }

    void TearDown() override {
        j_unLoadFile();
        j_termDLL(0, 0);
        remove_folder(folder_);
    }

    static void start(const char* options) { ASSERT_EQ(j_initDLL(255, 0, options), 0); }

    std::string path(const std::string& name) const { return (folder_ / name).string(); }

    std::string bytes_of(const std::string& name) const {
        std::ifstream file(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    std::int32_t load(presentation_builder::Deck& deck, std::int32_t flags = 3,
                      const std::string& name = "deck.ppt") {
        deck.write(path(name));
        return j_loadFile(path(name).c_str(), flags);
    }

    std::int32_t load_again(const std::string& name, std::int32_t flags = 3) {
        return j_loadFile(path(name).c_str(), flags);
    }

    std::int32_t rewrite(const std::string& name, std::int32_t flags = 3) {
        std::string destination = path(name);
        return j_rewriteFile(destination.data(), flags);
    }

    static std::string link_path(std::int32_t index) {
        char buffer[1024] = "";
        EXPECT_EQ(j_getLinkFileName(index, 0, buffer), 0);
        return buffer;
    }

    static std::string link_text(std::int32_t index) {
        char buffer[1024] = "";
        EXPECT_EQ(j_getHyperlinkText(index, buffer), 0);
        return buffer;
    }

    static std::uint32_t link_id(std::int32_t index) {
        id64 found{};
        EXPECT_EQ(j_getLinkId(index, 0, &found), 0);
        return found.word[0];
    }

    static std::vector<std::string> link_paths() {
        std::vector<std::string> paths;
        for (std::int32_t i = 0; i < n_getLinkCount(); ++i) {
            paths.push_back(link_path(i));
        }
        return paths;
    }

    static const ppt::LinkRecord& link(std::size_t index) {
        return ppt::state().links.links().at(index);
    }

    // The lines of the trace log from `first` on, without their CR LF.
    static std::vector<std::string> log_lines(std::size_t first = 0) {
        std::fflush(nullptr);
        char program[1024] = "";
        GetModuleFileNameA(nullptr, program, sizeof program);
        std::ifstream file(std::filesystem::path(program).parent_path() / "PPT.log",
                           std::ios::binary);
        std::vector<std::string> lines;
        for (std::string line; std::getline(file, line);) {
            EXPECT_TRUE(line.ends_with('\r')) << line;
            lines.push_back(line.substr(0, line.size() - 1));
        }
        lines.erase(lines.begin(),
                    lines.begin() + static_cast<std::ptrdiff_t>(std::min(first, lines.size())));
        return lines;
    }

    std::filesystem::path folder_;
};

} // namespace plugin_test
