// SPDX-License-Identifier: MIT
#include "host/utf8.h"

#include "common_stowraapi/platform/ustring.h"

namespace stowra {

bool IsUtf8(std::string_view bytes) {
  return ovrant::utils::ovrant_ustring(bytes.data(), bytes.size()).utf8() == bytes;
}

}  // namespace stowra
