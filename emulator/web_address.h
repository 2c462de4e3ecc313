// SPDX-License-Identifier: MIT
// Reading and writing web addresses.

#ifndef EMULATOR_WEB_ADDRESS_H_
#define EMULATOR_WEB_ADDRESS_H_

#include <httplib.h>

#include <string>
#include <string_view>

namespace stowra_emulator {

// The address that the client used for this server, without a final slash. It comes from
// X-Forwarded-Host, which a proxy adds, or from Host. It has https if X-Forwarded-Proto says so,
// which a proxy adds or, with TLS, the connection. Without a usable host it has 127.0.0.1 and the
// server's port.
std::string SiteAddress(const httplib::Request& request);

// Escapes every byte except ASCII letters and digits, "-._~", and those in `also_kept`.
std::string PercentEncode(std::string_view text, std::string_view also_kept = "");

// Decodes each escape. Keeps a '%' without two hexadecimal digits.
std::string PercentDecode(std::string_view text);

}  // namespace stowra_emulator

#endif  // EMULATOR_WEB_ADDRESS_H_
