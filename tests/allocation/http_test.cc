// SPDX-License-Identifier: MIT
// Transfers on the caller's thread, on the worker's thread and on both.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>

#include "common_stowraapi/platform/internet_data.h"
#include "common_stowraapi/platform/internet_data_delegate.h"
#include "common_stowraapi/platform/memory_sink.h"
#include "common_stowraapi/platform/memory_source.h"
#include "common_stowraapi/platform/notification_center.h"
#include "common_stowraapi/platform/observer.h"
#include "tests/allocation/each_failure.h"
#include "tests/allocation/end_counter.h"
#include "tests/platform/http/gzip_text.h"
#include "tests/platform/http/transport_fixture.h"
#include "tests/support/raw_server.h"

#ifdef STOWRA_FAILS_ALLOCATIONS

namespace stowra_test {
namespace {

using ovrant::internet::MemorySink;
using ovrant::internet::MemorySource;

const std::string kBody(5000, 'b');
const std::string kSent(3000, 's');

// Answers by the target: "/gzip", "/redirect" (to "/") and anything else.
void Answer(const RawRequest& request, RawConnection& connection) {
  if (request.target == "/gzip") {
    connection.Write(Response(200, Gzip(kBody), "Content-Encoding: gzip\r\n"));
  } else if (request.target == "/redirect") {
    connection.Write(Response(302, "", "Location: /\r\n"));
  } else {
    connection.Write(Response(200, kBody, "X-Long-Name: " + std::string(300, 'h') + "\r\n"));
  }
}

TransferDefaults LongDefaults() {
  TransferDefaults defaults;
  defaults.user_agent = "an agent with a name that is long";
  defaults.extra_request_headers = {{"X-Extra-And-Long-As-A-Name", "a value that is long as well"}};
  return defaults;
}

class TransportAllocationTest : public TransportTest {
 protected:
  const RawServer server_{Answer};
};

// One transport and the reported result of its transfer.
struct Sent {
  explicit Sent(const std::string& text, const StringMap& headers_to_set = {})
      : own_url(Text(text)), transport(own_url) {
    SetSendData(kSent, transport);
    for (const auto& [name, value] : headers_to_set) {
      transport.SetValueForHTTPSendHeaders(name, value);
    }
  }

  // The transport makes its own copies of the text and the map.
  bool SendAndRead() {
    return transport.SendAndRead(std::move(url), &data, &length, &status, &send_headers, false,
                                 false, true, "", "", &headers);
  }

  const ovrant_ustring own_url;
  ovrant_ustring url = own_url;
  InternetData transport;
  StringMap send_headers = {{"Content-Type", "application/json; charset=utf-8"},
                            {"X-A-Name-That-Is-Long", "a value that is long as well"}};
  unsigned char* data = nullptr;
  unsigned long length = 0;
  int status = -1;
  StringMap headers;
};

// Expects that `transfer` to the URL succeeds or fails and throws nothing. The same transport
// must succeed afterwards.
template <typename Transfer>
long FailTransfer(const std::string& url, const Transfer& transfer) {
  const auto check = [&](Sent& sent, Outcome outcome) {
    EXPECT_FALSE(outcome.threw);
    if (outcome.result) {
      EXPECT_EQ(BodyOf(sent.transport), kBody);
    } else {
      EXPECT_TRUE(outcome.failed());
      ExpectFailureState(sent.transport, sent.transport.status_code());
    }
    sent.url = sent.own_url;
    EXPECT_TRUE(transfer(sent));
    EXPECT_EQ(BodyOf(sent.transport), kBody);
    EXPECT_FALSE(sent.transport.received_headers().empty());
  };
  return FailEachAllocationOf([&] { return Sent(url); }, transfer, check);
}

TEST_F(TransportAllocationTest, DownloadFailsOrSucceeds) {
  for (const std::string& url : {server_.Url(), server_.Url("/gzip"), server_.Url("/redirect"),
                                 "http://localhost:" + std::to_string(server_.port()) + "/"}) {
    SCOPED_TRACE(url);
    EXPECT_GT(FailTransfer(url, [](Sent& sent) { return sent.transport.Download(); }), 20);
  }
}

TEST_F(TransportAllocationTest, FailedSendAndReadSetsEveryOutput) {
  const auto send = [](Sent& sent) { return sent.SendAndRead(); };
  EXPECT_GT(FailTransfer(server_.Url(), send), 30);
  const auto make = [&] { return Sent(server_.Url()); };
  FailEachAllocationOf(make, send, [](Sent& sent, Outcome outcome) {
    EXPECT_EQ(sent.data, sent.transport.received_data());
    EXPECT_EQ(sent.status, sent.transport.status_code());
    EXPECT_EQ(sent.length, sent.transport.received_data_length());
    EXPECT_EQ(sent.headers.empty(), !outcome.result);
    EXPECT_TRUE(outcome.result || sent.data == nullptr);
  });
}

TEST_F(TransportAllocationTest, TransferWithAllSettingsFailsOrSucceeds) {
  InternetData::SetDefaults(LongDefaults());
  std::atomic<int> starts{0};
  InternetData::SetTransferListener([&](const TransferEvent& event) {
    starts += event.kind == TransferEvent::Kind::kStarted ? 1 : 0;
  });
  EXPECT_GT(FailTransfer(server_.Url(), [](Sent& sent) { return sent.SendAndRead(); }), 40);
  EXPECT_GT(starts, 0);
}

TEST_F(TransportAllocationTest, ListenerOfHeadsMayLoseSteps) {
  std::atomic<int> heads{0};
  InternetData::SetTransferListener(
      [&](const TransferEvent& event) { heads += event.head.empty() ? 0 : 1; },
      ovrant::internet::TransferDetail::kHeads);
  const auto download = [](Sent& sent) { return sent.transport.Download(); };
  EXPECT_GT(FailTransfer(server_.Url("/redirect"), download), 40);
  EXPECT_GT(heads, 0);
}

// A background transfer and its posts.
struct InBackground {
  explicit InBackground(const std::string& url, const char* returned = kReturned,
                        const char* failed = kFailed)
      : ends(returned, failed),
        delegate(MakeDelegate(nullptr, returned, failed)),
        transport(Text(url)) {
    SetSendData(kSent, transport);
  }

