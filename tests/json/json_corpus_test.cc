// SPDX-License-Identifier: MIT
// Public collections of JSON texts and of awkward strings.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <utility>

#include "tests/json/text.h"
#include "tests/support/corpora.h"
#include "tests/support/small_stack.h"

namespace stowra_test {
namespace {

// Loads `text`. If that works, writes it, then loads and writes the result: both written texts must
// be equal.
bool LoadsAndRoundTrips(const std::string& text) {
  Document document;
  if (!document.Load(Text(text))) return false;
  const std::string written = Written(document);
  Document again;
  EXPECT_TRUE(again.Load(Text(written))) << written;
  EXPECT_EQ(Written(again), written);
  return true;
}

bool HasScalarRoot(const std::string& text) {
  const char first = text[text.find_first_not_of(" \t\r\n")];
  return first != '{' && first != '[';
}

// Calls `check` with the text of each file in `folder` whose name begins with `prefix`, on a small
// stack. Returns how often that was true, and how often not.
std::pair<int, int> CheckFiles(const std::filesystem::path& folder, const std::string& prefix,
                               bool (*check)(const std::string& text)) {
  std::pair<int, int> counts;
  RunOnSmallStack([&] {
    for (const auto& file : FilesIn(folder)) {
      if (file.filename().string().compare(0, prefix.size(), prefix) != 0) continue;
      SCOPED_TRACE(file.filename().string());
      ++(check(ReadFile(file)) ? counts.first : counts.second);
    }
  });
  return counts;
}

TEST(JsonTestSuite, ValidTextsLoadUnlessTheirRootIsAScalar) {
  SKIP_WITHOUT_CORPUS(folder, "json-test-suite");
  const auto loads_as_expected = [](const std::string& text) {
    const bool scalar = HasScalarRoot(text);
    EXPECT_EQ(LoadsAndRoundTrips(text), !scalar);
    return !scalar;
  };
  EXPECT_EQ(CheckFiles(folder / "test_parsing", "y_", loads_as_expected), std::pair(87, 8));
}

TEST(JsonTestSuite, NoInvalidTextLoads) {
  SKIP_WITHOUT_CORPUS(folder, "json-test-suite");
  const auto is_refused = [](const std::string& text) {
    const bool loads = Loads(text);
    EXPECT_FALSE(loads);
    return !loads;
  };
  EXPECT_EQ(CheckFiles(folder / "test_parsing", "n_", is_refused), std::pair(188, 0));
}

// Some hold numbers that do not read back exactly.
TEST(JsonTestSuite, DoubtfulTextsDoNoHarm) {
  SKIP_WITHOUT_CORPUS(folder, "json-test-suite");
  const auto loads_and_writes = [](const std::string& text) {
    Document document;
    const bool loads = document.Load(Text(text));
    EXPECT_EQ(Written(document) == "null", !loads);
    return loads;
  };
  const auto [loaded, refused] = CheckFiles(folder / "test_parsing", "i_", loads_and_writes);
  EXPECT_EQ(loaded + refused, 35);
}

// The three that do not load hold a lone high surrogate.
TEST(JsonTestSuite, OddTextsThatLoadAreWrittenTheSameEachTime) {
  SKIP_WITHOUT_CORPUS(folder, "json-test-suite");
  EXPECT_EQ(CheckFiles(folder / "test_transform", "", LoadsAndRoundTrips), std::pair(19, 3));
}

TEST(NaughtyStrings, AreWrittenAndLoadedUnchanged) {
  SKIP_WITHOUT_CORPUS(folder, "naughty-strings");
  Document list;
  ASSERT_TRUE(list.Load(Text("{\"strings\":" + ReadFile(folder / "blns.json") + "}")));
  Value& strings = list["strings"];
  EXPECT_EQ(strings.Size(), 494U);
  for (unsigned int i = 0; i < strings.Size(); ++i) {
    const auto text = strings[i].GetString();
    Document document;
    Value value = document.MakeValue();
    value.SetString(text);
    document.AddMember(text, value);
    Document again;
    ASSERT_TRUE(again.Load(Text(Written(document)))) << i;
    EXPECT_EQ(again.MemberNameAt(0), text) << i;
    EXPECT_EQ(again.MemberAt(0).GetString(), text) << i;
    EXPECT_EQ(again[text].GetString(), text) << i;
  }
}

}  // namespace
}  // namespace stowra_test
