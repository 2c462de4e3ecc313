// SPDX-License-Identifier: MIT
// Listens for the ends of transfers.

#ifndef TESTS_PLATFORM_HTTP_END_LISTENER_H_
#define TESTS_PLATFORM_HTTP_END_LISTENER_H_

#include <mutex>
#include <string>

#include "common_stowraapi/platform/transfer_types.h"
#include "tests/faults/ask.h"

namespace stowra_test {

using ovrant::internet::TransferError;

// Takes the place of the transfer listener from construction to destruction.
class EndListener {
 public:
  EndListener();
  ~EndListener();

  EndListener(const EndListener&) = delete;
  EndListener& operator=(const EndListener&) = delete;

  // The last kEnded. An empty event of kind kStarted if there was none.
  ovrant::internet::TransferEvent last() const;

 private:
  mutable std::mutex mutex_;
  ovrant::internet::TransferEvent last_;
};

constexpr Way kAllWays[] = {
    Way::kDownload,    Way::kDownloadWithDelegate, Way::kDownloadTo, Way::kDownloadToWithDelegate,
    Way::kSendAndRead, Way::kUploadWithDelegate,   Way::kUploadFrom, Way::kUploadFromWithDelegate};

// Makes one transfer and returns why it failed. Expects that the event, LastError and the result
// agree.
TransferError ReasonOf(Way way, const std::string& url, const std::string& upload = "data");

// Make a blocking GET, or a POST of `data`, and return the answer with the reason of a failure.
inline Answer Get(const std::string& url) { return AskForReason(Way::kDownload, url, ""); }
inline Answer PostTo(const std::string& url, const std::string& data) {
  return AskForReason(Way::kSendAndRead, url, data);
}

}  // namespace stowra_test

#endif  // TESTS_PLATFORM_HTTP_END_LISTENER_H_
