// Every operation with each of its allocations failing in turn.

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

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
using ovrant::utils::ovrant_ustring;

// Runs `work` on fresh state again and again, with one allocation more each time, until it
// succeeds. After each failure but the last `check` is run. Returns how often it failed.
template <typename State>
int FailEachAllocation(const std::function<void(State&)>& work,
                       const std::function<void(State&)>& check) {
  for (int failures = 0;; ++failures) {
    const long before = LiveAllocations();
    {
      const auto state = std::make_unique<State>();
      if (!RunsOutOfMemory([&] { work(*state); }, failures)) return failures;
      check(*state);
    }
    EXPECT_EQ(LiveAllocations(), before) << "leaked";
  }
}

const char kLongText[] = "a text that is far too long to be kept inside a node";

// A tree whose array and object are full, so that both grow with the next child; an item to put
// there; a pool with no room left.
struct FullTree {
  FullTree() {
    std::string array = "[0";
    std::string object = "{\"m\":0";
    for (int i = 1; i < 100; ++i) {
      array += ',' + std::to_string(i);
      object += ",\"m" + std::to_string(i) + "\":0";
    }
    const std::string filler(65'000, 'x');
    EXPECT_TRUE(document.Load(Text("{\"array\":" + array + "],\"object\":" + object +
                                   "},\"filler\":\"" + filler + "\"}")));
    item.SetString(kLongText);
    array_handle = document["array"];
    object_handle = document["object"];
    before = Written(document);
  }

  void ExpectUnchanged() {
    EXPECT_EQ(Written(document), before);
    EXPECT_EQ(item.GetString().utf8(), kLongText);
  }

  Document document;
  Value item = document.MakeValue();
  Value array_handle;
  Value object_handle;
  std::string before;
};

TEST(AllocationFailure, OfPushBackLeavesTheTreeAsItWas) {
  const int failures = FailEachAllocation<FullTree>(
      [](FullTree& tree) { tree.array_handle.PushBack(tree.item); },
      [](FullTree& tree) {
        tree.ExpectUnchanged();
        tree.array_handle.PushBack(tree.item);
        EXPECT_EQ(tree.array_handle.Size(), 101U);
        EXPECT_EQ(tree.array_handle[100].GetString().utf8(), kLongText);
        EXPECT_EQ(tree.array_handle[99].GetInt(), 99);
        EXPECT_TRUE(tree.item.IsNull());
      });
  EXPECT_GE(failures, 1);
}

TEST(AllocationFailure, OfPushBackOfAnElementLeavesTheTreeAsItWas) {
  const int failures = FailEachAllocation<FullTree>(
      [](FullTree& tree) { tree.array_handle.PushBack(tree.array_handle[7]); },
      [](FullTree& tree) { tree.ExpectUnchanged(); });
  EXPECT_GE(failures, 2);
}

TEST(AllocationFailure, OfAddMemberLeavesTheTreeAsItWas) {
  const int failures = FailEachAllocation<FullTree>(
      [](FullTree& tree) { tree.object_handle.AddMember(kLongText, tree.item); },
      [](FullTree& tree) {
        tree.ExpectUnchanged();
        tree.object_handle.AddMember(kLongText, tree.item);
        EXPECT_EQ(tree.object_handle.Size(), 101U);
        EXPECT_EQ(tree.object_handle[kLongText].GetString().utf8(), kLongText);
        EXPECT_EQ(tree.object_handle["m99"].GetInt(), 0);
        EXPECT_TRUE(tree.item.IsNull());
      });
  EXPECT_GE(failures, 3);
}

// A first member's room is asked for in another way than more room is.
struct EmptyObject {
  EmptyObject() {
    EXPECT_TRUE(document.Load(Text("{\"f\":\"" + std::string(65'400, 'x') + "\"}")));
  }

  Document document;
  Value object = [this] {
    Value made = document.MakeValue();
    made.SetObject();
    return made;
  }();
};

TEST(AllocationFailure, OfAFirstMemberLeavesTheObjectEmpty) {
  const int failures = FailEachAllocation<EmptyObject>(
      [](EmptyObject& state) { state.object.AddMember("a", Value()); },
      [](EmptyObject& state) {
        EXPECT_EQ(state.object.Size(), 0U);
        state.object.AddMember("a", Value());
        EXPECT_TRUE(state.object.HasMember("a"));
      });
  EXPECT_GE(failures, 1);
}

TEST(AllocationFailure, OfSetStringLeavesTheTreeAsItWas) {
  const int failures = FailEachAllocation<FullTree>(
      [](FullTree& tree) { tree.array_handle.SetString(Text(std::string(70'000, 'y'))); },
      [](FullTree& tree) { tree.ExpectUnchanged(); });
  EXPECT_GE(failures, 3);
}

TEST(AllocationFailure, OfNavigationKeepsNoHandle) {
  const int failures = FailEachAllocation<FullTree>(
      [](FullTree& tree) { tree.array_handle[0]; },
      [](FullTree& tree) { EXPECT_EQ(CountHandles(tree.array_handle), 0U); });
  EXPECT_EQ(failures, 1);
}

TEST(AllocationFailure, OfLoadLeavesTheRootNull) {
  std::string json = "{\"long\":\"" + std::string(100'000, 'x') + "\",\"list\":[";
  for (int i = 0; i < 5000; ++i) json += std::to_string(i) + ",[],";
  const ovrant_ustring text = Text(json + "{\"a\":null}]}");
  const int failures =
      FailEachAllocation<FullTree>([&](FullTree& tree) { ASSERT_TRUE(tree.document.Load(text)); },
                                   [&](FullTree& tree) {
                                     EXPECT_EQ(tree.document.MemberCount(), 0U);
                                     EXPECT_EQ(Written(tree.document), "null");
                                     EXPECT_TRUE(tree.document.Load(text));
                                   });
  EXPECT_GE(failures, 10);
}

TEST(AllocationFailure, OfToStringLeavesTheTextAsItWas) {
  const int failures = FailEachAllocation<FullTree>(
      [](FullTree& tree) {
        ovrant_ustring out("before");
        try {
          tree.document.ToString(out);
        } catch (const std::bad_alloc&) {
          EXPECT_EQ(out.utf8(), "before");
          throw;
        }
      },
      [](FullTree& tree) { tree.ExpectUnchanged(); });
  EXPECT_GE(failures, 10);
}

struct Nothing {};

TEST(AllocationFailure, OfADocumentLeaksNothing) {
  const int failures = FailEachAllocation<Nothing>(
      [](Nothing&) {
        Document document;
        const Value value = document.MakeValue();
      },
      [](Nothing&) {});
  EXPECT_GE(failures, 3);
}

}  // namespace
}  // namespace stowra_test

#endif  // STOWRA_COUNTS_ALLOCATIONS
