// SPDX-License-Identifier: MIT
#include "tests/soak/bare_transfers.h"

#include <utility>

#include "common_stowraapi/platform/memory_source.h"
#include "common_stowraapi/platform/notification_center.h"

namespace stowra_test {

using ovrant::internet::InternetData;
using ovrant::internet::InternetDataDelegate;
using ovrant::internet::MemorySource;

namespace {

using Clock = std::chrono::steady_clock;

// A kept transfer has posted by then, unless its completion was dropped.
constexpr std::chrono::seconds kOverdue(40);

// Destructors do not wait for the network. The limit allows for a busy machine, and some of the
// inactivity timeouts are longer.
constexpr std::chrono::seconds kLongestDeletion(5);

constexpr std::uint32_t kLongestPause = 800;  // microseconds

}  // namespace

BareTransfers::BareTransfers(int index, const RawServer& server, const MainLoop& loop,
                             std::uint32_t seed)
    : returned_("SoakReturned" + std::to_string(index)),
      failed_("SoakFailed" + std::to_string(index)),
      server_(server),
      loop_(loop),
      random_(seed) {
  CNotificationCenter::Default()->AddObserver(returned_.c_str(), this);
  CNotificationCenter::Default()->AddObserver(failed_.c_str(), this);
  thread_ = std::thread(&BareTransfers::Run, this);
}

BareTransfers::~BareTransfers() {
  thread_.join();
  for (Place& place : places_) {
    if (place.is_taken && !Finish(place)) Delete(place);
  }
  CNotificationCenter::Default()->RemoveObserver(this);
}

int BareTransfers::CountUnposted() {
  int count = 0;
  for (Place& place : places_) count += place.is_taken && !Finish(place);
  return count;
}

void BareTransfers::Run() {
  while (!stopping_ && !IsViolated()) {
    Act(random_.Draw(kPlaces));
    std::this_thread::sleep_for(std::chrono::microseconds(random_.Draw(kLongestPause)));
  }
  for (Place& place : places_) {
    if (place.is_taken && place.fate == Fate::kDeletedAnywhen) Delete(place);
  }
  has_stopped_ = true;
}

void BareTransfers::Act(std::uint32_t index) {
  Place& place = places_[index];
  const bool is_own = place.fate == Fate::kDeletedAnywhen;
  if (place.was_emptied) {
    Finish(place);
  } else if (!place.is_taken) {
    Create(index);
  } else if (is_own && random_.OneIn(3)) {
    Start(place, true);
  } else if (is_own) {
    Delete(place);
  } else if (!Finish(place) && Clock::now() - place.begin > kOverdue) {
    // Its completion must have been dropped. The soak compares the two counts at the end.
    tally.never_posted.Add();
    Delete(place);
  }
}

void BareTransfers::Create(std::uint32_t index) {
  Place& place = places_[index];
  place.is_taken = true;
  const std::uint32_t fate = random_.Draw(8);
  place.fate = fate == 0   ? Fate::kDeletedInsideItsNotification
               : fate == 1 ? Fate::kKept
                           : Fate::kDeletedAnywhen;
  place.target = {Document::kNumber, DrawManner(random_), ++number_};
  place.id.place = index;
  place.transport = std::make_unique<InternetData>(server_.Url(place.target.Path()).c_str());
  place.seen_transport.store(place.transport.get(), std::memory_order_relaxed);
  const std::string body = BodyOf(place.target);
  place.transport->set_send_data(reinterpret_cast<const unsigned char*>(body.data()), body.size());
  tally.bare_created.Add();
  Start(place, false);
}

// A restart drops the earlier transfer, which must not post once the restart has returned.
void BareTransfers::Start(Place& place, bool again) {
  place.begin = Clock::now();
  const std::uint64_t before = place.id.start;
  const std::uint64_t start = ++place.id.start;
  place.StandingOf(start).start_and_phase.store(Standing::Join(start, Phase::kLive),
                                                std::memory_order_relaxed);
  auto delegate = std::make_unique<InternetDataDelegate>(place.id.Pack(), 1, returned_.c_str(), 2,
                                                         failed_.c_str());
  InternetDataDelegate* const started = delegate.get();
  // The main loop may delete the delegate at once.
  const bool delegate_goes_first =
      place.fate == Fate::kDeletedInsideItsNotification || random_.OneIn(2);
  if (delegate_goes_first) place.delegate = std::move(delegate);
  Check(StartTransfer(place, started), "a transfer did not start");
  if (again) NoteDropped(place, before);
  if (!delegate_goes_first) place.delegate = std::move(delegate);
  (again ? tally.bare_restarted : tally.bare_started).Add();
}

bool BareTransfers::StartTransfer(Place& place, InternetDataDelegate* delegate) {
  Standing& standing = place.StandingOf(place.id.start);
  standing.sink.reset();
  switch (random_.Draw(4)) {
    case 0:
      return place.transport->UploadWithDelegate(delegate, nullptr);
    case 1: {
      auto source = std::make_shared<MemorySource>(BodyOf(place.target));
      return place.transport->UploadFromWithDelegate(std::move(source), delegate, nullptr);
    }
    case 2:
      standing.sink = std::make_shared<SoakSink>();
      return place.transport->DownloadToWithDelegate(standing.sink, delegate, nullptr);
    default:
      return place.transport->DownloadWithDelegate(delegate, nullptr);
  }
}

void BareTransfers::Delete(Place& place) {
  const auto begin = Clock::now();
  if (random_.OneIn(2)) {
    place.transport.reset();
    NoteDropped(place, place.id.start);
    place.delegate.reset();
  } else {
    place.delegate.reset();
    NoteDropped(place, place.id.start);
    place.transport.reset();
  }
  place.is_taken = false;
  Check(Clock::now() - begin < kLongestDeletion, "a deletion took long");
  tally.bare_deleted.Add();
}

// Empties the place of a kept transfer that has posted. False if it has not.
bool BareTransfers::Finish(Place& place) {
  if (place.fate == Fate::kDeletedInsideItsNotification) {
    if (!place.was_emptied.exchange(false)) return false;
    place.is_taken = false;
    return true;
  }
  if (place.StandingOf(place.id.start).phase() != Phase::kPosted) return false;
  Delete(place);
  return true;
}

void BareTransfers::NoteDropped(Place& place, std::uint64_t start) {
  if (const auto& sink = place.StandingOf(start).sink) sink->Forbid();
  const std::uint64_t was = place.StandingOf(start).start_and_phase.exchange(
      Standing::Join(start, Phase::kDropped), std::memory_order_relaxed);
  if (was == Standing::Join(start, Phase::kLive)) tally.dropped_in_flight.Add();
}

void BareTransfers::OnNotification(const char* name, void* payload) {
  if (!loop_.IsThisThread()) Violate("a transfer was delivered on another thread");
  const auto [start, index] = StartId::Unpack(payload);
  if (index >= kPlaces) return Violate("a transfer posted with a wrong context");
  const bool returned = returned_ == name;
  tally.transfer_posts.Add();
  if (returned) tally.returned.Add();

  Place& place = places_[index];
  const std::uint64_t posted = Standing::Join(start, Phase::kPosted);
  std::uint64_t expected = Standing::Join(start, Phase::kLive);
  if (place.StandingOf(start).start_and_phase.compare_exchange_strong(expected, posted,
                                                                      std::memory_order_relaxed)) {
    return CheckPost(place, start, returned);
  }
  Violate(expected == posted ? "a transfer posted twice"
                             : "a transfer posted after it was dropped");
}

// The objects stay alive during this call, because their destructors wait for it.
void BareTransfers::CheckPost(Place& place, std::uint64_t start, bool returned) {
  const InternetData& transport = *place.seen_transport.load(std::memory_order_relaxed);
  std::string body = BytesOf(transport.received_data(), transport.received_data_length());
  const auto& sink = place.StandingOf(start).sink;
  if (returned && sink && sink->has_taken()) body = sink->bytes();
  CheckReply(place.target, returned, transport.status_code(), body);
  if (place.fate != Fate::kDeletedInsideItsNotification) return;
  place.delegate.reset();
  place.transport.reset();
  tally.bare_deleted_inside.Add();
  place.was_emptied = true;
}

}  // namespace stowra_test
