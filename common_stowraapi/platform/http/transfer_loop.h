// Drives exchanges over a shared pool of connections.

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

// Owns one libcurl multi handle with its connections, and waits for their sockets. It watches the
// sockets itself. Only that tells progress from silence while one header line arrives byte by byte.
// For one thread at a time.
class TransferLoop {
 public:
  using Clock = HttpExchange::Clock;

  // `wake` may be null and must outlive the loop. Its Wake ends a Turn.
  explicit TransferLoop(WakePipe* wake = nullptr);
  ~TransferLoop();

  TransferLoop(const TransferLoop&) = delete;
  TransferLoop& operator=(const TransferLoop&) = delete;

  // Starts `exchange`. It must live until NextEnded has returned it or Drop has ended it. NextEnded
  // returns it at once if the request cannot be made. A call that throws std::bad_alloc changes
  // nothing.
  void Start(HttpExchange& exchange);

  // Ends an exchange that NextEnded has not returned yet. Does not wait for the network.
  void Drop(HttpExchange& exchange);

  // Waits for an event of an exchange and handles it. A Wake also ends the wait, as does `longest`.
  // False when only the time has passed.
  bool Turn(std::chrono::milliseconds longest = kForever);

  static constexpr std::chrono::milliseconds kForever = std::chrono::milliseconds::max();

  // Returns the next ended exchange, or null.
  HttpExchange* NextEnded();

  // Exchanges that NextEnded has not returned yet.
  std::size_t size() const { return slots_.size() + ended_.size(); }

 private:
  // A running exchange and its easy handle.
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

  // libcurl still writes to these two while its multi handle is destroyed.
  std::unique_ptr<SocketSet> sockets_;
  std::optional<Clock::time_point> timer_;

  // Why libcurl has failed. The cause is mostly lack of memory. libcurl does not say which transfer
  // failed, and may crash on it later. So all transfers end and the multi handle is destroyed. The
  // next start makes another one.
  const char* failure_ = nullptr;

  std::vector<EasyHandle> ready_;  // for later exchanges
  std::vector<EasyHandle> used_;   // must be reset first
  MultiHandle multi_;
  std::vector<Slot> slots_;
  std::vector<HttpExchange*> ended_;  // NextEnded takes the last
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_TRANSFER_LOOP_H_
