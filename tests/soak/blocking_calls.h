// Calls that block their threads until the reply.

#ifndef TESTS_SOAK_BLOCKING_CALLS_H_
#define TESTS_SOAK_BLOCKING_CALLS_H_

#include <atomic>
#include <thread>

#include "tests/soak/answers.h"
#include "tests/soak/report.h"
#include "tests/support/raw_server.h"

namespace stowra_test {

// Makes them, one after the other, on a thread of its own, from its construction until it is told
// to stop. What each gives is compared with what it asked for.
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
