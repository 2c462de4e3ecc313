// SPDX-License-Identifier: MIT
// The three kinds of requests. Each checks its own reaction to a notification.

#include <cstring>
#include <string>

#include "common_stowraapi/services/extension_store_status.h"
#include "common_stowraapi/services/update_query.h"
#include "common_stowraapi/services/user_info_query.h"
#include "tests/soak/requests.h"

namespace stowra_test {

using ovrant::extensionstoreapi::ExtensionStoreStatus;
using ovrant::utils::ovrant_ustring;
using ovrant::webservices::UpdateQuery;
using ovrant::webservices::UserInfoQuery;

namespace {

ovrant_ustring NumberOf(const Target& target) { return std::to_string(target.number).c_str(); }

ovrant_ustring UrlOf(const RawServer& server, const Target& target) {
  return server.Url(target.Path()).c_str();
}

// Compares the notifications that an object posts with those received meanwhile.
class PostWatch {
 public:
  bool is_busy() const { return depth_ > 0; }

  void NotePost() {
    ++posts_;
    tally.public_posted.Add();
  }

  template <typename Function>
  void Watch(const Function& function) {
    const int posts_before = posts_;
    const auto received_before = tally.public_received.value();
    ++depth_;
    function();
    --depth_;
    Check(tally.public_received.value() - received_before == posts_ - posts_before,
          "public notifications posted and received differ in number");
  }

 private:
  int depth_ = 0;
  int posts_ = 0;
};

ovrant_ustring ResultOf(const UpdateQuery& query) { return query.current_version_; }
ovrant_ustring ResultOf(const UserInfoQuery& query) {
  return query.GetUserInfoValue(UserInfoQuery::kUserIdKey);
}

bool PostsFailures(const UpdateQuery& /*query*/) { return true; }
bool PostsFailures(const UserInfoQuery& /*query*/) { return false; }

void PostOwn(UpdateQuery& /*query*/, PostWatch& /*watch*/) {}
void PostOwn(UserInfoQuery& query, PostWatch& watch) {
  watch.NotePost();
  query.ClearCache();
}

template <typename Query>
class WatchedQuery final : public Query, public SoakRequest {
 public:
  ~WatchedQuery() override { Query::RemoveNotifications(); }

  void Start(const RawServer& server, const Target& target, void* context) override {
    Query::Init(UrlOf(server, target), context);
    Query::AsynchronousRequest();
    asked_ = NumberOf(target);
    has_transport_ = true;
  }

  bool CleanUp() override {
    Query::CleanUpRequest();
    has_transport_ = false;
    return true;
  }

  bool RunBlocking(const RawServer& server, const Target& target) override {
    Query::Init(UrlOf(server, target), nullptr);
    asked_blocking_ = NumberOf(target);
    bool good = false;
    const int hooks_before = hooks_;
    watch_.Watch([&] { good = Query::SynchronousRequest(); });
    Check(hooks_ == hooks_before + 1, "a blocking request did not run exactly one hook");
    return good;
  }

  void Poke() override {
    watch_.Watch([this] { PostOwn(*this, watch_); });
  }

  bool is_busy() const override { return watch_.is_busy(); }

  using Query::OnNotification;
  void OnNotification(const char* name, void* payload) override {
    const bool returned = std::strcmp(name, Query::kAsynchReturnedNotification) == 0;
    const int hooks_after = hooks_ + (!returned || has_transport_ ? 1 : 0);
    watch_.Watch([&] { Query::OnNotification(name, payload); });
    Check(hooks_ == hooks_after, "a notification ran a wrong number of hooks");
  }

  void OnSyncResponseSuccess() override {
    NoteSuccess(asked_blocking_);
    Query::OnSyncResponseSuccess();
  }
  void OnSyncResponseFail() override {
    NoteFailure();
    Query::OnSyncResponseFail();
  }
  void OnAsyncResponseSuccess() override {
    NoteSuccess(asked_);
    Query::OnAsyncResponseSuccess();
  }
  void OnAsyncResponseFail() override {
    NoteFailure();
    Query::OnAsyncResponseFail();
  }

 private:
  void NoteSuccess(const ovrant_ustring& asked) {
    ++hooks_;
    watch_.NotePost();
    Check(ResultOf(*this) == asked, "a request has a result that it did not request");
  }
  void NoteFailure() {
    ++hooks_;
    if (PostsFailures(*this)) watch_.NotePost();
  }

  PostWatch watch_;
  int hooks_ = 0;
  ovrant_ustring asked_;
  ovrant_ustring asked_blocking_;
  bool has_transport_ = false;
};

class WatchedStatus final : public ExtensionStoreStatus, public SoakRequest {
 public:
  ~WatchedStatus() override { RemoveNotifications(); }

  void Start(const RawServer& server, const Target& target, void* context) override {
    Init(UrlOf(server, target), context, BodyOf(target).c_str());
    AsynchronousStatus();
    asked_ = NumberOf(target);
    has_transport_ = true;
  }

  bool CleanUp() override { return false; }

  bool RunBlocking(const RawServer& server, const Target& target) override {
    Init(UrlOf(server, target), nullptr, BodyOf(target).c_str());
    bool good = false;
    watch_.Watch([&] { good = SynchronousStatus(); });
    Check(!good || GetItemMapFromResponse().count(NumberOf(target)) == 1,
          "a status has a response that it did not request");
    asked_blocking_ = NumberOf(target);
    return good;
  }

  bool is_busy() const override { return watch_.is_busy(); }

  using ExtensionStoreStatus::OnNotification;
  void OnNotification(const char* name, void* payload) override {
    const bool returned = std::strcmp(name, kExtensionStoreStatusRequestReturnedNotification) == 0;
    watch_.Watch([&] {
      if (!returned || has_transport_) watch_.NotePost();
      ExtensionStoreStatus::OnNotification(name, payload);
    });
    for (const auto& item : GetItemMapFromResponse()) {
      Check(item.first == asked_ || item.first == asked_blocking_,
            "a status has an item that it did not request");
    }
  }

 private:
  PostWatch watch_;
  ovrant_ustring asked_;
  ovrant_ustring asked_blocking_;
  bool has_transport_ = false;
};

}  // namespace

std::unique_ptr<SoakRequest> MakeRequest(Document kind) {
  switch (kind) {
    case Document::kUser:
      return std::make_unique<WatchedQuery<UserInfoQuery>>();
    case Document::kUpdate:
      return std::make_unique<WatchedQuery<UpdateQuery>>();
    default:
      return std::make_unique<WatchedStatus>();
  }
}

}  // namespace stowra_test
