// The memory of response bodies.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_BODY_MEMORY_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_BODY_MEMORY_H_

#include <cstddef>
#include <memory>

namespace ovrant::internet {

// Pieces of memory from malloc that know their size. While transfers follow one another, freed
// pieces are kept for the next body. The system would take them back, and to get them again costs
// more than to fill them. Safe from any thread.
class BodyMemory {
 public:
  // Returns `capacity` bytes or more. Null when memory runs out.
  static unsigned char* Allocate(std::size_t capacity);

  // Makes a piece larger, which may move it. Null when memory runs out, and `piece` is unchanged
  // then.
  static unsigned char* Enlarge(unsigned char* piece, std::size_t capacity);

  // `piece` may be null.
  static void Free(unsigned char* piece);

  static std::size_t CapacityOf(const unsigned char* piece);

  // Turns the keeping of freed medium-sized pieces on or off. At most 16 MiB are kept. Off at
  // first.
  static void KeepFreed(bool keep);
};

struct BodyMemoryDeleter {
  void operator()(unsigned char* piece) const { BodyMemory::Free(piece); }
};

using BodyBytes = std::unique_ptr<unsigned char, BodyMemoryDeleter>;

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_BODY_MEMORY_H_
