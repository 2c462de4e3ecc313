// SPDX-License-Identifier: MIT
// Uses transports and delegates directly, without requests.

#ifndef TESTS_SOAK_BARE_TRANSFERS_H_
#define TESTS_SOAK_BARE_TRANSFERS_H_

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>

#include "common_stowraapi/platform/body_sink.h"
#include "common_stowraapi/platform/internet_data.h"
#include "common_stowraapi/platform/internet_data_delegate.h"
#include "common_stowraapi/platform/observer.h"
#include "tests/soak/answers.h"
#include "tests/soak/main_loop.h"
#include "tests/soak/report.h"
#include "tests/support/raw_server.h"

namespace stowra_test {

// Must not be called once its transfer has been dropped.
class SoakSink final : public ovrant::internet::BodySink {
 public:
  // From now on a call is a violation. Any thread.
  void Forbid() { is_forbidden_ = true; }

  // Of the last reply, once the transfer has ended.
  bool has_taken() const { return has_taken_; }
  const std::string& bytes() const { return bytes_; }

  Choice Begin(int status, const ovrant::utils::StringMap& headers) override {
    Check(!is_forbidden_, "a sink was offered a reply after its transfer was dropped");
    const Choice choice = BodySink::Begin(status, headers);
    has_taken_ = choice == Choice::kTake;
    return choice;
  }
  bool Write(const unsigned char* data, std::size_t size) override {
    Check(!is_forbidden_, "a sink was written to after its transfer was dropped");
    bytes_.append(reinterpret_cast<const char*>(data), size);
    return true;
  }
  bool End() override {
    Check(!is_forbidden_, "a sink was ended after its transfer was dropped");
    return true;
  }

 private:
  std::atomic<bool> is_forbidden_{false};
  bool has_taken_ = false;
  std::string bytes_;
};

// Creates, starts, restarts and deletes transfers at random on its own thread, from construction to
// Stop(). The main loop delivers their notifications. After Stop(), the thread deletes all
// transfers except those with the fate to be kept.
class BareTransfers final : public ovrant::IObserver {
 public:
  BareTransfers(int index, const RawServer& server, const MainLoop& loop, std::uint32_t seed);
  // Deletes the kept transfers. REQUIRES: has_stopped().
  ~BareTransfers() override;

  BareTransfers(const BareTransfers&) = delete;
  BareTransfers& operator=(const BareTransfers&) = delete;

  void Stop() { stopping_ = true; }
  bool has_stopped() const { return has_stopped_; }

  // Counts kept transfers that have not posted yet. REQUIRES: has_stopped().
  int CountUnposted();

  using ovrant::IObserver::OnNotification;
  void OnNotification(const char* name, void* payload) override;

 private:
  enum class Fate { kDeletedAnywhen, kKept, kDeletedInsideItsNotification };
  enum class Phase : std::uint64_t { kDropped, kLive, kPosted };

  // The state of one start.
  struct Standing {
    std::atomic<std::uint64_t> start_and_phase{0};
    std::shared_ptr<SoakSink> sink;  // null without one

    static std::uint64_t Join(std::uint64_t start, Phase phase) {
      return start * 4 + static_cast<std::uint64_t>(phase);
    }
    Phase phase() const {
      return static_cast<Phase>(start_and_phase.load(std::memory_order_relaxed) % 4);
    }
  };

  // Belongs to this object's thread. During a notification the main loop's thread uses it too.
  struct Place {
    bool is_taken = false;
    Fate fate = Fate::kDeletedAnywhen;
    Target target;
    StartId id;  // of the last start
    std::unique_ptr<ovrant::internet::InternetData> transport;
    // The last transport. During a notification it is valid, since its destructor waits.
    std::atomic<const ovrant::internet::InternetData*> seen_transport{nullptr};
    std::unique_ptr<ovrant::internet::InternetDataDelegate> delegate;
    std::chrono::steady_clock::time_point begin;
    std::array<Standing, 2> standings;  // of the last two starts, as both may be under way
    std::atomic<bool> was_emptied{false};

    Standing& StandingOf(std::uint64_t start) { return standings[start % 2]; }
  };

  static constexpr std::uint32_t kPlaces = 24;

  void Run();
  void Act(std::uint32_t index);
  void Create(std::uint32_t index);
  void Start(Place& place, bool again);
  bool StartTransfer(Place& place, ovrant::internet::InternetDataDelegate* delegate);
  void Delete(Place& place);
  bool Finish(Place& place);
  void NoteDropped(Place& place, std::uint64_t start);
  void CheckPost(Place& place, std::uint64_t start, bool returned);

  const std::string returned_;
  const std::string failed_;
  const RawServer& server_;
  const MainLoop& loop_;
  Random random_;
  std::uint32_t number_ = 0;
  std::array<Place, kPlaces> places_;
  std::atomic<bool> stopping_{false};
  std::atomic<bool> has_stopped_{false};
  std::thread thread_;
};

}  // namespace stowra_test

#endif  // TESTS_SOAK_BARE_TRANSFERS_H_
