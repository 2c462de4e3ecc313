#include "common_stowraapi/platform/xml_child_index.h"

#include <algorithm>
#include <utility>

#include "common_stowraapi/platform/xml_tree.h"

namespace ovrant::xml {
namespace {

// Elements of ordinary documents have fewer children than that to be skipped.
constexpr int kMaxSteps = 64;

std::uint64_t MakeKey(NameId name, ElementId child) { return std::uint64_t{name} << 32 | child; }

}  // namespace

ElementId ChildIndex::Find(ElementId parent, ElementId from, NameId name) {
  const ElementId end = tree_.element(parent).end;
  for (int step = 0; step < kMaxSteps; ++step) {
    if (from == end || tree_.element(from).name == name) return from;
    from = tree_.element(from).end;
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
