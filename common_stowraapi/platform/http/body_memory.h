// The memory of response bodies.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_BODY_MEMORY_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_BODY_MEMORY_H_

#include <cstddef>
#include <memory>

namespace ovrant::internet {

// Pieces of memory from malloc that know their size. While many transfers follow each other, what
// one frees is kept for the next: the system takes freed memory back, and to get it again costs
// more than to fill it. Safe from any thread.
class BodyMemory {
 public:
  // `capacity` bytes or more; null when there is no memory.
  static unsigned char* Allocate(std::size_t capacity);

  // Makes a piece larger, which may move it. Null when there is no memory: it stays as it was.
  static unsigned char* Enlarge(unsigned char* piece, std::size_t capacity);

  // Null does nothing.
  static void Free(unsigned char* piece);

  static std::size_t CapacityOf(const unsigned char* piece);

  // Whether pieces of middling size are kept from now on, 16 MiB at most. At first they are not.
  static void KeepFreed(bool keep);
};

struct BodyMemoryDeleter {
  void operator()(unsigned char* piece) const { BodyMemory::Free(piece); }
};

using BodyBytes = std::unique_ptr<unsigned char, BodyMemoryDeleter>;

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_BODY_MEMORY_H_
