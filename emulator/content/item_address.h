// SPDX-License-Identifier: MIT
// The addresses of an item's pages and files.

#ifndef EMULATOR_CONTENT_ITEM_ADDRESS_H_
#define EMULATOR_CONTENT_ITEM_ADDRESS_H_

#include <string>

#include "emulator/content/item.h"

namespace stowra_emulator {

// The address begins with `site`. Without a site it is a path on this server.

// The page of a model, or a search page with the models of a collection.
std::string PageAddress(const std::string& site, const Item& item);

std::string AuthorPageAddress(const std::string& site, const std::string& uid);
std::string DownloadAddress(const std::string& site, const std::string& mid,
                            const std::string& rtyp);

// `rtyp` names a size of FindPictureSize.
std::string ThumbnailAddress(const std::string& site, const std::string& mid,
                             const std::string& rtyp);

}  // namespace stowra_emulator

#endif  // EMULATOR_CONTENT_ITEM_ADDRESS_H_
