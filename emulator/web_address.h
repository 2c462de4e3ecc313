// Web addresses and what they are made of.

#ifndef EMULATOR_WEB_ADDRESS_H_
#define EMULATOR_WEB_ADDRESS_H_

#include <httplib.h>

#include <string>
#include <string_view>

namespace stowra_emulator {

// How the client reached this server, without a slash at the end: from the Host header and, behind
// a proxy, X-Forwarded-Proto. Without a usable Host it is this server's own address.
std::string SiteAddress(const httplib::Request& request);

// Escapes every byte but ASCII letters and digits, "-._~", and those in `also_kept`.
std::string PercentEncode(std::string_view text, std::string_view also_kept = "");

// Replaces each escape; a '%' that begins none stays.
std::string PercentDecode(std::string_view text);

}  // namespace stowra_emulator

#endif  // EMULATOR_WEB_ADDRESS_H_
