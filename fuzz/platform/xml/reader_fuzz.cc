// SPDX-License-Identifier: MIT
// A walk through an XML document beside the same walk through a second tree of it. Input: one byte
// for each step, a NUL, the document. A step's operation is its lower three bits, and its name is
// that number among the document's own and a few that none has.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common_stowraapi/platform/ustring.h"
#include "common_stowraapi/platform/xml_input.h"
#include "fuzz/platform/xml/tree.h"
#include "fuzz/support/check.h"
#include "fuzz/support/input.h"

namespace {

using ovrant::IXMLInput;
using ovrant::utils::ovrant_ustring;
using stowra_fuzz::XmlNode;
using stowra_fuzz::XmlTree;

constexpr char kUntouched[] = "untouched";

class Walk {
 public:
  Walk(IXMLInput& reader, const XmlTree& tree)
      : reader_(reader), names_(tree.Names()), current_(&tree.document()) {
    names_.insert(names_.end(), {"", ":", "absent", "a", "\xEF\xBF\xBD"});
  }

  void Step(unsigned int operation, std::size_t number) {
    name_ = names_[number % names_.size()];
    asked_ = ovrant_ustring(name_.data(), name_.size());
    switch (operation) {
      case 0:
        return Move(reader_.FindElement(asked_), current_->Child(name_));
      case 1:
        return Move(reader_.NextElement(asked_), current_->NextSibling(name_));
      case 2:
        return Leave();
      case 3:
        return CheckAttribute();
      case 4:
        return CheckText();
      case 5:
        return CheckInt();
      case 6:
        return CheckBool();
      default:
        return LookForHalfCharacter();
    }
  }

 private:
  void Move(bool moved, const XmlNode* target) {
    FUZZ_CHECK(moved == (target != nullptr));
    if (target != nullptr) current_ = target;
  }

  void Leave() {
    const bool may_leave = current_->parent != nullptr && current_->name == name_;
    Move(reader_.LeaveElement(asked_), may_leave ? current_->parent : nullptr);
  }

  void CheckAttribute() {
    ovrant_ustring value(kUntouched);
    const bool found = reader_.GetAttribute(asked_, value);
    const std::optional<std::string> expected = current_->Attribute(name_);
    FUZZ_CHECK(found == expected.has_value());
    FUZZ_CHECK(value.utf8() == expected.value_or(kUntouched));
  }

  void CheckText() {
    ovrant_ustring value(kUntouched);
    const bool found = reader_.GetElementText(asked_, value);
    const std::optional<std::string> expected = current_->ChildText(name_);
    FUZZ_CHECK(found == expected.has_value());
    FUZZ_CHECK(value.utf8() == expected.value_or(kUntouched));
  }

  void CheckInt() {
    constexpr int kBefore = -77;
    int value = kBefore;
    const bool found = reader_.GetElementInt(asked_, value);
    const std::optional<int> expected = current_->ChildInt(name_);
    FUZZ_CHECK(found == expected.has_value());
    FUZZ_CHECK(value == expected.value_or(kBefore));
  }

  void CheckBool() {
    for (const bool before : {false, true}) {
      bool value = before;
      const bool found = reader_.GetElementBool(asked_, value);
      const std::optional<bool> expected = current_->ChildBool(name_);
      FUZZ_CHECK(found == expected.has_value());
      FUZZ_CHECK(value == expected.value_or(before));
    }
  }

  // A name with half a character is no element's, though U+FFFD in its place might be.
  void LookForHalfCharacter() {
    const unsigned long mark = asked_.find(ovrant_ustring("\xEF\xBF\xBD"), 0);
    if (mark == ovrant_ustring::npos) return;
    asked_[mark] = 0xD800;
    FUZZ_CHECK(!reader_.FindElement(asked_));
    FUZZ_CHECK(!reader_.NextElement(asked_));
    FUZZ_CHECK(!reader_.LeaveElement(asked_));
    ovrant_ustring value(kUntouched);
    FUZZ_CHECK(!reader_.GetAttribute(asked_, value));
    FUZZ_CHECK(!reader_.GetElementText(asked_, value));
    FUZZ_CHECK(value == kUntouched);
  }

  IXMLInput& reader_;
  std::vector<std::string> names_;
  const XmlNode* current_;
  std::string name_;
  ovrant_ustring asked_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  stowra_fuzz::Input input(data, size);
  const std::string_view steps = input.Until('\0');
  const std::string_view document = input.Rest();

  const XmlTree tree(document);
  IXMLInput* reader = ovrant::Get_IXMLInput(reinterpret_cast<const unsigned char*>(document.data()),
                                            static_cast<int>(document.size()));
  if (tree.verdict() != XmlTree::Verdict::kEither) {
    FUZZ_CHECK((reader != nullptr) == (tree.verdict() == XmlTree::Verdict::kOpened));
  } else if (steps.size() % 2 == 0) {
    ovrant::End_IXMLInput(&reader);
  }
  if (tree.verdict() == XmlTree::Verdict::kOpened) {
    Walk walk(*reader, tree);
    for (const char step : steps) {
      const auto byte = static_cast<unsigned char>(step);
      walk.Step(byte & 7U, byte >> 3U);
    }
  }
  ovrant::End_IXMLInput(&reader);
  FUZZ_CHECK(reader == nullptr);
  return 0;
}
