// SPDX-License-Identifier: MIT
// Handles: navigation, copies, assignments, and nodes that a caller makes with RapidJSON itself.

#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <string>
#include <vector>

#include "tests/json/text.h"

namespace stowra_test {
namespace {

using Pool = rapidjson::MemoryPoolAllocator<rapidjson::CrtAllocator>;
using Node = rapidjson::GenericValue<rapidjson::UTF8<char>, Pool>;

TEST(ValueConstructor, MakesAnEmptyHandle) {
  const Value value;
  EXPECT_FALSE(IsOwned(value));
  EXPECT_EQ(NodeOf(value), nullptr);
  EXPECT_EQ(AllocatorOf(value), nullptr);
  EXPECT_EQ(CountHandles(value), 0U);
}

TEST(ValueConstructor, TakesOwnedNodeAndAllocatorInThisOrder) {
  Document document;
  const Value made = document.MakeValue();
  const Value value(false, NodeOf(made), AllocatorOf(made));
  EXPECT_FALSE(IsOwned(value));
  EXPECT_EQ(NodeOf(value), NodeOf(made));
  EXPECT_EQ(AllocatorOf(value), AllocatorOf(made));
  EXPECT_EQ(CountHandles(value), 0U);
}

TEST(ValueConstructor, IgnoresWritesThatNeedAnAllocatorWithoutOne) {
  Document document;
  const Value made = document.MakeValue();
  Value item = document.MakeValue();
  Value value(false, NodeOf(made), nullptr);
  value.SetString("text");
  EXPECT_TRUE(value.IsNull());
  value.SetArray();
  value.PushBack(item);
  EXPECT_EQ(value.Size(), 0U);
  value.SetObject();
  value.AddMember("name", item);
  EXPECT_EQ(value.Size(), 0U);
}

TEST(ValueIndex, GivesANullHandleWhereThereIsNoElement) {
  ValueDocument document("[[1],{\"a\":1},\"text\",3]");
  Value& values = document.value();
  EXPECT_TRUE(values[4].IsNull());
  EXPECT_TRUE(values[4294967295U].IsNull());
  for (unsigned int i = 1; i < 4; ++i) EXPECT_TRUE(values[i][0].IsNull()) << i;
  values[0][1].SetInt(5);
  EXPECT_EQ(document.written(), "[[1],{\"a\":1},\"text\",3]");
}

TEST(ValueName, FindsTheFirstMemberOfThatName) {
  ValueDocument document("{\"a\":1,\"b\":2,\"a\":3}");
  EXPECT_EQ(document.value()["a"].GetInt(), 1);
  EXPECT_EQ(document.value()["b"].GetInt(), 2);
  document.value()["a"].SetInt(4);
  EXPECT_EQ(document.written(), "{\"a\":4,\"b\":2,\"a\":3}");
}

TEST(ValueName, MustHaveTheSameBytesAndLength) {
  ValueDocument document("{\"name\":1,\"\\u00e9\":2,\"a\\u0000b\":3,\"\":4}");
  const Value& object = document.value();
  for (const char* name : {"nam", "names", "Name", "e\u0301", "a"}) {
    EXPECT_FALSE(object.HasMember(name)) << name;
  }
  EXPECT_FALSE(object.HasMember(Text(std::string("a\0c", 3))));
  for (const char* name : {"name", "\u00e9", ""}) EXPECT_TRUE(object.HasMember(name)) << name;
  EXPECT_TRUE(object.HasMember(Text(std::string("a\0b", 3))));
  EXPECT_EQ(object[Text(std::string("a\0b", 3))].GetInt(), 3);
  EXPECT_EQ(object[""].GetInt(), 4);
}

TEST(ValueName, GivesAnInertNullHandleWhereThereIsNoMember) {
  ValueDocument document("{\"a\":1}");
  Value& missing = document.value()["b"];
  EXPECT_TRUE(missing["c"][0].IsNull());
  missing.SetObject();
  missing.SetInt(5);
  missing.SetString("text");
  EXPECT_TRUE(missing.IsNull());
  EXPECT_TRUE(document.value()["b"].IsNull());
  EXPECT_TRUE(document.value()["c"].IsNull());
  EXPECT_EQ(document.written(), "{\"a\":1}");
}

TEST(ValueNavigation, GivesHandlesThatDoNotOwnAndShareTheAllocator) {
  ValueDocument document("{\"a\":[1]}");
  Value& object = document.value();
  for (const Value* handle : {&object["a"], &object["a"][0], &object["b"]}) {
    EXPECT_FALSE(IsOwned(*handle));
    EXPECT_EQ(AllocatorOf(*handle), AllocatorOf(object));
  }
}

TEST(ValueNavigation, KeepsOneHandleMoreForEachCall) {
  ValueDocument document("{\"a\":[1]}");
  Value& object = document.value();
  const Value& as_const = object;
  object["a"];
  object["a"];
  object["missing"];
  as_const["a"];
  EXPECT_EQ(CountHandles(object), 4U);
  Value& array = as_const["a"];
  const Value& const_array = array;
  array[0];
  const_array[0];
  array[7];
  EXPECT_EQ(CountHandles(object), 5U);
  EXPECT_EQ(CountHandles(array), 3U);
  EXPECT_FALSE(object.HasMember("b"));
  EXPECT_EQ(CountHandles(object), 5U);
}

TEST(ValueNavigation, KeepsReferencesValid) {
  ValueDocument document("[0,1,2,3,4,5,6,7,8,9]");
  Value& array = document.value();
  std::vector<Value*> elements;
  for (unsigned int i = 0; i < 10'000; ++i) elements.push_back(&array[i % 10]);
  for (unsigned int i = 0; i < 10'000; ++i) EXPECT_EQ(elements[i]->GetUint(), i % 10);
  EXPECT_NE(elements[0], elements[10]);
}

TEST(ValueCopy, OfAHandleThatOwnsNothingOwnsNothing) {
  ValueDocument document("[1]");
  const Value copy(document.value());
  EXPECT_FALSE(IsOwned(copy));
  EXPECT_EQ(copy[0].GetInt(), 1);
}

TEST(ValueCopy, LeavesTheHandlesThatWereGivenOutBehind) {
  ValueDocument document("[1]");
  Value& array = document.value();
  Value& element = array[0];
  const Value copy(array);
  EXPECT_EQ(CountHandles(copy), 0U);
  EXPECT_EQ(CountHandles(array), 1U);
  EXPECT_EQ(element.GetInt(), 1);
}

TEST(ValueAssignment, RebindsTheHandleAndLeavesTheTreeAlone) {
  ValueDocument document("[1,2]");
  Value& first = document.value()[0];
  first = document.value()[1];
  EXPECT_EQ(first.GetInt(), 2);
  first.SetInt(3);
  EXPECT_EQ(document.written(), "[1,3]");
}

TEST(ValueCopy, HasTheAllocatorToo) {
  Document document;
  const Value made = document.MakeValue();
  Value target;
  target = made;
  EXPECT_EQ(AllocatorOf(target), AllocatorOf(made));
  const Value copy(made);
  EXPECT_EQ(AllocatorOf(copy), AllocatorOf(made));
}

TEST(ValueAssignment, ToItselfDoesNothing) {
  ValueDocument document("[1]");
  Value owner = document.value();
  owner[0];
  Value& same = owner;
  owner = same;
  EXPECT_EQ(CountHandles(owner), 1U);
  EXPECT_EQ(owner[0].GetInt(), 1);
}

TEST(ValueAssignment, LeavesTheHandlesOfTheSourceWithIt) {
  ValueDocument document("[1]");
  Value& source = document.value();
  Value& element = source[0];
  Value target;
  target = source;
  EXPECT_EQ(CountHandles(target), 0U);
  EXPECT_EQ(CountHandles(source), 1U);
  EXPECT_EQ(element.GetInt(), 1);
}

TEST(ValueAssignment, OfAHandleThatItGaveOut) {
  ValueDocument document("{\"a\":{\"b\":7}}");
  Value value = document.value();
  value = value["a"];
  value = value["b"];
  EXPECT_EQ(value.GetInt(), 7);
  EXPECT_EQ(CountHandles(value), 0U);
}

TEST(ForeignNode, BelongsToTheCopyOfItsHandle) {
  Pool pool;
  auto* const node = new Node(5);
  const Value value(true, node, &pool);
  const Value owner(value);
  EXPECT_FALSE(IsOwned(value));
  EXPECT_TRUE(IsOwned(owner));
  EXPECT_EQ(NodeOf(owner), node);
  EXPECT_EQ(owner.GetInt(), 5);
}

// The long text needs a chunk of the pool, which the library allocates and the pool frees.
TEST(ForeignNode, GrowsThePoolOfTheCaller) {
  const std::string text(100'000, 'x');
  Pool pool;
  Node node(rapidjson::kArrayType);
  Value array(false, &node, &pool);
  Value item(true, new Node, &pool);
  item.SetString(Text(text));
  array.PushBack(item);
  ASSERT_EQ(node.Size(), 1U);
  EXPECT_EQ(node[0].GetString(), text);
  EXPECT_GT(pool.Capacity(), text.size());
}

}  // namespace
}  // namespace stowra_test
