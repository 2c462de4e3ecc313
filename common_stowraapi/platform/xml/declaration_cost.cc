#include "common_stowraapi/platform/xml/declaration_cost.h"

#include <algorithm>
#include <cstring>

#include "common_stowraapi/platform/xml/limits.h"

namespace ovrant::xml {
namespace {

// Besides the bytes of the URI.
constexpr std::size_t kNamespaceCost = 8;

}  // namespace

DeclarationCost::DeclarationCost(std::size_t document_size)
    : left_(kDeclarationCostPerByte * document_size + kDeclarationCostBesides),
      memory_(kTreeBytesPerByte * document_size + kTreeBytesBesides),
      elements_(memory_),
      declared_(memory_) {}

bool DeclarationCost::AddDeclaration(const char* element) {
  const NameId id = elements_.Intern(element);
  if (id == declared_.size()) declared_.Append() = 0;
  const std::uint32_t count = ++declared_[id];
  most_declared_ = std::max(most_declared_, count);
  return Take(count);
}

bool DeclarationCost::AddElement(const char* const* defaulted) {
  std::size_t cost = most_declared_;
  for (; *defaulted != nullptr; defaulted += 2) cost += std::strlen(*defaulted);
  return Take(cost);
}

bool DeclarationCost::AddNamespace(std::size_t uri_size) { return Take(kNamespaceCost + uri_size); }

bool DeclarationCost::Take(std::size_t cost) {
  const bool enough = cost <= left_;
  left_ -= std::min(cost, left_);
  return enough;
}

}  // namespace ovrant::xml
