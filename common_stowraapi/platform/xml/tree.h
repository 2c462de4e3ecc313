// An XML document as a tree.

#ifndef COMMON_STOWRAAPI_PLATFORM_XML_TREE_H_
#define COMMON_STOWRAAPI_PLATFORM_XML_TREE_H_

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>

#include "common_stowraapi/platform/xml/block_array.h"
#include "common_stowraapi/platform/xml/byte_arena.h"
#include "common_stowraapi/platform/xml/memory_budget.h"
#include "common_stowraapi/platform/xml/names.h"

namespace ovrant::xml {

// Elements are numbered in document order, so that a number also says what lies inside what: the
// descendants of an element are those from its own number to Element::end.
using ElementId = std::uint32_t;

// The document itself, an element without a name whose one child is the root.
inline constexpr ElementId kDocument = 0;

struct Element {
  NameId name;
  ElementId parent;
  ElementId end;             // the first element behind it that does not lie inside
  std::uint32_t attributes;  // those of the element begin here and end where the next's begin
  std::uint32_t text_begin;  // all character data inside
  std::uint32_t text_end;
};

struct Attribute {
  NameId name;
  std::uint32_t size;
  const char* value;
};

// Built by one pass through a document, then read. Texts are UTF-8. All memory, and what a
// ChildIndex needs, is taken from a budget: building beyond it throws std::bad_alloc.
class Tree {
 public:
  // `text_size`, in bytes, is a guess of how much character data there will be.
  Tree(std::size_t budget, std::uint32_t text_size);

  // Building: the events of the document in their order. Attributes belong to the element that has
  // begun last and has nothing in it yet.
  void BeginElement(const char* name);
  void AddAttribute(const char* name, std::string_view value);
  void AddText(std::string_view text) {
    if (text.size() > text_capacity_ - text_size_) GrowText(text.size());
    // Every line end comes alone.
    if (text.size() == 1) {
      text_.get()[text_size_] = text[0];
    } else {
      std::memcpy(text_.get() + text_size_, text.data(), text.size());
    }
    text_size_ += static_cast<std::uint32_t>(text.size());
  }
  void EndElement();
  void EndDocument();

  // Reading, after EndDocument.
  const NameTable& names() const { return names_; }
  const Element& element(ElementId id) const { return elements_[id]; }
  std::string_view Text(const Element& element) const;

  // Null if there is none.
  const Attribute* FindAttribute(ElementId id, NameId name) const;

 private:
  struct FreeText {
    void operator()(char* text) const { std::free(text); }
  };

  void GrowText(std::size_t size);

  utils::MemoryBudget budget_;
  NameTable names_;
  utils::BlockArray<Element> elements_;
  utils::BlockArray<Attribute> attributes_;
  utils::ByteArena values_;
  std::unique_ptr<char, FreeText> text_;  // all character data of the document
  std::uint32_t text_size_ = 0;
  std::uint32_t text_capacity_ = 0;
  ElementId open_ = kDocument;  // the innermost element that has not ended
};

}  // namespace ovrant::xml

#endif  // COMMON_STOWRAAPI_PLATFORM_XML_TREE_H_
