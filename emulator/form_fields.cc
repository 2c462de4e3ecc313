// SPDX-License-Identifier: MIT
#include "emulator/form_fields.h"

#include <algorithm>
#include <cstddef>

#include "emulator/web_address.h"

namespace stowra_emulator {
namespace {

std::string Decode(std::string_view text) {
  std::string spaced(text);
  std::replace(spaced.begin(), spaced.end(), '+', ' ');
  return PercentDecode(spaced);
}

}  // namespace

FormFields ParseForm(std::string_view body) {
  FormFields fields;
  while (!body.empty()) {
    const std::size_t end = std::min(body.find('&'), body.size());
    const std::string_view field = body.substr(0, end);
    const std::size_t equals = std::min(field.find('='), field.size());
    const std::string name = Decode(field.substr(0, equals));
    const std::size_t value = std::min(equals + 1, field.size());
    if (!name.empty()) fields[name] = Decode(field.substr(value));
    body.remove_prefix(std::min(end + 1, body.size()));
  }
  return fields;
}

}  // namespace stowra_emulator
