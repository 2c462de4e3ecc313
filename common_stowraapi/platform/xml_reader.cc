#include "common_stowraapi/platform/xml_reader.h"

#include <algorithm>

#include "common_stowraapi/platform/ustring_units.h"
#include "common_stowraapi/platform/utf_conversion.h"
#include "common_stowraapi/platform/xml_values.h"

namespace ovrant::xml {

using utils::ovrant_ustring;
using utils::UstringUnits;

namespace {

// Tells the names of one vocabulary apart by what differs between them: the end.
std::size_t Slot(std::u16string_view name, std::size_t slots) {
  constexpr std::size_t kTail = 3;
  std::size_t sum = name.size();
  for (std::size_t i = name.size() - std::min(name.size(), kTail); i < name.size(); ++i) {
    sum = 31 * sum + name[i];
  }
  return sum % slots;
}

ovrant_ustring ToText(std::string_view utf8) { return {utf8.data(), utf8.size()}; }

}  // namespace

bool Reader::FindElement(const ovrant_ustring& name) {
  return MoveTo(current_, current_ + 1, name);
}

bool Reader::LeaveElement(const ovrant_ustring& name) {
  if (current_ == kDocument || tree_->element(current_).name != FindName(name)) return false;
  current_ = tree_->element(current_).parent;
  return true;
}

bool Reader::NextElement(const ovrant_ustring& name) {
  if (current_ == kDocument) return false;
  const Element& element = tree_->element(current_);
  return MoveTo(element.parent, element.end, name);
}

bool Reader::GetAttribute(const ovrant_ustring& name, ovrant_ustring& value) {
  const Attribute* const attribute = tree_->FindAttribute(current_, FindName(name));
  if (attribute == nullptr) return false;
  value = ToText({attribute->value, attribute->size});
  return true;
}

bool Reader::GetElementText(const ovrant_ustring& name, ovrant_ustring& value) {
  const std::optional<std::string_view> text = FindText(name);
  if (!text) return false;
  value = ToText(*text);
  return true;
}

bool Reader::GetElementInt(const ovrant_ustring& name, int& value) {
  const std::optional<std::string_view> text = FindText(name);
  const std::optional<int> number = text ? ToInt(*text) : std::nullopt;
  if (!number) return false;
  value = *number;
  return true;
}

bool Reader::GetElementBool(const ovrant_ustring& name, bool& value) {
  const std::optional<std::string_view> text = FindText(name);
  const std::optional<bool> answer = text ? ToBool(*text) : std::nullopt;
  if (!answer) return false;
  value = *answer;
  return true;
}

// kNoName if it is not in the document.
NameId Reader::FindName(const ovrant_ustring& name) {
  const std::u16string_view units = UstringUnits::Of(name);
  AskedName& asked = asked_[Slot(units, asked_.size())];
  if (asked.text != units) {
    const std::string utf8 = name.utf8();
    // A lone surrogate has become another character, which a document may well hold.
    const bool is_text = utils::Utf8ToUtf16(utf8) == units;
    const NameId id = is_text ? tree_->names().Find(utf8) : kNoName;
    asked.text = units;
    asked.id = id;
  }
  return asked.id;
}

// Makes the first child of `parent` of that name at or behind `from` current.
bool Reader::MoveTo(ElementId parent, ElementId from, const ovrant_ustring& name) {
  const NameId id = FindName(name);
  if (id == kNoName) return false;
  const ElementId found = children_.Find(parent, from, id);
  if (found == tree_->element(parent).end) return false;
  current_ = found;
  return true;
}

// The text of the first child of that name.
std::optional<std::string_view> Reader::FindText(const ovrant_ustring& name) {
  const NameId id = FindName(name);
  if (id == kNoName) return std::nullopt;
  const ElementId child = children_.Find(current_, current_ + 1, id);
  if (child == tree_->element(current_).end) return std::nullopt;
  return Trim(tree_->Text(tree_->element(child)));
}

}  // namespace ovrant::xml
