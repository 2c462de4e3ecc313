// Requests of all three kinds, as a host uses them: on the thread of its main loop.

#ifndef TESTS_SOAK_REQUESTS_H_
#define TESTS_SOAK_REQUESTS_H_

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "common_stowraapi/platform/observer.h"
#include "tests/soak/answers.h"
#include "tests/soak/main_loop.h"
#include "tests/soak/report.h"
#include "tests/support/raw_server.h"

namespace stowra_test {

// What is asked of one request, whatever its kind.
class SoakRequest {
 public:
  virtual ~SoakRequest() = default;

  // Sets the URL of `target` and starts; `context` comes back with the end of the transfer.
  virtual void Start(const RawServer& server, const Target& target, void* context) = 0;

  // Gives up the transfer, where the kind can.
  virtual bool CleanUp() = 0;

  // The same target on this thread; whether it succeeded.
  virtual bool RunBlocking(const RawServer& server, const Target& target) = 0;

  // Posts by itself, where the kind can.
  virtual void Poke() {}

  // Whether a notification is being delivered to it: it must be left alone then.
  virtual bool is_busy() const = 0;
};

// Creates, starts, points elsewhere, cleans up and deletes them at random, some of it from inside
// the notifications of others, and observes all that they post. For the main loop's thread.
class Requests final : public ovrant::IObserver {
 public:
  Requests(const RawServer& server, const MainLoop& loop, std::uint32_t seed);
  ~Requests() override;

  Requests(const Requests&) = delete;
  Requests& operator=(const Requests&) = delete;

  // Does something to one of them.
  void Act();

  // Transfers that have neither been dropped nor posted.
  int CountUnposted() const;

  using ovrant::IObserver::OnNotification;
  void OnNotification(const char* name, void* payload) override;

 private:
  static constexpr std::uint32_t kPlaces = 9;  // three of each kind

  struct Place {
    std::unique_ptr<SoakRequest> request;
    std::uint32_t start = 0;  // the last one's number
    bool is_live = false;     // and it has not posted
  };

  static Document KindOf(std::uint32_t index) { return static_cast<Document>(1 + index % 3); }

  void StartOne(std::uint32_t index);
  void RunBlocking(std::uint32_t index);
  void CleanUp(Place& place);
  void Delete(Place& place);
  void NoteDropped(Place& place);
  void OnEnd(const void* payload);
  void OnPublic();

  const RawServer& server_;
  const MainLoop& loop_;
  Random random_;
  std::uint32_t number_ = 0;
  std::array<Place, kPlaces> places_;
};

// `kind` is what it reads.
std::unique_ptr<SoakRequest> MakeRequest(Document kind);

}  // namespace stowra_test

#endif  // TESTS_SOAK_REQUESTS_H_
