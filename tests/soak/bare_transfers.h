// Transports and delegates on their own, on a thread of their own.

#ifndef TESTS_SOAK_BARE_TRANSFERS_H_
#define TESTS_SOAK_BARE_TRANSFERS_H_

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>

#include "common_stowraapi/platform/internet_data.h"
#include "common_stowraapi/platform/internet_data_delegate.h"
#include "common_stowraapi/platform/observer.h"
#include "tests/soak/answers.h"
#include "tests/soak/main_loop.h"
#include "tests/soak/report.h"
#include "tests/support/raw_server.h"

namespace stowra_test {

// Creates, starts, starts again and deletes at random, from its construction until it is told to
// stop, while the main loop delivers. Then it deletes all but the transfers that are to be kept.
class BareTransfers final : public ovrant::IObserver {
 public:
  BareTransfers(int index, const RawServer& server, const MainLoop& loop, std::uint32_t seed);
  // Deletes what is left. REQUIRES: has_stopped.
  ~BareTransfers() override;

  BareTransfers(const BareTransfers&) = delete;
  BareTransfers& operator=(const BareTransfers&) = delete;

  void Stop() { stopping_ = true; }
  bool has_stopped() const { return has_stopped_; }

  // Transfers that are kept and have not posted yet, once it has stopped.
  int CountUnposted();

  using ovrant::IObserver::OnNotification;
  void OnNotification(const char* name, void* payload) override;

 private:
  enum class Fate { kDeletedAnywhen, kKept, kDeletedInsideItsNotification };
  enum class Phase : std::uint64_t { kDropped, kLive, kPosted };

  // Which start of which place has posted, as the delegate's context says it.
  struct Context {
    std::uint64_t start;   // of that place, from 1
    std::uint32_t number;  // of the transport
    std::uint32_t place;
    Manner manner;

    void* Pack() const;
    static Context Unpack(const void* context);
  };

  // How a transfer stands. The one before it may still be on its way.
  struct Standing {
    std::atomic<std::uint64_t> start_and_phase{0};

    static std::uint64_t Join(std::uint64_t start, Phase phase) {
      return start * 4 + static_cast<std::uint64_t>(phase);
    }
    Phase phase() const {
      return static_cast<Phase>(start_and_phase.load(std::memory_order_relaxed) % 4);
    }
  };

  // The thread's own, but for what the main loop's thread needs during the notification.
  struct Place {
    bool is_taken = false;
    Fate fate = Fate::kDeletedAnywhen;
    Context context = {};
    std::unique_ptr<ovrant::internet::InternetData> transport;
    // Of the last one, which may be about to be deleted: that waits while it is looked at.
    std::atomic<const ovrant::internet::InternetData*> seen_transport{nullptr};
    std::unique_ptr<ovrant::internet::InternetDataDelegate> delegate;
    std::chrono::steady_clock::time_point begin;
    std::array<Standing, 2> standings;  // of the last two starts
    std::atomic<bool> was_emptied{false};

    Standing& StandingOf(std::uint64_t start) { return standings[start % 2]; }
  };

  static constexpr std::uint32_t kPlaces = 24;

  void Run();
  void Act(std::uint32_t index);
  void Create(std::uint32_t index);
  void Start(Place& place, bool again);
  void Delete(Place& place);
  bool Finish(Place& place);
  void NoteDropped(Place& place, std::uint64_t start);
  void CheckPost(Place& place, const Context& context, bool returned);

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
