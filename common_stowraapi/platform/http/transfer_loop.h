// SPDX-License-Identifier: MIT
// Drives exchanges over a shared pool of connections.

#ifndef COMMON_STOWRAAPI_PLATFORM_HTTP_TRANSFER_LOOP_H_
#define COMMON_STOWRAAPI_PLATFORM_HTTP_TRANSFER_LOOP_H_

#include <atomic>
#include <chrono>
#include <cstddef>
#include <mutex>
#include <vector>

#include "common_stowraapi/platform/http/connection_sockets.h"
#include "common_stowraapi/platform/http/curl_handles.h"
#include "common_stowraapi/platform/http/exchange.h"

namespace ovrant::internet {

// Owns one libcurl multi handle with its connections. For one thread at a time, except Wake.
class TransferLoop {
 public:
  using Clock = HttpExchange::Clock;

  // Throws std::bad_alloc when memory or descriptors run out.
  TransferLoop();
  ~TransferLoop();

  TransferLoop(const TransferLoop&) = delete;
  TransferLoop& operator=(const TransferLoop&) = delete;

  // Starts `exchange`. It must live until NextEnded has returned it or Drop has ended it. NextEnded
  // returns it at once if the request cannot be made. A call that throws std::bad_alloc changes
  // nothing.
  void Start(HttpExchange& exchange);

  // Ends an exchange that NextEnded has not returned yet. Does not wait for the network.
  void Drop(HttpExchange& exchange);

  // Waits for an event of an exchange, or for a Wake, and handles it.
  void Turn();

  // Ends a Turn, now or the next one. What was written before is visible after it. Any thread.
  void Wake();

  // Returns the next ended exchange, or null.
  HttpExchange* NextEnded();

  // Exchanges that NextEnded has not returned yet.
  std::size_t size() const { return running_.size() + ended_.size(); }

 private:
  void MakeMulti();
  void AddHop(HttpExchange& exchange);
  void Detach(HttpExchange& exchange);
  void EndHop(HttpExchange& exchange, int curl_code);
  void Finish(HttpExchange& exchange);
  std::chrono::milliseconds LongestWait() const;
  void Wait();
  void Perform();
  void TakeResults();
  void EndSilentAndAnswered();
  void EndAll();

  // libcurl's connections use it until the multi handle is destroyed.
  ConnectionSockets sockets_;

  std::mutex multi_mutex_;  // for Wake, while the handle is replaced
  MultiHandle multi_;
  std::atomic<bool> is_woken_{false};

  // libcurl has failed, mostly for lack of memory. It does not say which transfer failed, so all
  // end. The next Start makes another multi handle.
  bool has_failed_ = false;

  bool has_new_hop_ = false;
  Clock::time_point next_sample_;
  std::vector<HttpExchange*> running_;
  std::vector<HttpExchange*> ended_;  // NextEnded takes the last
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_HTTP_TRANSFER_LOOP_H_
