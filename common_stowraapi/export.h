// SPDX-License-Identifier: MIT
// STOWRA_EXPORT marks what the two shared libraries export. Everything else has hidden visibility
// and is not part of the binary interface.

#ifndef COMMON_STOWRAAPI_EXPORT_H_
#define COMMON_STOWRAAPI_EXPORT_H_

#define STOWRA_EXPORT __attribute__((visibility("default")))

#endif  // COMMON_STOWRAAPI_EXPORT_H_
