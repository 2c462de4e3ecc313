// SPDX-License-Identifier: MIT
// PushBack, Clear and AddMember.

#include <gtest/gtest.h>

#include <string>

#include "tests/json/text.h"

namespace stowra_test {
namespace {

// A value made by a document of its own, which holds a number.
struct Made {
  explicit Made(int number) { value.SetInt(number); }

  Document document;
  Value value = document.MakeValue();
};

TEST(PushBack, MovesTheContentToTheEnd) {
  ValueDocument document("[1]");
  Made item(2);
  void* const node = NodeOf(item.value);
  document.value().PushBack(item.value);
  EXPECT_EQ(document.written(), "[1,2]");
  EXPECT_TRUE(item.value.IsNull());
  EXPECT_TRUE(IsOwned(item.value));
  EXPECT_EQ(NodeOf(item.value), node);
}

TEST(PushBack, TakesTheSameHolderAgain) {
  ValueDocument array("[]");
  Made item(0);
  for (int i = 0; i < 100; ++i) {
    item.value.SetInt(i);
    array.value().PushBack(item.value);
  }
  ASSERT_EQ(array.value().Size(), 100U);
  for (int i = 0; i < 100; ++i) EXPECT_EQ(array[i].GetInt(), i);
}

TEST(PushBack, OfTheArrayItselfDoesNothing) {
  ValueDocument document("[1]");
  document.value().PushBack(document.value());
  EXPECT_EQ(document.written(), "[1]");
}

// Load left the array full, so it grows and its elements move.
TEST(PushBack, MovesAnElementOfTheArrayItself) {
  ValueDocument document("[[1],2]");
  Value& array = document.value();
  array.PushBack(array[0]);
  EXPECT_EQ(document.written(), "[null,2,[1]]");
  array.PushBack(array[2]);
  EXPECT_EQ(document.written(), "[null,2,null,[1]]");
}

TEST(PushBack, OfAMissingMemberAppendsNull) {
  ValueDocument document("[]");
  document.value().PushBack(document.value()["missing"]);
  document.value().PushBack(Value());
  EXPECT_EQ(document.written(), "[null,null]");
}

TEST(Clear, MakesAnArrayEmpty) {
  ValueDocument document("[1,[2],\"three\"]");
  document.value().Clear();
  EXPECT_EQ(document.written(), "[]");
  Document other;
  document.value().PushBack(other.MakeValue());
  EXPECT_EQ(document.written(), "[null]");
}

TEST(Clear, LeavesTheElementsInThePool) {
  ValueDocument document("[[1,2],3]");
  Value& first = document.value()[0];
  document.value().Clear();
  EXPECT_EQ(first.Size(), 2U);
}

// An array takes PushBack and Clear, an object AddMember.
TEST(Building, DoesNothingOnAnotherType) {
  for (const std::string json : {"null", "true", "\"text\"", "7", "[1]", "{\"a\":1}"}) {
    ValueDocument document(json);
    Made item(2);
    if (json[0] != '{') document.value().AddMember("a", item.value);
    if (json[0] != '[') document.value().PushBack(item.value);
    if (json[0] != '[') document.value().Clear();
    EXPECT_EQ(document.written(), json);
    EXPECT_EQ(item.value.GetInt(), 2) << json;
  }
}

TEST(AddMember, MovesTheContentIntoANewLastMember) {
  ValueDocument document("{\"b\":1}");
  Made item(2);
  document.value().AddMember("a", item.value);
  EXPECT_EQ(document.written(), "{\"b\":1,\"a\":2}");
  EXPECT_TRUE(item.value.IsNull());
  EXPECT_TRUE(IsOwned(item.value));
}

TEST(AddMember, AddsASecondMemberOfTheSameName) {
  ValueDocument document("{}");
  for (int i = 1; i <= 2; ++i) document.value().AddMember("a", Made(i).value);
  EXPECT_EQ(document.written(), "{\"a\":1,\"a\":2}");
  EXPECT_EQ(document.value().Size(), 2U);
  EXPECT_EQ(document.value()["a"].GetInt(), 1);
}

TEST(AddMember, CopiesTheNameUpToItsFirstNul) {
  ValueDocument document("{}");
  ovrant::utils::ovrant_ustring name("a name that is too long to be kept inside a node");
  document.value().AddMember(name, Value());
  name.clear();
  document.value().AddMember(Text(std::string("b\0c", 3)), Value());
  document.value().AddMember("", Value());
  EXPECT_EQ(document.written(),
            "{\"a name that is too long to be kept inside a node\":null,\"b\":null,\"\":null}");
}

TEST(AddMember, OfTheObjectItselfDoesNothing) {
  ValueDocument document("{\"a\":1}");
  document.value().AddMember("b", document.value());
  EXPECT_EQ(document.written(), "{\"a\":1}");
}

TEST(AddMember, MovesAMemberOfTheObjectItself) {
  ValueDocument document("{\"a\":[1]}");
  Value& object = document.value();
  object.AddMember("b", object["a"]);
  EXPECT_EQ(document.written(), "{\"a\":null,\"b\":[1]}");
}

TEST(AddMember, OfAMissingMemberAddsNull) {
  ValueDocument document("{}");
  document.value().AddMember("a", document.value()["missing"]);
  EXPECT_EQ(document.written(), "{\"a\":null}");
}

TEST(AddMember, GrowsFarBeyondTheFirstCapacity) {
  ValueDocument document("{}");
  const auto name = [](int i) { return Text("member " + std::to_string(i)); };
  Made item(0);
  for (int i = 0; i < 1000; ++i) {
    item.value.SetInt(i);
    document.value().AddMember(name(i), item.value);
  }
  EXPECT_EQ(document.value().Size(), 1000U);
  for (int i = 0; i < 1000; ++i) EXPECT_EQ(document.value()[name(i)].GetInt(), i);
}

}  // namespace
}  // namespace stowra_test
