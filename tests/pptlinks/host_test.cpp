// The stand-in for the host library.
#include "hostapi/hostapi.h"

#include "tests/support/presentation_builder.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>

namespace {

std::string round_trip(const char* text) {
    id64 id{{1, 1}};
    v_id64FromStr(&id, text);
    char out[32];
    v_id64ToStr(&id, out);
    return out;
}

TEST(HostIds, AreDecimalNumbersFollowedByAnything) {
    const std::pair<const char*, std::string> cases[] = {
        {"5", "5"},
        {"4294967296%%", "4294967296"},
        {"12!Sheet1!R1C1%%", "12"},
        {"18446744073709551615", "18446744073709551615"},
        {"18446744073709551616", "0"},
        {"", "0"},
        {"x1", "0"},
        {"-1", "0"},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(round_trip(text), expected) << text;
    }
}

TEST(HostIds, OnlyZeroIsClear) {
    id64 id{{7, 0}};
    id64 copy{};
    v_id64Move(&copy, &id);
    EXPECT_EQ(b_id64IsClear(&copy), 0);
    id = {{0, 7}};
    EXPECT_EQ(b_id64IsClear(&id), 0);
    v_id64Set(&id, 1);
    EXPECT_EQ(b_id64IsClear(&id), 1);
}

class HostVersion : public testing::Test {
  protected:
    ComPtr<IStorage> open(presentation_builder::Deck& deck) {
        path_ = testing::TempDir() + "host_version.ppt";
        deck.write(path_);
        const std::basic_string<WCHAR> wide(path_.begin(), path_.end());
        ComPtr<IStorage> root;
        EXPECT_EQ(StgOpenStorage(wide.c_str(), nullptr, STGM_READ | STGM_SHARE_DENY_WRITE, nullptr,
                                 0, root.put()),
                  S_OK);
        return root;
    }
    void TearDown() override { std::filesystem::remove(path_); }

  private:
    std::string path_;
};

TEST_F(HostVersion, IsThatOfTheFileAndTheStreamIsFreeAfterwards) {
    presentation_builder::Deck deck;
    deck.add_slide();
    const ComPtr<IStorage> root = open(deck);
    EXPECT_EQ(j_getPowerPointVersion(root.get()), 3);
    ComPtr<IStream> current_user;
    EXPECT_EQ(root->OpenStream(WIDE("Current User"), nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, 0,
                               current_user.put()),
              S_OK);
}

TEST_F(HostVersion, IsZeroWhenTheFileDoesNotTell) {
    presentation_builder::Deck deck;
    deck.replace_current_user(bytes::Bytes(24));
    EXPECT_EQ(j_getPowerPointVersion(open(deck).get()), 0);
}

} // namespace
