// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/transfer_loop.h"

#include <curl/curl.h>

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

namespace ovrant::internet {

namespace {

using std::chrono::milliseconds;

// libcurl 7.88 does not wake up for the next address of a name when one does not answer. So while
// anything connects, it is called this often.
constexpr milliseconds kConnectingStep(100);

// How often to ask what the system has sent of an upload. No event tells that.
constexpr milliseconds kUploadSample(100);

constexpr milliseconds kForever(std::numeric_limits<int>::max());

constexpr Failure kLibcurlFailed{TransferError::kOutOfMemory, "libcurl ran out of memory"};

MultiHandle NewMulti() {
  EnsureCurl();
  MultiHandle multi = MakeMultiHandle();
  // No multiplexing: each connection carries one transfer, whose progress it shows.
  curl_multi_setopt(multi.get(), CURLMOPT_PIPELINING, CURLPIPE_NOTHING);
  // Without descriptors libcurl makes a handle that cannot be woken.
  if (curl_multi_wakeup(multi.get()) != CURLM_OK) throw std::bad_alloc();
  return multi;
}

HttpExchange& ExchangeOf(CURL* easy) {
  char* exchange = nullptr;
  curl_easy_getinfo(easy, CURLINFO_PRIVATE, &exchange);
  return *reinterpret_cast<HttpExchange*>(exchange);
}

}  // namespace

TransferLoop::TransferLoop() { MakeMulti(); }

TransferLoop::~TransferLoop() {
  while (!running_.empty()) Drop(*running_.back());
}

void TransferLoop::MakeMulti() {
  MultiHandle multi = NewMulti();
  const std::lock_guard<std::mutex> lock(multi_mutex_);
  multi_.swap(multi);
}

void TransferLoop::Start(HttpExchange& exchange) {
  if (has_failed_) {
    EndAll();
    MakeMulti();
    has_failed_ = false;
  }
  running_.reserve(size() + 1);
  ended_.reserve(size() + 1);
  exchange.Begin();
  AddHop(exchange);
}

void TransferLoop::Drop(HttpExchange& exchange) {
  if (std::find(running_.begin(), running_.end(), &exchange) != running_.end()) {
    Detach(exchange);
  } else {
    ended_.erase(std::remove(ended_.begin(), ended_.end(), &exchange), ended_.end());
  }
  exchange.EndDropped();
}

void TransferLoop::Turn() {
  if (ended_.empty() && !std::exchange(has_new_hop_, false)) Wait();
  Perform();
}

void TransferLoop::Wake() {
  if (is_woken_.exchange(true)) return;
  const std::lock_guard<std::mutex> lock(multi_mutex_);
  curl_multi_wakeup(multi_.get());
}

HttpExchange* TransferLoop::NextEnded() {
  if (ended_.empty()) return nullptr;
  HttpExchange* const exchange = ended_.back();
  ended_.pop_back();
  return exchange;
}

void TransferLoop::AddHop(HttpExchange& exchange) {
  if (!exchange.BeginHop(sockets_)) {
    Finish(exchange);
    return;
  }
  if (curl_multi_add_handle(multi_.get(), exchange.easy()) != CURLM_OK) {
    has_failed_ = true;
    exchange.EndFailed(kLibcurlFailed);
    Finish(exchange);
    return;
  }
  running_.push_back(&exchange);
  has_new_hop_ = true;
}

void TransferLoop::Detach(HttpExchange& exchange) {
  curl_multi_remove_handle(multi_.get(), exchange.easy());
  running_.erase(std::remove(running_.begin(), running_.end(), &exchange), running_.end());
}

void TransferLoop::EndHop(HttpExchange& exchange, int curl_code) {
  Detach(exchange);
  if (exchange.EndHop(curl_code)) {
    AddHop(exchange);
  } else {
    Finish(exchange);
  }
}

void TransferLoop::Finish(HttpExchange& exchange) { ended_.insert(ended_.begin(), &exchange); }

milliseconds TransferLoop::LongestWait() const {
  if (is_woken_) return milliseconds(0);
  HttpExchange::Clock::duration longest = kForever;
  for (const HttpExchange* exchange : running_) {
    longest = std::min(longest, exchange->silence_left());
    if (exchange->is_connecting()) longest = std::min<Clock::duration>(longest, kConnectingStep);
    if (exchange->is_upload()) longest = std::min<Clock::duration>(longest, kUploadSample);
  }
  return std::max(std::chrono::ceil<milliseconds>(longest), milliseconds(0));
}

void TransferLoop::Wait() {
  const Clock::time_point begin = Clock::now();
  const CURLMcode waited =
      curl_multi_poll(multi_.get(), nullptr, 0, static_cast<int>(LongestWait().count()), nullptr);
  if (waited != CURLM_OK) has_failed_ = true;
  is_woken_ = false;
  const Clock::duration time = Clock::now() - begin;
  for (HttpExchange* exchange : running_) exchange->AddWait(time);
}

void TransferLoop::Perform() {
  for (HttpExchange* exchange : running_) exchange->BeforePerform();
  int running = 0;
  const Clock::time_point begin = Clock::now();
  if (curl_multi_perform(multi_.get(), &running) != CURLM_OK) has_failed_ = true;
  Clock::duration time = Clock::now() - begin;
  for (HttpExchange* exchange : running_) time -= exchange->TakeHostTime();
  for (HttpExchange* exchange : running_) exchange->AddPerform(time);
  TakeResults();
  if (has_failed_) EndAll();
  EndSilentAndAnswered();
}

void TransferLoop::TakeResults() {
  int left = 0;
  while (const CURLMsg* message = curl_multi_info_read(multi_.get(), &left)) {
    if (message->msg == CURLMSG_DONE) {
      EndHop(ExchangeOf(message->easy_handle), message->data.result);
    }
  }
}

void TransferLoop::EndSilentAndAnswered() {
  const Clock::time_point now = Clock::now();
  const bool sample = now >= next_sample_;
  if (sample) next_sample_ = now + kUploadSample;
  // Backwards, because an exchange may leave the list. A new hop is added at its end.
  for (std::size_t i = running_.size(); i > 0; --i) {
    HttpExchange& exchange = *running_[i - 1];
    exchange.AfterPerform(sample);
    if (exchange.IsAnsweredEarly()) {
      EndHop(exchange, CURLE_OK);
    } else if (exchange.silence_left() <= Clock::duration::zero()) {
      Detach(exchange);
      exchange.EndSilent();
      Finish(exchange);
    }
  }
}

void TransferLoop::EndAll() {
  while (!running_.empty()) {
    HttpExchange& exchange = *running_.back();
    Detach(exchange);
    exchange.EndFailed(kLibcurlFailed);
    Finish(exchange);
  }
}

}  // namespace ovrant::internet
