// SPDX-License-Identifier: MIT
// Documents and values.

#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <functional>
#include <new>
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

const char kLongText[] = "a text that is far too long to be kept inside a node";

// A tree with a full array and a full object, an item to put there, and a pool with no room left.
struct FullTree {
  FullTree() {
    EXPECT_TRUE(document.Load(Text("{\"array\":[0" + Numbered(1, 100, ",", "") +
                                   "],\"object\":{\"m0\":0" + Numbered(1, 100, ",\"m", "\":0") +
                                   "},\"filler\":\"" + std::string(65'000, 'x') + "\"}")));
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
  const auto push_back = [](FullTree& tree) { tree.array_handle.PushBack(tree.item); };
  const auto check = [&](FullTree& tree) {
    tree.ExpectUnchanged();
    push_back(tree);
    EXPECT_EQ(tree.array_handle.Size(), 101U);
    EXPECT_EQ(tree.array_handle[100].GetString().utf8(), kLongText);
    EXPECT_EQ(tree.array_handle[99].GetInt(), 99);
    EXPECT_TRUE(tree.item.IsNull());
  };
  EXPECT_GE(FailThrowing<FullTree>(push_back, check), 1);
}

TEST(JsonAllocationTest, OfAddMemberLeavesTheTreeAsItWas) {
  const auto add = [](FullTree& tree) { tree.object_handle.AddMember(kLongText, tree.item); };
  const auto check = [&](FullTree& tree) {
    tree.ExpectUnchanged();
    add(tree);
    EXPECT_EQ(tree.object_handle.Size(), 101U);
    EXPECT_EQ(tree.object_handle[kLongText].GetString().utf8(), kLongText);
    EXPECT_EQ(tree.object_handle["m99"].GetInt(), 0);
    EXPECT_TRUE(tree.item.IsNull());
  };
  EXPECT_GE(FailThrowing<FullTree>(add, check), 3);
}

// RapidJSON allocates the room for the first member in another way.
struct EmptyObject {
  EmptyObject() {
    object.SetObject();
    EXPECT_TRUE(document.Load(Text("{\"f\":\"" + std::string(65'400, 'x') + "\"}")));
  }

  Document document;
  Value object = document.MakeValue();
};

TEST(JsonAllocationTest, OfAFirstMemberLeavesTheObjectEmpty) {
  const auto add = [](EmptyObject& state) { state.object.AddMember("a", Value()); };
  const auto check = [&](EmptyObject& state) {
    EXPECT_EQ(state.object.Size(), 0U);
    add(state);
    EXPECT_TRUE(state.object.HasMember("a"));
  };
  EXPECT_GE(FailThrowing<EmptyObject>(add, check), 1);
}

// Other changes, and reading, throw and leave the tree and the handles as they were.
TEST(JsonAllocationTest, OfAnyCallLeavesTheTreeAsItWas) {
  const ovrant_ustring name(kLongText);
  const ovrant_ustring text = Text(std::string(70'000, 'y'));
  const struct {
    const char* call;
    std::function<void(FullTree&)> work;
    long least;
  } rows[] = {
      {"PushBack", [](FullTree& tree) { tree.array_handle.PushBack(tree.array_handle[7]); }, 2},
      {"SetString", [&](FullTree& tree) { tree.array_handle.SetString(text); }, 3},
      {"element of a value", [](FullTree& tree) { tree.array_handle[0]; }, 2},
      {"GetString", [](FullTree& tree) { tree.item.GetString(); }, 1},
      {"HasMember of a value", [&](FullTree& tree) { tree.object_handle.HasMember(name); }, 1},
      {"member of a value", [&](FullTree& tree) { tree.object_handle[name]; }, 1},
      {"member", [&](FullTree& tree) { tree.document[name]; }, 1},
      {"HasMember", [&](FullTree& tree) { tree.document.HasMember(name); }, 1},
      {"MemberAt", [](FullTree& tree) { tree.document.MemberAt(0); }, 1},
      {"MakeValue", [](FullTree& tree) { tree.document.MakeValue(); }, 1}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.call);
    const auto check = [&](FullTree& tree) {
      tree.ExpectUnchanged();
      row.work(tree);
    };
    EXPECT_GE(FailThrowing<FullTree>(row.work, check), row.least);
  }
}

TEST(JsonAllocationTest, OfLoadLeavesTheRootNull) {
  const ovrant_ustring text = Text("{\"long\":\"" + std::string(100'000, 'x') + "\",\"list\":[" +
                                   Numbered(0, 5000, "", ",[],") + "{\"a\":null}]}");
  const auto load = [&](FullTree& tree) { ASSERT_TRUE(tree.document.Load(text)); };
  const auto check = [&](FullTree& tree) {
    EXPECT_EQ(tree.document.MemberCount(), 0U);
    EXPECT_EQ(Written(tree.document), "null");
    EXPECT_TRUE(tree.document.Load(text));
  };
  EXPECT_GE(FailThrowing<FullTree>(load, check), 10);
}

TEST(JsonAllocationTest, OfToStringLeavesTheTextAsItWas) {
  const auto write = [](FullTree& tree) {
    ovrant_ustring out("before");
    try {
      tree.document.ToString(out);
    } catch (const std::bad_alloc&) {
      EXPECT_EQ(out.utf8(), "before");
      throw;
    }
  };
  EXPECT_GE(FailThrowing<FullTree>(write, &FullTree::ExpectUnchanged), 10);
}

TEST(JsonAllocationTest, OfANameIsThrown) {
  // A name too long for its node.
  struct LongName {
    LongName() { EXPECT_TRUE(document.Load(Text("{\"" + std::string(300, 'n') + "\":1}"))); }
    Document document;
  };
  const auto read = [](LongName& state) { state.document.MemberNameAt(0); };
  const auto check = [](LongName& state) {
    EXPECT_EQ(state.document.MemberNameAt(0).length(), 300U);
  };
  EXPECT_GE(FailThrowing<LongName>(read, check), 1);
}

TEST(JsonAllocationTest, OfATextThatIsNoJsonIsThrownToo) {
  const ovrant_ustring text = Text("[\"" + std::string(70'000, 'x') + "\",\"\\u20AC\", 1e]");
  const auto load = [&](FullTree& tree) { EXPECT_FALSE(tree.document.Load(text)); };
  const auto check = [&](FullTree& tree) {
    EXPECT_EQ(Written(tree.document), "null");
    load(tree);
  };
  EXPECT_GE(FailThrowing<FullTree>(load, check), 3);
}

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
  EXPECT_EQ(FailThrowing<FullTree>(set), 0);
}

TEST(JsonAllocationTest, OfADocumentLeaksNothing) {
  EXPECT_GE(FailCall([] { Document().MakeValue(); }), 3);
}

// Which handle frees which memory. Each test ends with none left.
class JsonOwnership : public testing::Test {
 protected:
  void TearDown() override { EXPECT_EQ(watch_.blocks(), 0); }

  Document document_;
  const MemoryWatch watch_;
};

TEST_F(JsonOwnership, CopyTakesTheNode) {
  Value made = document_.MakeValue();
  made.SetInt(5);
  EXPECT_EQ(watch_.blocks(), 1);
  {
    const Value copy(made);
    EXPECT_EQ(copy.GetInt(), 5);
    EXPECT_EQ(watch_.blocks(), 1);
  }
  EXPECT_EQ(watch_.blocks(), 0);
}

TEST_F(JsonOwnership, AssignmentFreesTheOldNodeAndTakesTheNew) {
  Value target = document_.MakeValue();
  Value source = document_.MakeValue();
  EXPECT_EQ(watch_.blocks(), 2);
  EXPECT_EQ(&(target = source), &target);
  EXPECT_EQ(watch_.blocks(), 1);
  source.SetInt(5);
  EXPECT_EQ(target.GetInt(), 5);
  source = Value();
  EXPECT_EQ(watch_.blocks(), 1);
  target = Value();
  EXPECT_EQ(watch_.blocks(), 0);
}

TEST_F(JsonOwnership, HandleMayTakeTheNodeThatItsChildOwns) {
  Value array = document_.MakeValue();
  array.SetArray();
  array[0] = document_.MakeValue();
  EXPECT_EQ(watch_.blocks(), 3);
  Value& element = array[1];
  element = document_.MakeValue();
  element.SetInt(5);
  array = element;
  EXPECT_EQ(array.GetInt(), 5);
  EXPECT_EQ(watch_.blocks(), 1);
}

TEST_F(JsonOwnership, AssignmentOfTheSameNodeKeepsIt) {
  const Value first = document_.MakeValue();
  Value second(first);
  second.SetInt(6);
  second = first;
  EXPECT_EQ(first.GetInt(), 6);
  EXPECT_EQ(watch_.blocks(), 1);
}

TEST_F(JsonOwnership, HandlesAreKeptUntilTheAssignment) {
  ValueDocument document("[1]");
  Value array = document.value();
  const MemoryWatch watch;
  array[0];
  array[0];
  EXPECT_EQ(watch.blocks(), 2);
  array = Value();
  EXPECT_EQ(watch.blocks(), 0);
}

TEST_F(JsonOwnership, DocumentKeepsOneHandleForEachCall) {
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
TEST_F(JsonOwnership, OwnerFreesAForeignNode) {
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
