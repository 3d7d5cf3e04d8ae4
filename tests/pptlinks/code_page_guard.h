// Chooses the ANSI code page for the length of a test.
#pragma once

#include "platform/platform.h"
#include "platform/posix/settings.h"

#include <gtest/gtest.h>

class CodePageGuard {
  public:
    explicit CodePageGuard(UINT code_page)
        : before_(GetACP()) {
        EXPECT_TRUE(platform::set_ansi_code_page(code_page));
    }
    CodePageGuard(const CodePageGuard&) = delete;
    CodePageGuard& operator=(const CodePageGuard&) = delete;
    ~CodePageGuard() { platform::set_ansi_code_page(before_); }

  private:
    UINT before_;
};
