// What the XML parser allocates for itself.

#ifndef COMMON_STOWRAAPI_PLATFORM_XML_PARSER_MEMORY_H_
#define COMMON_STOWRAAPI_PLATFORM_XML_PARSER_MEMORY_H_

#include <cstddef>

#include "common_stowraapi/platform/xml/memory_budget.h"

namespace ovrant::xml {

// A limit for one parser, which lives and dies on the thread and within the scope of one of these.
// The parser's functions know nothing of it: they find it by the thread that they are called on.
class ParserMemory {
 public:
  explicit ParserMemory(std::size_t bytes);
  ~ParserMemory();

  ParserMemory(const ParserMemory&) = delete;
  ParserMemory& operator=(const ParserMemory&) = delete;

  // As those of the C library; null beyond the limit, too.
  static void* Allocate(std::size_t size);
  static void* Reallocate(void* block, std::size_t size);
  static void Free(void* block);

 private:
  utils::MemoryBudget budget_;
};

}  // namespace ovrant::xml

#endif  // COMMON_STOWRAAPI_PLATFORM_XML_PARSER_MEMORY_H_
