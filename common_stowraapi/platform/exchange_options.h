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

// Sets every option of `easy`, which is fresh, reset or prepared: it will make `request`, report to
// `exchange`, of the upload's progress too where that is wanted, and describe an error in
// `error_buffer`. `request`, `exchange`, `error_buffer` and what is put into `headers` must outlive
// the transfer. Null, or why the request cannot be made (a text that is never freed).
// std::bad_alloc when there is no memory.
const char* SetExchangeOptions(const HttpRequest& request, HttpExchange& exchange,
                               bool wants_upload_progress,
                               std::array<char, kErrorBufferSize>& error_buffer, void* easy,
                               HeaderList& headers);

// Sets those options of `easy`, which is fresh or reset, that are the same for all exchanges, so
// that SetExchangeOptions finds them done. The result is as there.
const char* PrepareForExchange(void* easy);

// Whether libcurl hands the chunked bodies of the responses to `request` over as they come.
bool LeavesChunksHere(const HttpRequest& request);

// From now on, and for the rest of the transfer, HttpExchange::OnReceived is told of what comes.
void WatchProgress(void* easy);

// Undoes what SetExchangeOptions did for `request` on `easy`, whose transfer is over, as far as
// another SetExchangeOptions would not. False when that takes a reset of the handle.
bool ReleaseFromExchange(const HttpRequest& request, void* easy);

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_EXCHANGE_OPTIONS_H_
