// A test that binds ppt.dll by its decorated names, as hosts do, with a folder for its files.
#pragma once

#include "plugin/exports.h"
#include "tests/support/presentation_builder.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <string>

namespace library_test {

inline constexpr bool kIs64Bit = sizeof(void*) == 8;

class Library : public testing::Test {
  protected:
    void SetUp() override { folder_ = make_temporary_folder("library"); }
    void TearDown() override {
        if (terminate_ != nullptr) {
            terminate_(0, 0);
        }
        std::filesystem::remove_all(folder_);
    }

    // Loaded at the first use; null when it was unloaded or is not there.
    static HMODULE& library() {
        static HMODULE loaded = nullptr;
        if (loaded == nullptr) {
            loaded = LoadLibraryA("ppt.dll");
        }
        return loaded;
    }

    static std::filesystem::path log_path() {
        std::array<WCHAR, 1024> program{};
        GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size()));
        return std::filesystem::path(program.data()).replace_filename("PPT.log");
    }

    template <class Function>
    static Function bound(const char* name) {
        const HMODULE loaded = library();
        const FARPROC address = loaded != nullptr ? GetProcAddress(loaded, name) : nullptr;
        EXPECT_NE(address, nullptr) << name << ", error " << GetLastError();
        return reinterpret_cast<Function>(reinterpret_cast<void*>(address));
    }

    void start() {
        terminate_ = bound<decltype(&j_termDLL)>("_j_termDLL@8");
        ASSERT_EQ(bound<decltype(&j_initDLL)>("_j_initDLL@12")(255, 0, "het"), 0);
    }

    std::string path(const char* name) const { return (folder_ / name).string(); }

    static std::int32_t load(const std::string& path) {
        return bound<decltype(&j_loadFile)>("_j_loadFile@8")(path.c_str(), 1);
    }

    // The error parameters with '|' for the separator.
    static std::string error_parameters() {
        const auto get = bound<decltype(&ps_getErrorParamArray)>("_ps_getErrorParamArray@0");
        std::string text;
        for (const WCHAR* unit = get()->text; unit != nullptr && *unit != 0; ++unit) {
            text += *unit == ppt::kErrorParamSeparator ? '|' : static_cast<char>(*unit);
        }
        return text;
    }

    std::filesystem::path folder_;
    decltype(&j_termDLL) terminate_ = nullptr;
};

} // namespace library_test
