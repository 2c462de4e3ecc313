// The libcurl options of a transfer.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_EXCHANGE_OPTIONS_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_EXCHANGE_OPTIONS_H_

#include <array>
#include <cstddef>

#include "common_stowraapi/platform/http/curl_handles.h"
#include "common_stowraapi/platform/http/message.h"

namespace ovrant::internet {

// The size of the buffer for libcurl's error text.
inline constexpr std::size_t kErrorBufferSize = 256;

// Sets the options of `easy` for `request`. The handle is fresh, reset or prepared. libcurl writes
// the reason of a failure into `error_buffer`. `request`, `error_buffer` and `headers` must outlive
// the transfer.
//
// Returns null, or a static text that says why the request cannot be made. Throws std::bad_alloc
// when memory runs out.
const char* SetExchangeOptions(const HttpRequest& request,
                               std::array<char, kErrorBufferSize>& error_buffer, void* easy,
                               HeaderList& headers);

// Sets the options of `easy` that are the same for all exchanges. The handle is fresh or reset.
// SetExchangeOptions skips these options afterwards. Returns and throws as SetExchangeOptions does.
const char* PrepareForExchange(void* easy);

// Whether libcurl leaves chunked bodies of the responses to `request` undecoded.
bool LeavesChunksHere(const HttpRequest& request);

// Undoes SetExchangeOptions for `request` on `easy`, after the transfer. Keeps what the next call
// sets anyway. False when only a reset of the handle can undo the rest.
bool ReleaseFromExchange(const HttpRequest& request, void* easy);

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_EXCHANGE_OPTIONS_H_
