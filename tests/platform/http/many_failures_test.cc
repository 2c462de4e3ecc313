// SPDX-License-Identifier: MIT
// Many transfers that fail at once, each deleted in its own notification.

#include <gtest/gtest.h>
#include <time.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "common_stowraapi/platform/notification_center.h"
#include "common_stowraapi/platform/observer.h"
#include "tests/platform/http/transport_fixture.h"

namespace stowra_test {
namespace {

constexpr char kEnded[] = "ManyFailuresTestEnded";

// Processor time of all threads, in seconds.
double ProcessorTime() {
  timespec time = {};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

struct Transfer {
  std::unique_ptr<InternetDataDelegate> delegate = MakeDelegate(this, kEnded, kEnded);
  std::unique_ptr<InternetData> transport = std::make_unique<InternetData>(Text("none:"));
};

// Deletes the transfer that is the payload.
class Deleter final : public ovrant::IObserver {
 public:
  explicit Deleter(std::size_t count) : left_(count) {
    CNotificationCenter::Default()->AddObserver(kEnded, this);
  }
  ~Deleter() override { CNotificationCenter::Default()->RemoveObserver(this); }

  Deleter(const Deleter&) = delete;
  Deleter& operator=(const Deleter&) = delete;

  using ovrant::IObserver::OnNotification;
  void OnNotification(const char* /*name*/, void* payload) override {
    delete static_cast<Transfer*>(payload);
    if (--left_ == 0) all_deleted_.Set();
  }

  bool WaitForAll() { return all_deleted_.Wait(); }

 private:
  std::size_t left_;
  Event all_deleted_;
};

// Processor time for that many transfers. All wait while a delivery holds the worker.
double TimeFor(std::size_t count) {
  Event go_on;
  Event entered;
  Background holder("none:", [&] {
    entered.Set();
    EXPECT_TRUE(go_on.Wait());
  });
  EXPECT_TRUE(holder.Start());
  EXPECT_TRUE(entered.Wait());
  Deleter deleter(count);
  const double begin = ProcessorTime();
  for (std::size_t i = 0; i < count; ++i) {
    auto* const transfer = new Transfer;
    EXPECT_TRUE(transfer->transport->DownloadWithDelegate(transfer->delegate.get(), nullptr));
  }
  go_on.Set();
  EXPECT_TRUE(deleter.WaitForAll());
  return ProcessorTime() - begin;
}

// The fastest of five: other programs only make it slower.
double LeastTimeFor(std::size_t count) {
  double least = TimeFor(count);
  for (int i = 1; i < 5; ++i) least = std::min(least, TimeFor(count));
  return least;
}

TEST_F(TransportTest, TimeForManyFailuresIsLinear) {
  constexpr std::size_t kFew = 1000;
  constexpr std::size_t kMany = 16 * kFew;
  const double few = LeastTimeFor(kFew);
  const double many = LeastTimeFor(kMany);
  EXPECT_LT(many, 64 * few) << few << " s for " << kFew << ", " << many << " s for " << kMany;
}

}  // namespace
}  // namespace stowra_test
