// SPDX-License-Identifier: MIT
// Names for which the standard library's hash of strings gives one value. A hash table that relies
// on it would compare each name with each.

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "tests/platform/xml/document.h"
#include "tests/platform/xml/hostile_document.h"

namespace stowra_test {
namespace {

// Each pair leads from one state of the hash (Murmur, the 64-bit one) to one state. They were found
// by undoing the steps of the hash, for names that have one text of each pair, in this order.
const char* const kPairs[][2] = {
    {"tjqotbhpawnzpcrm", "zwonwlzoZl3km.Px"}, {"hnnzlmrjoltegghp", "kfcvcohraqZc_E1S"},
    {"avhofmtcxojsrcrh", "ibhuvunr0W1ex0ON"}, {"abciiranhfltpmzs", "yvuwiltwd9wrtKFF"},
    {"eaicbjpgehfaktdy", "vowqcnkt1BJe-9sH"}, {"zzjnxnikvctvpotm", "qyvxthnxEUt74EYF"},
    {"ojcdxfennhusmuwr", "uaksopwlKSoVITPs"}, {"njejmzalojvjrgfe", "cnuyogwgvTv..wtk"},
    {"ckbjindbyrdpuvar", "rynnhxdbw4N6jC9x"}, {"zikcrjxdifjgjgpg", "ykvybrtq54pOxjXO"},
    {"dklwfgxebbdpuolk", "hlhdytxhY3xa3qal"}, {"tjnkpfwuxknhnlmt", "tzmjrgfsMv59nRQo"},
    {"zgtpejerfwlhtpqx", "hlvbhcad0_v5qu9V"}, {"nxwlzvhdnkobrlbv", "kyjmforjVBkbSCD3"},
    {"badchiqxaatjgfms", "ctlnqbwr8ZkzZPIH"},
};

std::vector<std::string> CollidingNames() {
  std::vector<std::string> names = {""};
  for (const auto& [one, other] : kPairs) {
    std::vector<std::string> longer;
    for (const std::string& name : names) {
      longer.push_back(name + one);
      longer.push_back(name + other);
    }
    names = longer;
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
