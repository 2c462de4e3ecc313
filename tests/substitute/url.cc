// SPDX-License-Identifier: MIT
// Finds parameters as they are written.

#include "common_stowraapi/platform/url.h"

#include <string>

#include "tests/substitute/effects.h"

using ovrant::utils::ovrant_ustring;
using stowra_substitute::Record;

namespace ovrant::internet {

URL::URL(ovrant_ustring url) {
  const std::string text = url.utf8();
  Record("URL " + text);
  const std::string::size_type mark = text.find('?');
  query_ = mark == std::string::npos ? "" : text.substr(mark + 1).c_str();
}

bool URL::getValueForExtraInfoKey(ovrant_ustring key, ovrant_ustring& value) {
  const std::string query = "&" + query_.utf8() + "&";
  const std::string name = "&" + key.utf8() + "=";
  const std::string::size_type at = query.find(name);
  const bool found = at != std::string::npos;
  Record("getValueForExtraInfoKey " + key.utf8() + (found ? "" : ": absent"));
  if (!found) return false;
  const std::string::size_type begin = at + name.size();
  value = query.substr(begin, query.find('&', begin) - begin).c_str();
  return true;
}

}  // namespace ovrant::internet
