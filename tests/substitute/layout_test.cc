// Where the members of the public classes lie: their order is part of the binary interface. Each
// class is held against a plain structure of the same types.

#include <cstddef>
#include <memory>
#include <type_traits>
#include <vector>

#include "common_stowraapi/platform/internet_data.h"
#include "common_stowraapi/platform/internet_data_delegate.h"
#include "common_stowraapi/services/extension_store_status.h"
#include "common_stowraapi/services/update_query.h"
#include "common_stowraapi/services/user_info_query.h"
#include "tests/substitute/fixture.h"
#include "tests/substitute/member_access.h"

namespace stowra_substitute {

using ovrant::extensionstoreapi::ExtensionStoreItem;
using ovrant::extensionstoreapi::ExtensionStoreStatus;
using ovrant::internet::InternetData;
using ovrant::internet::InternetDataDelegate;
using ovrant::utils::ovrant_ustring;
using ovrant::utils::StringMap;
using ovrant::webservices::DataFileData;
using ovrant::webservices::MessageData;
using ovrant::webservices::UpdateQuery;
using ovrant::webservices::UserInfoQuery;
using ovrant::webservices::WebServiceRequestBase;

STOWRA_MEMBER(BaseContext, void*, WebServiceRequestBase, context_);
STOWRA_MEMBER(BaseReturnedMessage, unsigned int, WebServiceRequestBase, returned_message_);
STOWRA_MEMBER(BaseFailedMessage, unsigned int, WebServiceRequestBase, failed_message_);
STOWRA_MEMBER(BaseUrl, ovrant_ustring, WebServiceRequestBase, url_);
STOWRA_MEMBER(BaseData, std::unique_ptr<InternetData>, WebServiceRequestBase, internet_data_);
STOWRA_MEMBER(BaseDelegate, std::unique_ptr<InternetDataDelegate>, WebServiceRequestBase,
              delegate_);
STOWRA_MEMBER(BaseReturnedName, const char*, WebServiceRequestBase, returned_notification_);
STOWRA_MEMBER(BaseFailedName, const char*, WebServiceRequestBase, failed_notification_);
STOWRA_MEMBER(UserInfoCache, StringMap, UserInfoQuery, user_info_cache_);
STOWRA_MEMBER(StatusUrl, ovrant_ustring, ExtensionStoreStatus, url_);
STOWRA_MEMBER(StatusContext, void*, ExtensionStoreStatus, context_);
STOWRA_MEMBER(StatusRequestBody, ovrant_ustring, ExtensionStoreStatus, request_body_);
STOWRA_MEMBER(StatusResponse, ovrant_ustring, ExtensionStoreStatus, response_);
STOWRA_MEMBER(StatusData, std::unique_ptr<InternetData>, ExtensionStoreStatus, internet_data_);
STOWRA_MEMBER(StatusDelegate, std::unique_ptr<InternetDataDelegate>, ExtensionStoreStatus,
              delegate_);

namespace {

static_assert(sizeof(std::unique_ptr<InternetData>) == sizeof(void*));

using Text = Room<ovrant_ustring>;

struct BaseMirror {
  void* vtable;
  void* context;
  unsigned int returned_message;
  unsigned int failed_message;
  Text url;
  void* internet_data;
  void* delegate;
  const char* returned_notification;
  const char* failed_notification;
};
static_assert(std::is_standard_layout_v<BaseMirror>);

void ExpectBaseLayout(const WebServiceRequestBase& base) {
  EXPECT_EQ(OffsetIn(base, PointerTo(BaseContext())), offsetof(BaseMirror, context));
  EXPECT_EQ(OffsetIn(base, PointerTo(BaseReturnedMessage())),
            offsetof(BaseMirror, returned_message));
  EXPECT_EQ(OffsetIn(base, PointerTo(BaseFailedMessage())), offsetof(BaseMirror, failed_message));
  EXPECT_EQ(OffsetIn(base, PointerTo(BaseUrl())), offsetof(BaseMirror, url));
  EXPECT_EQ(OffsetIn(base, PointerTo(BaseData())), offsetof(BaseMirror, internet_data));
  EXPECT_EQ(OffsetIn(base, PointerTo(BaseDelegate())), offsetof(BaseMirror, delegate));
  EXPECT_EQ(OffsetIn(base, PointerTo(BaseReturnedName())),
            offsetof(BaseMirror, returned_notification));
  EXPECT_EQ(OffsetIn(base, PointerTo(BaseFailedName())), offsetof(BaseMirror, failed_notification));
}

// The object's own address is its base's too.
template <typename Derived>
void ExpectBaseFirst(const Derived& object) {
  EXPECT_EQ(static_cast<const void*>(static_cast<const ovrant::IObserver*>(&object)), &object);
}

TEST(LayoutTest, WebServiceRequestBase) {
  const WebServiceRequestBase base;
  ExpectBaseFirst(base);
  ExpectBaseLayout(base);
  EXPECT_EQ(sizeof(base), sizeof(BaseMirror));
}

TEST(LayoutTest, UserInfoQuery) {
  struct Mirror {
    BaseMirror base;
    Room<StringMap> cache;
  };
  const UserInfoQuery query;
  ExpectBaseFirst(query);
  ExpectBaseLayout(query);
  EXPECT_EQ(OffsetIn(query, PointerTo(UserInfoCache())), offsetof(Mirror, cache));
  EXPECT_EQ(sizeof(query), sizeof(Mirror));
}

TEST(LayoutTest, UpdateQuery) {
  struct Mirror {
    BaseMirror base;
    Text current_version;
    Text expire_version;
    Room<MessageData> message;
    Room<std::vector<DataFileData>> data_files;
  };
  const UpdateQuery query;
  ExpectBaseFirst(query);
  ExpectBaseLayout(query);
  EXPECT_EQ(OffsetIn(query, &UpdateQuery::current_version_), offsetof(Mirror, current_version));
  EXPECT_EQ(OffsetIn(query, &UpdateQuery::expire_version_), offsetof(Mirror, expire_version));
  EXPECT_EQ(OffsetIn(query, &UpdateQuery::message_), offsetof(Mirror, message));
  EXPECT_EQ(OffsetIn(query, &UpdateQuery::data_files_), offsetof(Mirror, data_files));
  EXPECT_EQ(sizeof(query), sizeof(Mirror));
}

TEST(LayoutTest, MessageData) {
  struct Mirror {
    int id, max_shows, width, height;
    Text title, url;
  };
  const MessageData message;
  EXPECT_EQ(OffsetIn(message, &MessageData::id), offsetof(Mirror, id));
  EXPECT_EQ(OffsetIn(message, &MessageData::max_shows), offsetof(Mirror, max_shows));
  EXPECT_EQ(OffsetIn(message, &MessageData::width), offsetof(Mirror, width));
  EXPECT_EQ(OffsetIn(message, &MessageData::height), offsetof(Mirror, height));
  EXPECT_EQ(OffsetIn(message, &MessageData::title), offsetof(Mirror, title));
  EXPECT_EQ(OffsetIn(message, &MessageData::url), offsetof(Mirror, url));
  EXPECT_EQ(sizeof(MessageData), sizeof(Mirror));
}

TEST(LayoutTest, DataFileData) {
  struct Mirror {
    int version;
    Text filename, url;
  };
  const DataFileData file;
  EXPECT_EQ(OffsetIn(file, &DataFileData::version), offsetof(Mirror, version));
  EXPECT_EQ(OffsetIn(file, &DataFileData::filename), offsetof(Mirror, filename));
  EXPECT_EQ(OffsetIn(file, &DataFileData::url), offsetof(Mirror, url));
  EXPECT_EQ(sizeof(DataFileData), sizeof(Mirror));
}

TEST(LayoutTest, ExtensionStoreItem) {
  struct Mirror {
    Text id, version_uuid;
    float version;
    Text file_url;
    bool update, remote_kill, enabled;
  };
  const ExtensionStoreItem item;
  EXPECT_EQ(OffsetIn(item, &ExtensionStoreItem::id), offsetof(Mirror, id));
  EXPECT_EQ(OffsetIn(item, &ExtensionStoreItem::version_uuid), offsetof(Mirror, version_uuid));
  EXPECT_EQ(OffsetIn(item, &ExtensionStoreItem::version), offsetof(Mirror, version));
  EXPECT_EQ(OffsetIn(item, &ExtensionStoreItem::file_url), offsetof(Mirror, file_url));
  EXPECT_EQ(OffsetIn(item, &ExtensionStoreItem::update), offsetof(Mirror, update));
  EXPECT_EQ(OffsetIn(item, &ExtensionStoreItem::remote_kill), offsetof(Mirror, remote_kill));
  EXPECT_EQ(OffsetIn(item, &ExtensionStoreItem::enabled), offsetof(Mirror, enabled));
  EXPECT_EQ(sizeof(ExtensionStoreItem), sizeof(Mirror));
}

TEST(LayoutTest, ExtensionStoreStatus) {
  struct Mirror {
    void* vtable;
    Text url;
    void* context;
    Text request_body;
    Text response;
    void* internet_data;
    void* delegate;
  };
  const ExtensionStoreStatus status;
  ExpectBaseFirst(status);
  EXPECT_EQ(OffsetIn(status, PointerTo(StatusUrl())), offsetof(Mirror, url));
  EXPECT_EQ(OffsetIn(status, PointerTo(StatusContext())), offsetof(Mirror, context));
  EXPECT_EQ(OffsetIn(status, PointerTo(StatusRequestBody())), offsetof(Mirror, request_body));
  EXPECT_EQ(OffsetIn(status, PointerTo(StatusResponse())), offsetof(Mirror, response));
  EXPECT_EQ(OffsetIn(status, PointerTo(StatusData())), offsetof(Mirror, internet_data));
  EXPECT_EQ(OffsetIn(status, PointerTo(StatusDelegate())), offsetof(Mirror, delegate));
  EXPECT_EQ(sizeof(status), sizeof(Mirror));
}

TEST(LayoutTest, AFreshExtensionStoreStatusIsEmpty) {
  const ExtensionStoreStatus status;
  EXPECT_TRUE((status.*PointerTo(StatusUrl())).empty());
  EXPECT_EQ(status.*PointerTo(StatusContext()), nullptr);
  EXPECT_TRUE((status.*PointerTo(StatusRequestBody())).empty());
  EXPECT_TRUE((status.*PointerTo(StatusResponse())).empty());
  EXPECT_EQ(status.*PointerTo(StatusData()), nullptr);
  EXPECT_EQ(status.*PointerTo(StatusDelegate()), nullptr);
}

TEST(LayoutTest, ExtensionStoreStatusKeepsWhatInitIsGiven) {
  ExtensionStoreStatus status;
  status.*PointerTo(StatusResponse()) = "old";
  status.Init("http://a/", Address(0x2a), "{}");
  EXPECT_EQ(status.*PointerTo(StatusUrl()), "http://a/");
  EXPECT_EQ(status.*PointerTo(StatusContext()), Address(0x2a));
  EXPECT_EQ(status.*PointerTo(StatusRequestBody()), "{}");
  EXPECT_TRUE((status.*PointerTo(StatusResponse())).empty());
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

TEST(LayoutTest, AFreshTransportHasItsMembersInOrderWithTheirInitialValues) {
  struct Mirror {
    void* vtable;
    bool flag;
    Text url;
    float setting;
    int limit;
    Text texts[4];
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
  ASSERT_EQ(sizeof(InternetData), sizeof(Mirror));
  const InternetData data("http://a/");
  EXPECT_FALSE(At<bool>(data, offsetof(Mirror, flag)));
  EXPECT_EQ(At<ovrant_ustring>(data, offsetof(Mirror, url)), "http://a/");
  EXPECT_EQ(At<float>(data, offsetof(Mirror, setting)), 30.0F);
  EXPECT_EQ(At<int>(data, offsetof(Mirror, limit)), -1);
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_TRUE(
        At<ovrant_ustring>(data, offsetof(Mirror, texts) + i * sizeof(ovrant_ustring)).empty());
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
  struct Mirror {
    void* vtable;
    bool flag;
    Text url;
    float setting;
    int limit;
    Text texts[4];
    unsigned char* body;
    unsigned long body_length;
    Room<StringMap> headers;
    int status;
  };
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
