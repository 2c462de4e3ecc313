// SPDX-License-Identifier: MIT
// Records what the transfers do and how they end.

#ifndef HOST_TRANSFER_LOG_H_
#define HOST_TRANSFER_LOG_H_

#include <chrono>
#include <mutex>
#include <optional>

#include "common_stowraapi/platform/transfer_types.h"
#include "host/progress_bar.h"
#include "host/trace_file.h"
#include "host/trace_options.h"
#include "host/waterfall.h"

namespace stowra {

// Listens to all transfers of the process while it lives, and keeps the end of the last one. The
// services themselves only say whether they succeeded. Shows the transfers as the options ask.
// Safe from any thread. One at a time in a process.
class TransferLog {
 public:
  // `options` must outlive the log. Throws std::runtime_error if the trace file cannot be made.
  explicit TransferLog(const TraceOptions& options);

  // Draws the waterfall.
  ~TransferLog();

  TransferLog(const TransferLog&) = delete;
  TransferLog& operator=(const TransferLog&) = delete;

  // If stderr is a terminal, shows the progress of each transfer there. Not between other lines
  // about the transfers.
  void ShowProgress();
  void HideProgress();

  // Empty until a transfer has ended.
  std::optional<ovrant::internet::TransferEvent> last_end() const;

 private:
  void Take(const ovrant::internet::TransferEvent& event);

  const TraceOptions& options_;
  const std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
  mutable std::mutex mutex_;
  std::optional<ovrant::internet::TransferEvent> last_end_;
  std::optional<ProgressBar> progress_;
  std::optional<TraceFile> file_;
  Waterfall waterfall_;
};

}  // namespace stowra

#endif  // HOST_TRANSFER_LOG_H_
