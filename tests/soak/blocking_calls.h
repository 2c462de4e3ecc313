// SPDX-License-Identifier: MIT
// Makes calls that block until the reply.

#ifndef TESTS_SOAK_BLOCKING_CALLS_H_
#define TESTS_SOAK_BLOCKING_CALLS_H_

#include <atomic>
#include <thread>

#include "tests/soak/answers.h"
#include "tests/soak/report.h"
#include "tests/support/raw_server.h"

namespace stowra_test {

// Makes such calls on its own thread, one after the other, from construction to Stop(). Checks each
// result against the request.
class BlockingCalls {
 public:
  BlockingCalls(const RawServer& server, std::uint32_t seed);
  ~BlockingCalls();

  BlockingCalls(const BlockingCalls&) = delete;
  BlockingCalls& operator=(const BlockingCalls&) = delete;

  void Stop() { stopping_ = true; }
  bool has_stopped() const { return has_stopped_; }

 private:
  void Run();
  void Download();
  void SendAndRead();
  void QueryFeed();
  void QueryConfiguration();
  Target Draw(Document document);

  const RawServer& server_;
  Random random_;
  std::uint32_t number_ = 0;
  std::atomic<bool> stopping_{false};
  std::atomic<bool> has_stopped_{false};
  std::thread thread_;
};

}  // namespace stowra_test

#endif  // TESTS_SOAK_BLOCKING_CALLS_H_
