// SPDX-License-Identifier: MIT
#include "emulator/exchange_source.h"

namespace stowra_emulator {

std::string HttpResponse::Head() const {
  std::string head = "HTTP/1.1 ";
  head.append(std::to_string(status)).append(" ").append(reason).append("\r\n");
  for (const auto& [name, value] : fields) {
    head.append(name).append(": ").append(value).append("\r\n");
  }
  return head.append("\r\n");
}

}  // namespace stowra_emulator
