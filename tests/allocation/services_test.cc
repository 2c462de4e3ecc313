// SPDX-License-Identifier: MIT
// Requests and the parsers of the services.

#include <gtest/gtest.h>

#include <cstring>
#include <map>
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

struct UserInfo {
  UserInfo() { EXPECT_TRUE(query.ParseResponse(R"({"uid":"old","email":"","vkr_id":""})")); }

  UserInfoQuery query;
  bool result = false;
};

const ovrant_ustring kUserText(kUser);
const ovrant_ustring kUpdateText(kUpdate);

TEST(ServicesAllocationTest, UserInfoThatCannotBeParsedLeavesTheCache) {
  const auto parse = [](UserInfo& user) { user.result = user.query.ParseResponse(kUserText); };
  const auto check = [&](UserInfo& user, Outcome outcome) {
    EXPECT_FALSE(outcome.threw);
    EXPECT_EQ(user.result, !outcome.failed());
    EXPECT_EQ(user.query.GetUserInfoValue("uid").utf8(),
              outcome.failed() ? "old" : "0123456789abcdef");
    parse(user);
    EXPECT_TRUE(user.result);
    EXPECT_EQ(user.query.GetUserInfoValue("email").utf8(), "name@long.example");
  };
  EXPECT_GT(FailEachAllocation<UserInfo>(parse, check), 20);
}

TEST(ServicesAllocationTest, UserInfoIsReadOrThrown) {
  struct Cached : UserInfo {
    Cached() { EXPECT_TRUE(query.ParseResponse(kUserText)); }
    ovrant_ustring value;
  };
  const auto read = [](Cached& cached) {
    cached.value = cached.query.GetUserInfoValue(UserInfoQuery::kUserDisplayNameKey);
  };
  EXPECT_GT(FailEachAllocation<Cached>(read,
                                       [&](Cached& cached, Outcome outcome) {
                                         EXPECT_EQ(outcome.threw, outcome.failed());
                                         EXPECT_EQ(cached.value.empty(), outcome.threw);
                                         read(cached);
                                         EXPECT_EQ(cached.value.utf8(), "A Name That Is Long");
                                       }),
            1);
}

TEST(ServicesAllocationTest, AnUpdateThatCannotBeParsedIsARefusedOne) {
  struct Update {
    UpdateQuery query;
    bool result = false;
  };
  const auto parse = [](Update& update) {
    update.result = update.query.ParseResponse(kUpdateText);
  };
  const auto check = [&](Update& update, Outcome outcome) {
    EXPECT_FALSE(outcome.threw);
    EXPECT_EQ(update.result, !outcome.failed());
    parse(update);
    EXPECT_TRUE(update.result);
    EXPECT_EQ(update.query.message_.title.utf8(), "A Title That Is Long");
    EXPECT_EQ(update.query.data_files_.size(), 2U);
  };
  EXPECT_GT(FailEachAllocation<Update>(parse, check), 20);
}

