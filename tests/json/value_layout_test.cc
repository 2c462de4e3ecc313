// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstddef>
#include <list>

#include "common_stowraapi/json/document.h"
#include "common_stowraapi/json/value.h"
#include "tests/json/text.h"

namespace stowra_test {
namespace {

using ovrant::json::Value;

struct Owned {
  using Pointer = bool Value::*;
  friend Pointer Member(Owned);
};
struct Node {
  using Pointer = void* Value::*;
  friend Pointer Member(Node);
};
struct Allocator {
  using Pointer = void* Value::*;
  friend Pointer Member(Allocator);
};
struct Handles {
  using Pointer = std::list<Value> Value::*;
  friend Pointer Member(Handles);
};

// An explicit instantiation may name private members. Each one defines Member for its tag.
template <typename Tag, typename Tag::Pointer kMember>
struct Expose {
  friend typename Tag::Pointer Member(Tag) { return kMember; }
};
template struct Expose<Owned, &Value::owned_>;
template struct Expose<Node, &Value::node_>;
template struct Expose<Allocator, &Value::allocator_>;
template struct Expose<Handles, &Value::handles_>;

template <typename Tag>
std::size_t OffsetOf(Tag tag) {
  const Value value;
  return static_cast<std::size_t>(reinterpret_cast<const char*>(&(value.*Member(tag))) -
                                  reinterpret_cast<const char*>(&value));
}

TEST(ValueLayout, HoldsOwnedNodeAllocatorAndHandlesInThisOrder) {
  constexpr std::size_t kPointer = sizeof(void*);
  EXPECT_EQ(OffsetOf(Owned()), 0U);
  EXPECT_EQ(OffsetOf(Node()), kPointer);
  EXPECT_EQ(OffsetOf(Allocator()), 2 * kPointer);
  EXPECT_EQ(OffsetOf(Handles()), 3 * kPointer);
  EXPECT_EQ(sizeof(Value), 3 * kPointer + sizeof(std::list<Value>));
}

TEST(DocumentLayout, HoldsOnePointer) { EXPECT_EQ(sizeof(ovrant::json::Document), sizeof(void*)); }

}  // namespace

bool IsOwned(const Value& handle) { return handle.*Member(Owned()); }

void* NodeOf(const Value& handle) { return handle.*Member(Node()); }

void* AllocatorOf(const Value& handle) { return handle.*Member(Allocator()); }

std::size_t CountHandles(const Value& handle) { return (handle.*Member(Handles())).size(); }

}  // namespace stowra_test
