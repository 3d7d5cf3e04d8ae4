// Runs the built program on decks in a folder of the test's own.
#pragma once

#include "tests/support/presentation_builder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <sys/wait.h>
#include <vector>

namespace pptlinks {

struct RunResult {
    int status = -1;
    std::string out;
    std::string error;
};

class ProgramRun : public testing::Test {
  protected:
    ProgramRun() {
        std::string folder = testing::TempDir() + "pptlinks-XXXXXX";
        EXPECT_NE(mkdtemp(folder.data()), nullptr);
        folder_ = folder;
    }
    ~ProgramRun() override { std::filesystem::remove_all(folder_); }

    std::string path(const std::string& name) const { return (folder_ / name).string(); }

    static std::string content(const std::string& file) {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    std::vector<std::string> names_in_folder() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    // In the test's folder, in the plain C locale. With a limit, files cannot grow beyond that many
    // bytes, rounded down to 512.
    RunResult run(const std::vector<std::string>& arguments,
                  std::optional<std::size_t> size_limit = {}) const {
        std::string command = "cd " + quoted(folder_.string()) + " && ";
        if (size_limit) {
            command += "trap '' XFSZ && ulimit -f " + std::to_string(*size_limit / 512) + " && ";
        }
        command += "LC_ALL=C " + quoted(PPTLINKS_PROGRAM);
        for (const std::string& argument : arguments) {
            command += ' ' + quoted(argument);
        }
        const std::string errors = folder_.string() + ".err";
        FILE* const pipe = popen((command + " 2>" + quoted(errors)).c_str(), "r");
        RunResult result;
        char buffer[4096];
        while (const std::size_t count = std::fread(buffer, 1, sizeof buffer, pipe)) {
            result.out.append(buffer, count);
        }
        const int ended = pclose(pipe);
        result.status = WIFEXITED(ended) ? WEXITSTATUS(ended) : -1;
        result.error = content(errors);
        std::filesystem::remove(errors);
        return result;
    }

  private:
    static std::string quoted(const std::string& text) {
        std::string out = "'";
        for (const char c : text) {
            out += c == '\'' ? std::string("'\\''") : std::string(1, c);
        }
        return out + "'";
    }

    std::filesystem::path folder_;
};

} // namespace pptlinks
