// SPDX-License-Identifier: MIT
// A buffer for bytes that arrive piece by piece.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_BODY_BUFFER_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_BODY_BUFFER_H_

#include <cstddef>
#include <cstdlib>
#include <memory>

namespace ovrant::internet {

// A growing array of bytes from malloc. It grows by realloc, which moves large blocks without
// copying where the system can. A call that throws std::bad_alloc changes nothing.
class BodyBuffer {
 public:
  const unsigned char* data() const { return data_.get(); }
  std::size_t size() const { return size_; }

  void Append(const void* data, std::size_t length);

  // Returns room for `length` bytes at the end, valid until the next call. The caller writes there
  // and then counts the bytes with Grow.
  unsigned char* Room(std::size_t length);
  void Grow(std::size_t length) { size_ += length; }

  // Makes later growth up to `capacity` bytes cheap. Untouched memory costs only address space.
  void Reserve(std::size_t capacity);

  void Clear();

  // Drops the bytes and keeps the memory.
  void Empty() { size_ = 0; }

  // Hands the bytes to the caller, who frees them with std::free. Null when the buffer is empty.
  unsigned char* Release();

 private:
  struct Free {
    void operator()(unsigned char* bytes) const { std::free(bytes); }
  };

  std::unique_ptr<unsigned char, Free> data_;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_BODY_BUFFER_H_
