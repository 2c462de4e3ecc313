// One extension as the extension store describes it.

#ifndef COMMON_STOWRAAPI_SERVICES_EXTENSION_STORE_ITEM_H_
#define COMMON_STOWRAAPI_SERVICES_EXTENSION_STORE_ITEM_H_

#include "common_stowraapi/export.h"
#include "common_stowraapi/platform/ustring.h"

namespace ovrant::extensionstoreapi {

// What the store says of one extension.
struct STOWRA_EXPORT ExtensionStoreItem {
  ExtensionStoreItem();
  ExtensionStoreItem(const ExtensionStoreItem& other);
  ExtensionStoreItem(ExtensionStoreItem&& other) noexcept;
  ExtensionStoreItem& operator=(const ExtensionStoreItem& other);
  ExtensionStoreItem& operator=(ExtensionStoreItem&& other) noexcept;
  ~ExtensionStoreItem();

  ovrant::utils::ovrant_ustring id;
  ovrant::utils::ovrant_ustring version_uuid;
  float version = 0.0F;  // the newest
  ovrant::utils::ovrant_ustring file_url;
  bool update = false;       // an update is due
  bool remote_kill = false;  // it has been withdrawn
  bool enabled = false;
};

}  // namespace ovrant::extensionstoreapi

#endif  // COMMON_STOWRAAPI_SERVICES_EXTENSION_STORE_ITEM_H_
