// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/request_headers.h"

#include <iterator>

#include "common_stowraapi/platform/http/redirect.h"

namespace ovrant::internet {

using ovrant::utils::ovrant_ustring;
using ovrant::utils::StringMap;

void SetHeader(const ovrant_ustring& name, const ovrant_ustring& value, StringMap& headers) {
  StringMap added;
  added.emplace(name, value);
  for (auto entry = headers.begin(); entry != headers.end();) {
    entry = entry->first.compare_nocase(name) == 0 ? headers.erase(entry) : std::next(entry);
  }
  headers.merge(added);
}

void AddHeaders(const StringMap& added, bool all, StringMap& headers) {
  for (const auto& [name, value] : added) {
    if (all || MayLeaveOrigin(name.utf8())) SetHeader(name, value, headers);
  }
}

}  // namespace ovrant::internet
