// SPDX-License-Identifier: MIT
// The limit for reading the extension store's answer: RapidJSON alone, used as fast as possible.

#ifndef BENCHMARKS_SERVICES_DIRECT_ITEM_MAP_H_
#define BENCHMARKS_SERVICES_DIRECT_ITEM_MAP_H_

#include <map>
#include <string>

#include "common_stowraapi/platform/ustring.h"
#include "common_stowraapi/services/extension_store_status.h"

namespace stowra_bench {

// Returns what ExtensionStoreStatus::GetItemMapFromResponse returns for this body.
std::map<ovrant::utils::ovrant_ustring, ovrant::extensionstoreapi::ExtensionStoreItem>
DirectItemMap(const std::string& body);

}  // namespace stowra_bench

#endif  // BENCHMARKS_SERVICES_DIRECT_ITEM_MAP_H_
