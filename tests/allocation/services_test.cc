// SPDX-License-Identifier: MIT
// Requests and the parsers of the services.

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <memory>
#include <new>
#include <string>

#include "common_stowraapi/platform/internet_data.h"
#include "common_stowraapi/services/extension_store_status.h"
#include "common_stowraapi/services/update_query.h"
#include "common_stowraapi/services/user_info_query.h"
#include "tests/allocation/each_failure.h"
#include "tests/allocation/end_counter.h"
#include "tests/support/raw_server.h"

#ifdef STOWRA_FAILS_ALLOCATIONS

namespace stowra_test {
namespace {

using ovrant::extensionstoreapi::ExtensionStoreItem;
using ovrant::extensionstoreapi::ExtensionStoreStatus;
using ovrant::utils::ovrant_ustring;
using ovrant::webservices::UpdateQuery;
using ovrant::webservices::UserInfoQuery;

const char kUser[] =
    R"({"uid":"0123456789abcdef","displayname":"A Name That Is Long","email":"name@long.example",
        "vkr_id":"0123456789abcdef","other":1})";
const char kUpdate[] =
    R"({"update":{"current_version":"24.0.484.123456","expire_version":"22.0.0.123456"},
        "message":{"id":7,"title":"A Title That Is Long","url":"http://long.example/message"},
        "datafiles":[{"version":3,"filename":"a-file-name.dat","url":"http://long.example/file"},
                     {"version":4,"filename":"b-file-name.dat","url":"http://long.example/file"}]})";
const char kItems[] =
    R"({"extensions":[{"id":"an-id-that-is-long","version":"2.5","file_url":"http://long.example/",
                       "version_uuid":"0123456789abcdef","update":true,"enabled":1},
                      {"id":"a second id of that kind","version":"1"}]})";

struct UserInfo : UserInfoQuery {
  UserInfo() { EXPECT_TRUE(ParseResponse(R"({"uid":"old","email":"","vkr_id":""})")); }
};

const ovrant_ustring kUserText(kUser);
const ovrant_ustring kUpdateText(kUpdate);

TEST(ServicesAllocationTest, UserInfoThatCannotBeParsedLeavesTheCache) {
  const auto parse = [](UserInfo& user) { return user.ParseResponse(kUserText); };
  const auto check = [&](UserInfo& user, Outcome outcome) {
    EXPECT_FALSE(outcome.threw);
    EXPECT_EQ(outcome.result, !outcome.failed());
    EXPECT_EQ(user.GetUserInfoValue("uid").utf8(), outcome.failed() ? "old" : "0123456789abcdef");
    EXPECT_TRUE(parse(user));
    EXPECT_EQ(user.GetUserInfoValue("email").utf8(), "name@long.example");
  };
  EXPECT_GT(FailEachAllocation<UserInfo>(parse, check), 20);
}

TEST(ServicesAllocationTest, UserInfoIsReadOrThrown) {
  struct Cached : UserInfo {
    Cached() { EXPECT_TRUE(ParseResponse(kUserText)); }
    ovrant_ustring value;
  };
  const auto read = [](Cached& cached) {
    cached.value = cached.GetUserInfoValue(UserInfoQuery::kUserDisplayNameKey);
  };
  const auto check = [&](Cached& cached, Outcome outcome) {
    EXPECT_EQ(outcome.threw, outcome.failed());
    EXPECT_EQ(cached.value.empty(), outcome.threw);
    read(cached);
    EXPECT_EQ(cached.value.utf8(), "A Name That Is Long");
  };
  EXPECT_GT(FailEachAllocation<Cached>(read, check), 1);
}

TEST(ServicesAllocationTest, AnUpdateThatCannotBeParsedIsARefusedOne) {
  const auto parse = [](UpdateQuery& query) { return query.ParseResponse(kUpdateText); };
  const auto check = [&](UpdateQuery& query, Outcome outcome) {
    EXPECT_FALSE(outcome.threw);
    EXPECT_EQ(outcome.result, !outcome.failed());
    EXPECT_TRUE(parse(query));
    EXPECT_EQ(query.message_.title.utf8(), "A Title That Is Long");
    EXPECT_EQ(query.data_files_.size(), 2U);
  };
  EXPECT_GT(FailEachAllocation<UpdateQuery>(parse, check), 20);
}

// An object whose constructor throws must not stay registered.
template <typename Object>
long FailToMake() {
  struct Place {
    ~Place() {
      if (made != nullptr) made->~Object();
    }
    alignas(Object) unsigned char bytes[sizeof(Object)];
    Object* made = nullptr;
  };
  const auto make = [](Place& place) { place.made = new (place.bytes) Object; };
  return FailThrowing<Place>(make, [](Place& place) {
    std::memset(place.bytes, 0, sizeof(place.bytes));
    for (const char* name :
         {UserInfoQuery::kAsynchReturnedNotification, UserInfoQuery::kAsyncFailedNotification,
          UpdateQuery::kAsynchReturnedNotification, UpdateQuery::kAsyncFailedNotification,
          kExtensionStoreStatusRequestReturnedNotification,
          kExtensionStoreStatusRequestFailedNotification}) {
      CNotificationCenter::Default()->SendNotification(name, nullptr);
    }
  });
}