  bool Start(bool is_upload) {
    return started = is_upload ? transport.UploadWithDelegate(delegate.get(), nullptr)
                               : transport.DownloadWithDelegate(delegate.get(), nullptr);
  }

  EndCounter ends;
  const std::unique_ptr<InternetDataDelegate> delegate;
  InternetData transport;
  bool started = false;
};

// Expects one post of a started transfer and none of one that did not start. The worker must
// survive, and the same transport must succeed afterwards.
long FailInBackground(const std::string& url, bool is_upload, Threads threads) {
  const auto make = [&] { return InBackground(url); };
  const auto work = [&](InBackground& transfer) {
    if (transfer.Start(is_upload)) transfer.ends.WaitFor(1);
  };
  const auto check = [&](InBackground& transfer, Outcome outcome) {
    EXPECT_FALSE(outcome.threw);
    EXPECT_EQ(transfer.ends.count(), transfer.started ? 1 : 0);
    EXPECT_TRUE(transfer.started || outcome.failed());
    if (transfer.ends.successes() == 1) {
      EXPECT_EQ(BodyOf(transfer.transport), kBody);
    } else {
      EXPECT_TRUE(outcome.failed());
      ExpectFailureState(transfer.transport, transfer.transport.status_code());
    }
    const int before = transfer.ends.count();
    ASSERT_TRUE(transfer.Start(is_upload));
    ASSERT_TRUE(transfer.ends.WaitFor(before + 1));
    EXPECT_EQ(BodyOf(transfer.transport), kBody);
    LetWorkerCatchUp();
    EXPECT_EQ(transfer.ends.count(), before + 1);
  };
  return FailEachAllocationOf(make, work, check, threads);
}

TEST_F(TransportAllocationTest, BackgroundStartFailsOrEndsOnce) {
  EXPECT_GT(FailInBackground(server_.Url(), false, Threads::kThis), 5);
  EXPECT_GT(FailInBackground(server_.Url(), true, Threads::kThis), 5);
}

// A background transfer that `start` starts with one of its own `Body`. Notes how many hold that
// body when the failure is posted inside the start.
template <typename Body>
struct WithHostBody final : ovrant::IObserver {
  WithHostBody(const std::string& url, std::shared_ptr<Body> host_body)
      : transfer(url), body(std::move(host_body)) {
    CNotificationCenter::Default()->AddObserver(kFailed, this);
  }
  ~WithHostBody() override { CNotificationCenter::Default()->RemoveObserver(this); }

  using ovrant::IObserver::OnNotification;
  void OnNotification(const char* /*name*/, void* /*payload*/) override {
    if (std::this_thread::get_id() == starter) holders = body.use_count();
  }

