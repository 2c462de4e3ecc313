// SPDX-License-Identifier: MIT
#include "host/session.h"

#include <fmt/format.h>

#include <algorithm>

#include "common_stowraapi/platform/internet_data.h"
#include "host/terminal.h"

namespace stowra {

using ovrant::internet::InternetData;
using ovrant::internet::TransferError;
using ovrant::internet::TransferEvent;

namespace {

constexpr int kHttpOk = 200;

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
}

bool Session::RunInBackground(const std::function<void()>& start, const char* success) {
  start();
  loop_.RunNext();
  return notifications_.HasArrived(success);
}

ExitStatus Session::Fail(const std::string& unusable, const std::string& message) const {
  const auto end = transfers_.last_end();
  if (!end) {
    Complain(fmt::format("{}: the transfer did not start", options_.url));
    return ExitStatus::kTransferFailed;
  }
  if (!end->error.empty()) {
    Complain(fmt::format("{}: {}", end->url.utf8(), ReasonOf(*end, options_.max_bytes)));
    return ExitStatus::kTransferFailed;
  }
  if (end->status != kHttpOk) {
    Complain(fmt::format("{}: HTTP status {}{}{}", end->url.utf8(), end->status,
                         message.empty() ? "" : ": ", message));
    return ExitStatus::kHttpStatus;
  }
  Complain(fmt::format("{}: the response is not usable: {}", end->url.utf8(), unusable));
  return ExitStatus::kUnusableResponse;
}

}  // namespace stowra
