// SPDX-License-Identifier: MIT
#include "host/response_headers.h"

namespace stowra {

using ovrant::utils::ovrant_ustring;
using ovrant::utils::StringMap;

ovrant_ustring FindHeader(const StringMap& headers, const ovrant_ustring& name) {
  for (const auto& [header, value] : headers) {
    if (header.compare_nocase(name) == 0) return value;
  }
  return {};
}

}  // namespace stowra
