// SPDX-License-Identifier: MIT
// An XML document as a tree.

#ifndef COMMON_STOWRAAPI_PLATFORM_XML_TREE_H_
#define COMMON_STOWRAAPI_PLATFORM_XML_TREE_H_

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ovrant::xml {

// Distinct names are numbered from 0, elements in document order.
using NameId = std::uint32_t;
using ElementId = std::uint32_t;

inline constexpr NameId kNoName = 0xFFFFFFFF;

// The document itself is an element without a name. Its only child is the root.
inline constexpr ElementId kDocument = 0;

// Built by one pass through a document, then read. Texts are UTF-8. Building throws std::bad_alloc
// beyond `memory_limit` bytes, and may leave the tree unusable then.
class Tree {
 public:
  explicit Tree(std::size_t memory_limit);

  // The events of the document, in their order. The attributes of an element come before what it
  // holds.
  void BeginElement(const char* name);
  void AddAttribute(const char* name, std::string_view value);
  void AddText(std::string_view text);
  void EndElement();
  void EndDocument();

  // What follows is for after EndDocument.

  // kNoName if the document does not have the name.
  NameId FindName(std::string_view name) const;

  // REQUIRES: `element` is not kDocument.
  NameId Name(ElementId element) const { return elements_[element].name; }
  ElementId Parent(ElementId element) const { return elements_[element].parent; }

  // All character data inside the element.
  std::string_view Text(ElementId element) const;

  std::optional<std::string_view> FindAttribute(ElementId element, NameId name) const;

  // The first child of that name whose number is above `after`.
  std::optional<ElementId> FindChild(ElementId parent, NameId name, ElementId after) const;

 private:
  // Most names differ in length, which is quick to compare.
  struct ShorterFirst {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const {
      return a.size() != b.size() ? a.size() < b.size() : a < b;
    }
  };

  struct Element {
    NameId name;
    ElementId parent;
    std::uint32_t attributes;  // where its own begin
    std::uint32_t text_begin;
    std::uint32_t text_end;
  };

  struct Attribute {
    NameId name;
    std::uint32_t begin;  // of the value
    std::uint32_t size;
  };

  struct Child {
    ElementId parent;
    NameId name;
    ElementId element;
  };

  static bool Precedes(const Child& a, const Child& b);

  NameId Intern(std::string_view name);
  void Take(std::size_t bytes);

  std::size_t memory_left_;
  std::map<std::string, NameId, ShorterFirst> names_;
  std::deque<Element> elements_;
  std::deque<Attribute> attributes_;
  std::string text_;             // all character data of the document
  std::string values_;           // of all attributes
  std::vector<Child> children_;  // sorted by parent, name and element
  ElementId open_ = kDocument;   // the innermost element that has not ended
};

}  // namespace ovrant::xml

#endif  // COMMON_STOWRAAPI_PLATFORM_XML_TREE_H_
