// SPDX-License-Identifier: MIT
// Document: its root, its members and handles to them.

#include "common_stowraapi/json/document.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/json/text.h"

namespace stowra_test {
namespace {

TEST(Document, BeginsAsAnEmptyObject) {
  Document document;
  EXPECT_EQ(Written(document), "{}");
  EXPECT_EQ(document.MemberCount(), 0U);
}

static_assert(!std::is_copy_constructible_v<Document> && !std::is_move_constructible_v<Document>);
static_assert(!std::is_copy_assignable_v<Document> && !std::is_move_assignable_v<Document>);

TEST(MakeValue, GivesAnOwnedNullHandle) {
  Document document;
  const Value value = document.MakeValue();
  EXPECT_TRUE(value.IsNull());
  EXPECT_TRUE(IsOwned(value));
  EXPECT_EQ(AllocatorOf(value), AllocatorOf(document["any"]));
}

TEST(DocumentMember, IsFoundByItsExactName) {
  LoadedDocument document("{\"name\":1,\"name\":2,\"a\\u0000b\":3}");
  EXPECT_TRUE(document.HasMember("name"));
  EXPECT_FALSE(document.HasMember("nam"));
  EXPECT_FALSE(document.HasMember("names"));
  EXPECT_FALSE(document.HasMember("a"));
  EXPECT_TRUE(document.HasMember(Text(std::string("a\0b", 3))));
  EXPECT_EQ(document["name"].GetInt(), 1);
  const Document& as_const = document;
  EXPECT_EQ(as_const["name"].GetInt(), 1);
  EXPECT_EQ(as_const[Text(std::string("a\0b", 3))].GetInt(), 3);
}

TEST(DocumentMember, ThatIsMissingIsANullHandleAndIsNotAdded) {
  LoadedDocument document("{\"a\":1}");
  Value& missing = document["b"];
  EXPECT_TRUE(missing.IsNull());
  missing.SetInt(5);
  EXPECT_TRUE(document["b"].IsNull());
  EXPECT_EQ(document.MemberCount(), 1U);
  EXPECT_EQ(Written(document), "{\"a\":1}");
}

TEST(DocumentMember, IsReachedByItsIndexInDocumentOrder) {
  LoadedDocument document("{\"z\":1,\"a\":[2],\"z\":3,\"\":4,\"nul\\u0000tail\":5}");
  ASSERT_EQ(document.MemberCount(), 5U);
  const char* const names[] = {"z", "a", "z", "", "nul"};
  for (unsigned int i = 0; i < 5; ++i) EXPECT_EQ(document.MemberNameAt(i).utf8(), names[i]);
  EXPECT_EQ(document.MemberAt(0).GetInt(), 1);
  EXPECT_EQ(document.MemberAt(1)[0].GetInt(), 2);
  const Document& as_const = document;
  EXPECT_EQ(as_const.MemberAt(2).GetInt(), 3);
  document.MemberAt(3).SetString("four");
  EXPECT_EQ(document[""].GetString().utf8(), "four");
}

TEST(DocumentMember, BeyondTheLastIsNullAndNameless) {
  LoadedDocument document("{\"a\":1}");
  for (const unsigned int index : {1U, 2U, 4294967295U}) {
    EXPECT_TRUE(document.MemberAt(index).IsNull());
    EXPECT_TRUE(document.MemberNameAt(index).empty());
  }
}

TEST(DocumentMember, IsNowhereInARootThatIsAnArray) {
  LoadedDocument document("[1,{\"a\":2}]");
  EXPECT_EQ(document.MemberCount(), 0U);
  EXPECT_FALSE(document.HasMember("a"));
  EXPECT_TRUE(document["a"].IsNull());
  EXPECT_TRUE(document.MemberAt(0).IsNull());
  EXPECT_TRUE(document.MemberNameAt(0).empty());
  document.AddMember("a", document.MakeValue());
  EXPECT_EQ(Written(document), "[1,{\"a\":2}]");
}

TEST(DocumentHandle, DoesNotOwnAndHasTheDocumentsAllocator) {
  LoadedDocument document("{\"a\":1}");
  void* const allocator = AllocatorOf(document.MakeValue());
  for (const Value* handle : {&document["a"], &document["b"], &document.MemberAt(0)}) {
    EXPECT_FALSE(IsOwned(*handle));
    EXPECT_EQ(AllocatorOf(*handle), allocator);
  }
}

TEST(DocumentHandle, StaysValid) {
  LoadedDocument document("{\"a\":1}");
  const Document& as_const = document;
  std::vector<Value*> handles;
  for (int i = 0; i < 1000; ++i) {
    handles.insert(handles.end(),
                   {&document["a"], &as_const["a"], &document.MemberAt(0), &as_const.MemberAt(0),
                    &document["missing"], &document.MemberAt(1)});
  }
  for (std::size_t i = 0; i < handles.size(); ++i) {
    EXPECT_EQ(handles[i]->GetInt(), i % 6 < 4 ? 1 : 0) << i;
  }
}

TEST(DocumentHandle, OutlivesTheTreeThatItCameFrom) {
  LoadedDocument document("{\"a\":[\"a text that does not fit into a node\"]}");
  Value& old = document["a"];
  ASSERT_TRUE(document.Load("{\"a\":2}"));
  EXPECT_EQ(old[0].GetString().utf8(), "a text that does not fit into a node");
  EXPECT_EQ(document["a"].GetInt(), 2);
  EXPECT_FALSE(document.Load("{"));
  EXPECT_EQ(old.Size(), 1U);
}

}  // namespace
}  // namespace stowra_test
