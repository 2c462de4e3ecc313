// SPDX-License-Identifier: MIT
#include "emulator/exchange_source.h"

namespace stowra_emulator {

std::string HttpResponse::Head() const {
  std::string head = "HTTP/1.1 " + std::to_string(status) + " " + reason + "\r\n";
  for (const auto& [name, value] : fields) head += name + ": " + value + "\r\n";
  return head + "\r\n";
}

}  // namespace stowra_emulator
