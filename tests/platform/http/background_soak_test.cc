// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <memory>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "common_stowraapi/platform/notification_center.h"
#include "tests/platform/http/transport_fixture.h"

namespace stowra_test {
namespace {

using Clock = std::chrono::steady_clock;
using Microseconds = std::chrono::microseconds;

constexpr std::size_t kTransfers = 10'000;
constexpr std::size_t kThreads = 4;
constexpr std::size_t kLiveInEachThread = 40;
constexpr unsigned int kSeed = 20240229;

// What becomes of a transfer.
enum class Fate { kKept, kDeletedFromOutside, kDeletedInsideItsNotification };

// Makes a name for each transfer. It is never freed, because posted names may be kept for ever.
const char* NameOf(const char* what, std::size_t index) {
  static auto* const names = new std::vector<std::unique_ptr<std::string>>;
  static std::mutex mutex;
  const std::lock_guard<std::mutex> lock(mutex);
  names->push_back(std::make_unique<std::string>(what + std::to_string(index)));
  return names->back()->c_str();
}

// A transport with its delegate, and the only observer of their names. The observer stays
// registered until the end, so it sees late posts.
class Watched final : public ovrant::IObserver {
 public:
  Watched(std::size_t index, Fate fate, bool is_stalled, const std::string& url)
      : fate_(fate),
        is_stalled_(is_stalled),
        returned_(NameOf("SoakReturned", index)),
        failed_(NameOf("SoakFailed", index)),
        delegate_(MakeDelegate(this, returned_, failed_)),
        transport_(std::make_unique<InternetData>(Text(url))) {
    CNotificationCenter::Default()->AddObserver(returned_, this);
    CNotificationCenter::Default()->AddObserver(failed_, this);
  }
  ~Watched() override { CNotificationCenter::Default()->RemoveObserver(this); }

  Watched(const Watched&) = delete;
  Watched& operator=(const Watched&) = delete;

  using ovrant::IObserver::OnNotification;
  void OnNotification(const char* /*name*/, void* payload) override {
    if (gone_ || payload != this) wrong_ = true;
    if (fate_ == Fate::kDeletedInsideItsNotification) {
      transport_.reset();
      delegate_.reset();
    }
    if (gone_) wrong_ = true;
    const std::lock_guard<std::mutex> lock(mutex_);
    ++posts_;
    posted_.notify_all();
  }

  Fate fate() const { return fate_; }
  bool is_stalled() const { return is_stalled_; }

  bool Start() { return transport_->DownloadWithDelegate(delegate_.get(), nullptr); }

  // Deletes both and records how long each took.
  void Delete(bool delegate_first, std::vector<Microseconds>& durations) {
    if (delegate_first) DeleteTimed(delegate_, durations);
    DeleteTimed(transport_, durations);
    if (!delegate_first) DeleteTimed(delegate_, durations);
  }

  bool WaitForPost() {
    std::unique_lock<std::mutex> lock(mutex_);
    return posted_.wait_for(lock, kPatience, [this] { return posts_ > 0; });
  }

  int posts() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return posts_;
  }

  // Whether something was posted after a deletion, or with another's payload.
  bool wrong() const { return wrong_; }

 private:
  template <typename T>
  void DeleteTimed(std::unique_ptr<T>& object, std::vector<Microseconds>& durations) {
    const auto begin = Clock::now();
    object.reset();
    durations.push_back(std::chrono::duration_cast<Microseconds>(Clock::now() - begin));
    gone_ = true;
  }

  const Fate fate_;
  const bool is_stalled_;
  const char* const returned_;
  const char* const failed_;
  std::unique_ptr<InternetDataDelegate> delegate_;
  std::unique_ptr<InternetData> transport_;
  std::atomic<bool> gone_{false};
  std::atomic<bool> wrong_{false};
  std::mutex mutex_;
  std::condition_variable posted_;
  int posts_ = 0;
};

// One thread's share of the transfers. It starts and deletes in a random order.
class Share {
 public:
  Share(std::size_t first, const RawServer& server)
      : first_(first), server_(server), random_(kSeed + static_cast<unsigned int>(first)) {}

  void Run() {
    constexpr std::size_t kCount = kTransfers / kThreads;
    while (all_.size() < kCount || !live_.empty()) {
      const bool may_start = all_.size() < kCount && live_.size() < kLiveInEachThread;
      if (may_start && (live_.empty() || Draw(2) == 0)) {
        StartOne();
      } else {
        DeleteOne();
      }
    }
  }

