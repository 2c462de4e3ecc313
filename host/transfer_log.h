// How the transfers go.

#ifndef HOST_TRANSFER_LOG_H_
#define HOST_TRANSFER_LOG_H_

#include <mutex>
#include <optional>

#include "common_stowraapi/platform/transfer_types.h"
#include "host/progress_bar.h"

namespace stowra {

// Listens to all transfers of the process while it lives, on whichever thread runs them, and keeps
// the end of the last one: the services themselves only say whether they succeeded. One at a time
// in a process; safe from any thread.
class TransferLog {
 public:
  // With `verbose` each transfer is a line on stderr at its end.
  explicit TransferLog(bool verbose);
  ~TransferLog();

  TransferLog(const TransferLog&) = delete;
  TransferLog& operator=(const TransferLog&) = delete;

  // Shows on stderr, where that is a terminal, how far each transfer has come.
  void ShowProgress();

  // Nothing while no transfer has ended.
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
