// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstddef>
#include <list>

#include "tests/json/text.h"
#include "tests/substitute/member_access.h"

namespace stowra_substitute {

using ovrant::json::Value;

STOWRA_MEMBER(ValueOwned, bool, Value, owned_);
STOWRA_MEMBER(ValueNode, void*, Value, node_);
STOWRA_MEMBER(ValueAllocator, void*, Value, allocator_);
STOWRA_MEMBER(ValueHandles, std::list<Value>, Value, handles_);

}  // namespace stowra_substitute

namespace stowra_test {
namespace {

using stowra_substitute::ValueAllocator;
using stowra_substitute::ValueHandles;
using stowra_substitute::ValueNode;
using stowra_substitute::ValueOwned;

TEST(ValueLayout, HoldsOwnedNodeAllocatorAndHandlesInThisOrder) {
  stowra_substitute::ExpectMembers<Value, bool, void*, void*, std::list<Value>>(
      0, PointerTo(ValueOwned()), PointerTo(ValueNode()), PointerTo(ValueAllocator()),
      PointerTo(ValueHandles()));
}

TEST(DocumentLayout, HoldsOnePointer) { EXPECT_EQ(sizeof(Document), sizeof(void*)); }

}  // namespace

bool IsOwned(const Value& handle) { return handle.*PointerTo(ValueOwned()); }

void* NodeOf(const Value& handle) { return handle.*PointerTo(ValueNode()); }

void* AllocatorOf(const Value& handle) { return handle.*PointerTo(ValueAllocator()); }

std::size_t CountHandles(const Value& handle) { return (handle.*PointerTo(ValueHandles())).size(); }

}  // namespace stowra_test
