// SPDX-License-Identifier: MIT
// Reads the extension store's response into records.

#ifndef COMMON_STOWRAAPI_SERVICES_ITEM_MAP_H_
#define COMMON_STOWRAAPI_SERVICES_ITEM_MAP_H_

#include <map>

#include "common_stowraapi/platform/ustring.h"
#include "common_stowraapi/services/extension_store_item.h"

namespace ovrant::extensionstoreapi {

// The result of ExtensionStoreStatus::GetItemMapFromResponse for `response`.
std::map<ovrant::utils::ovrant_ustring, ExtensionStoreItem> ReadItemMap(
    const ovrant::utils::ovrant_ustring& response);

}  // namespace ovrant::extensionstoreapi

#endif  // COMMON_STOWRAAPI_SERVICES_ITEM_MAP_H_