TEST(ServicesAllocationTest, AnObjectIsMadeOrThrown) {
  EXPECT_GT(FailToMake<UserInfoQuery>(), 5);
  EXPECT_GT(FailToMake<UpdateQuery>(), 5);
  EXPECT_GT(FailToMake<ExtensionStoreStatus>(), 5);
}

TEST(ServicesAllocationTest, RecordsAreCopiedOrThrown) {
  UpdateQuery query;
  ASSERT_TRUE(query.ParseResponse(kUpdateText));
  ExtensionStoreItem item;
  item.id = item.file_url = item.version_uuid = "a text that is long";
  const auto copy = [&] {
    const auto message = query.message_;
    const auto files = query.data_files_;
    const ExtensionStoreItem other = item;
  };
  EXPECT_GT(FailCall(copy), 10);
}

// Requests of each kind. The names that they post count their ends.

template <typename Query>
struct QueryRequest {
  explicit QueryRequest(const RawServer& server) { query.Init(server.Url().c_str(), nullptr); }
  bool RunNow() { return query.SynchronousRequest(); }
  void Start() { query.AsynchronousRequest(); }

  Query query;
  EndCounter transfers{Query::kAsynchReturnedNotification, Query::kAsyncFailedNotification};
};

struct UserRequest : QueryRequest<UserInfoQuery> {
  using QueryRequest::QueryRequest;
  EndCounter ends{UserInfoQuery::kUserInfoUpdatedNotification, "(no failure is posted)"};
};

struct UpdateRequest : QueryRequest<UpdateQuery> {
  using QueryRequest::QueryRequest;
  EndCounter ends{UpdateQuery::kUpdateQuerySucceededNotification,
                  UpdateQuery::kUpdateQueryFailedNotification};
};

struct StatusRequest {
  explicit StatusRequest(const RawServer& server) {
    query.Init(server.Url().c_str(), nullptr, "{\"a request\":\"that is long\"}");
  }
  bool RunNow() { return query.SynchronousStatus(); }
  void Start() { query.AsynchronousStatus(); }

  ExtensionStoreStatus query;
  EndCounter transfers{kExtensionStoreStatusRequestReturnedNotification,
                       kExtensionStoreStatusRequestFailedNotification};
  EndCounter ends{kExtensionStoreAsynchStatusSucceededNotification,
                  kExtensionStoreAsynchStatusFailedNotification};
};

class RequestAllocationTest : public testing::Test {
 protected:
  const RawServer users_{Always(Response(200, kUser))};
  const RawServer updates_{Always(Response(200, kUpdate))};
  const RawServer items_{Always(Response(200, kItems))};
};

// A synchronous request reports its failure and can be run again.
template <typename Request>
long FailRequest(const RawServer& server) {
  const auto make = [&] { return Request(server); };
  const auto work = [](Request& request) { return request.RunNow(); };
  return FailEachAllocationOf(make, work, [](Request& request, Outcome outcome) {
    EXPECT_FALSE(outcome.threw);
    EXPECT_TRUE(outcome.result || outcome.failed());
    EXPECT_LE(request.ends.count(), 1);
    EXPECT_TRUE(request.RunNow());
  });
}

TEST_F(RequestAllocationTest, ARequestFailsOrSucceeds) {
  EXPECT_GT(FailRequest<UserRequest>(users_), 40);
  EXPECT_GT(FailRequest<UpdateRequest>(updates_), 40);
  EXPECT_GT(FailRequest<StatusRequest>(items_), 40);
}

// The worker runs out of memory: the request still ends once, and can be run again.
template <typename Request>
long FailOnTheWorker(const RawServer& server, bool posts_failures) {
  const auto make = [&] { return Request(server); };
  const auto work = [](Request& request) {
    request.Start();
    request.transfers.WaitFor(1);
  };
  const auto check = [&](Request& request, Outcome outcome) {
    EXPECT_FALSE(outcome.threw);
    ASSERT_EQ(request.transfers.count(), 1);
    // The request handled it before the counter.
    const int ends = request.ends.count();
    EXPECT_EQ(ends, posts_failures ? 1 : request.ends.successes());
    EXPECT_TRUE(request.ends.successes() == 1 || outcome.failed());
    request.Start();
    ASSERT_TRUE(request.ends.WaitFor(ends + 1));
    EXPECT_GT(request.ends.successes(), 0);
  };
  return FailEachAllocationOf(make, work, check, Threads::kOthers);
}

