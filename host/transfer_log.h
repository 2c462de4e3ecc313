// SPDX-License-Identifier: MIT
// Records how the transfers end.

#ifndef HOST_TRANSFER_LOG_H_
#define HOST_TRANSFER_LOG_H_

#include <mutex>
#include <optional>

#include "common_stowraapi/platform/transfer_types.h"
#include "host/progress_bar.h"

namespace stowra {

// Listens to all transfers of the process while it lives, and keeps the end of the last one. The
// services themselves only say whether they succeeded. Safe from any thread. One at a time in a
// process.
class TransferLog {
 public:
  // With `verbose`, prints a line to stderr when a transfer ends.
  explicit TransferLog(bool verbose);
  ~TransferLog();

  TransferLog(const TransferLog&) = delete;
  TransferLog& operator=(const TransferLog&) = delete;

  // If stderr is a terminal, shows the progress of each transfer there.
  void ShowProgress();
  void HideProgress();

  // Empty until a transfer has ended.
  std::optional<ovrant::internet::TransferEvent> last_end() const;

 private:
  void Take(const ovrant::internet::TransferEvent& event);

  const bool verbose_;
  mutable std::mutex mutex_;
  std::optional<ovrant::internet::TransferEvent> last_end_;
  std::optional<ProgressBar> progress_;
};

}  // namespace stowra

#endif  // HOST_TRANSFER_LOG_H_
