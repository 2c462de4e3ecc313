// SPDX-License-Identifier: MIT
// The body of an upload that is read while it is sent.

#ifndef COMMON_STOWRAAPI_PLATFORM_BODY_SOURCE_H_
#define COMMON_STOWRAAPI_PLATFORM_BODY_SOURCE_H_

#include <cstddef>
#include <cstdint>
#include <optional>

#include "common_stowraapi/export.h"

namespace ovrant::internet {

// The host derives from this class and gives an object to InternetData::UploadFrom. FileSource and
// MemorySource are ready to use.
//
// A blocking upload calls these functions on the calling thread, a background upload on the
// transport's thread. One source serves one transfer at a time. The functions may take their time,
// which does not count as the server's silence. On the transport's thread they hold up all other
// background transfers meanwhile.
//
// A function that fails or throws makes the upload fail with TransferError::kBody. std::bad_alloc
// makes it fail with kOutOfMemory.
class STOWRA_EXPORT BodySource {
 public:
  BodySource() = default;
  virtual ~BodySource() = default;

  BodySource(const BodySource&) = delete;
  BodySource& operator=(const BodySource&) = delete;

  // Goes back to the first byte. Called before each request of the transfer: the first one, one
  // after a redirect with status 307 or 308, and one on a fresh connection. False on failure.
  virtual bool Rewind() = 0;

  // The bytes of the whole body, asked after each Rewind. Without a length the body goes out in
  // chunks, which a server of HTTP/1.0 cannot read. A source that ends before or after its length
  // makes the upload fail, before the last bytes of the body go out.
  virtual std::optional<std::uint64_t> Length() = 0;

  // Copies the next bytes to `data`, at most `size`, and sets `count` to their number. 0 is the end
  // of the body. `size` is above 0. False on failure.
  virtual bool Read(unsigned char* data, std::size_t size, std::size_t& count) = 0;
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_BODY_SOURCE_H_
