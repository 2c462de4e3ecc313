// SPDX-License-Identifier: MIT
// System resources that the worker takes and gives back.

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#if defined(__GLIBC__)
#include <pthread.h>
#endif

#include <cstdlib>
#include <stdexcept>
#include <string>

#include "tests/platform/http/transport_fixture.h"
#include "tests/support/failing_malloc.h"

namespace stowra_test {
namespace {

using ovrant::internet::TransferError;

class WorkerResourcesTest : public TransportTest {
 protected:
  // Tests of refused resources need a process without a worker.
  WorkerResourcesTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

  const RawServer server_{Always(Response(200, std::string(100'000, 'x')))};
};

// Ends the process, with 0 on success. A transfer must fail at once while `refuse` holds. The next
// must succeed after `allow`.
template <typename Refuse, typename Allow>
void StartRefusedThenAllowed(const std::string& url, const Refuse& refuse, const Allow& allow) {
  Background refused(url);
  refuse();
  const bool started = refused.Start();
  const std::size_t ends = refused.recorder.entries().size();
  allow();
  if (!started || ends != 1 || refused.WaitForEnd() != kFailed) std::exit(1);
  Background allowed(url);
  if (!allowed.Start()) std::exit(2);
  std::exit(allowed.WaitForEnd() == kReturned ? 0 : 3);
}

// UndefinedBehaviorSanitizer needs descriptors, because it checks an object through a pipe.
// ThreadSanitizer reports the server's threads, which the process leaves behind.
#if !defined(STOWRA_UNDER_ADDRESS_SANITIZER) && !defined(STOWRA_UNDER_THREAD_SANITIZER)

// Allows no more descriptors than are open, from Refuse to Allow.
class DescriptorLimit {
 public:
  DescriptorLimit() { getrlimit(RLIMIT_NOFILE, &usual_); }

  void Refuse() const {
    const int next = dup(STDERR_FILENO);
    close(next);
    const rlimit none = {static_cast<rlim_t>(next), usual_.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
  }
  void Allow() const { setrlimit(RLIMIT_NOFILE, &usual_); }

 private:
  rlimit usual_ = {};
};

TEST_F(WorkerResourcesTest, TransferFailsAtOnceWithoutDescriptors) {
  const DescriptorLimit limit;
  EXPECT_EXIT(StartRefusedThenAllowed(
                  server_.Url(), [&] { limit.Refuse(); }, [&] { limit.Allow(); }),
              testing::ExitedWithCode(0), "");
}

// Ends the process, with 0 on success.
void DownloadWithoutDescriptors(const std::string& url) {
  InternetData transport((Text(url)));
  const DescriptorLimit limit;
  limit.Refuse();
  const bool refused = !transport.Download();
  const TransferError reason = InternetData::LastError();
  limit.Allow();
  if (!refused || reason != TransferError::kOutOfMemory) std::exit(1);
  std::exit(transport.Download() && InternetData::LastError() == TransferError::kNone ? 0 : 2);
}

TEST_F(WorkerResourcesTest, BlockingTransferWithoutDescriptorsIsOutOfMemory) {
  EXPECT_EXIT(DownloadWithoutDescriptors(server_.Url()), testing::ExitedWithCode(0), "");
}

// The start must not throw.
void StartRefusedWithAThrowingObserver(const std::string& url) {
  Background refused(url, [] { throw std::runtime_error("thrown by an observer"); });
  const DescriptorLimit limit;
  limit.Refuse();
  const bool started = refused.Start();
  limit.Allow();
  std::exit(started ? 0 : 1);
}

TEST_F(WorkerResourcesTest, ObserverOfAnImmediateFailureMayThrow) {
  EXPECT_EXIT(StartRefusedWithAThrowingObserver(server_.Url()), testing::ExitedWithCode(0), "");
}

#endif

#if defined(__GLIBC__) && !defined(STOWRA_UNDER_THREAD_SANITIZER)

// For later threads.
void SetStackSize(std::size_t bytes) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, bytes);
  pthread_setattr_default_np(&attributes);
  pthread_attr_destroy(&attributes);
}

TEST_F(WorkerResourcesTest, TransferFailsAtOnceWithoutAThread) {
  EXPECT_EXIT(StartRefusedThenAllowed(
                  server_.Url(), [] { SetStackSize(std::size_t{1} << 50); },
                  [] { SetStackSize(std::size_t{1} << 23); }),
              testing::ExitedWithCode(0), "");
}

#endif

}  // namespace
}  // namespace stowra_test
