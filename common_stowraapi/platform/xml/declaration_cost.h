// What the declarations in a document cost its parser.

#ifndef COMMON_STOWRAAPI_PLATFORM_XML_DECLARATION_COST_H_
#define COMMON_STOWRAAPI_PLATFORM_XML_DECLARATION_COST_H_

#include <cstddef>
#include <cstdint>

#include "common_stowraapi/platform/xml/block_array.h"
#include "common_stowraapi/platform/xml/memory_budget.h"
#include "common_stowraapi/platform/xml/names.h"

namespace ovrant::xml {

// The parser looks through the attributes declared for an element at each of them and at each such
// element, and hashes there the whole name of each that gets its default value. A short document
// can so keep it busy for long. This keeps the account, in looks and bytes.
class DeclarationCost {
 public:
  explicit DeclarationCost(std::size_t document_size);

  // Each is false once the account is overdrawn.

  // An attribute is declared for the element of that name. std::bad_alloc, too, when the account of
  // memory is overdrawn.
  bool AddDeclaration(const char* element);

  // An element begins. `defaulted` are the names and values of the attributes that have their
  // default value, up to a null.
  bool AddElement(const char* const* defaulted);

  // Whether an attribute has been declared. No element costs anything before.
  bool has_attributes() const { return most_declared_ > 0; }

  // A namespace is declared, be it by default.
  bool AddNamespace(std::size_t uri_size);

 private:
  bool Take(std::size_t cost);

  std::size_t left_;
  std::uint32_t most_declared_ = 0;  // for one element
  utils::MemoryBudget memory_;
  NameTable elements_;
  utils::BlockArray<std::uint32_t> declared_;  // for each of elements_
};

}  // namespace ovrant::xml

#endif  // COMMON_STOWRAAPI_PLATFORM_XML_DECLARATION_COST_H_
