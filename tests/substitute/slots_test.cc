// SPDX-License-Identifier: MIT
// The order of the virtual functions, which is part of the binary interface.

#include <cstddef>
#include <memory>
#include <new>
#include <string>

#include "tests/substitute/fixture.h"
#include "tests/substitute/recording_request.h"
#include "tests/substitute/started.h"
#include "tests/support/slots.h"

namespace stowra_substitute {
namespace {

using ovrant::Dictionary;
using ovrant::utils::ovrant_ustring;
using stowra_test::CallSlot;
using stowra_test::FunctionIn;
using testing::ElementsAre;

enum Slot {
  kDestructor,
  kDeletingDestructor,
  kOnNotification,
  kOnNotificationWithDictionary,
  kInit,
  kParseResponse,
  kOnSyncResponseSuccess,
  kOnSyncResponseFail,
  kOnAsyncResponseSuccess,
  kOnAsyncResponseFail,
};

const Dictionary& DictionaryAt(void* address) { return *static_cast<const Dictionary*>(address); }

class RecordingObserver : public ovrant::IObserver {
 public:
  ~RecordingObserver() override { Record("destroyed"); }
  void OnNotification(const char* name, void* payload) override {
    Record(std::string(name) + " " + AddressText(payload));
  }
  using IObserver::OnNotification;

  static void* operator new(std::size_t size) { return ::operator new(size); }
  static void operator delete(void* memory) {
    Record("freed");
    ::operator delete(memory);
  }
};

class SlotsTest : public SubstituteTest {};

TEST_F(SlotsTest, Observer) {
  RecordingObserver observer;
  CallSlot<void, const char*, void*>(&observer, kOnNotification, "name", Address(0x2a));
  EXPECT_EQ(TakeText(), "name 0x2a");

  int payload = 0;
  CallSlot<void, const char*, const Dictionary&>(&observer, kOnNotificationWithDictionary, "name",
                                                 DictionaryAt(&payload));
  EXPECT_THAT(TakeEffects(), ElementsAre("name " + AddressText(&payload)));
}

TEST_F(SlotsTest, DestructorsOfAnObserver) {
  alignas(RecordingObserver) unsigned char place[sizeof(RecordingObserver)];
  CallSlot(::new (place) RecordingObserver, kDestructor);
  EXPECT_EQ(TakeText(), "destroyed");
  CallSlot(new RecordingObserver, kDeletingDestructor);
  EXPECT_EQ(TakeText(), "destroyed | freed");
}

TEST_F(SlotsTest, HooksOfARequest) {
  RecordingRequest request;
  const ovrant_ustring body = "body";
  EXPECT_TRUE((CallSlot<bool, const ovrant_ustring&>(&request, kParseResponse, body)));
  for (int slot = kOnSyncResponseSuccess; slot <= kOnAsyncResponseFail; ++slot) {
    CallSlot(&request, slot);
  }
  EXPECT_EQ(TakeText(),
            "ParseResponse 'body' | OnSyncResponseSuccess | OnSyncResponseFail | "
            "OnAsyncResponseSuccess | OnAsyncResponseFail");
}

TEST_F(SlotsTest, InitOfARequest) {
  RecordingRequest request;
  const ovrant_ustring url = "http://a/";
  CallSlot<void, const ovrant_ustring&, void*>(&request, kInit, url, Address(0x2a));
  EXPECT_EQ(request.url_, "http://a/");
  EXPECT_EQ(request.context_, Address(0x2a));
}

TEST_F(SlotsTest, NotificationsOfARequest) {
  RecordingRequest request;
  CallSlot<void, const char*, void*>(&request, kOnNotification, "Failed", nullptr);
  EXPECT_EQ(TakeText(), "OnAsyncResponseFail");
  int payload = 0;
  CallSlot<void, const char*, const Dictionary&>(&request, kOnNotificationWithDictionary, "Failed",
                                                 DictionaryAt(&payload));
  EXPECT_EQ(TakeText(), "OnAsyncResponseFail");
}

// Of the library's own class, as the library compiled it. Memory that is not freed, or freed twice,
// shows under AddressSanitizer.
template <typename Class>
void ExpectDestructorSlots() {
  alignas(Class) unsigned char place[sizeof(Class)];
  auto* const in_place = ::new (place) Class;
  TakeEffects();
  CallSlot(in_place, kDestructor);
  EXPECT_EQ(TakeText(), "RemoveObserver | RemoveObserver");
  auto* const on_heap = new Class;
  TakeEffects();
  CallSlot(on_heap, kDeletingDestructor);
  EXPECT_EQ(TakeText(), "RemoveObserver | RemoveObserver");
}

TEST_F(SlotsTest, UserInfoQuery) {
  UserInfoQuery query;
  TakeEffects();
  EXPECT_TRUE((CallSlot<bool, const ovrant_ustring&>(&query, kParseResponse, kUser)));
  EXPECT_EQ(query.GetUserInfoValue("uid"), "1");
  CallSlot(&query, kOnSyncResponseFail);
  CallSlot(&query, kOnAsyncResponseFail);
  EXPECT_EQ(TakeText(), "");
  for (const Slot slot : {kOnSyncResponseSuccess, kOnAsyncResponseSuccess}) {
    CallSlot(&query, slot);
    EXPECT_EQ(TakeText(), "post UserInfoUpdated");
  }
}

TEST_F(SlotsTest, UpdateQuery) {
  UpdateQuery query;
  TakeEffects();
  EXPECT_TRUE((CallSlot<bool, const ovrant_ustring&>(&query, kParseResponse, kUpdate)));
  EXPECT_EQ(query.current_version_, "2");
  for (const Slot slot : {kOnSyncResponseSuccess, kOnAsyncResponseSuccess}) {
    CallSlot(&query, slot);
    EXPECT_EQ(TakeText(), "post UpdateQueryAsyncSucceeded");
  }
  for (const Slot slot : {kOnSyncResponseFail, kOnAsyncResponseFail}) {
    CallSlot(&query, slot);
    EXPECT_EQ(TakeText(), "post UpdateQueryAsyncFailed");
  }
}

TEST_F(SlotsTest, QueriesTakeInitAndOnNotificationFromTheirBase) {
  const ovrant::webservices::WebServiceRequestBase base;
  const UserInfoQuery user_info;
  const UpdateQuery update;
  for (const Slot slot : {kOnNotification, kInit}) {
    EXPECT_EQ(FunctionIn(&user_info, slot), FunctionIn(&base, slot)) << slot;
    EXPECT_EQ(FunctionIn(&update, slot), FunctionIn(&base, slot)) << slot;
  }
}

TEST_F(SlotsTest, ExtensionStoreStatus) {
  ExtensionStoreStatus status;
  TakeEffects();
  const char* const name = "ExtensionStoreStatusRequestFailed";
  CallSlot<void, const char*, void*>(&status, kOnNotification, name, nullptr);
  EXPECT_EQ(TakeText(), "post ExtensionStoreAsyncStatusFailed");
  int payload = 0;
  CallSlot<void, const char*, const Dictionary&>(&status, kOnNotificationWithDictionary, name,
                                                 DictionaryAt(&payload));
  EXPECT_EQ(TakeText(), "post ExtensionStoreAsyncStatusFailed");
}

TEST_F(SlotsTest, DestructorsOfTheServices) {
  ExpectDestructorSlots<UserInfoQuery>();
  ExpectDestructorSlots<UpdateQuery>();
  ExpectDestructorSlots<ExtensionStoreStatus>();
}

}  // namespace
}  // namespace stowra_substitute
