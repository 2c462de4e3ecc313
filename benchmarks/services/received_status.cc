// SPDX-License-Identifier: MIT
#include "benchmarks/services/received_status.h"

#include <cstring>
#include <future>
#include <stdexcept>

#include "benchmarks/support/one_reply_server.h"
#include "common_stowraapi/platform/notification_center.h"
#include "common_stowraapi/platform/observer.h"

namespace stowra_bench {
namespace {

// Waits for the end of one background request.
class Outcome : public ovrant::IObserver {
 public:
  Outcome() {
    CNotificationCenter::Default()->AddObserver(kExtensionStoreAsynchStatusSucceededNotification,
                                                this);
    CNotificationCenter::Default()->AddObserver(kExtensionStoreAsynchStatusFailedNotification,
                                                this);
  }
  ~Outcome() override { CNotificationCenter::Default()->RemoveObserver(this); }

  Outcome(const Outcome&) = delete;
  Outcome& operator=(const Outcome&) = delete;

  void OnNotification(const char* name, void* /*payload*/) override {
    succeeded_.set_value(std::strcmp(name, kExtensionStoreAsynchStatusSucceededNotification) == 0);
  }
  using IObserver::OnNotification;

  bool Wait() { return succeeded_.get_future().get(); }

 private:
  std::promise<bool> succeeded_;
};

}  // namespace

ReceivedStatus::ReceivedStatus(const std::string& body) {
  OneReplyServer server(body);
  Outcome outcome;
  status_.Init(server.Url().c_str(), nullptr, "{}");
  status_.AsynchronousStatus();
  if (!outcome.Wait()) throw std::runtime_error("the extension status did not arrive");
  // Otherwise this object would react to the end of another object's request.
  status_.RemoveNotifications();
}

}  // namespace stowra_bench
