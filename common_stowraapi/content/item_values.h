// SPDX-License-Identifier: MIT
// Values of the numeric members of ContentItem.

#ifndef COMMON_STOWRAAPI_CONTENT_ITEM_VALUES_H_
#define COMMON_STOWRAAPI_CONTENT_ITEM_VALUES_H_

namespace ovrant::stowraapiclient {

// ContentItem::kind_.
enum ItemKind : int {
  kModel = 0,
  kCollection = 1,  // or anything else that is not a model
};

// ContentItem::download_format_.
enum DownloadFormat : int {
  kNoDownload = 0,
  kK2Download = 1,   // the "k2" rendition
  kQmfDownload = 2,  // a model file of a known version
};

}  // namespace ovrant::stowraapiclient

#endif  // COMMON_STOWRAAPI_CONTENT_ITEM_VALUES_H_
