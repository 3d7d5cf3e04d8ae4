// Runs what the program is made of, within this process, on decks in a folder of the test's own.
#pragma once

#include "pptlinks/program.h"
#include "tests/pptlinks/code_page_guard.h"
#include "tests/support/presentation_builder.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace pptlinks {

struct RunResult {
    int status = -1; // the exit status; -1 when a signal ended the process
    std::string out;
    std::string error;
};

class ProgramRun : public testing::Test {
  protected:
    ~ProgramRun() override { remove_folder(folder_); }

    std::string path(const std::string& name) const { return (folder_ / name).string(); }

    static std::string content(const std::string& file) {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    std::vector<std::string> names_in_folder() const { return names_in(""); }

    std::vector<std::string> names_in(const std::string& folder) const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder_ / folder)) {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    // In the test's folder and, but on Windows, where it is the system's, with the code page that a
    // plain locale has.
    RunResult run(const std::vector<std::string>& arguments) const {
#if !defined(_WIN32)
        const CodePageGuard code_page(CP_UTF8);
#endif
        std::vector<const char*> argv{"pptlinks"};
        for (const std::string& argument : arguments) {
            argv.push_back(argument.c_str());
        }
        const std::filesystem::path directory = std::filesystem::current_path();
        std::filesystem::current_path(folder_);
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        RunResult result;
        result.status = run_program(static_cast<int>(argv.size()), argv.data());
        result.out = testing::internal::GetCapturedStdout();
        result.error = testing::internal::GetCapturedStderr();
        std::filesystem::current_path(directory);
        return result;
    }

    const std::filesystem::path folder_ = make_temporary_folder("pptlinks");
};

} // namespace pptlinks
