// SPDX-License-Identifier: MIT
// PushBack, Clear and AddMember.

#include <gtest/gtest.h>

#include <string>

#include "common_stowraapi/json/document.h"
#include "common_stowraapi/json/value.h"
#include "tests/json/text.h"
#include "tests/json/value_fields.h"

namespace stowra_test {
namespace {

using ovrant::json::Document;
using ovrant::json::Value;

TEST(PushBack, MovesTheContentToTheEnd) {
  ValueDocument document("[1]");
  Document other;
  Value item = other.MakeValue();
  item.SetInt(2);
  void* const node = NodeOf(item);
  document.value().PushBack(item);
  EXPECT_EQ(document.written(), "[1,2]");
  EXPECT_TRUE(item.IsNull());
  EXPECT_TRUE(IsOwned(item));
  EXPECT_EQ(NodeOf(item), node);
}

TEST(PushBack, TakesTheSameHolderAgain) {
  ValueDocument document("[]");
  Document other;
  Value item = other.MakeValue();
  for (int i = 0; i < 100; ++i) {
    item.SetInt(i);
    document.value().PushBack(item);
  }
  Value& array = document.value();
  ASSERT_EQ(array.Size(), 100U);
  for (unsigned int i = 0; i < 100; ++i) EXPECT_EQ(array[i].GetUint(), i);
}

TEST(PushBack, DoesNothingOnAnythingButAnArray) {
  for (const char* json : {"null", "true", "{\"a\":1}", "\"text\"", "7"}) {
    ValueDocument document(json);
    Document other;
    Value item = other.MakeValue();
    item.SetInt(2);
    document.value().PushBack(item);
    EXPECT_EQ(document.written(), json);
    EXPECT_EQ(item.GetInt(), 2);
  }
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

TEST(Clear, DoesNothingOnAnythingButAnArray) {
  for (const char* json : {"null", "{\"a\":1}", "\"text\"", "7"}) {
    ValueDocument document(json);
    document.value().Clear();
    EXPECT_EQ(document.written(), json);
  }
}

TEST(AddMember, MovesTheContentIntoANewLastMember) {
  ValueDocument document("{\"b\":1}");
  Document other;
  Value item = other.MakeValue();
  item.SetInt(2);
  document.value().AddMember("a", item);
  EXPECT_EQ(document.written(), "{\"b\":1,\"a\":2}");
  EXPECT_TRUE(item.IsNull());
  EXPECT_TRUE(IsOwned(item));
}

TEST(AddMember, AddsASecondMemberOfTheSameName) {
  ValueDocument document("{}");
  Document other;
  for (int i = 1; i <= 2; ++i) {
    Value item = other.MakeValue();
    item.SetInt(i);
    document.value().AddMember("a", item);
  }
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

TEST(AddMember, DoesNothingOnAnythingButAnObject) {
  for (const char* json : {"null", "true", "[1]", "\"text\"", "7"}) {
    ValueDocument document(json);
    Document other;
    Value item = other.MakeValue();
    item.SetInt(2);
    document.value().AddMember("a", item);
    EXPECT_EQ(document.written(), json);
    EXPECT_EQ(item.GetInt(), 2);
  }
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
  Document other;
  Value item = other.MakeValue();
  for (int i = 0; i < 1000; ++i) {
    item.SetInt(i);
    document.value().AddMember(Text("member " + std::to_string(i)), item);
  }
  EXPECT_EQ(document.value().Size(), 1000U);
  for (int i = 0; i < 1000; ++i) {
    EXPECT_EQ(document.value()[Text("member " + std::to_string(i))].GetInt(), i);
  }
}

TEST(Building, MovesWholeTreesBetweenHolders) {
  Document document;
  Value list = document.MakeValue();
  list.SetArray();
  for (const char* name : {"one", "two"}) {
    Value entry = document.MakeValue();
    entry.SetObject();
    Value text = document.MakeValue();
    text.SetString(name);
    entry.AddMember("name", text);
    list.PushBack(entry);
  }
  document.AddMember("list", list);
  EXPECT_EQ(Written(document), "{\"list\":[{\"name\":\"one\"},{\"name\":\"two\"}]}");
}

}  // namespace
}  // namespace stowra_test
