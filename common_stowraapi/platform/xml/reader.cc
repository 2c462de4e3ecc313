#include "common_stowraapi/platform/xml/reader.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "common_stowraapi/platform/text/ascii_run.h"
#include "common_stowraapi/platform/text/ustring_units.h"
#include "common_stowraapi/platform/text/utf_conversion.h"
#include "common_stowraapi/platform/xml/values.h"

namespace ovrant::xml {

using utils::ovrant_ustring;
using utils::UstringUnits;

namespace {

constexpr std::size_t kTailSize = 4;

// The last units of a name: what tells those of one vocabulary apart.
std::uint64_t Tail(std::u16string_view name) {
  std::uint64_t tail = 0;
  switch (name.size()) {
    case 0:
      return 0;
    case 1:
      return name[0];
    case 2:
    case 3:
      return std::uint64_t{name[0]} << 32 | std::uint64_t{name[1]} << 16 | name.back();
    default:
      std::memcpy(&tail, name.data() + name.size() - kTailSize, sizeof(tail));
      return tail;
  }
}

// Whether two names of one size and tail are equal.
bool BeginAlike(std::u16string_view a, std::u16string_view b) {
  return a.size() <= kTailSize || std::memcmp(a.data(), b.data(), a.size() * sizeof(char16_t)) == 0;
}

// Most texts are short and ASCII: those need no memory if `text` has enough.
void Assign(std::string_view utf8, ovrant_ustring& text) {
  constexpr std::size_t kShort = 256;
  char16_t units[kShort];
  if (utf8.size() <= kShort && utils::WidenAscii(utf8.data(), utf8.size(), units) == utf8.size()) {
    UstringUnits::Set({units, utf8.size()}, text);
  } else {
    text = ovrant_ustring(utf8.data(), utf8.size());
  }
}

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
  Assign({attribute->value, attribute->size}, value);
  return true;
}

bool Reader::GetElementText(const ovrant_ustring& name, ovrant_ustring& value) {
  const std::optional<std::string_view> text = FindText(name);
  if (!text) return false;
  Assign(*text, value);
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
  const std::uint64_t tail = Tail(units);
  const std::size_t slot = tail * 0x9E3779B97F4A7C15 >> (64 - kAskedBits);
  const AskedName& asked = asked_[slot];
  const bool is_known =
      asked.tail == tail && asked.text.size() == units.size() && BeginAlike(asked.text, units);
  return is_known ? asked.id : AskFrom(slot, name);
}

// Looks for a name that is not remembered in the slot where it belongs: behind that, and then in
// the document.
NameId Reader::AskFrom(std::size_t slot, const ovrant_ustring& name) {
  const std::u16string_view units = UstringUnits::Of(name);
  while (!asked_[slot].text.empty()) {
    slot = (slot + 1) % asked_.size();
    if (asked_[slot].text == units) return asked_[slot].id;
  }
  const std::string utf8 = name.utf8();
  // A lone surrogate has become another character, which a document may well hold.
  const bool is_text = utils::Utf8ToUtf16(utf8) == units;
  const NameId id = is_text ? tree_->names().Find(utf8) : kNoName;
  asked_[slot] = {std::u16string(units), Tail(units), id};
  if (++asked_count_ == asked_.size() / 2) {
    asked_.fill(AskedName());
    asked_count_ = 0;
  }
  return id;
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
