// SPDX-License-Identifier: MIT
// The libcurl options of one request.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_HOP_OPTIONS_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_HOP_OPTIONS_H_

#include <array>
#include <cstddef>
#include <memory>
#include <string>

#include "common_stowraapi/platform/http/curl_handles.h"
#include "common_stowraapi/platform/http/failure.h"
#include "common_stowraapi/platform/http/message.h"

namespace ovrant::internet {

// The size of the buffer for libcurl's error text.
inline constexpr std::size_t kErrorBufferSize = 256;

// One request of a transfer: the first one, or one that a redirect asks for.
struct HopRequest {
  std::string url;
  bool is_post = false;
  std::shared_ptr<const RequestBody> body;  // null when empty
  std::shared_ptr<SourceReader> source;     // takes the place of body if not null
  ovrant::utils::StringMap headers;
  bool needs_fresh_connection = false;
};

// Sets the options of the fresh handle `easy`. libcurl writes the reason of a failure into
// `error_buffer`. `hop`, `error_buffer` and `headers` must outlive the transfer. `settings` gives
// what is the same for all requests of a transfer.
//
// A failure says why the request cannot be made. Throws std::bad_alloc when memory runs out.
Failure SetHopOptions(const HttpRequest& settings, const HopRequest& hop,
                      std::array<char, kErrorBufferSize>& error_buffer, void* easy,
                      HeaderList& headers);

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_HOP_OPTIONS_H_
