// SPDX-License-Identifier: MIT
#include "host/session.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <thread>

#include "common_stowraapi/platform/internet_data.h"
#include "host/error_message.h"
#include "host/failure_report.h"
#include "host/http_status.h"
#include "host/retry.h"
#include "host/terminal.h"
#include "host/trace_record.h"

namespace stowra {

using ovrant::internet::InternetData;
using ovrant::internet::TransferError;
using ovrant::internet::TransferEvent;

namespace {

std::string ReasonOf(const TransferEvent& end, unsigned long max_bytes) {
  const bool is_limit = max_bytes > 0 && end.reason == TransferError::kTooLarge &&
                        std::max(end.bytes_received, end.wire_bytes_received) > max_bytes;
  return is_limit
             ? fmt::format("{}: more than {} bytes (see --max-bytes)", end.error.utf8(), max_bytes)
             : end.error.utf8();
}

}  // namespace

Session::Session(const RequestOptions& options, const std::vector<const char*>& notifications)
    : options_(options),
      transfers_(options.trace),
      notifications_(notifications, options.notifications || options.trace.verbosity > 0) {
  InternetData::SetDefaults(MakeTransferDefaults(options));
  if (options.max_time > 0) {
    deadline_.emplace(std::chrono::duration<float>(options.max_time), [this] { EndAtDeadline(); });
  }
}

bool Session::RunInBackground(const std::function<void()>& start, const char* success) {
  notifications_.Forget();
  start();
  loop_.RunNext();
  return notifications_.HasArrived(success);
}

bool Session::Repeat(const std::function<bool()>& attempt) const {
  for (int number = 1; !attempt(); ++number) {
    const auto end = transfers_.last_end();
    if (number > options_.retries || !end || !MaySucceedLater(*end)) return false;
    const auto pause = PauseBefore(number + 1, end->retry_after.utf8(), std::time(nullptr));
    if (!pause) return false;
    Warn(fmt::format(
        "{}: {}; attempt {} of {} in {} s", end->url.utf8(),
        end->error.empty() ? fmt::format("HTTP status {}", end->status) : end->error.utf8(),
        number + 1, options_.retries + 1, pause->count()));
    Pause(*pause);
    if (is_interrupted_) return false;
  }
  return true;
}

// In short naps, so that an interruption is noticed soon.
void Session::Pause(std::chrono::seconds length) const {
  constexpr std::chrono::milliseconds kNap(50);
  for (auto left = std::chrono::milliseconds(length);
       left > std::chrono::milliseconds::zero() && !is_interrupted_; left -= kNap) {
    std::this_thread::sleep_for(std::min(left, kNap));
  }
}

ExitStatus Session::Fail(const std::string& unusable, const std::string& message) const {
  FailureReport failure;
  failure.url = options_.url;
  failure.exit_status = ExitStatus::kTransferFailed;
  failure.reason = "not-started";
  failure.message = "the transfer did not start";
  if (const auto end = transfers_.last_end()) Describe(*end, unusable, message, failure);
  return Report(failure, options_.json);
}

void Session::Describe(const TransferEvent& end, const std::string& unusable,
                       const std::string& message, FailureReport& failure) const {
  failure.url = end.url.utf8();
  failure.status = end.status;
  if (!end.error.empty()) {
    const bool is_usage = end.reason == TransferError::kBadUrl && failure.url == options_.url;
    if (is_usage) failure.exit_status = ExitStatus::kUsage;
    failure.reason = WordOf(end.reason);
    failure.message = ReasonOf(end, options_.max_bytes);
  } else if (end.status != kHttpOk) {
    failure.exit_status = ExitStatus::kHttpStatus;
    failure.reason = "http-status";
    failure.message = fmt::format("HTTP status {}", end.status);
    failure.server_message =
        message.empty() ? ErrorMessage(end.content_type.utf8(), end.error_body.utf8()) : message;
  } else {
    failure.exit_status = ExitStatus::kUnusableResponse;
    failure.reason = "unusable-response";
    failure.message = fmt::format("the response is not usable: {}", unusable);
  }
}

void Session::EndAtDeadline() const {
  FailureReport failure;
  failure.exit_status = ExitStatus::kTransferFailed;
  failure.reason = "max-time";
  failure.message = fmt::format("not done after {} seconds (see --max-time)", options_.max_time);
  failure.url = options_.url;
  Report(failure, options_.json);
  std::_Exit(static_cast<int>(failure.exit_status));
}

}  // namespace stowra