TEST_F(RequestAllocationTest, ARequestInTheBackgroundEndsOnce) {
  EXPECT_GT(FailOnTheWorker<UserRequest>(users_, false), 40);
  EXPECT_GT(FailOnTheWorker<UpdateRequest>(updates_, true), 40);
  EXPECT_GT(FailOnTheWorker<StatusRequest>(items_, true), 20);
}

// This thread runs out of memory: the request throws nothing, fails at most once, at once, and can
// be started again. Without a transfer it keeps no transport, so it ignores a stray notification.
template <typename Request>
long FailToStart(const RawServer& server) {
  const auto make = [&] { return Request(server); };
  const auto work = [](Request& request) { request.Start(); };
  return FailEachAllocationOf(make, work, [](Request& request, Outcome outcome) {
    EXPECT_FALSE(outcome.threw);
    EXPECT_LE(request.ends.failures(), outcome.failed() ? 1 : 0);
    if (request.ends.failures() == 1 && request.transfers.count() == 0) {
      CNotificationCenter::Default()->SendNotification(request.transfers.success(), nullptr);
      EXPECT_EQ(request.ends.count(), 1);
    }
    const int failures = request.ends.failures();
    request.Start();
    ASSERT_TRUE(request.ends.WaitFor(failures + 1));
    EXPECT_GT(request.ends.successes(), 0);
    EXPECT_EQ(request.ends.failures(), failures);
  });
}

TEST_F(RequestAllocationTest, AStartThrowsNothing) {
  EXPECT_GT(FailToStart<UserRequest>(users_), 10);
  EXPECT_GT(FailToStart<UpdateRequest>(updates_), 10);
  EXPECT_GT(FailToStart<StatusRequest>(items_), 10);
}

TEST(ServicesAllocationTest, TheItemsAreReadOrThrown) {
  const RawServer server(Always(Response(200, kItems)));
  StatusRequest status(server);
  ASSERT_TRUE(status.RunNow());
  struct Items {
    std::map<ovrant_ustring, ExtensionStoreItem> map;
  };
  const auto read = [&](Items& items) { items.map = status.query.GetItemMapFromResponse(); };
  const auto check = [&](Items& items, Outcome outcome) {
    EXPECT_EQ(outcome.threw, outcome.failed());
    EXPECT_EQ(items.map.size(), outcome.threw ? 0U : 2U);
    read(items);
    EXPECT_EQ(items.map["an-id-that-is-long"].version_uuid.utf8(), "0123456789abcdef");
  };
  EXPECT_GT(FailEachAllocation<Items>(read, check), 20);
}

// Returns one item. Its id is the request's path and body.
void Echo(const RawRequest& request, RawConnection& connection) {
  connection.Write(
      Response(200, R"({"extensions":[{"id":")" + request.target + request.body + "\"}]}"));
}

std::string OnlyId(ExtensionStoreStatus& status) {
  const auto items = status.GetItemMapFromResponse();
  return items.size() == 1 ? items.begin()->first.utf8() : "";
}

TEST(ServicesAllocationTest, StatusInitChangesAllOrNothing) {
  const RawServer server(Echo);
  const ovrant_ustring new_url(server.Url("/new").c_str());
  const ovrant_ustring new_body(" a new body that is long");
  const auto make = [&] {
    auto status = std::make_unique<ExtensionStoreStatus>();
    status->Init(server.Url("/old").c_str(), nullptr, " body");
    EXPECT_TRUE(status->SynchronousStatus());
    return status;
  };
  using Status = std::unique_ptr<ExtensionStoreStatus>;
  const auto init = [&](Status& status) { status->Init(new_url, nullptr, new_body); };
  const auto check = [](Status& status, Outcome outcome) {
    EXPECT_EQ(outcome.threw, outcome.failed());
    EXPECT_EQ(OnlyId(*status), outcome.threw ? "/old body" : "");
    EXPECT_TRUE(status->SynchronousStatus());
    EXPECT_EQ(OnlyId(*status), outcome.threw ? "/old body" : "/new a new body that is long");
  };
  EXPECT_GT(FailEachAllocationOf(make, init, check), 3);
}

TEST(ServicesAllocationTest, RequestInitThrows) {
  const RawServer server(Always(Response(200, kUpdate)));
  const ovrant_ustring url(server.Url().c_str());
  const auto init = [&](UpdateQuery& query) { query.Init(url, nullptr); };
  const auto check = [](UpdateQuery& query, Outcome outcome) {
    EXPECT_EQ(outcome.threw, outcome.failed());
    EXPECT_EQ(query.SynchronousRequest(), !outcome.threw);
  };
  EXPECT_GT(FailEachAllocation<UpdateQuery>(init, check), 1);
}

}  // namespace
}  // namespace stowra_test

#endif  // STOWRA_FAILS_ALLOCATIONS
