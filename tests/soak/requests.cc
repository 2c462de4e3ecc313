// SPDX-License-Identifier: MIT
#include "tests/soak/requests.h"

#include <algorithm>
#include <cstring>

#include "common_stowraapi/platform/notification_center.h"
#include "common_stowraapi/services/extension_store_status.h"
#include "common_stowraapi/services/update_query.h"
#include "common_stowraapi/services/user_info_query.h"

namespace stowra_test {

using ovrant::webservices::UpdateQuery;
using ovrant::webservices::UserInfoQuery;

namespace {

std::array<const char*, 3> ReturnedNames() {
  return {UserInfoQuery::kAsynchReturnedNotification, UpdateQuery::kAsynchReturnedNotification,
          kExtensionStoreStatusRequestReturnedNotification};
}

std::array<const char*, 3> FailedNames() {
  return {UserInfoQuery::kAsyncFailedNotification, UpdateQuery::kAsyncFailedNotification,
          kExtensionStoreStatusRequestFailedNotification};
}

template <typename Names>
bool Contains(const Names& names, const char* name) {
  return std::any_of(names.begin(), names.end(),
                     [name](const char* each) { return std::strcmp(each, name) == 0; });
}

}  // namespace

std::array<const char*, 5> PublicNames() {
  return {
      UserInfoQuery::kUserInfoUpdatedNotification, UpdateQuery::kUpdateQuerySucceededNotification,
      UpdateQuery::kUpdateQueryFailedNotification, kExtensionStoreAsynchStatusSucceededNotification,
      kExtensionStoreAsynchStatusFailedNotification};
}

// Registers before the requests do, so that it sees each end before they do.
Requests::Requests(const RawServer& server, const MainLoop& loop, std::uint32_t seed)
    : server_(server), loop_(loop), random_(seed) {
  CNotificationCenter* const center = CNotificationCenter::Default();
  for (const char* name : ReturnedNames()) center->AddObserver(name, this);
  for (const char* name : FailedNames()) center->AddObserver(name, this);
  for (const char* name : PublicNames()) center->AddObserver(name, this);
}

Requests::~Requests() {
  for (Place& place : places_) {
    if (place.request) Delete(place);
  }
  CNotificationCenter::Default()->RemoveObserver(this);
}

void Requests::Act() {
  const std::uint32_t index = random_.Draw(kPlaces);
  Place& place = places_[index];
  if (!place.request) {
    place.request = MakeRequest(KindOf(index));
    tally.requests_created.Add();
    return;
  }
  switch (random_.Draw(10)) {
    case 0:
      return RunBlocking(index);
    case 1:
      return CleanUp(place);
    case 2:
      return Delete(place);
    case 3:
      return place.request->Poke();
    case 4:
      return StartOne(index);
    default:
      // Lets most transfers run to their end.
      if (!place.is_live) StartOne(index);
  }
}

int Requests::CountUnposted() const {
  int count = 0;
  for (const Place& place : places_) count += place.is_live;
  return count;
}

void Requests::StartOne(std::uint32_t index) {
  Place& place = places_[index];
  const Target target = {KindOf(index), DrawManner(random_), ++number_};
  (place.is_live ? tally.requests_retargeted : tally.requests_started).Add();
  NoteDropped(place);
  place.start = number_;
  place.is_live = true;
  place.request->Start(server_, target, StartId{number_, index}.Pack());
}

// Uses only manners that answer at once, since it blocks the main loop.
void Requests::RunBlocking(std::uint32_t index) {
  const Target target = {KindOf(index), static_cast<Manner>(random_.Draw(2)), ++number_};
  places_[index].request->RunBlocking(server_, target);
  tally.requests_run_blocking.Add();
}

void Requests::CleanUp(Place& place) {
  if (!place.request->CleanUp()) return;
  NoteDropped(place);
  tally.requests_cleaned_up.Add();
}

void Requests::Delete(Place& place) {
  place.request.reset();
  NoteDropped(place);
  tally.requests_deleted.Add();
}

void Requests::NoteDropped(Place& place) {
  if (place.is_live) tally.dropped_in_flight.Add();
  place.is_live = false;
}

void Requests::OnNotification(const char* name, void* payload) {
  if (!loop_.IsThisThread()) return Violate("a request was delivered on another thread");
  if (Contains(PublicNames(), name)) return OnPublic();
  tally.transfer_posts.Add();
  if (Contains(ReturnedNames(), name)) tally.returned.Add();
  OnEnd(payload);
}

void Requests::OnEnd(const void* payload) {
  const StartId id = StartId::Unpack(payload);
  if (id.place >= kPlaces) return Violate("a request's transfer posted with a wrong context");
  Place& place = places_[id.place];
  if (!place.is_live || place.start != id.start) {
    return Violate("a request's transfer posted twice, or after it was dropped");
  }
  place.is_live = false;
}

// Leaves busy requests alone, such as the one that posts this notification.
void Requests::OnPublic() {
  tally.public_received.Add();
  const std::uint32_t index = random_.Draw(kPlaces);
  Place& place = places_[index];
  if (!place.request || place.request->is_busy()) return;
  switch (random_.Draw(4)) {
    case 0:
      tally.requests_deleted_by_observers.Add();
      return Delete(place);
    case 1:
      return CleanUp(place);
    case 2:
      return StartOne(index);
    default:
      return;
  }
}

}  // namespace stowra_test
