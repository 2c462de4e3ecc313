// SPDX-License-Identifier: MIT
// What a tree charges against its memory limit.

#include "common_stowraapi/platform/xml/tree.h"

#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <string>

#include "tests/platform/xml/document.h"

namespace stowra_test {
namespace {

using ovrant::xml::Tree;

bool Builds(std::size_t limit, const std::function<void(Tree&)>& build) {
  Tree tree(limit);
  try {
    build(tree);
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

// The first number from 0 for which `holds`. REQUIRES: it holds for all later ones, too.
std::size_t FirstFor(const std::function<bool(std::size_t)>& holds) {
  std::size_t end = 1;
  while (!holds(end)) end *= 2;
  for (std::size_t begin = 0; begin < end;) {
    const std::size_t middle = begin + (end - begin) / 2;
    holds(middle) ? end = middle : begin = middle + 1;
  }
  return end;
}

// The smallest limit that is enough for one element `a` and what `build` adds inside it.
std::size_t BytesOf(const std::function<void(Tree&)>& build) {
  return FirstFor([&](std::size_t limit) {
    return Builds(limit, [&](Tree& tree) {
      tree.BeginElement("a");
      build(tree);
    });
  });
}

TEST(XmlTreeTest, ChargesTextsValuesAndNamesByTheirLength) {
  const std::string text(1000, 'x');
  const std::size_t alone = BytesOf([](Tree&) {});
  EXPECT_EQ(BytesOf([&](Tree& tree) { tree.AddText(text); }), alone + 2 * text.size());
  const std::size_t attribute = BytesOf([](Tree& tree) { tree.AddAttribute("n", ""); });
  EXPECT_EQ(BytesOf([&](Tree& tree) { tree.AddAttribute("n", text); }),
            attribute + 2 * text.size());
  const std::size_t child = BytesOf([](Tree& tree) { tree.BeginElement("b"); });
  EXPECT_EQ(BytesOf([&](Tree& tree) { tree.BeginElement(text.c_str()); }), child + text.size() - 1);
}

TEST(XmlTreeTest, ChargesARepeatedNameOnceAndEachElement) {
  const std::size_t alone = BytesOf([](Tree&) {});
  const std::size_t same_name = BytesOf([](Tree& tree) { tree.BeginElement("a"); }) - alone;
  const std::size_t other_name = BytesOf([](Tree& tree) { tree.BeginElement("b"); }) - alone;
  // At least what an element and its entry among its parent's children take.
  EXPECT_GE(same_name, 5 * sizeof(std::uint32_t) + 3 * sizeof(std::uint32_t));
  EXPECT_GE(other_name, same_name + sizeof(std::string));
}

// Elements of distinct names of three letters, which take more than 16 times their bytes. REQUIRES:
// `count` is at most 52 * 52 * 52.
std::string Names(std::size_t count, const std::string& padding) {
  constexpr char kLetters[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
  std::string bytes = "<a>" + padding;
  for (std::size_t i = 0; i < count; ++i) {
    bytes += {'<', kLetters[i / 52 / 52 % 52], kLetters[i / 52 % 52], kLetters[i % 52], '/', '>'};
  }
  return bytes + "</a>";
}

std::string CommentOf(std::size_t letters) { return "<!--" + std::string(letters, 'x') + "-->"; }

TEST(XmlTreeTest, MayTake16TimesTheDocumentAndOneMebibyte) {
  constexpr std::size_t kCount = 100'000;
  const std::size_t alone = BytesOf([](Tree&) {});
  const std::size_t each = BytesOf([](Tree& tree) { tree.BeginElement("aaa"); }) - alone;
  const std::size_t bytes = alone + kCount * each;
  const std::size_t enough = (bytes - (std::size_t{1} << 20) + 15) / 16;
  const std::size_t shortest = Names(kCount, CommentOf(0)).size();
  ASSERT_LT(shortest, enough);
  EXPECT_TRUE(Opens(Names(kCount, CommentOf(enough - shortest))));
  EXPECT_FALSE(Opens(Names(kCount, CommentOf(enough - shortest - 1))));
}

// Both documents have the same size. The comment costs the tree nothing.
TEST(XmlTreeTest, TextOfADocumentCountsAgainstItsLimit) {
  const std::string text(20'000, 'x');
  const std::string comment = CommentOf(text.size() - CommentOf(0).size());
  const std::size_t refused = FirstFor(
      [&](std::size_t count) { return count > 52 * 52 * 52 || !Opens(Names(count, comment)); });
  ASSERT_LE(refused, 52U * 52 * 52);
  EXPECT_TRUE(Opens(Names(refused - 1, comment)));
  EXPECT_FALSE(Opens(Names(refused - 1, text)));
}

}  // namespace
}  // namespace stowra_test
