// A request whose hooks record that they ran.

#ifndef TESTS_SUBSTITUTE_RECORDING_REQUEST_H_
#define TESTS_SUBSTITUTE_RECORDING_REQUEST_H_

#include <functional>
#include <string>

#include "common_stowraapi/platform/internet_data.h"
#include "common_stowraapi/platform/internet_data_delegate.h"
#include "common_stowraapi/request/web_service_request_base.h"
#include "tests/substitute/effects.h"

namespace stowra_substitute {

// Leaves the removal of its observer to its base. Call AddNotifications to observe.
class RecordingRequest : public ovrant::webservices::WebServiceRequestBase {
 public:
  RecordingRequest() {
    returned_message_ = 7;
    failed_message_ = 8;
    returned_notification_ = "Returned";
    failed_notification_ = "Failed";
  }

  bool ParseResponse(const ovrant::utils::ovrant_ustring& body) override {
    Record("ParseResponse '" + body.utf8() + "'");
    return accepts_body;
  }
  void OnSyncResponseSuccess() override { RunHook("OnSyncResponseSuccess"); }
  void OnSyncResponseFail() override { RunHook("OnSyncResponseFail"); }
  void OnAsyncResponseSuccess() override { RunHook("OnAsyncResponseSuccess"); }
  void OnAsyncResponseFail() override { RunHook("OnAsyncResponseFail"); }

  // The result of ParseResponse.
  bool accepts_body = true;

  // Runs at the end of each hook. May delete the request.
  std::function<void()> in_hook = [] {};

  using WebServiceRequestBase::context_;
  using WebServiceRequestBase::delegate_;
  using WebServiceRequestBase::failed_message_;
  using WebServiceRequestBase::failed_notification_;
  using WebServiceRequestBase::internet_data_;
  using WebServiceRequestBase::returned_message_;
  using WebServiceRequestBase::returned_notification_;
  using WebServiceRequestBase::url_;

 private:
  void RunHook(const char* name) {
    Record(name);
    const std::function<void()> last_act = in_hook;
    last_act();
  }
};

// A body that its transport has published.
inline std::string BodyOf(const ovrant::internet::InternetData& transport) {
  return std::string(reinterpret_cast<const char*>(transport.received_data()),
                     transport.received_data_length());
}

}  // namespace stowra_substitute

#endif  // TESTS_SUBSTITUTE_RECORDING_REQUEST_H_
