// Finding children by name.

#ifndef COMMON_STOWRAAPI_PLATFORM_XML_CHILD_INDEX_H_
#define COMMON_STOWRAAPI_PLATFORM_XML_CHILD_INDEX_H_

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

#include "common_stowraapi/platform/xml/names.h"

namespace ovrant::xml {

class Tree;
using ElementId = std::uint32_t;

// Looks through the children of an element in order, and once that has taken long sorts them by
// name: no order of questions costs more than the document's size times its logarithm. For one
// thread at a time; the tree must outlive it.
class ChildIndex {
 public:
  static constexpr std::size_t kBytesPerChild = sizeof(std::uint64_t);

  explicit ChildIndex(const Tree& tree);

  // The first child of that name at or behind `from`, which is a child of `parent` or its end;
  // the end of `parent` if there is none.
  ElementId Find(ElementId parent, ElementId from, NameId name);

 private:
  // A name above the number of a child of that name.
  using Key = std::uint64_t;

  const std::vector<Key>& SortedChildren(ElementId parent);

  const Tree& tree_;
  std::size_t long_steps_left_;
  std::map<ElementId, std::vector<Key>> sorted_;
};

}  // namespace ovrant::xml

#endif  // COMMON_STOWRAAPI_PLATFORM_XML_CHILD_INDEX_H_
