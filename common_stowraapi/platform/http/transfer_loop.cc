#include "common_stowraapi/platform/http/transfer_loop.h"

#include <curl/curl.h>

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

#include "common_stowraapi/platform/http/socket_set.h"
#include "common_stowraapi/platform/http/wake_pipe.h"

namespace ovrant::internet {

namespace {

// A connecting transfer may have a socket for each address family and one for the name look-up.
constexpr std::size_t kSocketsPerTransfer = 4;

// At most this many used handles wait to be prepared again.
constexpr std::size_t kMostUsed = 16;

constexpr auto kAtOnce = TransferLoop::Clock::time_point::min();

// How often to ask what the system has sent of an upload. No event tells that.
constexpr std::chrono::milliseconds kUploadSample(100);

int OnSocketChange(CURL* easy, curl_socket_t socket, int what, void* sockets, void* /*own*/) {
  auto& set = *static_cast<SocketSet*>(sockets);
  if (what == CURL_POLL_REMOVE) {
    set.Forget(socket);
    return 0;
  }
  const int events =
      ((what & CURL_POLL_IN) != 0 ? POLLIN : 0) | ((what & CURL_POLL_OUT) != 0 ? POLLOUT : 0);
  return set.Watch(socket, static_cast<short>(events), easy) ? 0 : -1;
}

int OnTimerChange(CURLM* /*multi*/, long milliseconds, void* timer) {
  auto& time = *static_cast<std::optional<TransferLoop::Clock::time_point>*>(timer);
  if (milliseconds < 0) {
    time.reset();
  } else if (milliseconds == 0) {
    time = kAtOnce;
  } else {
    time = TransferLoop::Clock::now() + std::chrono::milliseconds(milliseconds);
  }
  return 0;
}

int ToCurlEvents(short events) {
  int result = 0;
  if ((events & (POLLIN | POLLHUP)) != 0) result |= CURL_CSELECT_IN;
  if ((events & POLLOUT) != 0) result |= CURL_CSELECT_OUT;
  if ((events & (POLLERR | POLLNVAL)) != 0) result |= CURL_CSELECT_ERR;
  return result;
}

}  // namespace

TransferLoop::TransferLoop(WakePipe* wake)
    : wake_(wake), sockets_(std::make_unique<SocketSet>(wake != nullptr ? wake->socket() : -1)) {
  MakeMulti();
}

void TransferLoop::MakeMulti() {
  EnsureCurl();
  multi_ = MakeMultiHandle();
  // No multiplexing: each connection carries one transfer, whose progress it shows.
  curl_multi_setopt(multi_.get(), CURLMOPT_PIPELINING, CURLPIPE_NOTHING);
  curl_multi_setopt(multi_.get(), CURLMOPT_SOCKETFUNCTION, OnSocketChange);
  curl_multi_setopt(multi_.get(), CURLMOPT_SOCKETDATA, sockets_.get());
  curl_multi_setopt(multi_.get(), CURLMOPT_TIMERFUNCTION, OnTimerChange);
  curl_multi_setopt(multi_.get(), CURLMOPT_TIMERDATA, &timer_);
}

TransferLoop::~TransferLoop() {
  while (!slots_.empty()) Drop(*slots_.back().exchange);
}

void TransferLoop::Start(HttpExchange& exchange) {
  if (failure_ != nullptr) EndAll();
  if (!multi_) MakeMulti();
  MakeRoom();
  EasyHandle easy = TakeEasy();
  if (!exchange.Begin(easy.get())) {
    exchange.End(CURLE_FAILED_INIT);
    used_.push_back(std::move(easy));
    ended_.insert(ended_.begin(), &exchange);
    return;
  }
  const CURLMcode added = curl_multi_add_handle(multi_.get(), easy.get());
  slots_.push_back({std::move(easy), &exchange});
  if (added != CURLM_OK) {
    failure_ = curl_multi_strerror(added);
    exchange.EndFailed(failure_);
    Finish(slots_.size() - 1);
  }
}

void TransferLoop::Drop(HttpExchange& exchange) {
  const auto slot = std::find_if(slots_.begin(), slots_.end(), [&exchange](const Slot& each) {
    return each.exchange == &exchange;
  });
  if (slot != slots_.end()) {
    Detach(static_cast<std::size_t>(slot - slots_.begin()));
  } else {
    ended_.erase(std::remove(ended_.begin(), ended_.end(), &exchange), ended_.end());
  }
  exchange.EndDropped();
}

// Due timers go first, so that a started transfer begins at once.
bool TransferLoop::Turn(std::chrono::milliseconds longest) {
  const bool was_due = HandleTimer();
  const Clock::time_point now = Clock::now();
  if (was_due) Conclude(now);
  const bool something_came = HandleSockets(MillisecondsToWait(now, longest));
  Conclude(Clock::now());
  return something_came || !ended_.empty();
}

HttpExchange* TransferLoop::NextEnded() {
  if (ended_.empty()) return nullptr;
  HttpExchange* const exchange = ended_.back();
  ended_.pop_back();
  return exchange;
}

// Makes room for all that later calls do, so that they need no memory. All handles may end up in
// one list, with the one that PrepareEasy adds.
void TransferLoop::MakeRoom() {
  const std::size_t count = size() + 2;
  slots_.reserve(count);
  ended_.reserve(count);
  ready_.reserve(count + ready_.size() + used_.size());
  used_.reserve(count + used_.size());
  sockets_->Reserve((count + ready_.size() + used_.size()) * kSocketsPerTransfer);
}

EasyHandle TransferLoop::TakeEasy() {
  if (used_.size() >= kMostUsed) PrepareEasy();
  if (ready_.empty()) return MakeEasyHandle();
  EasyHandle easy = std::move(ready_.back());
  ready_.pop_back();
  return easy;
}

// Runs when the loop is about to wait, or when too many used handles have piled up. A handle that
// cannot be prepared again is destroyed.
void TransferLoop::PrepareEasy() noexcept {
  if (HowToReuseEasyHandles() == EasyReuse::kNever) used_.clear();
  for (; !used_.empty(); used_.pop_back()) {
    curl_easy_reset(used_.back().get());
    KeepIfPrepared(std::move(used_.back()));
  }
  try {
    if (ready_.empty()) KeepIfPrepared(MakeEasyHandle());
  } catch (const std::bad_alloc&) {  // NOLINT(bugprone-empty-catch): the next exchange will see
  }
}

void TransferLoop::KeepIfPrepared(EasyHandle easy) noexcept {
  try {
    if (PrepareForExchange(easy.get()) == nullptr) ready_.push_back(std::move(easy));
  } catch (const std::bad_alloc&) {  // NOLINT(bugprone-empty-catch): the next exchange will see
  }
}

void TransferLoop::Detach(std::size_t index) {
  HttpExchange& exchange = *slots_[index].exchange;
  EasyHandle easy = std::move(slots_[index].easy);
  if (index + 1 != slots_.size()) slots_[index] = std::move(slots_.back());
  slots_.pop_back();
  curl_multi_remove_handle(multi_.get(), easy.get());
  sockets_->ForgetOwner(easy.get());
  const bool is_prepared = exchange.Release();
  const bool may_reuse = HowToReuseEasyHandles() != EasyReuse::kNever;
  (is_prepared && may_reuse ? ready_ : used_).push_back(std::move(easy));
}

// The exchange has ended, or its handle has.
void TransferLoop::Finish(std::size_t index) {
  ended_.insert(ended_.begin(), slots_[index].exchange);
  Detach(index);
}

std::size_t TransferLoop::IndexOf(const void* easy) const {
  const auto slot = std::find_if(slots_.begin(), slots_.end(),
                                 [easy](const Slot& each) { return each.easy.get() == easy; });
  return static_cast<std::size_t>(slot - slots_.begin());
}

HttpExchange* TransferLoop::ExchangeOf(const void* easy) const {
  const std::size_t index = IndexOf(easy);
  return index < slots_.size() ? slots_[index].exchange : nullptr;
}

int TransferLoop::MillisecondsToWait(Clock::time_point now,
                                     std::chrono::milliseconds longest) const {
  if (!ended_.empty()) return 0;
  Clock::time_point until = timer_.value_or(Clock::time_point::max());
  if (until == kAtOnce) return 0;
  for (const Slot& slot : slots_) {
    until = std::min(until, slot.exchange->deadline());
    if (slot.exchange->is_upload()) until = std::min(until, now + kUploadSample);
  }
  if (longest != kForever) until = std::min(until, now + longest);
  if (until == Clock::time_point::max()) return -1;
  const auto wait = std::chrono::ceil<std::chrono::milliseconds>(until - now).count();
  return static_cast<int>(std::clamp<decltype(wait)>(wait, 0, std::numeric_limits<int>::max()));
}

// Returns false when no socket was ready.
bool TransferLoop::HandleSockets(int milliseconds) {
  if (milliseconds != 0) PrepareEasy();
  const std::vector<SocketSet::Ready>& all_ready = sockets_->Wait(milliseconds);
  for (const SocketSet::Ready& ready : all_ready) {
    if (HttpExchange* exchange = ExchangeOf(ready.owner)) exchange->NoteProgress();
    Act(ready.socket, ToCurlEvents(ready.events));
  }
  if (sockets_->is_woken()) wake_->Drain();
  return !all_ready.empty() || sockets_->is_woken();
}

// Returns false when no timer was due.
bool TransferLoop::HandleTimer() {
  if (!timer_ || (*timer_ != kAtOnce && *timer_ > Clock::now())) return false;
  timer_.reset();
  Act(CURL_SOCKET_TIMEOUT, 0);
  return true;
}

void TransferLoop::Act(int socket, int events) {
  int running = 0;
  const CURLMcode acted = curl_multi_socket_action(multi_.get(), socket, events, &running);
  if (acted != CURLM_OK) failure_ = curl_multi_strerror(acted);
}

void TransferLoop::Conclude(Clock::time_point now) {
  TakeResults();
  if (failure_ != nullptr) EndAll();
  NoteWhatUploadsSent();
  EndOverdue(now);
}

void TransferLoop::EndAll() {
  while (!slots_.empty()) {
    slots_.back().exchange->EndFailed(failure_);
    Finish(slots_.size() - 1);
  }
  multi_.reset();
  timer_.reset();
  failure_ = nullptr;
}

void TransferLoop::TakeResults() {
  int left = 0;
  while (const CURLMsg* message = curl_multi_info_read(multi_.get(), &left)) {
    if (message->msg != CURLMSG_DONE) continue;
    const std::size_t index = IndexOf(message->easy_handle);
    const CURLcode result = message->data.result;
    if (result == CURLE_OUT_OF_MEMORY) failure_ = curl_easy_strerror(result);
    slots_[index].exchange->End(result);
    Finish(index);
  }
}

void TransferLoop::EndOverdue(Clock::time_point now) {
  // Backwards, because Finish moves the last slot into the freed place.
  for (std::size_t i = slots_.size(); i > 0; --i) {
    HttpExchange& exchange = *slots_[i - 1].exchange;
    exchange.Settle(now);
    if (exchange.is_refused() || IsAnsweredEarly(slots_[i - 1])) {
      exchange.End(CURLE_OK);
    } else if (exchange.deadline() <= now) {
      exchange.EndTimedOut();
    } else {
      continue;
    }
    Finish(i - 1);
  }
}

// When libcurl waits only to send, it has read the whole reply.
bool TransferLoop::IsAnsweredEarly(const Slot& slot) const {
  if (!slot.exchange->is_upload()) return false;
  const pollfd* const socket = sockets_->FindOwned(slot.easy.get());
  return slot.exchange->IsAnsweredEarly(socket != nullptr && socket->events == POLLOUT);
}

void TransferLoop::NoteWhatUploadsSent() {
  for (const Slot& slot : slots_) {
    if (!slot.exchange->is_upload()) continue;
    const pollfd* const socket = sockets_->FindOwned(slot.easy.get());
    if (socket != nullptr) slot.exchange->NoteUnsent(CountUnsentBytes(socket->fd));
  }
}

}  // namespace ovrant::internet
