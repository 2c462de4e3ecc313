// SPDX-License-Identifier: MIT
// What a document may cost.

#ifndef COMMON_STOWRAAPI_PLATFORM_XML_LIMITS_H_
#define COMMON_STOWRAAPI_PLATFORM_XML_LIMITS_H_

#include <cstddef>

namespace ovrant::xml {

// Bytes of a document. The parser's buffer can hold no more, and with them every position in a tree
// fits 32 bits.
inline constexpr std::size_t kMaxDocument = std::size_t{1} << 30;

// Levels of elements. The root is the first.
inline constexpr int kMaxDepth = 256;

// Bytes. The parser writes the URI out with every name.
inline constexpr std::size_t kMaxNamespaceUri = 256;

// Bytes that the tree of a document may take. The parser may take as many.
static_assert(sizeof(std::size_t) >= 8, "16 times a document has to fit");
constexpr std::size_t MemoryLimit(std::size_t document_size) {
  return 16 * document_size + (std::size_t{1} << 20);
}

}  // namespace ovrant::xml

#endif  // COMMON_STOWRAAPI_PLATFORM_XML_LIMITS_H_
