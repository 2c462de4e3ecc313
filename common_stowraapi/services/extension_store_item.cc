// SPDX-License-Identifier: MIT
#include "common_stowraapi/services/extension_store_item.h"

namespace ovrant::extensionstoreapi {

ExtensionStoreItem::ExtensionStoreItem() = default;
ExtensionStoreItem::ExtensionStoreItem(const ExtensionStoreItem& other) = default;
ExtensionStoreItem::ExtensionStoreItem(ExtensionStoreItem&& other) noexcept = default;
ExtensionStoreItem& ExtensionStoreItem::operator=(const ExtensionStoreItem& other) = default;
ExtensionStoreItem& ExtensionStoreItem::operator=(ExtensionStoreItem&& other) noexcept = default;
ExtensionStoreItem::~ExtensionStoreItem() = default;

}  // namespace ovrant::extensionstoreapi
