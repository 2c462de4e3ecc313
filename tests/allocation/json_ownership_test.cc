// Which handle frees which memory.

#include <gtest/gtest.h>

#include "common_stowraapi/json/document.h"
#include "common_stowraapi/json/value.h"
#include "tests/json/text.h"
#include "tests/support/failing_malloc.h"

#ifdef STOWRA_FAILS_ALLOCATIONS

namespace stowra_test {
namespace {

using ovrant::json::Document;
using ovrant::json::Value;

TEST(JsonOwnership, CopyTakesTheNode) {
  Document document;
  const MemoryWatch watch;
  {
    Value made = document.MakeValue();
    made.SetInt(5);
    EXPECT_EQ(watch.blocks(), 1);
    {
      const Value copy(made);
      EXPECT_EQ(copy.GetInt(), 5);
      EXPECT_EQ(watch.blocks(), 1);
    }
    EXPECT_EQ(watch.blocks(), 0);
  }
  EXPECT_EQ(watch.blocks(), 0);
}

TEST(JsonOwnership, AssignmentFreesTheOldNodeAndTakesTheNew) {
  Document document;
  const MemoryWatch watch;
  Value target = document.MakeValue();
  Value source = document.MakeValue();
  EXPECT_EQ(watch.blocks(), 2);
  EXPECT_EQ(&(target = source), &target);
  EXPECT_EQ(watch.blocks(), 1);
  source.SetInt(5);
  EXPECT_EQ(target.GetInt(), 5);
  source = Value();
  EXPECT_EQ(watch.blocks(), 1);
  target = Value();
  EXPECT_EQ(watch.blocks(), 0);
}

TEST(JsonOwnership, HandleMayTakeTheNodeThatItsChildOwns) {
  Document document;
  const MemoryWatch watch;
  {
    Value array = document.MakeValue();
    array.SetArray();
    array[0] = document.MakeValue();
    EXPECT_EQ(watch.blocks(), 3);
    Value& element = array[1];
    element = document.MakeValue();
    element.SetInt(5);
    array = element;
    EXPECT_EQ(array.GetInt(), 5);
    EXPECT_EQ(watch.blocks(), 1);
  }
  EXPECT_EQ(watch.blocks(), 0);
}

TEST(JsonOwnership, AssignmentOfTheSameNodeKeepsIt) {
  Document document;
  const MemoryWatch watch;
  {
    const Value first = document.MakeValue();
    Value second(first);
    second.SetInt(6);
    second = first;
    EXPECT_EQ(first.GetInt(), 6);
    EXPECT_EQ(watch.blocks(), 1);
  }
  EXPECT_EQ(watch.blocks(), 0);
}

TEST(JsonOwnership, DocumentFreesAllItsMemory) {
  const MemoryWatch watch;
  {
    Document document;
    document.Load("{\"a\":[1,2,3],\"b\":\"a text that does not fit into a node\"}");
    document["a"][1];
    Value value = document.MakeValue();
    document.AddMember("c", value);
    EXPECT_GT(watch.blocks(), 0);
  }
  EXPECT_EQ(watch.blocks(), 0);
}

TEST(JsonOwnership, HandlesAreKeptUntilTheAssignment) {
  ValueDocument document("[1]");
  Value array = document.value();
  const MemoryWatch watch;
  array[0];
  array[0];
  EXPECT_EQ(watch.blocks(), 2);
  array = Value();
  EXPECT_EQ(watch.blocks(), 0);
}

TEST(JsonOwnership, DocumentKeepsOneHandleForEachCall) {
  Document document;
  ASSERT_TRUE(document.Load("{\"a\":1}"));
  const Document& as_const = document;
  const MemoryWatch watch;
  for (int i = 0; i < 1000; ++i) {
    document["a"];
    as_const["a"];
    document.MemberAt(0);
    as_const.MemberAt(0);
    document["missing"];
    document.MemberAt(1);
  }
  EXPECT_EQ(watch.blocks(), 6000);
  document.HasMember("a");
  document.MemberNameAt(0);
  EXPECT_EQ(watch.blocks(), 6000);
}

}  // namespace
}  // namespace stowra_test

#endif  // STOWRA_FAILS_ALLOCATIONS
