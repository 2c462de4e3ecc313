// SPDX-License-Identifier: MIT
#include "host/transfer_log.h"

#include <fmt/format.h>

#include <cstdio>
#include <string>

#include "common_stowraapi/platform/internet_data.h"
#include "host/terminal.h"

namespace stowra {

using ovrant::internet::InternetData;
using ovrant::internet::TransferEvent;

namespace {

std::string Describe(const TransferEvent& end) {
  if (!end.error.empty()) return fmt::format("transfer {}: {}", end.url.utf8(), end.error.utf8());
  return fmt::format("transfer {}: HTTP status {}, bytes sent {}, received {}", end.url.utf8(),
                     end.status, end.bytes_sent, end.bytes_received);
}

}  // namespace

TransferLog::TransferLog(bool verbose) : verbose_(verbose) {
  InternetData::SetTransferListener([this](const TransferEvent& event) { Take(event); });
}

TransferLog::~TransferLog() { InternetData::SetTransferListener(nullptr); }

void TransferLog::ShowProgress() {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (MayRedraw(stderr)) progress_.emplace(stderr);
}

void TransferLog::HideProgress() {
  const std::lock_guard<std::mutex> lock(mutex_);
  progress_.reset();
}

std::optional<TransferEvent> TransferLog::last_end() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return last_end_;
}

void TransferLog::Take(const TransferEvent& event) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (progress_) progress_->Show(event);
  if (event.kind != TransferEvent::Kind::kEnded) return;
  last_end_ = event;
  if (verbose_) Note(Describe(event));
}

}  // namespace stowra
