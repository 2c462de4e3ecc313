// SPDX-License-Identifier: MIT
#include "host/response_check.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace stowra {

using ovrant::json::Document;
using ovrant::utils::ovrant_ustring;

bool LoadResponse(const ovrant_ustring& body, Document& document, std::string& why) {
  if (body.empty()) {
    why = "it is empty";
  } else if (!document.Load(body)) {
    why = "it cannot be read as JSON";
  } else {
    return true;
  }
  return false;
}

std::string Lacks(const std::vector<std::string>& members) {
  return fmt::format("it lacks {}", fmt::join(members, ", "));
}

}  // namespace stowra
