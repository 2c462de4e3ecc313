// What a document may cost.

#ifndef COMMON_STOWRAAPI_PLATFORM_XML_LIMITS_H_
#define COMMON_STOWRAAPI_PLATFORM_XML_LIMITS_H_

#include <cstddef>

namespace ovrant::xml {

// Levels of elements; the root is the first.
inline constexpr int kMaxDepth = 256;

// Bytes. The parser writes the URI out with every name.
inline constexpr std::size_t kMaxNamespaceUri = 256;

// Declared entities whose text refers to other declared ones: the parser calls itself to go from
// one to the next.
inline constexpr int kMaxNestedEntities = 64;

// Bytes of a tree for each byte of the document, and besides; as many for the parser, and as many
// for the names in declarations.
inline constexpr std::size_t kTreeBytesPerByte = 16;
inline constexpr std::size_t kTreeBytesBesides = std::size_t{1} << 20;

// What entities may add to the document, as a multiple of its bytes, once that makes so many bytes.
inline constexpr float kMaxEntityGrowth = 16;
inline constexpr unsigned long long kMinEntityBytes = 1ULL << 20;

// What declarations may cost the parser, in looks and bytes, for each byte of the document, and
// besides: see DeclarationCost.
inline constexpr std::size_t kDeclarationCostPerByte = 16;
inline constexpr std::size_t kDeclarationCostBesides = std::size_t{1} << 20;

}  // namespace ovrant::xml

#endif  // COMMON_STOWRAAPI_PLATFORM_XML_LIMITS_H_
