// The extension store's answer read straight through RapidJSON, by the shortest way there is.

#ifndef BENCHMARKS_SERVICES_DIRECT_ITEM_MAP_H_
#define BENCHMARKS_SERVICES_DIRECT_ITEM_MAP_H_

#include <map>
#include <string>

#include "common_stowraapi/platform/ustring.h"
#include "common_stowraapi/services/extension_store_status.h"

namespace stowra_bench {

// What ExtensionStoreStatus::GetItemMapFromResponse makes of a response with this body.
std::map<ovrant::utils::ovrant_ustring, ovrant::extensionstoreapi::ExtensionStoreItem>
DirectItemMap(const std::string& body);

}  // namespace stowra_bench

#endif  // BENCHMARKS_SERVICES_DIRECT_ITEM_MAP_H_
