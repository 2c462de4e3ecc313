// SPDX-License-Identifier: MIT
#include "host/suggestion.h"

#include <gtest/gtest.h>

namespace stowra {
namespace {

TEST(SuggestionTest, FindsTheClosestCandidate) {
  const std::vector<std::string> commands = {"user-info", "update", "upload", "upload-config"};
  EXPECT_EQ(ClosestTo("userinfo", commands), "user-info");
  EXPECT_EQ(ClosestTo("uplaod", commands), "upload");
  EXPECT_EQ(ClosestTo("upload-confg", commands), "upload-config");
  EXPECT_EQ(ClosestTo("updat", commands), "update");
}

TEST(SuggestionTest, FindsNothingThatIsFar) {
  EXPECT_EQ(ClosestTo("nonsense", {"update", "search"}), "");
  EXPECT_EQ(ClosestTo("", {"update"}), "");
  EXPECT_EQ(ClosestTo("up", {"update"}), "");
  EXPECT_EQ(ClosestTo("update", {}), "");
}

}  // namespace
}  // namespace stowra
