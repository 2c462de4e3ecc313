// SPDX-License-Identifier: MIT
#include "emulator/content/item_address.h"

#include "emulator/web_address.h"

namespace stowra_emulator {

std::string PageAddress(const std::string& site, const Item& item) {
  return site + (item.is_collection ? "/search.html?collection=" : "/model?mid=") +
         PercentEncode(item.mid);
}

std::string AuthorPageAddress(const std::string& site, const std::string& uid) {
  return site + "/search.html?uq=" + PercentEncode(uid);
}

std::string DownloadAddress(const std::string& site, const std::string& mid,
                            const std::string& rtyp) {
  return site + "/download?mid=" + PercentEncode(mid) + "&rtyp=" + PercentEncode(rtyp);
}

std::string ThumbnailAddress(const std::string& site, const std::string& mid,
                             const std::string& rtyp) {
  return site + "/thumbnail?mid=" + PercentEncode(mid) + "&rtyp=" + PercentEncode(rtyp);
}

}  // namespace stowra_emulator
