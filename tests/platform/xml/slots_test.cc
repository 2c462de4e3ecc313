// SPDX-License-Identifier: MIT
// The order of the virtual functions, which is part of the binary interface.

#include <gtest/gtest.h>

#include <new>
#include <string>

#include "tests/platform/xml/document.h"
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

class RecordingInput final : public IXMLInput {
 public:
  explicit RecordingInput(std::string* record) : record_(record) {}
  ~RecordingInput() override { *record_ += "destroyed "; }

  bool FindElement(Name) override { return Record("FindElement "); }
  bool LeaveElement(Name) override { return Record("LeaveElement "); }
  bool NextElement(Name) override { return Record("NextElement "); }
  bool GetAttribute(Name, ovrant_ustring&) override { return Record("GetAttribute "); }
  bool GetElementText(Name, ovrant_ustring&) override { return Record("GetElementText "); }
  bool GetElementInt(Name, int&) override { return Record("GetElementInt "); }
  bool GetElementBool(Name, bool&) override { return Record("GetElementBool "); }

 private:
  bool Record(const char* what) {
    *record_ += what;
    return true;
  }

  std::string* record_;
};

bool Move(IXMLInput* input, Slot slot, Name name) {
  return CallSlot<bool, Name>(input, slot, name);
}

template <typename Value>
bool Get(IXMLInput* input, Slot slot, Name name, Value& value) {
  return CallSlot<bool, Name, Value&>(input, slot, name, value);
}

TEST(XmlSlotsTest, OperationsAreInTheirOrder) {
  std::string record;
  RecordingInput input(&record);
  ovrant_ustring text;
  int number = 0;
  bool flag = false;
  for (const Slot slot : {kFindElement, kLeaveElement, kNextElement}) Move(&input, slot, "name");
  Get(&input, kGetAttribute, "name", text);
  Get(&input, kGetElementText, "name", text);
  Get(&input, kGetElementInt, "name", number);
  Get(&input, kGetElementBool, "name", flag);
  EXPECT_EQ(record,
            "FindElement LeaveElement NextElement GetAttribute GetElementText "
            "GetElementInt GetElementBool ");
}

TEST(XmlSlotsTest, DestructorsComeFirst) {
  std::string record;
  alignas(RecordingInput) unsigned char place[sizeof(RecordingInput)];
  CallSlot(::new (place) RecordingInput(&record), kDestructor);
  EXPECT_EQ(record, "destroyed ");
  CallSlot(new RecordingInput(&record), kDeletingDestructor);
  EXPECT_EQ(record, "destroyed destroyed ");
}

TEST(XmlSlotsTest, TheReaderHasTheSameTable) {
  Bytes bytes("<a n='1'><b>1</b></a>");
  IXMLInput* const reader = ovrant::Get_IXMLInput(bytes.data(), bytes.length());
  ASSERT_NE(reader, nullptr);
  EXPECT_TRUE(Move(reader, kFindElement, "a"));
  EXPECT_FALSE(Move(reader, kNextElement, "a"));
  ovrant_ustring text;
  EXPECT_TRUE(Get(reader, kGetElementText, "b", text));
  EXPECT_EQ(text, "1");
  int number = 0;
  EXPECT_TRUE(Get(reader, kGetElementInt, "b", number));
  EXPECT_EQ(number, 1);
  bool flag = false;
  EXPECT_TRUE(Get(reader, kGetElementBool, "b", flag));
  EXPECT_TRUE(flag);
  EXPECT_TRUE(Move(reader, kLeaveElement, "a"));
  CallSlot(reader, kDeletingDestructor);
}

}  // namespace
}  // namespace stowra_test
