// SPDX-License-Identifier: MIT
// One HTTP request on the way to its reply, through all redirects.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_EXCHANGE_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_EXCHANGE_H_

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "common_stowraapi/platform/http/connection_sockets.h"
#include "common_stowraapi/platform/http/failure.h"
#include "common_stowraapi/platform/http/hop.h"
#include "common_stowraapi/platform/http/message.h"
#include "common_stowraapi/platform/http/transfer_settings.h"
#include "common_stowraapi/platform/http/transfer_trace.h"

namespace ovrant::internet {

// Makes the hops of one transfer one after another and decides its outcome. TransferLoop runs them.
// For one thread at a time.
class HttpExchange {
 public:
  using Clock = std::chrono::steady_clock;

  // `listener` may be null. It gets the start, the progress, the end and the steps, as it wants.
  HttpExchange(HttpRequest&& request, std::shared_ptr<TransferListener> listener);

  HttpExchange(const HttpExchange&) = delete;
  HttpExchange& operator=(const HttpExchange&) = delete;

  // Numbers the exchanges of the process from 1.
  unsigned long number() const { return number_; }

  // Tell a listener of steps what happens before the start and after the end.
  void TellQueued() noexcept;
  void TellPosted(const std::string& notification) noexcept;

  // Tells the listener of the start. Call it once, before the first BeginHop.
  void Begin() noexcept;

  // Makes the next hop. False when it cannot be made: the exchange has ended then. The loop runs
  // easy() until the hop ends. `sockets` must outlive the hop.
  bool BeginHop(ConnectionSockets& sockets) noexcept;

  // The easy handle of the hop. Its private pointer is this exchange.
  void* easy() const { return hop_->easy(); }
  bool is_connecting() const { return hop_->is_connecting(); }
  bool is_upload() const { return hop_->is_upload(); }
  bool IsAnsweredEarly() const { return hop_->IsAnsweredEarly(); }

  // Ends the hop by libcurl's result. The loop has let go of easy(). True when another hop follows.
  bool EndHop(int curl_code) noexcept;

  // End the exchange. The loop has let go of easy(). Only the first end counts.
  void EndDropped() noexcept { Conclude(kDropped); }
  void EndFailed(const Failure& failure) noexcept { Conclude(failure); }
  void EndSilent() noexcept;

  bool ended() const { return ended_; }

  // Requires ended().
  HttpReply TakeReply() { return std::move(reply_); }

  // Silence is time that the loop has waited, or spent in libcurl, since the last progress. The
  // host's own code is not part of it. What arrives during a perform is read by the next one, so a
  // perform's time counts after that.
  void AddWait(Clock::duration time) { silence_ += time; }
  void AddPerform(Clock::duration time) { silence_ += std::exchange(perform_time_, time); }
  Clock::duration silence_left() const { return request_.inactivity_timeout - silence_; }

  // Before and after each perform of libcurl. With `sample` an upload's progress in the system
  // counts too.
  void BeforePerform();
  void AfterPerform(bool sample);

  // What the host's code, listener, source and sink, took since the last call.
  Clock::duration TakeHostTime();

 private:
  HopRequest FirstHop() const;
  Failure MakeHop(ConnectionSockets& sockets);
  void AskAgain();
  ovrant::utils::StringMap HeadersFor(const std::string& url, bool is_first_origin) const;
  Failure FollowRedirect();
  void Conclude(const Failure& failure) noexcept;
  void Tell(TransferEvent::Kind kind, const Failure& failure = kNoFailure) noexcept;
  void FillCounts(TransferEvent& event) const;
  void FillSteps(TransferEvent& event) const;
  void FillErrorReply(TransferEvent& event) const;

  HttpRequest request_;  // without its source and sink once it has ended
  const std::shared_ptr<TransferListener> listener_;
  const unsigned long number_;
  const std::string silence_text_;  // made early, so that the end needs no memory
  const Clock::time_point created_ = Clock::now();

  std::optional<TransferTrace> trace_;  // for a listener of steps
  std::optional<HopRequest> next_;      // the hop that BeginHop makes, or has made
  std::optional<Hop> hop_;
  int redirects_ = 0;
  Clock::duration silence_{0};
  Clock::duration perform_time_{0};  // of the last perform
  Clock::duration host_time_{0};     // of the listener
  int status_ = 0;                   // of the last response that began
  TransferTimes times_;
  bool began_ = false;
  bool ended_ = false;
  HttpReply reply_;
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_EXCHANGE_H_
