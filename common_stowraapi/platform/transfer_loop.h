// Drives exchanges over a shared set of connections.

#ifndef COMMON_STOWRAAPI_PLATFORM_TRANSFER_LOOP_H_
#define COMMON_STOWRAAPI_PLATFORM_TRANSFER_LOOP_H_

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include "common_stowraapi/platform/curl_handles.h"
#include "common_stowraapi/platform/http_exchange.h"

namespace ovrant::internet {

class SocketSet;

// One libcurl multi handle with its connections, and the wait for them. The sockets are watched
// here rather than by libcurl, because only that tells progress from silence while a single header
// line drips in. For one thread at a time.
class TransferLoop {
 public:
  using Clock = HttpExchange::Clock;

  // `wake_socket`, if not -1, is readable when Turn is to return.
  explicit TransferLoop(int wake_socket = -1);
  ~TransferLoop();

  TransferLoop(const TransferLoop&) = delete;
  TransferLoop& operator=(const TransferLoop&) = delete;

  // Starts `exchange`, which must live until NextEnded has given it or Drop has ended it. One that
  // cannot be made is given by NextEnded at once. std::bad_alloc leaves the loop as it was.
  void Start(HttpExchange& exchange);

  // Ends an exchange that has been started and not been given. Does not wait for the network.
  void Drop(HttpExchange& exchange);

  // Waits until something happens to an exchange, or the wake socket is readable, and handles it.
  void Turn();

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

  void MakeRoom();
  EasyHandle TakeEasy();
  void Detach(std::size_t index);
  void Recycle(EasyHandle easy);
  void Finish(std::size_t index);
  std::size_t IndexOf(const void* easy) const;
  HttpExchange* ExchangeOf(const void* easy) const;
  int MillisecondsToWait() const;
  void HandleSockets();
  void HandleTimer();
  void TakeResults();
  void EndOverdue();
  bool IsAnsweredEarly(const Slot& slot) const;
  void NoteWhatUploadsSent();

  // libcurl reports to these while its handle is destroyed, too.
  std::unique_ptr<SocketSet> sockets_;
  std::optional<Clock::time_point> timer_;

  std::vector<EasyHandle> idle_;
  MultiHandle multi_;
  std::vector<Slot> slots_;
  std::vector<HttpExchange*> ended_;  // the next one is last
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_TRANSFER_LOOP_H_
