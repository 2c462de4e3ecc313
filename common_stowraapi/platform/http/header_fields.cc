// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/header_fields.h"

#include <cstddef>

#include "common_stowraapi/platform/http/header_text.h"

namespace ovrant::internet {

using ovrant::utils::ovrant_ustring;
using ovrant::utils::StringMap;

namespace {

// The fields of a typical response fit in this size.
constexpr std::size_t kCommonSize = 500;

ovrant_ustring ToText(std::string_view bytes) { return ovrant_ustring(bytes.data(), bytes.size()); }

void Append(const char* separator, std::string_view text, ovrant_ustring& value) {
  if (!value.empty()) value += separator;
  value += ToText(text);
}

}  // namespace

void HeaderFields::AddLine(std::string_view line) {
  if (lines_.empty()) lines_.reserve(kCommonSize);
  lines_ += line;
  if (lines_.back() != '\n') lines_ += '\n';
}

StringMap HeaderFields::ToMap() const {
  StringMap map;
  auto last = map.end();
  for (std::string_view rest = lines_; !rest.empty();) {
    const std::string_view line = rest.substr(0, rest.find('\n') + 1);
    rest.remove_prefix(line.size());
    const std::size_t colon = line.find(':');
    if (BeginsWithBlank(line)) {
      if (last != map.end()) Append(" ", TrimHeaderText(line), last->second);
    } else if (colon != std::string_view::npos) {
      last = map.try_emplace(ToText(TrimHeaderText(line.substr(0, colon)))).first;
      Append(", ", TrimHeaderText(line.substr(colon + 1)), last->second);
    }
  }
  return map;
}

}  // namespace ovrant::internet