  InBackground transfer;
  const std::shared_ptr<Body> body;
  const std::thread::id starter = std::this_thread::get_id();
  long holders = 0;
};

// Expects that a start that fails has let go of the body before it posts.
template <typename Body, typename Start>
void FailStartWithHostBody(const std::string& url, const Start& start,
                           const std::function<std::shared_ptr<Body>()>& make_body) {
  using State = std::unique_ptr<WithHostBody<Body>>;
  long failed_starts = 0;
  const auto make = [&] { return std::make_unique<WithHostBody<Body>>(url, make_body()); };
  const auto work = [&](const State& state) {
    EXPECT_TRUE(start(state->transfer, state->body));
    state->transfer.ends.WaitFor(1);
  };
  FailEachAllocationOf(make, work, [&](const State& state, Outcome) {
    EXPECT_EQ(state->transfer.ends.count(), 1);
    EXPECT_LE(state->holders, 1);
    failed_starts += state->holders;
    LetWorkerCatchUp();
  });
  EXPECT_GT(failed_starts, 5);
}

TEST_F(TransportAllocationTest, FailedStartLetsGoOfTheSinkBeforeThePost) {
  FailStartWithHostBody<MemorySink>(
      server_.Url(),
      [](InBackground& transfer, const std::shared_ptr<MemorySink>& sink) {
        return transfer.transport.DownloadToWithDelegate(sink, transfer.delegate.get(), nullptr);
      },
      [] { return std::make_shared<MemorySink>(); });
}

TEST_F(TransportAllocationTest, FailedStartLetsGoOfTheSourceBeforeThePost) {
  FailStartWithHostBody<MemorySource>(
      server_.Url(),
      [](InBackground& transfer, const std::shared_ptr<MemorySource>& source) {
        return transfer.transport.UploadFromWithDelegate(source, transfer.delegate.get(), nullptr);
      },
      [] { return std::make_shared<MemorySource>(kSent); });
}

TEST_F(TransportAllocationTest, FailureOnTheWorkerEndsTheTransferOnce) {
  EXPECT_GT(FailInBackground(server_.Url(), false, Threads::kOthers), 10);
  EXPECT_GT(FailInBackground(server_.Url("/gzip"), true, Threads::kOthers), 10);
  EXPECT_GT(FailInBackground(server_.Url("/redirect"), false, Threads::kOthers), 10);
}

TEST_F(TransportAllocationTest, FailureOnAnyThreadEndsTheTransferOnce) {
  EXPECT_GT(FailInBackground(server_.Url(), true, Threads::kAll), 15);
}

TEST_F(TransportAllocationTest, FailureOnTheWorkerReachesListenerAndExecutor) {
  std::atomic<int> events{0};
  InternetData::SetTransferListener([&](const TransferEvent&) { ++events; });
  std::atomic<int> completions{0};
  InternetData::SetCompletionExecutor([&](std::function<void()> completion) {
    ++completions;
    completion();
  });
  EXPECT_GT(FailInBackground(server_.Url(), true, Threads::kAll), 15);
  EXPECT_GT(events, 0);
  EXPECT_GT(completions, 0);
}

// A number that threads raise and wait for.
class Count {
 public:
  int Raise() {
    const std::lock_guard<std::mutex> lock(mutex_);
    changed_.notify_all();
    return ++number_;
  }
  bool WaitFor(int number, std::chrono::milliseconds limit = kPatience) {
    std::unique_lock<std::mutex> lock(mutex_);
    return changed_.wait_for(lock, limit, [&] { return number_ >= number; });
  }
  int number() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return number_;
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  int number_ = 0;
};

// Another transfer waits for its reply meanwhile, on the same thread.
TEST_F(TransportAllocationTest, OutOfMemoryEndsOnlyThatTransfer) {
  Count arrived;
  Count let_go;
  const RawServer slow([&](const RawRequest&, RawConnection& connection) {
    let_go.WaitFor(arrived.Raise());
    connection.Write(Response(200, kBody));
  });
  struct Two {
    Two(const std::string& slow_url, const std::string& url)
        : waiting(slow_url, "WaitingReturned", "WaitingFailed"), other(url) {}

    InBackground waiting;
    InBackground other;
  };
  const auto make = [&] {
    auto two = std::make_unique<Two>(slow.Url(), server_.Url("/redirect"));
    EXPECT_TRUE(two->waiting.Start(false));
    EXPECT_TRUE(arrived.WaitFor(let_go.number() + 1));
    return two;
  };
  const auto work = [](const std::unique_ptr<Two>& two) {
    if (two->other.Start(false)) two->other.ends.WaitFor(1);
  };
  const auto check = [&](const std::unique_ptr<Two>& two, Outcome outcome) {
    EXPECT_TRUE(two->other.ends.successes() == 1 || outcome.failed());
    let_go.Raise();
    ASSERT_TRUE(two->waiting.ends.WaitFor(1));
    EXPECT_EQ(two->waiting.ends.successes(), 1);
    LetWorkerCatchUp();
  };
  EXPECT_GT(FailEachAllocationOf(make, work, check, Threads::kOthers), 20);
}

// The transfer is deleted after the server has its request, or after it has failed.
TEST_F(TransportAllocationTest, DeletionInFlightPostsNothing) {
  Count arrived;
  Count gone;
  const RawServer silent([&](const RawRequest&, RawConnection& connection) {
    arrived.Raise();
    connection.Stall();
    gone.Raise();
  });
  struct Deleted {
    explicit Deleted(const std::string& url)
        : transport(std::make_unique<InternetData>(Text(url))) {}

    EndCounter ends{kReturned, kFailed};
    const std::unique_ptr<InternetDataDelegate> delegate = MakeDelegate();
    std::unique_ptr<InternetData> transport;
  };
  const auto work = [&](Deleted& deleted) {
    const int before = arrived.number();
    if (!deleted.transport->DownloadWithDelegate(deleted.delegate.get(), nullptr)) return;
    const auto limit = std::chrono::steady_clock::now() + kPatience;
    // The end of a failed transfer does not raise `arrived`.
    while (!arrived.WaitFor(before + 1, std::chrono::milliseconds(1)) &&
           deleted.ends.count() == 0) {
      if (std::chrono::steady_clock::now() > limit) return;
    }
    deleted.transport.reset();
    gone.WaitFor(arrived.number());
  };
  const auto check = [&](Deleted& deleted, Outcome outcome) {
    EXPECT_FALSE(outcome.threw);
    EXPECT_TRUE(deleted.ends.count() == 0 || outcome.failed());
    EXPECT_EQ(deleted.ends.successes(), 0);
    EXPECT_TRUE(gone.WaitFor(arrived.number()));
    InBackground next(server_.Url());
    ASSERT_TRUE(next.Start(false));
    ASSERT_TRUE(next.ends.WaitFor(1));
    EXPECT_EQ(BodyOf(next.transport), kBody);
  };
  const auto make = [&] { return Deleted(silent.Url()); };
  EXPECT_GT(FailEachAllocationOf(make, work, check, Threads::kOthers), 10);
  EXPECT_GT(FailEachAllocationOf(make, work, check, Threads::kThis), 5);
}

TEST(SettingsAllocationTest, SettersThrowAndChangeNothing) {
  struct Settings {
    Settings() { transport.SetValueForHTTPSendHeaders("x-name-that-is-long", "the value before"); }
    InternetData transport{"http://a/"};
  };
  const TransferDefaults defaults = LongDefaults();
  const std::function<void(const TransferEvent&)> listener = [](const TransferEvent&) {};
  const std::function<void(std::function<void()>)> executor = [](std::function<void()>) {};
  const std::function<void(Settings&)> setters[] = {
      [&](Settings&) { InternetData::SetDefaults(defaults); },
      [&](Settings&) { InternetData::SetTransferListener(listener); },
      [&](Settings&) { InternetData::SetCompletionExecutor(executor); },
      [&](Settings& settings) { SetSendData(kSent, settings.transport); },
      [&](Settings& settings) {
        settings.transport.SetValueForHTTPSendHeaders("X-Name-That-Is-Long",
                                                      "the value afterwards");
      }};
  for (const auto& setter : setters) {
    const long failing_runs = FailEachAllocation<Settings>(setter, [](Settings&, Outcome outcome) {
      EXPECT_EQ(outcome.threw, outcome.failed());
      InternetData::SetDefaults(TransferDefaults());
      InternetData::SetTransferListener(nullptr);
      InternetData::SetCompletionExecutor(nullptr);
    });
    EXPECT_GT(failing_runs, 0);
  }
}

// Whichever allocation of the replacement fails, the old value is still sent.
TEST_F(TransportAllocationTest, FailedHeaderKeepsThePreviousValue) {
  const auto work = [](Sent& sent) {
    sent.transport.SetValueForHTTPSendHeaders("X-NAME", std::string(300, 'n').c_str());
  };
  const auto make = [&] { return Sent(server_.Url(), {{"x-name", "before"}}); };
  const auto check = [&](Sent& sent, Outcome outcome) {
    ASSERT_TRUE(sent.transport.Download());
    EXPECT_EQ(LastRequest(server_).Header("X-Name"),
              outcome.threw ? "before" : std::string(300, 'n'));
  };
  EXPECT_GT(FailEachAllocationOf(make, work, check), 3);
}

}  // namespace
}  // namespace stowra_test

#endif  // STOWRA_FAILS_ALLOCATIONS
