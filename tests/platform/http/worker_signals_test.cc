// SPDX-License-Identifier: MIT
// Signals of the host's process. They do not reach the worker.

#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <string>

#include "tests/platform/http/transport_fixture.h"
#include "tests/support/raw_server.h"

namespace stowra_test {
namespace {

std::atomic<int> handled{0};
std::atomic<bool> ran_elsewhere{false};
pthread_t main_thread;

extern "C" void OnSignal(int /*number*/) {
  ++handled;
  if (pthread_equal(pthread_self(), main_thread) == 0) ran_elsewhere = true;
}

class WorkerSignalsTest : public TransportTest, public ::testing::WithParamInterface<int> {
 protected:
  WorkerSignalsTest() {
    main_thread = pthread_self();
    handled = 0;
    ran_elsewhere = false;
    struct sigaction action = {};
    action.sa_handler = OnSignal;
    sigaction(GetParam(), &action, &before_);
  }
  ~WorkerSignalsTest() override { sigaction(GetParam(), &before_, nullptr); }

  // Threads that start from now on inherit this.
  static void Mask(int how) {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, GetParam());
    pthread_sigmask(how, &signals, nullptr);
  }

  struct sigaction before_ = {};
};

TEST_P(WorkerSignalsTest, HandlerDoesNotRunOnTheWorker) {
  LetWorkerCatchUp();  // the worker starts before this thread blocks the signal
  Mask(SIG_BLOCK);
  {
    // Only the worker could take the signal now.
    const RawServer server(Always(Response(200, std::string(100'000, 'x'))));
    for (int i = 0; i < 50; ++i) {
      Background background(server.Url());
      ASSERT_TRUE(background.Start());
      ASSERT_EQ(kill(getpid(), GetParam()), 0);
      EXPECT_EQ(background.WaitForEnd(), kReturned);
    }
    EXPECT_EQ(handled, 0);
  }
  Mask(SIG_UNBLOCK);
  EXPECT_GE(handled, 1);
  EXPECT_FALSE(ran_elsewhere);
}

INSTANTIATE_TEST_SUITE_P(Signals, WorkerSignalsTest, ::testing::Values(SIGUSR1, SIGALRM),
                         [](const auto& test) { return test.param == SIGALRM ? "Alarm" : "User"; });

}  // namespace
}  // namespace stowra_test
