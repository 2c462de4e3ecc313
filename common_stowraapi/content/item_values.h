// What the numbers of a ContentItem stand for.

#ifndef COMMON_STOWRAAPI_CONTENT_ITEM_VALUES_H_
#define COMMON_STOWRAAPI_CONTENT_ITEM_VALUES_H_

namespace ovrant::stowraapiclient {

enum Kind { kModel = 0, kCollection = 1 };
enum DownloadFormat { kNoDownload = 0, kK2 = 1, kQmf = 2 };

}  // namespace ovrant::stowraapiclient

#endif  // COMMON_STOWRAAPI_CONTENT_ITEM_VALUES_H_
