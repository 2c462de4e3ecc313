#include "common_stowraapi/platform/xml/tree.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <new>

#include "common_stowraapi/platform/xml/child_index.h"
#include "common_stowraapi/platform/xml/large_pages.h"

namespace ovrant::xml {

Tree::Tree(std::size_t budget, std::uint32_t text_size)
    : budget_(budget),
      names_(budget_),
      elements_(budget_, ChildIndex::kBytesPerChild),
      attributes_(budget_),
      values_(budget_) {
  GrowText(text_size);
  elements_.Append() = {kNoName, kDocument, 0, 0, 0, 0};
}

void Tree::BeginElement(const char* name) {
  const NameId id = names_.Intern(name);
  elements_.Append() = {id, open_, 0, attributes_.size(), text_size_, text_size_};
  open_ = elements_.size() - 1;
}

void Tree::AddAttribute(const char* name, std::string_view value) {
  const NameId id = names_.Intern(name);
  const std::string_view copy = values_.Copy(value);
  attributes_.Append() = {id, static_cast<std::uint32_t>(copy.size()), copy.data()};
}

void Tree::EndElement() {
  Element& element = elements_[open_];
  element.end = elements_.size();
  element.text_end = text_size_;
  open_ = element.parent;
}

void Tree::EndDocument() {
  EndElement();
  // Where the attributes of the last element end.
  elements_.Append() = {kNoName, kDocument, 0, attributes_.size(), 0, 0};
}

// Makes room for `size` more bytes.
void Tree::GrowText(std::size_t size) {
  // Positions in the text have 32 bits.
  constexpr std::size_t kLargest = std::numeric_limits<std::uint32_t>::max();
  if (size > kLargest - text_size_) throw std::bad_alloc();
  const std::size_t grown = std::size_t{text_capacity_} + text_capacity_ / 2;
  const std::size_t capacity = std::max(text_size_ + size, std::min(grown, kLargest));
  budget_.Take(capacity - text_capacity_);
  // What is large enough to matter moves without a copy.
  void* const moved = std::realloc(text_.get(), capacity);
  if (moved == nullptr) throw std::bad_alloc();
  utils::PreferLargePages(moved, capacity);
  static_cast<void>(text_.release());
  text_.reset(static_cast<char*>(moved));
  text_capacity_ = static_cast<std::uint32_t>(capacity);
}

std::string_view Tree::Text(const Element& element) const {
  return {text_.get() + element.text_begin, element.text_end - element.text_begin};
}

const Attribute* Tree::FindAttribute(ElementId id, NameId name) const {
  const std::uint32_t end = elements_[id + 1].attributes;
  for (std::uint32_t i = elements_[id].attributes; i < end; ++i) {
    if (attributes_[i].name == name) return &attributes_[i];
  }
  return nullptr;
}

}  // namespace ovrant::xml
