// SPDX-License-Identifier: MIT
// Names for which the standard library's hash of strings gives one value. They are found by undoing
// the steps of the hash. A hash table that relies on it would compare each name with each.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "tests/platform/xml/document.h"
#include "tests/platform/xml/hostile_document.h"

namespace stowra_test {
namespace {

constexpr std::uint64_t kMultiplier = 0xC6A4A7935BD1E995U;
constexpr std::uint64_t kSeed = 0xC70F6907U;
constexpr unsigned int kPairs = 15;

// What the hash (Murmur, the 64-bit one) makes of eight bytes before it takes them in.
std::uint64_t Mixed(std::uint64_t block) {
  block *= kMultiplier;
  block ^= block >> 47;
  return block * kMultiplier;
}

std::uint64_t InverseOfMultiplier() {
  std::uint64_t inverse = kMultiplier;
  for (int i = 0; i < 6; ++i) inverse *= 2 - kMultiplier * inverse;
  return inverse;
}

std::uint64_t Unmixed(std::uint64_t mixed) {
  const std::uint64_t inverse = InverseOfMultiplier();
  mixed *= inverse;
  mixed ^= mixed >> 47;
  return mixed * inverse;
}

// Blocks and letters, in the order of bytes that this machine has.
std::string LettersOf(std::uint64_t block) {
  char letters[sizeof(block)];
  std::memcpy(letters, &block, sizeof(block));
  return std::string(letters, sizeof(block));
}

std::uint64_t BlockOf(const std::string& letters) {
  std::uint64_t block;
  std::memcpy(&block, letters.data(), sizeof(block));
  return block;
}

// Whether these may stand inside a name.
bool IsName(const std::string& letters) {
  constexpr char kAllowed[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-.";
  return letters.find_first_not_of(kAllowed) == std::string::npos;
}

std::string RandomLetters(std::mt19937* random) {
  std::string letters;
  for (int i = 0; i < 8; ++i) letters += static_cast<char>('a' + (*random)() % 26);
  return letters;
}

// Two texts of sixteen letters that lead from the same state of the hash to the same state.
struct Pair {
  std::string one;
  std::string other;
};

Pair FindPair(std::mt19937* random, std::uint64_t* state) {
  const std::string one = RandomLetters(random);
  const std::string other = RandomLetters(random);
  const std::uint64_t state_of_one = (*state ^ Mixed(BlockOf(one))) * kMultiplier;
  const std::uint64_t state_of_other = (*state ^ Mixed(BlockOf(other))) * kMultiplier;
  for (;;) {
    const std::string last = RandomLetters(random);
    const std::uint64_t mixed = Mixed(BlockOf(last));
    const std::string other_last = LettersOf(Unmixed(mixed ^ state_of_one ^ state_of_other));
    if (!IsName(other_last)) continue;
    *state = (state_of_one ^ mixed) * kMultiplier;
    return {one + last, other + other_last};
  }
}

// All the names that have the one or the other text of each pair.
std::vector<std::string> CollidingNames() {
  std::mt19937 random(1);
  std::uint64_t state = kSeed ^ (kPairs * 16 * kMultiplier);
  std::vector<Pair> parts;
  for (unsigned int i = 0; i < kPairs; ++i) parts.push_back(FindPair(&random, &state));
  std::vector<std::string> names;
  for (unsigned int choice = 0; choice < 1U << kPairs; ++choice) {
    std::string name;
    for (unsigned int i = 0; i < kPairs; ++i) {
      name += (choice >> i & 1U) != 0 ? parts[i].one : parts[i].other;
    }
    names.push_back(name);
  }
  return names;
}

#if defined(__GLIBCXX__) && defined(__LP64__)
TEST(XmlHostileHashTest, TheNamesAreOneToTheStandardHash) {
  std::unordered_set<std::string> names;
  std::unordered_set<std::size_t> hashes;
  for (const std::string& name : CollidingNames()) {
    if (names.size() < 100) names.insert(name);
    hashes.insert(std::hash<std::string_view>()(name));
  }
  EXPECT_EQ(names.size(), 100U);
  EXPECT_EQ(hashes.size(), 1U);
}
#endif

TEST(XmlHostileHashTest, ElementNames) {
  const std::vector<std::string> names = CollidingNames();
  std::string bytes = "<a>";
  for (const std::string& name : names) bytes += "<" + name + "/>";
  bytes += "</a>";
  EXPECT_TRUE(OpenHostile(bytes, [&names](ovrant::IXMLInput& reader) {
    ASSERT_TRUE(reader.FindElement("a"));
    ovrant::utils::ovrant_ustring text;
    for (const std::string& name : names) ASSERT_TRUE(reader.GetElementText(Text(name), text));
  }));
}

TEST(XmlHostileHashTest, AttributeNames) {
  const std::vector<std::string> names = CollidingNames();
  std::string bytes = "<a";
  for (const std::string& name : names) bytes += " " + name + "=''";
  bytes += "/>";
  EXPECT_TRUE(OpenHostile(bytes, [&names](ovrant::IXMLInput& reader) {
    ASSERT_TRUE(reader.FindElement("a"));
    ovrant::utils::ovrant_ustring text;
    for (std::size_t i = 0; i < names.size(); i += 32) {
      ASSERT_TRUE(reader.GetAttribute(Text(names[i]), text));
    }
  }));
}

}  // namespace
}  // namespace stowra_test
