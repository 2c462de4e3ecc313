// The options under which libcurl makes a transfer.

#ifndef COMMON_STOWRAAPI_PLATFORM_EXCHANGE_OPTIONS_H_
#define COMMON_STOWRAAPI_PLATFORM_EXCHANGE_OPTIONS_H_

#include <array>
#include <cstddef>

#include "common_stowraapi/platform/curl_handles.h"
#include "common_stowraapi/platform/http_message.h"

namespace ovrant::internet {

class HttpExchange;

// Bytes that libcurl may write of an error's text.
inline constexpr std::size_t kErrorBufferSize = 256;

// Sets every option of `easy`, which is fresh or reset: it will make `request`, report to
// `exchange`, of the upload's progress too where that is wanted, and describe an error in
// `error_buffer`. `request`, `exchange`, `error_buffer` and what is put into `headers` must outlive
// the transfer. Null, or why the request cannot be made (a text that is never freed).
// std::bad_alloc when there is no memory.
const char* SetExchangeOptions(const HttpRequest& request, HttpExchange& exchange,
                               bool wants_upload_progress,
                               std::array<char, kErrorBufferSize>& error_buffer, void* easy,
                               HeaderList& headers);

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_EXCHANGE_OPTIONS_H_
