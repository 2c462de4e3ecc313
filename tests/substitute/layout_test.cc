// SPDX-License-Identifier: MIT
// Where the members of the public classes lie: their order is part of the binary interface.

#include <cstddef>
#include <memory>
#include <vector>

#include "common_stowraapi/platform/internet_data.h"
#include "common_stowraapi/platform/internet_data_delegate.h"
#include "tests/substitute/fixture.h"
#include "tests/substitute/member_access.h"
#include "tests/substitute/started.h"
#include "tests/support/text.h"

namespace stowra_substitute {

using ovrant::extensionstoreapi::ExtensionStoreItem;
using ovrant::internet::InternetData;
using ovrant::internet::InternetDataDelegate;
using ovrant::utils::StringMap;
using ovrant::webservices::DataFileData;
using ovrant::webservices::MessageData;
using ovrant::webservices::WebServiceRequestBase;
using Text = ovrant::utils::ovrant_ustring;

STOWRA_MEMBER(BaseContext, void*, WebServiceRequestBase, context_);
STOWRA_MEMBER(BaseReturnedMessage, unsigned int, WebServiceRequestBase, returned_message_);
STOWRA_MEMBER(BaseFailedMessage, unsigned int, WebServiceRequestBase, failed_message_);
STOWRA_MEMBER(BaseUrl, Text, WebServiceRequestBase, url_);
STOWRA_MEMBER(BaseData, std::unique_ptr<InternetData>, WebServiceRequestBase, internet_data_);
STOWRA_MEMBER(BaseDelegate, std::unique_ptr<InternetDataDelegate>, WebServiceRequestBase,
              delegate_);
STOWRA_MEMBER(BaseReturnedName, const char*, WebServiceRequestBase, returned_notification_);
STOWRA_MEMBER(BaseFailedName, const char*, WebServiceRequestBase, failed_notification_);
STOWRA_MEMBER(UserInfoCache, StringMap, UserInfoQuery, user_info_cache_);
STOWRA_MEMBER(StatusUrl, Text, ExtensionStoreStatus, url_);
STOWRA_MEMBER(StatusContext, void*, ExtensionStoreStatus, context_);
STOWRA_MEMBER(StatusRequestBody, Text, ExtensionStoreStatus, request_body_);
STOWRA_MEMBER(StatusResponse, Text, ExtensionStoreStatus, response_);
STOWRA_MEMBER(StatusData, std::unique_ptr<InternetData>, ExtensionStoreStatus, internet_data_);
STOWRA_MEMBER(StatusDelegate, std::unique_ptr<InternetDataDelegate>, ExtensionStoreStatus,
              delegate_);

namespace {

static_assert(sizeof(std::unique_ptr<InternetData>) == sizeof(void*));

constexpr std::size_t kVtable = sizeof(void*);

TEST(LayoutTest, Requests) {
  ExpectMembers<WebServiceRequestBase, void*, unsigned int, unsigned int, Text,
                std::unique_ptr<InternetData>, std::unique_ptr<InternetDataDelegate>, const char*,
                const char*>(kVtable, PointerTo(BaseContext()), PointerTo(BaseReturnedMessage()),
                             PointerTo(BaseFailedMessage()), PointerTo(BaseUrl()),
                             PointerTo(BaseData()), PointerTo(BaseDelegate()),
                             PointerTo(BaseReturnedName()), PointerTo(BaseFailedName()));
  constexpr std::size_t kBase = sizeof(WebServiceRequestBase);
  ExpectMembers<UserInfoQuery, StringMap>(kBase, PointerTo(UserInfoCache()));
  ExpectMembers<UpdateQuery, Text, Text, MessageData, std::vector<DataFileData>>(
      kBase, &UpdateQuery::current_version_, &UpdateQuery::expire_version_, &UpdateQuery::message_,
      &UpdateQuery::data_files_);
  ExpectMembers<ExtensionStoreStatus, Text, void*, Text, Text, std::unique_ptr<InternetData>,
                std::unique_ptr<InternetDataDelegate>>(
      kVtable, PointerTo(StatusUrl()), PointerTo(StatusContext()), PointerTo(StatusRequestBody()),
      PointerTo(StatusResponse()), PointerTo(StatusData()), PointerTo(StatusDelegate()));
}

TEST(LayoutTest, Records) {
  ExpectMembers<MessageData, int, int, int, int, Text, Text>(
      0, &MessageData::id, &MessageData::max_shows, &MessageData::width, &MessageData::height,
      &MessageData::title, &MessageData::url);
  ExpectMembers<DataFileData, int, Text, Text>(0, &DataFileData::version, &DataFileData::filename,
                                               &DataFileData::url);
  ExpectMembers<ExtensionStoreItem, Text, Text, float, Text, bool, bool, bool>(
      0, &ExtensionStoreItem::id, &ExtensionStoreItem::version_uuid, &ExtensionStoreItem::version,
      &ExtensionStoreItem::file_url, &ExtensionStoreItem::update, &ExtensionStoreItem::remote_kill,
      &ExtensionStoreItem::enabled);
}

// The object's own address is its base's too.
template <typename Derived>
void ExpectBaseFirst() {
  const Derived object;
  EXPECT_EQ(static_cast<const void*>(static_cast<const ovrant::IObserver*>(&object)), &object);
}

TEST(LayoutTest, TheObserverComesFirst) {
  ExpectBaseFirst<WebServiceRequestBase>();
  ExpectBaseFirst<UserInfoQuery>();
  ExpectBaseFirst<UpdateQuery>();
  ExpectBaseFirst<ExtensionStoreStatus>();
}

TEST(LayoutTest, AFreshExtensionStoreStatusIsEmpty) {
  const ExtensionStoreStatus status;
  EXPECT_EQ(status.*PointerTo(StatusUrl()), "");
  EXPECT_EQ(status.*PointerTo(StatusContext()), nullptr);
  EXPECT_EQ(status.*PointerTo(StatusRequestBody()), "");
  EXPECT_EQ(status.*PointerTo(StatusResponse()), "");
  EXPECT_EQ(status.*PointerTo(StatusData()), nullptr);
  EXPECT_EQ(status.*PointerTo(StatusDelegate()), nullptr);
}

TEST(LayoutTest, UserInfoCacheIsOrderedByCompareAndEmptyAtFirst) {
  UserInfoQuery query;
  const StringMap& cache = query.*PointerTo(UserInfoCache());
  EXPECT_TRUE(cache.empty());
  ASSERT_TRUE(query.ParseResponse(R"({"vkr_id":"","a":"","uid":"","B":"","email":""})"));
  std::vector<std::string> keys;
  for (const auto& [key, value] : cache) keys.push_back(key.utf8());
  EXPECT_THAT(keys, testing::ElementsAre("B", "a", "email", "uid", "vkr_id"));
}

// The transport's constructor is compiled into the library and into hosts: they all leave the same
// state behind. The value of type T that lies at `offset` in it.
template <typename T>
const T& At(const InternetData& data, std::size_t offset) {
  return *reinterpret_cast<const T*>(reinterpret_cast<const char*>(&data) + offset);
}

struct Mirror {
  void* vtable;
  bool flag;
  Room<Text> url;
  float setting;
  int limit;
  Room<Text> texts[4];
  unsigned char* body;
  unsigned long body_length;
  Room<StringMap> headers;
  int status;
  bool status_flag;
  Room<StringMap> more_headers;
  void* pointers[4];
  bool before_last_flag;
  bool last_flag;
};

TEST(LayoutTest, AFreshTransportHasItsMembersInOrderWithTheirInitialValues) {
  ASSERT_EQ(sizeof(InternetData), sizeof(Mirror));
  const InternetData data("http://a/");
  EXPECT_FALSE(At<bool>(data, offsetof(Mirror, flag)));
  EXPECT_EQ(At<Text>(data, offsetof(Mirror, url)), "http://a/");
  EXPECT_EQ(At<float>(data, offsetof(Mirror, setting)), 30.0F);
  EXPECT_EQ(At<int>(data, offsetof(Mirror, limit)), -1);
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_TRUE(At<Text>(data, offsetof(Mirror, texts) + i * sizeof(Text)).empty());
  }
  EXPECT_EQ(At<unsigned char*>(data, offsetof(Mirror, body)), nullptr);
  EXPECT_EQ(At<unsigned long>(data, offsetof(Mirror, body_length)), 0U);
  EXPECT_TRUE(At<StringMap>(data, offsetof(Mirror, headers)).empty());
  EXPECT_EQ(At<int>(data, offsetof(Mirror, status)), 0);
  EXPECT_FALSE(At<bool>(data, offsetof(Mirror, status_flag)));
  EXPECT_TRUE(At<StringMap>(data, offsetof(Mirror, more_headers)).empty());
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(At<void*>(data, offsetof(Mirror, pointers) + i * sizeof(void*)), nullptr);
  }
  EXPECT_FALSE(At<bool>(data, offsetof(Mirror, before_last_flag)));
  EXPECT_TRUE(At<bool>(data, offsetof(Mirror, last_flag)));
}

// A transport's response fields lie where the mirror has them.
TEST(LayoutTest, ATransferFillsStatusAndBodyOfTheTransport) {
  InternetData data("http://a/");
  ScriptTransfer(Reply(418, "abc"));
  EXPECT_TRUE(data.Download());
  EXPECT_EQ(At<unsigned char*>(data, offsetof(Mirror, body)), data.received_data());
  EXPECT_NE(data.received_data(), nullptr);
  EXPECT_EQ(At<unsigned long>(data, offsetof(Mirror, body_length)), 3U);
  EXPECT_EQ(At<int>(data, offsetof(Mirror, status)), 418);
}

}  // namespace
}  // namespace stowra_substitute
