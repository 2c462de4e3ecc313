// SPDX-License-Identifier: MIT
// Exchanges as an HTTP Archive (HAR 1.2).

#ifndef EMULATOR_REPLAY_HAR_H_
#define EMULATOR_REPLAY_HAR_H_

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "emulator/replay/exchange.h"

namespace stowra_emulator {

// An entry of an archive. A body that is not UTF-8 is in base64. A body that is still compressed is
// marked by "_encoded".
nlohmann::ordered_json ToHarEntry(const Exchange& exchange);

// Reads the text of an archive, as this program or a browser writes it. A browser stores bodies
// without their chunks and compression, so the fields about those are left out. Entries without a
// response are left out too. Throws std::runtime_error if it is no archive.
std::vector<Exchange> ParseHar(const std::string& text);

}  // namespace stowra_emulator

#endif  // EMULATOR_REPLAY_HAR_H_
