// Drives exchanges over a shared set of connections.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_TRANSFER_LOOP_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_TRANSFER_LOOP_H_

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include "common_stowraapi/platform/http/curl_handles.h"
#include "common_stowraapi/platform/http/exchange.h"

namespace ovrant::internet {

class SocketSet;
class WakePipe;

// One libcurl multi handle with its connections, and the wait for them. The sockets are watched
// here rather than by libcurl, because only that tells progress from silence while a single header
// line drips in. For one thread at a time.
class TransferLoop {
 public:
  using Clock = HttpExchange::Clock;

  // A Wake of `wake`, if there is one, ends a Turn. It must outlive the loop.
  explicit TransferLoop(WakePipe* wake = nullptr);
  ~TransferLoop();

  TransferLoop(const TransferLoop&) = delete;
  TransferLoop& operator=(const TransferLoop&) = delete;

  // Starts `exchange`, which must live until NextEnded has given it or Drop has ended it. One that
  // cannot be made is given by NextEnded at once. std::bad_alloc leaves the loop as it was.
  void Start(HttpExchange& exchange);

  // Ends an exchange that has been started and not been given. Does not wait for the network.
  void Drop(HttpExchange& exchange);

  // Waits until something happens to an exchange and handles it, or until a Wake, or for `longest`.
  // False when nothing has come but the time.
  bool Turn(std::chrono::milliseconds longest = kForever);

  static constexpr std::chrono::milliseconds kForever = std::chrono::milliseconds::max();

  // The next exchange that has ended; null when there is none.
  HttpExchange* NextEnded();

  // Exchanges that have been started and not been given.
  std::size_t size() const { return slots_.size() + ended_.size(); }

 private:
  // An exchange under way and its easy handle.
  struct Slot {
    EasyHandle easy;
    HttpExchange* exchange;
  };

  void MakeMulti();
  void MakeRoom();
  EasyHandle TakeEasy();
  void PrepareEasy() noexcept;
  void KeepIfPrepared(EasyHandle easy) noexcept;
  void Detach(std::size_t index);
  void Finish(std::size_t index);
  std::size_t IndexOf(const void* easy) const;
  HttpExchange* ExchangeOf(const void* easy) const;
  int MillisecondsToWait(Clock::time_point now, std::chrono::milliseconds longest) const;
  bool HandleSockets(int milliseconds);
  bool HandleTimer();
  void Act(int socket, int events);
  void Conclude(Clock::time_point now);
  void TakeResults();
  void EndAll();
  void EndOverdue(Clock::time_point now);
  bool IsAnsweredEarly(const Slot& slot) const;
  void NoteWhatUploadsSent();

  WakePipe* const wake_;

  // libcurl reports to these while its handle is destroyed, too.
  std::unique_ptr<SocketSet> sockets_;
  std::optional<Clock::time_point> timer_;

  // Why libcurl has failed, mostly for want of memory. It does not say in which transfer, reports
  // nothing more of that one, and may hold half a record of it, over which it falls later: all
  // transfers end then, and the multi handle with them. The next one to start makes another.
  const char* failure_ = nullptr;

  std::vector<EasyHandle> ready_;  // for the exchanges to come
  std::vector<EasyHandle> used_;   // by exchanges that have ended
  MultiHandle multi_;
  std::vector<Slot> slots_;
  std::vector<HttpExchange*> ended_;  // the next one is last
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_TRANSFER_LOOP_H_
