// SPDX-License-Identifier: MIT
// Documents and values.

#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <functional>
#include <memory>
#include <string>

#include "common_stowraapi/json/document.h"
#include "common_stowraapi/json/value.h"
#include "tests/allocation/each_failure.h"
#include "tests/json/text.h"

#ifdef STOWRA_FAILS_ALLOCATIONS

namespace stowra_test {
namespace {

using ovrant::json::Document;
using ovrant::json::Value;
using ovrant::utils::ovrant_ustring;

// Expects `work` to throw whenever memory runs out, and runs `check` then. Returns how often it
// did.
template <typename State>
long FailWork(const std::function<void(State&)>& work, const std::function<void(State&)>& check) {
  return FailEachAllocation<State>(work, [&](State& state, Outcome outcome) {
    EXPECT_EQ(outcome.threw, outcome.failed());
    if (outcome.threw) check(state);
  });
}

const char kLongText[] = "a text that is far too long to be kept inside a node";

// A tree with a full array and a full object, an item to put there, and a pool with no room left.
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

TEST(JsonAllocationTest, OfPushBackLeavesTheTreeAsItWas) {
  const long failures =
      FailWork<FullTree>([](FullTree& tree) { tree.array_handle.PushBack(tree.item); },
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

TEST(JsonAllocationTest, OfPushBackOfAnElementLeavesTheTreeAsItWas) {
  const long failures =
      FailWork<FullTree>([](FullTree& tree) { tree.array_handle.PushBack(tree.array_handle[7]); },
                         [](FullTree& tree) { tree.ExpectUnchanged(); });
  EXPECT_GE(failures, 2);
}

TEST(JsonAllocationTest, OfAddMemberLeavesTheTreeAsItWas) {
  const long failures =
      FailWork<FullTree>([](FullTree& tree) { tree.object_handle.AddMember(kLongText, tree.item); },
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

// RapidJSON allocates the room for the first member in another way.
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

TEST(JsonAllocationTest, OfAFirstMemberLeavesTheObjectEmpty) {
  const long failures =
      FailWork<EmptyObject>([](EmptyObject& state) { state.object.AddMember("a", Value()); },
                            [](EmptyObject& state) {
                              EXPECT_EQ(state.object.Size(), 0U);
                              state.object.AddMember("a", Value());
                              EXPECT_TRUE(state.object.HasMember("a"));
                            });
  EXPECT_GE(failures, 1);
}

TEST(JsonAllocationTest, OfSetStringLeavesTheTreeAsItWas) {
  const long failures = FailWork<FullTree>(
      [](FullTree& tree) { tree.array_handle.SetString(Text(std::string(70'000, 'y'))); },
      [](FullTree& tree) { tree.ExpectUnchanged(); });
  EXPECT_GE(failures, 3);
}

TEST(JsonAllocationTest, OfNavigationKeepsTheTree) {
  const long failures =
      FailWork<FullTree>([](FullTree& tree) { tree.array_handle[0]; },
                         [](FullTree& tree) { EXPECT_EQ(tree.array_handle[0].GetInt(), 0); });
  EXPECT_EQ(failures, 2);
}

TEST(JsonAllocationTest, OfLoadLeavesTheRootNull) {
  std::string json = "{\"long\":\"" + std::string(100'000, 'x') + "\",\"list\":[";
  for (int i = 0; i < 5000; ++i) json += std::to_string(i) + ",[],";
  const ovrant_ustring text = Text(json + "{\"a\":null}]}");
  const long failures =
      FailWork<FullTree>([&](FullTree& tree) { ASSERT_TRUE(tree.document.Load(text)); },
                         [&](FullTree& tree) {
                           EXPECT_EQ(tree.document.MemberCount(), 0U);
                           EXPECT_EQ(Written(tree.document), "null");
                           EXPECT_TRUE(tree.document.Load(text));
                         });
  EXPECT_GE(failures, 10);
}

TEST(JsonAllocationTest, OfToStringLeavesTheTextAsItWas) {
  const long failures = FailWork<FullTree>(
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

// Reading throws, and leaves the tree and the handles as they were.
TEST(JsonAllocationTest, OfReadingLeavesTheTreeAsItWas) {
  const ovrant_ustring name(kLongText);
  const std::function<void(FullTree&)> reads[] = {
      [](FullTree& tree) { tree.item.GetString(); },
      [&](FullTree& tree) { tree.object_handle.HasMember(name); },
      [&](FullTree& tree) { tree.object_handle[name]; },
      [&](FullTree& tree) { tree.document[name]; },
      [&](FullTree& tree) { tree.document.HasMember(name); },
      [](FullTree& tree) { tree.document.MemberAt(0); },
      [](FullTree& tree) { tree.document.MakeValue(); }};
  for (const auto& read : reads) {
    EXPECT_GE(FailWork<FullTree>(read,
                                 [&](FullTree& tree) {
                                   tree.ExpectUnchanged();
                                   read(tree);
                                 }),
              1);
  }
}

// A name too long for its node.
struct LongName {
  LongName() { EXPECT_TRUE(document.Load(Text("{\"" + std::string(300, 'n') + "\":1}"))); }

  Document document;
};

TEST(JsonAllocationTest, OfANameIsThrown) {
  EXPECT_GE(FailWork<LongName>(
                [](LongName& state) { state.document.MemberNameAt(0); },
                [](LongName& state) { EXPECT_EQ(state.document.MemberNameAt(0).length(), 300U); }),
            1);
}

TEST(JsonAllocationTest, OfATextThatIsNoJsonIsThrownToo) {
  const ovrant_ustring text = Text("[\"" + std::string(70'000, 'x') + "\",\"\\u20AC\", 1e]");
  EXPECT_GE(FailWork<FullTree>([&](FullTree& tree) { EXPECT_FALSE(tree.document.Load(text)); },
                               [&](FullTree& tree) {
                                 EXPECT_EQ(Written(tree.document), "null");
                                 EXPECT_FALSE(tree.document.Load(text));
                               }),
            3);
}

// Setters in place allocate nothing.
TEST(JsonAllocationTest, SettersInPlaceNeedNone) {
  const auto set = [](FullTree& tree) {
    tree.item.SetDouble(0.5);
    tree.item.SetInt64(-1);
    tree.item.SetBool(true);
    tree.item.SetObject();
    tree.item.SetArray();
    tree.array_handle.Clear();
    tree.item.SetNull();
  };
  EXPECT_EQ(FailWork<FullTree>(set, [](FullTree&) {}), 0);
}

struct Nothing {};

TEST(JsonAllocationTest, OfADocumentLeaksNothing) {
  const long failures = FailWork<Nothing>(
      [](Nothing&) {
        Document document;
        const Value value = document.MakeValue();
      },
      [](Nothing&) {});
  EXPECT_GE(failures, 3);
}

// Which handle frees which memory.

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

// A node that the caller makes with RapidJSON's own allocator.
TEST(JsonOwnership, OwnerFreesAForeignNode) {
  using Pool = rapidjson::MemoryPoolAllocator<rapidjson::CrtAllocator>;
  Pool pool;
  const MemoryWatch watch;
  {
    const Value value(true, new rapidjson::GenericValue<rapidjson::UTF8<char>, Pool>(5), &pool);
    const Value owner(value);
    EXPECT_EQ(watch.blocks(), 1);
  }
  EXPECT_EQ(watch.blocks(), 0);
}

}  // namespace
}  // namespace stowra_test

#endif  // STOWRA_FAILS_ALLOCATIONS
