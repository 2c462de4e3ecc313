// SPDX-License-Identifier: MIT
// Children of a long list, asked for in any order.

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "tests/platform/xml/document.h"

namespace stowra_test {
namespace {

constexpr int kCount = 1000;
constexpr int kMixed = 800;

std::string NameOf(int number) { return "n" + std::to_string(number); }

// Whether the child has the same name as others: each fourth has, and all from kMixed on.
bool IsSame(int number) { return number % 4 == 3 || number >= kMixed; }

// Children with a name of their own or the same, and their numbers as text and attribute.
std::string List() {
  std::string bytes = "<a>";
  for (int i = 0; i < kCount; ++i) {
    const std::string name = IsSame(i) ? "same" : NameOf(i);
    const std::string number = std::to_string(i);
    bytes += "<" + name + " number='" + number + "'>" + number + "</" + name + ">";
  }
  return bytes + "</a>";
}

TEST(XmlListOrderTest, EachNameIsFoundInReverse) {
  OpenDocument document(List(), "a");
  for (int i = kCount - 1; i >= 0; --i) {
    const std::optional<int> expected = IsSame(i) ? std::nullopt : std::optional<int>(i);
    ASSERT_EQ(document.Int(NameOf(i)), expected);
    ASSERT_EQ(document.Int("same"), 3);
    ASSERT_EQ(document.Text("zzz"), std::nullopt);
  }
}

TEST(XmlListOrderTest, TheNextOfAnyNameIsFoundFromAnywhere) {
  OpenDocument document(List(), "a");
  for (int i = 0; i < kCount / 2; ++i) ASSERT_EQ(document.Text("zzz"), std::nullopt);
  ASSERT_TRUE(document.Find("same"));
  for (int i = 7; i < kMixed; i += 4) {
    ASSERT_FALSE(document.Next(NameOf(i - 5)));
    ASSERT_TRUE(document.Next("same"));
    ASSERT_EQ(document.Attribute("number"), std::to_string(i));
  }
  ASSERT_FALSE(document.Next(NameOf(kMixed - 2)));
  for (int i = kMixed; i < kCount; ++i) ASSERT_TRUE(document.Next("same"));
  ASSERT_FALSE(document.Next("same"));
}

}  // namespace
}  // namespace stowra_test