struct Nothing {};

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
  return FailEachAllocation<Place>(
      [](Place& place) { place.made = new (place.bytes) Object; },
      [](Place& place, Outcome outcome) {
        EXPECT_EQ(outcome.threw, outcome.failed());
        if (!outcome.threw) return;
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
  const auto copy = [&](Nothing&) {
    const auto message = query.message_;
    const auto files = query.data_files_;
    const ExtensionStoreItem other = item;
  };
  const auto check = [](Nothing&, Outcome outcome) { EXPECT_EQ(outcome.threw, outcome.failed()); };
  EXPECT_GT(FailEachAllocation<Nothing>(copy, check), 10);
}

// Requests of each kind. The names that they post count their ends.

struct UserRequest {
  explicit UserRequest(const RawServer& server) { query.Init(server.Url().c_str(), nullptr); }
  bool RunNow() { return query.SynchronousRequest(); }
  void Start() { query.AsynchronousRequest(); }

  UserInfoQuery query;
  EndCounter ends{UserInfoQuery::kUserInfoUpdatedNotification, "(no failure is posted)"};
  EndCounter transfers{UserInfoQuery::kAsynchReturnedNotification,
                       UserInfoQuery::kAsyncFailedNotification};
};

struct UpdateRequest {
  explicit UpdateRequest(const RawServer& server) { query.Init(server.Url().c_str(), nullptr); }
  bool RunNow() { return query.SynchronousRequest(); }
  void Start() { query.AsynchronousRequest(); }

  UpdateQuery query;
  EndCounter ends{UpdateQuery::kUpdateQuerySucceededNotification,
                  UpdateQuery::kUpdateQueryFailedNotification};
  EndCounter transfers{UpdateQuery::kAsynchReturnedNotification,
                       UpdateQuery::kAsyncFailedNotification};
};

struct StatusRequest {
  explicit StatusRequest(const RawServer& server) {
    query.Init(server.Url().c_str(), nullptr, "{\"a request\":\"that is long\"}");
  }
  bool RunNow() { return query.SynchronousStatus(); }
  void Start() { query.AsynchronousStatus(); }

  ExtensionStoreStatus query;
  EndCounter ends{kExtensionStoreAsynchStatusSucceededNotification,
                  kExtensionStoreAsynchStatusFailedNotification};
  EndCounter transfers{kExtensionStoreStatusRequestReturnedNotification,
                       kExtensionStoreStatusRequestFailedNotification};
};

// A synchronous request reports its failure and can be run again.
template <typename Request>
long FailRequest(const RawServer& server) {
  struct Run {
    explicit Run(const RawServer& server_to_ask) : request(server_to_ask) {}
    Request request;
    bool result = false;
  };
  return FailEachAllocationOf([&] { return Run(server); },
                              [](Run& run) { run.result = run.request.RunNow(); },
                              [](Run& run, Outcome outcome) {
                                EXPECT_FALSE(outcome.threw);
                                EXPECT_TRUE(run.result || outcome.failed());
                                EXPECT_LE(run.request.ends.count(), 1);
                                EXPECT_TRUE(run.request.RunNow());
                              });
}

TEST(ServicesAllocationTest, ARequestFailsOrSucceeds) {
  const RawServer users(Always(Response(200, kUser)));
  EXPECT_GT(FailRequest<UserRequest>(users), 40);
  const RawServer updates(Always(Response(200, kUpdate)));
  EXPECT_GT(FailRequest<UpdateRequest>(updates), 40);
  const RawServer items(Always(Response(200, kItems)));
  EXPECT_GT(FailRequest<StatusRequest>(items), 40);
}

// The worker runs out of memory: the request still ends once, and can be run again.
template <typename Request>
long FailOnTheWorker(const RawServer& server, bool posts_failures) {
  return FailEachAllocationOf([&] { return Request(server); },
                              [](Request& request) {
                                request.Start();
                                request.transfers.WaitFor(1);
                              },
                              [&](Request& request, Outcome outcome) {
                                EXPECT_FALSE(outcome.threw);
                                ASSERT_EQ(request.transfers.count(), 1);
                                // The request handled it before the counter.
                                const int ends = request.ends.count();
                                EXPECT_EQ(ends, posts_failures ? 1 : request.ends.successes());
                                EXPECT_TRUE(request.ends.successes() == 1 || outcome.failed());
                                request.Start();
                                ASSERT_TRUE(request.ends.WaitFor(ends + 1));
                                EXPECT_GT(request.ends.successes(), 0);
                              },
                              Threads::kOthers);
}

TEST(ServicesAllocationTest, ARequestInTheBackgroundEndsOnce) {
  const RawServer users(Always(Response(200, kUser)));
  EXPECT_GT(FailOnTheWorker<UserRequest>(users, false), 40);
  const RawServer updates(Always(Response(200, kUpdate)));
  EXPECT_GT(FailOnTheWorker<UpdateRequest>(updates, true), 40);
  const RawServer items(Always(Response(200, kItems)));
  EXPECT_GT(FailOnTheWorker<StatusRequest>(items, true), 20);
}

// This thread runs out of memory: the request throws nothing, fails at most once, at once, and can
// be started again. Without a transfer it keeps no transport, so it ignores a stray notification.
template <typename Request>
long FailToStart(const RawServer& server, const char* returned) {
  return FailEachAllocationOf(
      [&] { return Request(server); }, [](Request& request) { request.Start(); },
      [returned](Request& request, Outcome outcome) {
        EXPECT_FALSE(outcome.threw);
        EXPECT_LE(request.ends.failures(), outcome.failed() ? 1 : 0);
        if (request.ends.failures() == 1 && request.transfers.count() == 0) {
          CNotificationCenter::Default()->SendNotification(returned, nullptr);
          EXPECT_EQ(request.ends.count(), 1);
        }
        const int failures = request.ends.failures();
        request.Start();
        ASSERT_TRUE(request.ends.WaitFor(failures + 1));
        EXPECT_GT(request.ends.successes(), 0);
        EXPECT_EQ(request.ends.failures(), failures);
      });
}

TEST(ServicesAllocationTest, AStartThrowsNothing) {
  const RawServer users(Always(Response(200, kUser)));
  EXPECT_GT(FailToStart<UserRequest>(users, UserInfoQuery::kAsynchReturnedNotification), 10);
  const RawServer updates(Always(Response(200, kUpdate)));
  EXPECT_GT(FailToStart<UpdateRequest>(updates, UpdateQuery::kAsynchReturnedNotification), 10);
  const RawServer items(Always(Response(200, kItems)));
  EXPECT_GT(FailToStart<StatusRequest>(items, kExtensionStoreStatusRequestReturnedNotification),
            10);
}

TEST(ServicesAllocationTest, TheItemsAreReadOrThrown) {
  const RawServer server(Always(Response(200, kItems)));
  ExtensionStoreStatus status;
  status.Init(server.Url().c_str(), nullptr, "{}");
  ASSERT_TRUE(status.SynchronousStatus());
  struct Items {
    std::map<ovrant_ustring, ExtensionStoreItem> map;
  };
  const auto read = [&](Items& items) { items.map = status.GetItemMapFromResponse(); };
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
  struct Set {
    explicit Set(const RawServer& echo) {
      status.Init(echo.Url("/old").c_str(), nullptr, " body");
      EXPECT_TRUE(status.SynchronousStatus());
    }
    ExtensionStoreStatus status;
  };
  const auto init = [&](Set& set) { set.status.Init(new_url, nullptr, new_body); };
  const auto check = [](Set& set, Outcome outcome) {
    EXPECT_EQ(outcome.threw, outcome.failed());
    EXPECT_EQ(OnlyId(set.status), outcome.threw ? "/old body" : "");
    EXPECT_TRUE(set.status.SynchronousStatus());
    EXPECT_EQ(OnlyId(set.status), outcome.threw ? "/old body" : "/new a new body that is long");
  };
  EXPECT_GT(FailEachAllocationOf([&] { return Set(server); }, init, check), 3);
}

TEST(ServicesAllocationTest, RequestInitThrows) {
  const RawServer server(Always(Response(200, kUpdate)));
  const ovrant_ustring url(server.Url().c_str());
  struct Update {
    UpdateQuery query;
  };
  EXPECT_GT(FailEachAllocation<Update>([&](Update& update) { update.query.Init(url, nullptr); },
                                       [&](Update& update, Outcome outcome) {
                                         EXPECT_EQ(outcome.threw, outcome.failed());
                                         EXPECT_EQ(update.query.SynchronousRequest(),
                                                   !outcome.threw);
                                       }),
            1);
}

}  // namespace
}  // namespace stowra_test

#endif  // STOWRA_FAILS_ALLOCATIONS
