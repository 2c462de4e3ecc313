// SPDX-License-Identifier: MIT
// The order of the virtual functions, which is part of the binary interface.

#include <gtest/gtest.h>

#include <new>

#include "tests/platform/xml/document.h"
#include "tests/support/failing_malloc.h"
#include "tests/support/slots.h"

namespace stowra_test {
namespace {

using ovrant::IXMLInput;
using ovrant::utils::ovrant_ustring;

enum Slot {
  kDestructor,
  kDeletingDestructor,
  kFindElement,
  kLeaveElement,
  kNextElement,
  kGetAttribute,
  kGetElementText,
  kGetElementInt,
  kGetElementBool,
};

using Name = const ovrant_ustring&;

bool Move(IXMLInput* input, Slot slot, Name name) {
  return CallSlot<bool, Name>(input, slot, name);
}

template <typename Value>
bool Get(IXMLInput* input, Slot slot, Name name, Value& value) {
  return CallSlot<bool, Name, Value&>(input, slot, name, value);
}

TEST(XmlSlotsTest, OperationsAreInTheirOrder) {
  Bytes bytes("<a n='attribute'><n>7</n><f>true</f></a>");
  IXMLInput* const reader = ovrant::Get_IXMLInput(bytes.data(), bytes.length());
  ASSERT_NE(reader, nullptr);
  EXPECT_TRUE(Move(reader, kFindElement, "a"));
  EXPECT_FALSE(Move(reader, kNextElement, "a"));
  ovrant_ustring text;
  EXPECT_TRUE(Get(reader, kGetAttribute, "n", text));
  EXPECT_EQ(text, "attribute");
  EXPECT_TRUE(Get(reader, kGetElementText, "n", text));
  EXPECT_EQ(text, "7");
  int number = 0;
  EXPECT_TRUE(Get(reader, kGetElementInt, "n", number));
  EXPECT_EQ(number, 7);
  bool flag = false;
  EXPECT_TRUE(Get(reader, kGetElementBool, "f", flag));
  EXPECT_TRUE(flag);
  EXPECT_TRUE(Move(reader, kLeaveElement, "a"));
  CallSlot(reader, kDeletingDestructor);
}

#ifdef STOWRA_FAILS_ALLOCATIONS

TEST(XmlSlotsTest, DestructorsComeFirst) {
  Bytes bytes("<a/>");
  const MemoryWatch watch;
  IXMLInput* const reader = ovrant::Get_IXMLInput(bytes.data(), bytes.length());
  CallSlot(reader, kDestructor);
  EXPECT_EQ(watch.blocks(), 1);
  ::operator delete(reader);
  CallSlot(ovrant::Get_IXMLInput(bytes.data(), bytes.length()), kDeletingDestructor);
  EXPECT_EQ(watch.blocks(), 0);
}

#endif

}  // namespace
}  // namespace stowra_test