  std::vector<std::unique_ptr<Watched>>& all() { return all_; }
  std::vector<Microseconds>& durations() { return durations_; }

 private:
  std::size_t Draw(std::size_t count) {
    return std::uniform_int_distribution<std::size_t>(0, count - 1)(random_);
  }

  void StartOne() {
    const std::size_t fate_number = Draw(20);
    const Fate fate = fate_number == 0  ? Fate::kDeletedInsideItsNotification
                      : fate_number < 6 ? Fate::kKept
                                        : Fate::kDeletedFromOutside;
    // Only a few kept transfers may stall, because each holds its place until it times out.
    const bool stalled = Draw(fate == Fate::kDeletedFromOutside ? 3 : 50) == 0;
    const char* target = stalled ? "/stall" : Draw(10) == 0 ? "/cut" : "/now";
    all_.push_back(
        std::make_unique<Watched>(first_ + all_.size(), fate, stalled, server_.Url(target)));
    if (fate == Fate::kDeletedFromOutside) live_.push_back(all_.back().get());
    EXPECT_TRUE(all_.back()->Start());
  }

  void DeleteOne() {
    if (live_.empty()) return;
    std::swap(live_[Draw(live_.size())], live_.back());
    // Some are deleted at the moment of their post. The others are deleted at any moment from the
    // start to long after the post.
    const bool waits = !live_.back()->is_stalled() && Draw(3) == 0;
    EXPECT_TRUE(!waits || live_.back()->WaitForPost());
    live_.back()->Delete(Draw(2) == 0, durations_);
    live_.pop_back();
  }

  const std::size_t first_;
  const RawServer& server_;
  std::mt19937 random_;
  std::vector<std::unique_ptr<Watched>> all_;
  std::vector<Watched*> live_;
  std::vector<Microseconds> durations_;
};

void Serve(const RawRequest& request, RawConnection& connection) {
  if (request.target == "/stall") {
    connection.Stall();
  } else if (request.target == "/cut") {
    connection.Write("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nshort");
    connection.Close();
  } else {
    connection.Write(Response(200, "hello"));
  }
}

void Report(const char* name, Microseconds value) {
  testing::Test::RecordProperty(name, static_cast<int>(value.count()));
  std::printf("%s: %lld us\n", name, static_cast<long long>(value.count()));
}

class BackgroundSoakTest : public TransportTest {};

TEST_F(BackgroundSoakTest, KeptTransfersPostOnceDeletedOnesPostNothingMore) {
  SetInactivityTimeout(0.5F);
  const RawServer server(Serve);
  std::vector<std::unique_ptr<Share>> shares;
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < kThreads; ++i) {
    shares.push_back(std::make_unique<Share>(i * kTransfers / kThreads, server));
    threads.emplace_back(&Share::Run, shares.back().get());
  }
  for (std::thread& thread : threads) thread.join();

  std::vector<Microseconds> durations;
  std::size_t kept = 0;
  std::size_t posted_before_deletion = 0;
  std::size_t posted_nothing = 0;
  for (const auto& share : shares) {
    for (const auto& each : share->all()) {
      if (each->fate() == Fate::kDeletedFromOutside) continue;
      ++kept;
      ASSERT_TRUE(each->WaitForPost());
    }
  }
  LetWorkerCatchUp();
  for (const auto& share : shares) {
    for (const auto& each : share->all()) {
      EXPECT_FALSE(each->wrong());
      if (each->fate() != Fate::kDeletedFromOutside) {
        EXPECT_EQ(each->posts(), 1);
      } else {
        EXPECT_LE(each->posts(), 1);
        ++(each->posts() == 1 ? posted_before_deletion : posted_nothing);
      }
    }
    durations.insert(durations.end(), share->durations().begin(), share->durations().end());
  }
  // The deletions must have come at random moments.
  EXPECT_GT(posted_before_deletion, kTransfers / 100);
  EXPECT_GT(posted_nothing, kTransfers / 100);

  std::sort(durations.begin(), durations.end());
  ASSERT_EQ(durations.size(), 2 * (kTransfers - kept));
  std::printf("kept: %zu, deleted after the post: %zu, deleted before it: %zu, connections: %d\n",
              kept, posted_before_deletion, posted_nothing, server.connections());
  Report("destructor_p50", durations[durations.size() / 2]);
  Report("destructor_p99", durations[durations.size() / 100 * 99]);
  Report("destructor_max", durations.back());
  EXPECT_LT(durations[durations.size() / 100 * 99], std::chrono::seconds(1));
}

}  // namespace
}  // namespace stowra_test
