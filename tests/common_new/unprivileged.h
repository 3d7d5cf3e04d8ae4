// For tests of what an ordinary user may not do: gives up the rights of root for its lifetime.
#pragma once

#include <gtest/gtest.h>

#include <unistd.h>

class Unprivileged {
  public:
    Unprivileged()
        : before_(geteuid()) {
        if (before_ == 0) {
            EXPECT_EQ(seteuid(kNobody), 0);
        }
    }
    Unprivileged(const Unprivileged&) = delete;
    Unprivileged& operator=(const Unprivileged&) = delete;
    ~Unprivileged() { EXPECT_EQ(seteuid(before_), 0); }

  private:
    static constexpr uid_t kNobody = 65534;
    uid_t before_;
};
