// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/sink_writer.h"

#include "common_stowraapi/platform/http/request_headers.h"

namespace ovrant::internet {

using ovrant::utils::StringMap;

namespace {

constexpr Failure kSinkFailed{TransferError::kBody, "the host's sink failed"};
constexpr Failure kAskedAgain{TransferError::kBody, "the host's sink asked again"};

}  // namespace

Failure SinkWriter::BeginRequest(StringMap& headers) noexcept {
  takes_ = false;
  wants_another_ = false;
  return gates_.Call(kSinkFailed, [this, &headers] {
    AddHeaders(sink_->RequestHeaders(), true, headers);
    return true;
  });
}

Failure SinkWriter::Offer(int status, const HeaderFields& headers) noexcept {
  BodySink::Choice choice = BodySink::Choice::kLeave;
  const Failure failure = gates_.Call(kSinkFailed, [this, status, &headers, &choice] {
    choice = sink_->Begin(status, headers.ToMap());
    return choice != BodySink::Choice::kFail;
  });
  if (failure) return failure;
  takes_ = choice == BodySink::Choice::kTake;
  if (choice != BodySink::Choice::kAskAgain) return kNoFailure;
  wants_another_ = !std::exchange(has_asked_again_, true);
  return kAskedAgain;
}

Failure SinkWriter::Write(std::string_view bytes) noexcept {
  if (bytes.empty()) return kNoFailure;
  return gates_.Call(kSinkFailed, [this, bytes] {
    return sink_->Write(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
  });
}

Failure SinkWriter::End() noexcept {
  return gates_.Call(kSinkFailed, [this] { return sink_->End(); });
}

}  // namespace ovrant::internet
