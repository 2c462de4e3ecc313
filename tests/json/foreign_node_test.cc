// SPDX-License-Identifier: MIT
// Nodes and pools that a caller makes with RapidJSON itself.

#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <string>

#include "common_stowraapi/json/value.h"
#include "tests/json/text.h"
#include "tests/json/value_fields.h"

namespace stowra_test {
namespace {

using ovrant::json::Value;

using Pool = rapidjson::MemoryPoolAllocator<rapidjson::CrtAllocator>;
using Node = rapidjson::GenericValue<rapidjson::UTF8<char>, Pool>;

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
