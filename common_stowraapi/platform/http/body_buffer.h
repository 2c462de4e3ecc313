// Bytes that arrive piece by piece.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_BODY_BUFFER_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_BODY_BUFFER_H_

#include <cstddef>

#include "common_stowraapi/platform/http/body_memory.h"

namespace ovrant::internet {

// A growing run of bytes in BodyMemory, which grows by realloc: large ones move without being
// copied where the system can do that. std::bad_alloc leaves it as it was.
class BodyBuffer {
 public:
  const unsigned char* data() const { return data_.get(); }
  std::size_t size() const { return size_; }

  void Append(const void* data, std::size_t length);

  // Room for `length` bytes at the end, to be written by the caller and then counted by Grow; valid
  // until the next call.
  unsigned char* Room(std::size_t length);
  void Grow(std::size_t length) { size_ += length; }

  // Makes later growth up to `capacity` bytes cheap. Untouched memory costs nothing but addresses.
  void Reserve(std::size_t capacity);

  void Clear();

  // Hands the bytes to the caller, who frees them with BodyMemory::Free. Null when there are none.
  unsigned char* Release();

 private:
  BodyBytes data_;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_BODY_BUFFER_H_
