// Where an item's pages and files are.

#ifndef EMULATOR_CONTENT_ITEM_ADDRESS_H_
#define EMULATOR_CONTENT_ITEM_ADDRESS_H_

#include <string>

#include "emulator/content/item.h"

namespace stowra_emulator {

// `site` is what the address begins with; empty for one that holds on this server only.

// A page on the model, or on what is in the collection.
std::string PageAddress(const std::string& site, const Item& item);

std::string AuthorPageAddress(const std::string& site, const std::string& uid);
std::string DownloadAddress(const std::string& site, const std::string& mid,
                            const std::string& rtyp);

// `rtyp` is one of the sizes of FindPictureSize.
std::string ThumbnailAddress(const std::string& site, const std::string& mid,
                             const std::string& rtyp);

}  // namespace stowra_emulator

#endif  // EMULATOR_CONTENT_ITEM_ADDRESS_H_
