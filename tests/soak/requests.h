// SPDX-License-Identifier: MIT
// Uses requests of all three kinds on the main loop's thread, as a host does.

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

// The names under which requests post for the host.
std::array<const char*, 5> PublicNames();

// One request of any kind.
class SoakRequest {
 public:
  virtual ~SoakRequest() = default;

  // Sets the URL of `target` and starts. The transfer's end notification carries `context`.
  virtual void Start(const RawServer& server, const Target& target, void* context) = 0;

  // Gives up the transfer. False if this kind cannot.
  virtual bool CleanUp() = 0;

  // Runs `target` on this thread. True if it succeeded.
  virtual bool RunBlocking(const RawServer& server, const Target& target) = 0;

  // Makes the request post by itself, if this kind can.
  virtual void Poke() {}

  // Whether a notification is being delivered to it. It must not be used or deleted then.
  virtual bool is_busy() const = 0;
};

// Creates, starts, restarts, cleans up and deletes requests at random. Some of this happens inside
// the notifications of other requests. Observes all that they post. For the main loop's thread
// only.
class Requests final : public ovrant::IObserver {
 public:
  Requests(const RawServer& server, const MainLoop& loop, std::uint32_t seed);
  ~Requests() override;

  Requests(const Requests&) = delete;
  Requests& operator=(const Requests&) = delete;

  // Does one random thing to a random request.
  void Act();

  // Counts transfers that have neither posted nor been dropped.
  int CountUnposted() const;

  using ovrant::IObserver::OnNotification;
  void OnNotification(const char* name, void* payload) override;

 private:
  static constexpr std::uint32_t kPlaces = 9;  // three of each kind

  struct Place {
    std::unique_ptr<SoakRequest> request;
    std::uint32_t start = 0;  // number of the last start
    bool is_live = false;     // the last start has neither posted nor been dropped
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

// `kind` is the document that the request reads.
std::unique_ptr<SoakRequest> MakeRequest(Document kind);

}  // namespace stowra_test

#endif  // TESTS_SOAK_REQUESTS_H_
