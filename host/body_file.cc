// SPDX-License-Identifier: MIT
#include "host/body_file.h"

#include <utility>

#include "host/file_access.h"
#include "host/utf8.h"

namespace stowra {

bool ReadBodyFile(const std::string& file, std::string& body, std::string& why) {
  std::string content;
  if (!(file == "-" ? ReadInput(content, why) : ReadFile(file, content, why))) return false;
  if (!IsUtf8(content)) {
    why = "the text is not UTF-8";
    return false;
  }
  body = std::move(content);
  return true;
}

}  // namespace stowra
