#include "common_stowraapi/platform/xml_tree.h"

#include <algorithm>
#include <limits>
#include <new>

#include "common_stowraapi/platform/xml_child_index.h"

namespace ovrant::xml {

Tree::Tree(std::size_t budget, std::size_t text_size)
    : budget_(budget),
      names_(budget_),
      elements_(budget_, ChildIndex::kBytesPerChild),
      attributes_(budget_),
      values_(budget_) {
  budget_.Take(text_size);
  text_.reserve(text_size);
  elements_.Append() = {kNoName, kDocument, 0, 0, 0, 0};
}

void Tree::BeginElement(const char* name) {
  const NameId id = names_.Intern(name);
  const auto text_begin = static_cast<std::uint32_t>(text_.size());
  elements_.Append() = {id, open_, 0, attributes_.size(), text_begin, text_begin};
  open_ = elements_.size() - 1;
}

void Tree::AddAttribute(const char* name, std::string_view value) {
  const NameId id = names_.Intern(name);
  const std::string_view copy = values_.Copy(value);
  attributes_.Append() = {id, static_cast<std::uint32_t>(copy.size()), copy.data()};
}

void Tree::AddText(std::string_view text) {
  const std::size_t size = text_.size() + text.size();
  if (size > text_.capacity()) {
    // Positions in the text have 32 bits.
    if (size > std::numeric_limits<std::uint32_t>::max()) throw std::bad_alloc();
    const std::size_t old_capacity = text_.capacity();
    const std::size_t capacity = std::max(size, old_capacity + old_capacity / 2);
    budget_.Take(capacity);
    text_.reserve(capacity);
    budget_.Return(old_capacity);
  }
  text_.append(text);
}

void Tree::EndElement() {
  Element& element = elements_[open_];
  element.end = elements_.size();
  element.text_end = static_cast<std::uint32_t>(text_.size());
  open_ = element.parent;
}

void Tree::EndDocument() {
  EndElement();
  // Where the attributes of the last element end.
  elements_.Append() = {kNoName, kDocument, 0, attributes_.size(), 0, 0};
}

std::string_view Tree::Text(const Element& element) const {
  const std::string_view all = text_;
  return all.substr(element.text_begin, element.text_end - element.text_begin);
}

const Attribute* Tree::FindAttribute(ElementId id, NameId name) const {
  const std::uint32_t end = elements_[id + 1].attributes;
  for (std::uint32_t i = elements_[id].attributes; i < end; ++i) {
    if (attributes_[i].name == name) return &attributes_[i];
  }
  return nullptr;
}

}  // namespace ovrant::xml
