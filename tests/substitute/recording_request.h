// SPDX-License-Identifier: MIT
// A request whose hooks record that they ran.

#ifndef TESTS_SUBSTITUTE_RECORDING_REQUEST_H_
#define TESTS_SUBSTITUTE_RECORDING_REQUEST_H_

#include <functional>
#include <string>
#include <vector>

#include "common_stowraapi/platform/internet_data.h"
#include "common_stowraapi/platform/internet_data_delegate.h"
#include "common_stowraapi/request/web_service_request_base.h"
#include "tests/substitute/effects.h"
#include "tests/substitute/transport.h"

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

// The end of a transfer, and what the request does then.
struct End {
  Outcome outcome;
  bool accepts_body;
  std::string parsing;  // the effect of parsing; empty: nothing is parsed
  bool succeeds;
};

inline std::vector<End> AllEnds() {
  // No terminator follows the bytes, and a NUL does not end them.
  const std::string utf8("\xC3\xA9\0\xF0\x9F\x98\x80!", 8);
  std::vector<End> ends = {{Reply(200, "body"), true, "ParseResponse 'body' | ", true},
                           {Reply(200, "body"), false, "ParseResponse 'body' | ", false},
                           {Reply(200, ""), true, "ParseResponse '' | ", true},
                           {Reply(200, utf8), true, "ParseResponse '" + utf8 + "' | ", true}};
  for (const int status : {-200, 0, 100, 199, 201, 202, 204, 206, 299, 302, 304, 404, 500}) {
    ends.push_back({Reply(status, "body"), true, "", false});
  }
  for (const int status : {0, 200, 503}) {
    ends.push_back({Outcome{false, status, "body", {}}, true, "", false});
  }
  ends.push_back(ends.front());  // a request succeeds after a failure, too
  return ends;
}

}  // namespace stowra_substitute

#endif  // TESTS_SUBSTITUTE_RECORDING_REQUEST_H_
