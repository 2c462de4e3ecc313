// SPDX-License-Identifier: MIT
// The record of one extension.

#ifndef COMMON_STOWRAAPI_SERVICES_EXTENSION_STORE_ITEM_H_
#define COMMON_STOWRAAPI_SERVICES_EXTENSION_STORE_ITEM_H_

#include "common_stowraapi/export.h"
#include "common_stowraapi/platform/ustring.h"

namespace ovrant::extensionstoreapi {

// What the extension store says about one extension, with the JSON type of the member that each
// field is read from. A member of another type leaves the default. Copying may throw
// std::bad_alloc.
struct STOWRA_EXPORT ExtensionStoreItem {
  ExtensionStoreItem();
  ExtensionStoreItem(const ExtensionStoreItem& other);
  ExtensionStoreItem(ExtensionStoreItem&& other) noexcept;
  ExtensionStoreItem& operator=(const ExtensionStoreItem& other);
  ExtensionStoreItem& operator=(ExtensionStoreItem&& other) noexcept;
  ~ExtensionStoreItem();

  ovrant::utils::ovrant_ustring id;            // string
  ovrant::utils::ovrant_ustring version_uuid;  // string
  float version = 0.0F;                        // the newest; string that holds a decimal number
  ovrant::utils::ovrant_ustring file_url;      // where to download it; string
  bool update = false;                         // an update is due; boolean
  bool remote_kill = false;                    // it has been withdrawn; boolean
  bool enabled = false;                        // integer; true for 1 alone
};

}  // namespace ovrant::extensionstoreapi

#endif  // COMMON_STOWRAAPI_SERVICES_EXTENSION_STORE_ITEM_H_
