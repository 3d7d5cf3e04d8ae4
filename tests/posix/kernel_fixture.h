// A temporary folder that stands for drive Z: and for the share \\srv\pub, and the code page UTF-8,
// for tests of the calls that take paths. The process's current directory is put back afterwards.
#pragma once

#include "platform/posix/kernel.h"
#include "platform/posix/settings.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

namespace posix_test {

class KernelFixture : public testing::Test {
  protected:
    void SetUp() override {
        std::string name = testing::TempDir() + "kernel-XXXXXX";
        ASSERT_NE(mkdtemp(name.data()), nullptr);
        folder_ = name;
        start_ = std::filesystem::current_path();
        ASSERT_TRUE(platform::set_ansi_code_page(CP_UTF8));
        ASSERT_TRUE(platform::map_drive("Z:=" + folder_));
        ASSERT_TRUE(platform::map_drive("\\\\srv\\pub=" + folder_));
        SetLastError(NO_ERROR);
    }

    void TearDown() override {
        platform::set_ansi_code_page(CP_UTF8);
        SetCurrentDirectoryA(start_.c_str());
        std::filesystem::remove_all(folder_);
    }

    // The native path of a name in the folder.
    std::string at(const std::string& name) const { return folder_ + "/" + name; }

    void make_folder(const std::string& name) { std::filesystem::create_directories(at(name)); }

    void make_file(const std::string& name, const std::string& content = "content") {
        std::ofstream(at(name), std::ios::binary) << content;
    }

    std::string content_of(const std::string& name) const {
        std::ifstream file(at(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    std::string folder_;
    std::filesystem::path start_;
};

inline std::string full_path(const std::string& path) {
    char buffer[1024] = "";
    const DWORD length = GetFullPathNameA(path.c_str(), sizeof buffer, buffer, nullptr);
    EXPECT_EQ(length, std::string(buffer).size());
    return buffer;
}

inline std::string current_directory() {
    char buffer[1024] = "";
    GetCurrentDirectoryA(sizeof buffer, buffer);
    return buffer;
}

} // namespace posix_test
