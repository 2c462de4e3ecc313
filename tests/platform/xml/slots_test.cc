// SPDX-License-Identifier: MIT
// The order of the virtual functions, which is part of the binary interface.

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
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

class RecordingInput final : public IXMLInput {
 public:
  explicit RecordingInput(std::string* record) : record_(record) {}
  ~RecordingInput() override { *record_ += "destroyed "; }

  bool FindElement(const ovrant_ustring&) override { return Record("FindElement"); }
  bool LeaveElement(const ovrant_ustring&) override { return Record("LeaveElement"); }
  bool NextElement(const ovrant_ustring&) override { return Record("NextElement"); }
  bool GetAttribute(const ovrant_ustring&, ovrant_ustring&) override {
    return Record("GetAttribute");
  }
  bool GetElementText(const ovrant_ustring&, ovrant_ustring&) override {
    return Record("GetElementText");
  }
  bool GetElementInt(const ovrant_ustring&, int&) override { return Record("GetElementInt"); }
  bool GetElementBool(const ovrant_ustring&, bool&) override { return Record("GetElementBool"); }

 private:
  bool Record(const char* what) {
    *record_ = what;
    return true;
  }

  std::string* record_;
};

TEST(XmlSlotsTest, OperationsAreInTheirOrder) {
  std::string record;
  RecordingInput input(&record);
  const ovrant_ustring name = "name";
  ovrant_ustring text;
  int number = 0;
  bool flag = false;
  CallSlot<bool, const ovrant_ustring&>(&input, kFindElement, name);
  EXPECT_EQ(record, "FindElement");
  CallSlot<bool, const ovrant_ustring&>(&input, kLeaveElement, name);
  EXPECT_EQ(record, "LeaveElement");
  CallSlot<bool, const ovrant_ustring&>(&input, kNextElement, name);
  EXPECT_EQ(record, "NextElement");
  CallSlot<bool, const ovrant_ustring&, ovrant_ustring&>(&input, kGetAttribute, name, text);
  EXPECT_EQ(record, "GetAttribute");
  CallSlot<bool, const ovrant_ustring&, ovrant_ustring&>(&input, kGetElementText, name, text);
  EXPECT_EQ(record, "GetElementText");
  CallSlot<bool, const ovrant_ustring&, int&>(&input, kGetElementInt, name, number);
  EXPECT_EQ(record, "GetElementInt");
  CallSlot<bool, const ovrant_ustring&, bool&>(&input, kGetElementBool, name, flag);
  EXPECT_EQ(record, "GetElementBool");
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
  const std::string bytes = "<a n='1'><b>1</b></a>";
  IXMLInput* const reader = ovrant::Get_IXMLInput(
      reinterpret_cast<const unsigned char*>(bytes.data()), static_cast<int>(bytes.size()));
  ASSERT_NE(reader, nullptr);
  const ovrant_ustring a = "a";
  const ovrant_ustring b = "b";
  EXPECT_TRUE((CallSlot<bool, const ovrant_ustring&>(reader, kFindElement, a)));
  EXPECT_FALSE((CallSlot<bool, const ovrant_ustring&>(reader, kNextElement, a)));
  ovrant_ustring text;
  EXPECT_TRUE(
      (CallSlot<bool, const ovrant_ustring&, ovrant_ustring&>(reader, kGetElementText, b, text)));
  EXPECT_EQ(text, "1");
  int number = 0;
  EXPECT_TRUE((CallSlot<bool, const ovrant_ustring&, int&>(reader, kGetElementInt, b, number)));
  EXPECT_EQ(number, 1);
  bool flag = false;
  EXPECT_TRUE((CallSlot<bool, const ovrant_ustring&, bool&>(reader, kGetElementBool, b, flag)));
  EXPECT_TRUE(flag);
  EXPECT_TRUE((CallSlot<bool, const ovrant_ustring&>(reader, kLeaveElement, a)));
  CallSlot(reader, kDeletingDestructor);
}

}  // namespace
}  // namespace stowra_test
