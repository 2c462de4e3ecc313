// Who frees what, and when.

#include <gtest/gtest.h>

#include "common_stowraapi/json/document.h"
#include "common_stowraapi/json/value.h"
#include "tests/json/text.h"
#include "tests/json/value_fields.h"
#include "tests/support/failing_new.h"

#ifdef STOWRA_COUNTS_ALLOCATIONS

namespace stowra_test {
namespace {

using ovrant::json::Document;
using ovrant::json::Value;

TEST(ValueCopy, TakesTheOwnership) {
  Document document;
  const long before = LiveAllocations();
  {
    const Value made = document.MakeValue();
    EXPECT_TRUE(IsOwned(made));
    EXPECT_EQ(LiveAllocations(), before + 1);
    {
      const Value copy(made);
      EXPECT_TRUE(IsOwned(copy));
      EXPECT_FALSE(IsOwned(made));
      EXPECT_EQ(NodeOf(copy), NodeOf(made));
      EXPECT_EQ(AllocatorOf(copy), AllocatorOf(made));
      EXPECT_EQ(LiveAllocations(), before + 1);
    }
    EXPECT_EQ(LiveAllocations(), before);
  }
  EXPECT_EQ(LiveAllocations(), before);
}

TEST(ValueAssignment, FreesTheOldNodeAndTakesTheOwnershipOfTheNewOne) {
  Document document;
  const long before = LiveAllocations();
  Value target = document.MakeValue();
  const Value source = document.MakeValue();
  void* const node = NodeOf(source);
  EXPECT_EQ(&(target = source), &target);
  EXPECT_EQ(LiveAllocations(), before + 1);
  EXPECT_EQ(NodeOf(target), node);
  EXPECT_TRUE(IsOwned(target));
  EXPECT_FALSE(IsOwned(source));
  target = Value();
  EXPECT_EQ(LiveAllocations(), before);
  EXPECT_EQ(NodeOf(target), nullptr);
  EXPECT_EQ(AllocatorOf(target), nullptr);
}

TEST(ValueAssignment, OfAnOwnedNodeThatItsOwnHandleOwns) {
  Document document;
  const long before = LiveAllocations();
  {
    Value array = document.MakeValue();
    array.SetArray();
    array[0] = document.MakeValue();
    EXPECT_EQ(LiveAllocations(), before + 3);
    Value& element = array[1];
    element = document.MakeValue();
    element.SetInt(5);
    array = element;
    EXPECT_EQ(array.GetInt(), 5);
    EXPECT_TRUE(IsOwned(array));
    EXPECT_EQ(LiveAllocations(), before + 1);
  }
  EXPECT_EQ(LiveAllocations(), before);
}

TEST(ValueAssignment, OfAnotherHandleToItsOwnNodeKeepsTheNode) {
  Document document;
  const long before = LiveAllocations();
  {
    const Value first = document.MakeValue();
    Value second(first);
    second.SetInt(6);
    second = first;
    EXPECT_TRUE(IsOwned(second));
    EXPECT_EQ(first.GetInt(), 6);
    EXPECT_EQ(LiveAllocations(), before + 1);
  }
  EXPECT_EQ(LiveAllocations(), before);
}

TEST(Document, FreesAllItsMemory) {
  const long before = LiveAllocations();
  {
    Document document;
    document.Load("{\"a\":[1,2,3],\"b\":\"a text that does not fit into a node\"}");
    document["a"][1];
    Value value = document.MakeValue();
    document.AddMember("c", value);
    EXPECT_GT(LiveAllocations(), before);
  }
  EXPECT_EQ(LiveAllocations(), before);
}

TEST(MakeValue, GivesAHolderThatNobodyElseOwns) {
  Document document;
  const long before = LiveAllocations();
  {
    const Value value = document.MakeValue();
    EXPECT_EQ(LiveAllocations(), before + 1);
  }
  EXPECT_EQ(LiveAllocations(), before);
}

TEST(ValueNavigation, KeepsHandlesUntilTheAssignment) {
  ValueDocument document("[1]");
  Value array = document.value();
  const long before = LiveAllocations();
  array[0];
  array[0];
  EXPECT_EQ(LiveAllocations(), before + 2);
  array = Value();
  EXPECT_EQ(LiveAllocations(), before);
}

TEST(DocumentHandle, IsRecordedOnceForEachCall) {
  Document document;
  ASSERT_TRUE(document.Load("{\"a\":1}"));
  const Document& as_const = document;
  const long before = LiveAllocations();
  for (int i = 0; i < 1000; ++i) {
    document["a"];
    as_const["a"];
    document.MemberAt(0);
    as_const.MemberAt(0);
    document["missing"];
    document.MemberAt(1);
  }
  EXPECT_EQ(LiveAllocations() - before, 6000);
  document.HasMember("a");
  document.MemberNameAt(0);
  EXPECT_EQ(LiveAllocations() - before, 6000);
}

}  // namespace
}  // namespace stowra_test

#endif  // STOWRA_COUNTS_ALLOCATIONS
