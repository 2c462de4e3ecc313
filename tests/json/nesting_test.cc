// SPDX-License-Identifier: MIT
// Texts, trees and chains of handles that are too deep for recursion.

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include "tests/json/text.h"
#include "tests/support/small_stack.h"

namespace stowra_test {
namespace {

constexpr std::size_t kMaxDepth = Document::kMaxDepth;
constexpr int kMillion = 1'000'000;

std::string Nested(const std::string& open, const std::string& close, std::size_t depth,
                   const std::string& innermost = "") {
  return Repeated(open, depth) + innermost + Repeated(close, depth);
}

bool LoadsOnSmallStack(const std::string& text) {
  bool loads = false;
  RunOnSmallStack([&] { loads = Loads(text); });
  return loads;
}

TEST(Nesting, LoadsAsDeepAsAllowed) {
  EXPECT_EQ(kMaxDepth, 512U);
  EXPECT_TRUE(LoadsOnSmallStack(Nested("[", "]", kMaxDepth)));
  EXPECT_TRUE(LoadsOnSmallStack(Nested("{\"a\":", "}", kMaxDepth - 1, "{}")));
  EXPECT_TRUE(LoadsOnSmallStack(Nested("[{\"a\":", "}]", kMaxDepth / 2, "0")));
}

TEST(Nesting, IsRefusedOneLevelDeeper) {
  EXPECT_FALSE(LoadsOnSmallStack(Nested("[", "]", kMaxDepth + 1)));
  EXPECT_FALSE(LoadsOnSmallStack(Nested("{\"a\":", "}", kMaxDepth, "{}")));
}

TEST(Nesting, CountsLevelsAndNotBrackets) {
  EXPECT_TRUE(LoadsOnSmallStack("[" + Repeated("[[]],{\"a\":{}},", 10'000) + "[]]"));
}

TEST(Nesting, IsNotCountedInStrings) {
  const std::string brackets = Repeated("[{", 5000);
  EXPECT_TRUE(LoadsOnSmallStack("[\"" + brackets + "\"]"));
  EXPECT_TRUE(LoadsOnSmallStack("{\"" + brackets + "\":1}"));
  EXPECT_TRUE(LoadsOnSmallStack("[\"\\\"" + brackets + "\\\\\"]"));
  EXPECT_FALSE(LoadsOnSmallStack("[\"\\\\\"," + brackets + "]"));
}

TEST(Nesting, IsCountedBehindStringsOfEveryLength) {
  const std::string deep = Nested("[", "]", kMaxDepth);
  const std::string allowed = Nested("[", "]", kMaxDepth - 1);
  for (std::size_t length = 0; length < 40; ++length) {
    for (const std::string end : {"", "\\\\", "\\\""}) {
      const std::string start = "[\"" + std::string(length, 'x') + end + "\",";
      EXPECT_TRUE(LoadsOnSmallStack(start + allowed + "]")) << start;
      EXPECT_FALSE(LoadsOnSmallStack(start + deep + "]")) << start;
    }
  }
}

TEST(Nesting, OfAHundredThousandIsRefused) {
  EXPECT_FALSE(LoadsOnSmallStack(Nested("[", "]", 100'000)));
  for (const char* piece : {"[", "]", "{\"a\":", "[{\"a\":"}) {
    EXPECT_FALSE(LoadsOnSmallStack(Repeated(piece, 100'000))) << piece;
  }
}

// A million arrays, each the only element of the next, as member "deep".
void BuildDeepTree(Document& document) {
  Value inner = document.MakeValue();
  inner.SetArray();
  for (int i = 1; i < kMillion; ++i) {
    Value outer = document.MakeValue();
    outer.SetArray();
    outer.PushBack(inner);
    inner = outer;
  }
  document.AddMember("deep", inner);
}

TEST(DeepTree, IsWrittenOnASmallStack) {
  RunOnSmallStack([] {
    Document document;
    BuildDeepTree(document);
    EXPECT_EQ(Written(document), "{\"deep\":" + Nested("[", "]", kMillion) + "}");
  });
}

TEST(DeepTree, OfObjectsIsWrittenOnASmallStack) {
  constexpr int kDepth = 100'000;
  RunOnSmallStack([] {
    Document document;
    Value inner = document.MakeValue();
    for (int i = 0; i < kDepth; ++i) {
      Value outer = document.MakeValue();
      outer.SetObject();
      outer.AddMember("a", inner);
      outer.AddMember("b", Value());
      inner = outer;
    }
    document.AddMember("deep", inner);
    const std::string deep = Nested("{\"a\":", ",\"b\":null}", kDepth, "null");
    EXPECT_EQ(Written(document), "{\"deep\":" + deep + "}");
  });
}

// The innermost handle of a chain. Each handle was returned by the one before.
Value& Descend(Value& handle, int levels) {
  Value* at = &handle;
  for (int i = 0; i < levels; ++i) at = &(*at)[0];
  return *at;
}

TEST(DeepHandles, AreDestroyedWithTheDocumentOnASmallStack) {
  RunOnSmallStack([] {
    Document document;
    BuildDeepTree(document);
    Value& innermost = Descend(document["deep"], kMillion - 1);
    EXPECT_TRUE(innermost.IsArray());
    EXPECT_EQ(innermost.Size(), 0U);
  });
}

TEST(DeepHandles, AreDestroyedWithTheirHandleOnASmallStack) {
  RunOnSmallStack([] {
    Document document;
    Value array = document.MakeValue();
    Descend(array, kMillion);
  });
}

TEST(DeepHandles, AreDestroyedByAnAssignmentOnASmallStack) {
  RunOnSmallStack([] {
    Document document;
    Value array = document.MakeValue();
    array.SetArray();
    Value& innermost = Descend(array, kMillion);
    innermost = document.MakeValue();
    innermost.SetInt(9);
    array = innermost;
    EXPECT_EQ(array.GetInt(), 9);
    Descend(array, kMillion);
    array = Value();
    EXPECT_TRUE(array.IsNull());
  });
}

}  // namespace
}  // namespace stowra_test
