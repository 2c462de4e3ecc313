// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/xml/tree.h"

#include <algorithm>
#include <new>
#include <tuple>
#include <utility>

namespace ovrant::xml {
namespace {

// A node of the map has three pointers and a colour, and a long text lies outside it.
constexpr std::size_t kNameBytes =
    4 * sizeof(void*) + sizeof(std::pair<const std::string, NameId>) + 1;

// A deque's share of memory for each element, besides the element.
constexpr std::size_t kDequeBytes = 2;

// A string that grows takes up to two bytes for each.
constexpr std::size_t kStringGrowth = 2;

std::uint32_t Position(std::size_t value) { return static_cast<std::uint32_t>(value); }

}  // namespace

Tree::Tree(std::size_t memory_limit) : memory_left_(memory_limit) {
  elements_.push_back({kNoName, kDocument, 0, 0, 0});
}

void Tree::BeginElement(const char* name) {
  Take(sizeof(Element) + kDequeBytes + sizeof(Child));
  const std::uint32_t text = Position(text_.size());
  elements_.push_back({Intern(name), open_, Position(attributes_.size()), text, text});
  open_ = Position(elements_.size() - 1);
}

void Tree::AddAttribute(const char* name, std::string_view value) {
  Take(sizeof(Attribute) + kDequeBytes + kStringGrowth * value.size());
  attributes_.push_back({Intern(name), Position(values_.size()), Position(value.size())});
  values_ += value;
}

void Tree::AddText(std::string_view text) {
  Take(kStringGrowth * text.size());
  text_ += text;
}

void Tree::EndElement() {
  Element& element = elements_[open_];
  element.text_end = Position(text_.size());
  open_ = element.parent;
}

void Tree::EndDocument() {
  children_.reserve(elements_.size() - 1);
  for (ElementId id = 1; id < elements_.size(); ++id) {
    children_.push_back({Parent(id), Name(id), id});
  }
  std::sort(children_.begin(), children_.end(), Precedes);
}

NameId Tree::FindName(std::string_view name) const {
  const auto found = names_.find(name);
  return found == names_.end() ? kNoName : found->second;
}

std::string_view Tree::Text(ElementId element) const {
  const std::uint32_t begin = elements_[element].text_begin;
  return std::string_view{text_}.substr(begin, elements_[element].text_end - begin);
}

std::optional<std::string_view> Tree::FindAttribute(ElementId element, NameId name) const {
  const bool is_last = element + 1 == elements_.size();
  const std::size_t end = is_last ? attributes_.size() : elements_[element + 1].attributes;
  for (std::size_t i = elements_[element].attributes; i < end; ++i) {
    const Attribute& attribute = attributes_[i];
    if (attribute.name == name) {
      return std::string_view{values_}.substr(attribute.begin, attribute.size);
    }
  }
  return std::nullopt;
}

std::optional<ElementId> Tree::FindChild(ElementId parent, NameId name, ElementId after) const {
  const auto found =
      std::upper_bound(children_.begin(), children_.end(), Child{parent, name, after}, Precedes);
  if (found == children_.end() || found->parent != parent || found->name != name) {
    return std::nullopt;
  }
  return found->element;
}

bool Tree::Precedes(const Child& a, const Child& b) {
  return std::tie(a.parent, a.name, a.element) < std::tie(b.parent, b.name, b.element);
}

NameId Tree::Intern(std::string_view name) {
  const auto place = names_.lower_bound(name);
  if (place != names_.end() && place->first == name) return place->second;
  Take(kNameBytes + name.size());
  return names_.emplace_hint(place, name, Position(names_.size()))->second;
}

void Tree::Take(std::size_t bytes) {
  if (bytes > memory_left_) throw std::bad_alloc();
  memory_left_ -= bytes;
}

}  // namespace ovrant::xml
