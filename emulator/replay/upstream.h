// SPDX-License-Identifier: MIT
// The server that is recorded.

#ifndef EMULATOR_REPLAY_UPSTREAM_H_
#define EMULATOR_REPLAY_UPSTREAM_H_

#include <cstdint>
#include <string>

#include "emulator/exchange_source.h"

namespace stowra_emulator {

// Sends the request on a connection of its own. The response's fields come sorted by name, those
// about the connection are left out, and its body has a length. The body stays compressed.
// Throws a RequestError with status 502 if there is no whole response, or its body has more than
// `max_body` bytes.
HttpResponse AskUpstream(const std::string& upstream, const HttpRequest& request,
                         std::uint64_t max_body);

}  // namespace stowra_emulator

#endif  // EMULATOR_REPLAY_UPSTREAM_H_
