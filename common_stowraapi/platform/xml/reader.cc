// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/xml/reader.h"

#include <string>

#include "common_stowraapi/platform/xml/values.h"

namespace ovrant::xml {

using utils::ovrant_ustring;

namespace {

constexpr std::string_view kReplacementCharacter = "\xEF\xBF\xBD";

ovrant_ustring ToUstring(std::string_view utf8) { return {utf8.data(), utf8.size()}; }

}  // namespace

bool Reader::FindElement(const ovrant_ustring& name) {
  return MoveToChild(current_, name, current_);
}

bool Reader::LeaveElement(const ovrant_ustring& name) {
  if (current_ == kDocument || tree_->Name(current_) != FindName(name)) return false;
  current_ = tree_->Parent(current_);
  return true;
}

bool Reader::NextElement(const ovrant_ustring& name) {
  return current_ != kDocument && MoveToChild(tree_->Parent(current_), name, current_);
}

bool Reader::GetAttribute(const ovrant_ustring& name, ovrant_ustring& value) {
  const auto attribute = tree_->FindAttribute(current_, FindName(name));
  if (attribute) value = ToUstring(*attribute);
  return attribute.has_value();
}

bool Reader::GetElementText(const ovrant_ustring& name, ovrant_ustring& value) {
  const auto text = FindText(name);
  if (text) value = ToUstring(*text);
  return text.has_value();
}

bool Reader::GetElementInt(const ovrant_ustring& name, int& value) {
  const auto text = FindText(name);
  const auto number = text ? ToInt(*text) : std::nullopt;
  if (number) value = *number;
  return number.has_value();
}

bool Reader::GetElementBool(const ovrant_ustring& name, bool& value) {
  const auto text = FindText(name);
  const auto answer = text ? ToBool(*text) : std::nullopt;
  if (answer) value = *answer;
  return answer.has_value();
}

NameId Reader::FindName(const ovrant_ustring& name) const {
  const std::string utf8 = name.utf8();
  // A lone surrogate has become a replacement character, which a name in the document may hold.
  const bool is_doubtful = utf8.find(kReplacementCharacter) != std::string::npos;
  if (is_doubtful && ToUstring(utf8) != name) return kNoName;
  return tree_->FindName(utf8);
}

// Moves to the first child of `parent` of that name behind the element `after`.
bool Reader::MoveToChild(ElementId parent, const ovrant_ustring& name, ElementId after) {
  const auto child = tree_->FindChild(parent, FindName(name), after);
  if (child) current_ = *child;
  return child.has_value();
}

// The text of the first child of that name.
std::optional<std::string_view> Reader::FindText(const ovrant_ustring& name) const {
  const auto child = tree_->FindChild(current_, FindName(name), current_);
  return child ? std::optional(Trim(tree_->Text(*child))) : std::nullopt;
}

}  // namespace ovrant::xml
