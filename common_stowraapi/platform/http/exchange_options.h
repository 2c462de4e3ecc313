// The options under which libcurl makes a transfer.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_EXCHANGE_OPTIONS_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_EXCHANGE_OPTIONS_H_

#include <array>
#include <cstddef>

#include "common_stowraapi/platform/http/curl_handles.h"
#include "common_stowraapi/platform/http/message.h"

namespace ovrant::internet {

// Bytes that libcurl may write of an error's text.
inline constexpr std::size_t kErrorBufferSize = 256;

// Sets the options of `easy`, which is fresh, reset or prepared, for `request`. libcurl writes what
// went wrong into `error_buffer`. `request`, `error_buffer` and what is put into `headers` must
// outlive the transfer. Null, or why the request cannot be made (a text that is never freed).
// std::bad_alloc when there is no memory.
const char* SetExchangeOptions(const HttpRequest& request,
                               std::array<char, kErrorBufferSize>& error_buffer, void* easy,
                               HeaderList& headers);

// Sets those options of `easy`, which is fresh or reset, that are the same for all exchanges, so
// that SetExchangeOptions finds them done. The result is as there.
const char* PrepareForExchange(void* easy);

// Whether libcurl hands the chunked bodies of the responses to `request` over as they come.
bool LeavesChunksHere(const HttpRequest& request);

// Undoes what SetExchangeOptions did for `request` on `easy`, whose transfer is over, as far as
// another SetExchangeOptions would not. False when that takes a reset of the handle.
bool ReleaseFromExchange(const HttpRequest& request, void* easy);

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_EXCHANGE_OPTIONS_H_
