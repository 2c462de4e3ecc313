#include "host/body_file.h"

#include <utility>

#include "common_stowraapi/platform/ustring.h"
#include "host/file_access.h"

namespace stowra {

using ovrant::utils::ovrant_ustring;

bool ReadBodyFile(const std::string& file, std::string& body, std::string& why) {
  std::string content;
  if (!(file == "-" ? ReadInput(content, why) : ReadFile(file, content, why))) return false;
  // The library's text would carry other bytes than the user gave.
  if (ovrant_ustring(content.data(), content.size()).utf8() != content) {
    why = "not UTF-8";
    return false;
  }
  body = std::move(content);
  return true;
}

}  // namespace stowra
