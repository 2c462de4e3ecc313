// SPDX-License-Identifier: MIT
// Compares header fields with a transport's map.

#ifndef FUZZ_PLATFORM_HTTP_JOINED_FIELDS_H_
#define FUZZ_PLATFORM_HTTP_JOINED_FIELDS_H_

#include <string>
#include <utility>
#include <vector>

#include "common_stowraapi/platform/ustring.h"
#include "fuzz/support/check.h"

namespace stowra_fuzz {

// Checks that `map` holds exactly `fields`, with the values of each name joined. How an empty value
// is joined or continued is not specified.
inline void CheckFields(const std::vector<std::pair<std::string, std::string>>& fields,
                        const ovrant::utils::StringMap& map) {
  using ovrant::utils::ovrant_ustring;
  ovrant::utils::StringMap joined;
  for (const auto& [name, value] : fields) {
    const auto [entry, is_new] = joined.try_emplace(ovrant_ustring(name.data(), name.size()));
    const bool continues_nothing = !value.empty() && value.front() == ' ';
    if (continues_nothing || (!is_new && entry->second.empty())) return;
    if (!is_new) entry->second += ", ";
    entry->second += ovrant_ustring(value.data(), value.size());
  }
  FUZZ_CHECK(map == joined);
}

}  // namespace stowra_fuzz

#endif  // FUZZ_PLATFORM_HTTP_JOINED_FIELDS_H_
