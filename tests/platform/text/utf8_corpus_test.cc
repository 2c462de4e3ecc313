// SPDX-License-Identifier: MIT
// Published UTF-8 test data through the text type.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "common_stowraapi/platform/ustring.h"
#include "tests/support/corpora.h"

namespace stowra_test {
namespace {

using ovrant::utils::ovrant_ustring;

std::string RoundTrip(const std::string& bytes) {
  return ovrant_ustring(bytes.data(), bytes.size()).utf8();
}

std::vector<std::string> Split(const std::string& line) {
  std::vector<std::string> fields;
  std::istringstream stream(line);
  for (std::string field; std::getline(stream, field, ':');) {
    const std::size_t first = field.find_first_not_of(' ');
    fields.push_back(first == std::string::npos ? "" : field.substr(first));
  }
  return fields;
}

// The bytes of a field in hexadecimal with spaces anywhere.
std::string BytesOf(const std::string& field) {
  std::string digits;
  for (const char c : field) {
    if (c != ' ' && c != '\r') digits += c;
  }
  std::string bytes;
  for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
    bytes += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
  }
  EXPECT_EQ(digits.size() % 2, 0u) << field;
  return bytes;
}

TEST(Utf8CorpusTest, DecodesEveryLine) {
  SKIP_WITHOUT_CORPUS(folder, "utf8-decoder");
  std::istringstream lines(ReadFile(folder / "utf8tests.txt"));
  int valid = 0;
  int invalid = 0;
  for (std::string line; std::getline(lines, line);) {
    if (line.empty() || line[0] == '#') continue;
    const std::vector<std::string> fields = Split(line);
    ASSERT_GE(fields.size(), 3u) << line;
    if (fields[1] == "valid") {
      EXPECT_EQ(RoundTrip(fields[2]), fields[2]) << line;
      ++valid;
    } else if (fields[1] == "valid hex") {
      EXPECT_EQ(RoundTrip(BytesOf(fields[2])), BytesOf(fields[2])) << line;
      ++valid;
    } else {
      ASSERT_EQ(fields[1], "invalid hex") << line;
      ASSERT_EQ(fields.size(), 5u) << line;
      EXPECT_EQ(RoundTrip(BytesOf(fields[2])), BytesOf(fields[4])) << line;
      ++invalid;
    }
  }
  // One and five of them have blanks around their fields.
  EXPECT_EQ(valid, 76 + 1);
  EXPECT_EQ(invalid, 140 + 5);
}

TEST(Utf8CorpusTest, DecodesTheStressFileToItsEnd) {
  SKIP_WITHOUT_CORPUS(folder, "utf8-decoder");
  const std::string bytes = ReadFile(folder / "UTF-8-test.txt");
  const std::string once = RoundTrip(bytes);
  EXPECT_NE(bytes, once);
  EXPECT_NE(once.find("THE END"), std::string::npos);
  // What came out is well formed: it comes through again unchanged, and another reader takes it.
  EXPECT_EQ(RoundTrip(once), once);
  EXPECT_NO_THROW(nlohmann::json(once).dump());
}

TEST(Utf8CorpusTest, NaughtyStringsSurvive) {
  SKIP_WITHOUT_CORPUS(folder, "naughty-strings");
  const auto strings = nlohmann::json::parse(ReadFile(folder / "blns.json"));
  ASSERT_GT(strings.size(), 400u);
  for (const nlohmann::json& entry : strings) {
    const auto bytes = entry.get<std::string>();
    EXPECT_EQ(RoundTrip(bytes), bytes);
    const ovrant_ustring text(bytes.data(), bytes.size());
    const int half = static_cast<int>(text.length() / 2);
    ovrant_ustring joined = text.Left(half);
    joined += text.Right(static_cast<int>(text.length()) - half);
    EXPECT_EQ(joined.utf8(), bytes);
  }
}

}  // namespace
}  // namespace stowra_test
