#include "host/transfer_log.h"

#include "common_stowraapi/platform/internet_data.h"

namespace stowra {

using ovrant::internet::InternetData;
using ovrant::internet::TransferEvent;

TransferLog::TransferLog() {
  InternetData::SetTransferListener([this](const TransferEvent& event) { Note(event); });
}

TransferLog::~TransferLog() { InternetData::SetTransferListener(nullptr); }

std::optional<TransferEvent> TransferLog::last_end() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return last_end_;
}

void TransferLog::Note(const TransferEvent& event) {
  if (event.kind != TransferEvent::Kind::kEnded) return;
  const std::lock_guard<std::mutex> lock(mutex_);
  last_end_ = event;
}

}  // namespace stowra
