// How the transfers ended.

#ifndef HOST_TRANSFER_LOG_H_
#define HOST_TRANSFER_LOG_H_

#include <mutex>
#include <optional>

#include "common_stowraapi/platform/transfer_types.h"

namespace stowra {

// Listens to all transfers of the process while it lives, on whichever thread runs them, and keeps
// the end of the last one: the services themselves only say whether they succeeded. One at a time
// in a process; safe from any thread.
class TransferLog {
 public:
  TransferLog();
  ~TransferLog();

  TransferLog(const TransferLog&) = delete;
  TransferLog& operator=(const TransferLog&) = delete;

  // Nothing while no transfer has ended.
  std::optional<ovrant::internet::TransferEvent> last_end() const;

 private:
  void Note(const ovrant::internet::TransferEvent& event);

  mutable std::mutex mutex_;
  std::optional<ovrant::internet::TransferEvent> last_end_;
};

}  // namespace stowra

#endif  // HOST_TRANSFER_LOG_H_
