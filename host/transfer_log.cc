// SPDX-License-Identifier: MIT
#include "host/transfer_log.h"

#include <cstdio>
#include <string>

#include "common_stowraapi/platform/internet_data.h"
#include "host/terminal.h"
#include "host/terminal_width.h"
#include "host/trace_printer.h"
#include "host/waterfall_text.h"

namespace stowra {

using ovrant::internet::InternetData;
using ovrant::internet::TransferDetail;
using ovrant::internet::TransferEvent;
using ovrant::internet::TransferSecrets;

namespace {

TransferDetail DetailFor(const TraceOptions& options) {
  if (options.verbosity > 0 || !options.file.empty()) return TransferDetail::kHeads;
  return options.timing ? TransferDetail::kSteps : TransferDetail::kProgress;
}

}  // namespace

TransferLog::TransferLog(const TraceOptions& options) : options_(options) {
  if (!options.file.empty()) file_.emplace(options.file);
  InternetData::SetTransferListener(
      [this](const TransferEvent& event) { Take(event); }, DetailFor(options),
      options.shows_secrets ? TransferSecrets::kShown : TransferSecrets::kBlanked);
}

TransferLog::~TransferLog() {
  InternetData::SetTransferListener(nullptr);
  if (!options_.timing) return;
  const std::string text =
      ToText(waterfall_.Rows(), WidthOf(stderr, kUsualWidth), MayColour(stderr));
  std::fwrite(text.data(), 1, text.size(), stderr);
}

void TransferLog::ShowProgress() {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (MayRedraw(stderr) && options_.verbosity == 0) progress_.emplace(stderr);
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
  const std::chrono::duration<double> time = std::chrono::steady_clock::now() - begin_;
  const std::lock_guard<std::mutex> lock(mutex_);
  if (progress_) progress_->Show(event);
  if (event.kind == TransferEvent::Kind::kEnded) last_end_ = event;
  if (event.kind == TransferEvent::Kind::kProgress) return;
  for (const std::string& line : StepLines(event, options_.verbosity)) Note(line);
  if (!file_ && !options_.timing) return;
  const TraceRecord record = MakeTraceRecord(time.count(), event);
  if (file_) file_->Write(record);
  if (options_.timing) waterfall_.Add(record);
}

}  // namespace stowra
