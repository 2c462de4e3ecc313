// Exchanges on the calling thread.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_SYNCHRONOUS_TRANSFERS_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_SYNCHRONOUS_TRANSFERS_H_

#include "common_stowraapi/platform/http/message.h"

namespace ovrant::internet {

// Makes the request and waits for its end. Connections are kept for the next request of any thread,
// and no two threads use one at the same time. Want of memory is a reply that was not received.
HttpReply PerformSynchronously(HttpRequest&& request);

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_SYNCHRONOUS_TRANSFERS_H_
