// Memory blocks, message texts, the user and the executable, COM's counter.
#include "platform/posix/kernel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <initializer_list>
#include <string>

namespace {

std::string message(DWORD code, DWORD size = 400) {
    char buffer[400] = "";
    SetLastError(NO_ERROR);
    const DWORD length = FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                                        nullptr, code, 1033, buffer, size, nullptr);
    return {buffer, length};
}

TEST(GlobalMemory, GrowsUnderItsHandleAndIsAlwaysZeroed) {
    const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, 100);
    ASSERT_NE(memory, nullptr);
    const auto fill = [&](int value) {
        std::memset(GlobalLock(memory), value, GlobalSize(memory));
        GlobalUnlock(memory);
    };
    const auto is_zero = [&](std::size_t from) {
        const auto* const data = static_cast<const std::uint8_t*>(GlobalLock(memory));
        const bool zero = std::all_of(data + from, data + GlobalSize(memory),
                                      [](std::uint8_t byte) { return byte == 0; });
        GlobalUnlock(memory);
        return zero;
    };
    EXPECT_TRUE(is_zero(0));
    fill(0xAA);
    EXPECT_EQ(GlobalReAlloc(memory, 100000, GMEM_MOVEABLE), memory);
    EXPECT_EQ(GlobalSize(memory), 100000u);
    EXPECT_TRUE(is_zero(100));
    fill(0xAA);
    GlobalReAlloc(memory, 10, GMEM_MOVEABLE);
    GlobalReAlloc(memory, 5000, GMEM_MOVEABLE);
    EXPECT_TRUE(is_zero(10));
    EXPECT_EQ(GlobalFree(memory), nullptr);
}

TEST(GlobalMemory, LocksAreCounted) {
    const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, 1);
    GlobalLock(memory);
    GlobalLock(memory);
    EXPECT_TRUE(GlobalUnlock(memory));
    EXPECT_FALSE(GlobalUnlock(memory));
    EXPECT_EQ(GetLastError(), NO_ERROR);
    EXPECT_FALSE(GlobalUnlock(memory));
    EXPECT_EQ(GetLastError(), ERROR_NOT_LOCKED);
    GlobalFree(memory);
}

TEST(GlobalMemory, AnEmptyBlockHasAHandleButNoBytes) {
    const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, 0);
    ASSERT_NE(memory, nullptr);
    EXPECT_EQ(GlobalSize(memory), 0u);
    EXPECT_EQ(GlobalLock(memory), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_DISCARDED);
    GlobalFree(memory);
    EXPECT_EQ(GlobalLock(nullptr), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
}

TEST(GlobalMemory, TheMachineHasMemory) {
    MEMORYSTATUS status;
    GlobalMemoryStatus(&status);
    EXPECT_GT(status.dwAvailPhys, 0u);
    EXPECT_LE(status.dwAvailPhys, status.dwTotalPhys);
    EXPECT_LE(status.dwMemoryLoad, 100u);
}

TEST(Messages, EveryCodeThatStatusCodesComeFromHasAText) {
    for (const DWORD code : std::initializer_list<DWORD>{
             1,   2,   3,   4,   5,   6,   7,   8,   9,   10,  11,  12,   13,   14,
             15,  16,  17,  18,  19,  20,  21,  22,  23,  24,  25,  26,   27,   28,
             29,  30,  31,  32,  33,  34,  36,  38,  39,  53,  65,  67,   80,   82,
             83,  87,  89,  108, 109, 110, 112, 114, 122, 123, 128, 129,  130,  131,
             132, 145, 161, 164, 167, 183, 188, 195, 202, 206, 215, 1004, 1113, 1816}) {
        EXPECT_NE(message(code), "") << code;
        EXPECT_EQ(message(0x80070000 + code), message(code)) << code;
    }
    for (const DWORD code : {0x01u, 0x02u, 0x04u, 0x05u, 0x08u, 0x1Du, 0x1Eu, 0x20u, 0x21u, 0x50u,
                             0x70u, 0xFCu, 0xFFu, 0x103u}) {
        const std::string text = message(0x80030000 + code);
        ASSERT_GT(text.size(), 2u) << code;
        EXPECT_EQ(text.substr(text.size() - 2), "\r\n") << code;
    }
    EXPECT_NE(message(0x80004005), message(5));
}

TEST(Messages, WhatHasNoTextFails) {
    EXPECT_EQ(message(0x80040200), "");
    EXPECT_EQ(GetLastError(), ERROR_MR_MID_NOT_FOUND);
    EXPECT_EQ(message(2, 5), "");
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    const std::string text = message(2);
    EXPECT_EQ(message(2, static_cast<DWORD>(text.size())), "");
    EXPECT_EQ(message(2, static_cast<DWORD>(text.size() + 1)), text);
}

TEST(System, NamesTheUserByTheBufferRules) {
    char buffer[UNLEN + 1];
    DWORD size = sizeof buffer;
    ASSERT_TRUE(GetUserNameA(buffer, &size));
    const std::string name = buffer;
    EXPECT_EQ(size, name.size() + 1);
    size = static_cast<DWORD>(name.size());
    EXPECT_FALSE(GetUserNameA(buffer, &size));
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(size, name.size() + 1);
}

TEST(System, NamesTheExecutable) {
    char buffer[4096];
    const DWORD length = GetModuleFileNameA(nullptr, buffer, sizeof buffer);
    const std::string path(buffer, length);
    EXPECT_EQ(path, std::filesystem::read_symlink("/proc/self/exe"));
    EXPECT_EQ(GetModuleFileNameA(nullptr, buffer, 4), 4u);
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(buffer, path.substr(0, 3));
}

TEST(System, OnlyTheFirstInitializationIsTheFirst) {
    EXPECT_EQ(CoInitialize(nullptr), S_OK);
    EXPECT_EQ(CoInitialize(nullptr), S_FALSE);
    CoUninitialize();
    CoUninitialize();
    EXPECT_EQ(CoInitialize(nullptr), S_OK);
    CoUninitialize();
}

} // namespace
