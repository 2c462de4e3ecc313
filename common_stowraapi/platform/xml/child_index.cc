#include "common_stowraapi/platform/xml/child_index.h"

#include <algorithm>
#include <utility>

#include "common_stowraapi/platform/xml/tree.h"

namespace ovrant::xml {
namespace {

// Most children are found within so many steps. All steps beyond them, together, may be so many for
// each element of the document before children are sorted.
constexpr int kFewSteps = 64;
constexpr std::size_t kLongStepsPerElement = 8;

std::uint64_t MakeKey(NameId name, ElementId child) { return std::uint64_t{name} << 32 | child; }

}  // namespace

ChildIndex::ChildIndex(const Tree& tree)
    : tree_(tree), long_steps_left_(kLongStepsPerElement * tree.element(kDocument).end) {}

ElementId ChildIndex::Find(ElementId parent, ElementId from, NameId name) {
  const ElementId end = tree_.element(parent).end;
  for (int step = 0; step < kFewSteps || long_steps_left_ > 0; ++step) {
    if (from == end) return end;
    const Element& child = tree_.element(from);
    if (child.name == name) return from;
    if (step >= kFewSteps) --long_steps_left_;
    from = child.end;
  }
  const std::vector<Key>& children = SortedChildren(parent);
  const auto found = std::lower_bound(children.begin(), children.end(), MakeKey(name, from));
  const bool has_name = found != children.end() && *found >> 32 == name;
  return has_name ? static_cast<ElementId>(*found) : end;
}

const std::vector<ChildIndex::Key>& ChildIndex::SortedChildren(ElementId parent) {
  const auto known = sorted_.find(parent);
  if (known != sorted_.end()) return known->second;
  const ElementId end = tree_.element(parent).end;
  std::size_t count = 0;
  for (ElementId child = parent + 1; child != end; child = tree_.element(child).end) ++count;
  std::vector<Key> children;
  children.reserve(count);
  for (ElementId child = parent + 1; child != end; child = tree_.element(child).end) {
    children.push_back(MakeKey(tree_.element(child).name, child));
  }
  std::sort(children.begin(), children.end());
  return sorted_.emplace(parent, std::move(children)).first->second;
}

}  // namespace ovrant::xml
