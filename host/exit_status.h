// SPDX-License-Identifier: MIT
// The program's exit statuses.

#ifndef HOST_EXIT_STATUS_H_
#define HOST_EXIT_STATUS_H_

namespace stowra {

enum class ExitStatus {
  kDone = 0,
  kCannotRun = 1,  // out of memory, or a read or write failed
  kUsage = 2,
  kTransferFailed = 3,
  kHttpStatus = 4,  // not 200, or for an upload not 2xx
  kUnusableResponse = 5,
};

}  // namespace stowra

#endif  // HOST_EXIT_STATUS_H_
