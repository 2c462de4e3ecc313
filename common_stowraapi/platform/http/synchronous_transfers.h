// SPDX-License-Identifier: MIT
// HTTP exchanges on the calling thread.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_SYNCHRONOUS_TRANSFERS_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_SYNCHRONOUS_TRANSFERS_H_

#include "common_stowraapi/platform/http/message.h"

namespace ovrant::internet {

// Makes the request and waits for its end. Connections are kept for later requests of any thread.
// Two threads never use one connection at the same time. If memory runs out, the reply is not
// received.
HttpReply PerformSynchronously(HttpRequest&& request);

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_SYNCHRONOUS_TRANSFERS_H_
