// SPDX-License-Identifier: MIT
// Base64 (RFC 4648).

#ifndef EMULATOR_REPLAY_BASE64_H_
#define EMULATOR_REPLAY_BASE64_H_

#include <optional>
#include <string>
#include <string_view>

namespace stowra_emulator {

std::string EncodeBase64(std::string_view bytes);

// Empty if the text is not base64.
std::optional<std::string> DecodeBase64(const std::string& text);

}  // namespace stowra_emulator

#endif  // EMULATOR_REPLAY_BASE64_H_
