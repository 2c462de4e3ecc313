// SPDX-License-Identifier: MIT
// Work that a process does once. Each failure gets a process of its own.

#include <gtest/gtest.h>
#include <openssl/ssl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <string>

#include "common_stowraapi/content/content_query.h"
#include "common_stowraapi/platform/internet_data.h"
#include "common_stowraapi/platform/internet_data_delegate.h"
#include "tests/allocation/each_failure.h"
#include "tests/allocation/end_counter.h"
#include "tests/support/raw_server.h"
#include "tests/support/text.h"

#ifdef STOWRA_FAILS_ALLOCATIONS

namespace stowra_test {
namespace {

using ovrant::internet::InternetData;
using ovrant::internet::InternetDataDelegate;
using ovrant::stowraapiclient::ContentQuery;
using ovrant::utils::ovrant_ustring;

constexpr char kReturned[] = "FirstUseReturned";
constexpr char kFailed[] = "FirstUseFailed";

enum Verdict { kNothingFailed = 0, kGood = 1, kBad = 2 };

// Runs `use` in a child process in which one allocation fails, then again without a failure. The
// second run must succeed.
Verdict UseInChild(long allowed, Threads threads, FailingMalloc::Mode mode,
                   const std::function<bool()>& use) {
  const pid_t child = fork();
  if (child == 0) {
    long failures = 0;
    bool first = false;
    {
      const FailingMalloc failing(allowed, threads, mode);
      first = use();
      failures = failing.failures();
    }
    if (failures == 0) _exit(first ? kNothingFailed : kBad);
    _exit(use() ? kGood : kBad);
  }
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status)) return kBad;
  return static_cast<Verdict>(WEXITSTATUS(status));
}

// `use` throws nothing.
long FailFirstUse(Threads threads, const std::function<bool()>& use) {
  long failing_runs = 0;
  for (const auto mode : {FailingMalloc::Mode::kOnce, FailingMalloc::Mode::kFromThenOn}) {
    for (long allowed = 0;; ++allowed) {
      const Verdict verdict = UseInChild(allowed, threads, mode, use);
      EXPECT_TRUE(verdict == kNothingFailed || verdict == kGood)
          << "after " << allowed << " allocations, mode " << static_cast<int>(mode);
      if (verdict != kGood) break;
      ++failing_runs;
    }
  }
  CountFailingRuns(failing_runs);
  return failing_runs;
}

// Skips the thousands of allocations with which the TLS library starts.
[[maybe_unused]] const int kTlsIsReady = OPENSSL_init_ssl(0, nullptr);

TEST(FirstUseAllocationTest, ADownloadFailsAndTheNextSucceeds) {
  const RawServer server(Always(Response(200, "body")));
  const ovrant_ustring url(server.Url().c_str());
  InternetData transport(url);
  EXPECT_GT(FailFirstUse(Threads::kThis, [&] { return transport.Download(); }), 50);
}

class FirstTransfer {
 public:
  explicit FirstTransfer(const std::string& url) : transport_(url.c_str()) {}

  bool operator()() {
    const int ends_before = ends_.count();
    const int successes_before = ends_.successes();
    if (!transport_.DownloadWithDelegate(&delegate_, nullptr)) return false;
    return ends_.WaitFor(ends_before + 1) && ends_.successes() > successes_before;
  }

 private:
  EndCounter ends_{kReturned, kFailed};
  InternetDataDelegate delegate_{nullptr, 1, kReturned, 2, kFailed};
  InternetData transport_;
};

TEST(FirstUseAllocationTest, AStartIsRefusedAndTheNextSucceeds) {
  const RawServer server(Always(Response(200, "body")));
  FirstTransfer transfer(server.Url());
  EXPECT_GT(FailFirstUse(Threads::kThis, std::ref(transfer)), 30);
}

TEST(FirstUseAllocationTest, TheNewWorkerSurvives) {
  const RawServer server(Always(Response(200, "body")));
  FirstTransfer transfer(server.Url());
  EXPECT_GT(FailFirstUse(Threads::kOthers, std::ref(transfer)), 20);
}

TEST(FirstUseAllocationTest, APageIsNotLoadedAndTheNextIs) {
  Bytes page(
      "<feed xmlns='http://www.w3.org/2005/Atom' "
      "xmlns:o='http://a9.com/-/spec/opensearchrss/1.0/'><title>t</title><o:totalResults>0"
      "</o:totalResults><o:startIndex>1</o:startIndex><o:itemsPerPage>1</o:itemsPerPage></feed>");
  ContentQuery query;
  EXPECT_GT(FailFirstUse(Threads::kThis, [&] { return query.Load(page.data(), page.length()); }),
            50);
}

}  // namespace
}  // namespace stowra_test

#endif  // STOWRA_FAILS_ALLOCATIONS
