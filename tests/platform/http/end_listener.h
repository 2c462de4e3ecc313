// SPDX-License-Identifier: MIT
// Listens for the ends of transfers.

#ifndef TESTS_PLATFORM_HTTP_END_LISTENER_H_
#define TESTS_PLATFORM_HTTP_END_LISTENER_H_

#include <mutex>
#include <string>

#include "tests/faults/ask.h"
#include "tests/platform/http/transport_fixture.h"

namespace stowra_test {

using ovrant::internet::TransferError;

// Holds the last kEnded. Takes the place of the transfer listener from construction to destruction.
class EndListener {
 public:
  EndListener() {
    InternetData::SetTransferListener([this](const TransferEvent& event) {
      if (event.kind != TransferEvent::Kind::kEnded) return;
      const std::lock_guard<std::mutex> lock(mutex_);
      last_ = event;
    });
  }
  ~EndListener() { InternetData::SetTransferListener(nullptr); }

  EndListener(const EndListener&) = delete;
  EndListener& operator=(const EndListener&) = delete;

  // An empty event of kind kStarted if there was none.
  TransferEvent last() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return last_;
  }

 private:
  mutable std::mutex mutex_;
  TransferEvent last_;
};

constexpr Way kAllWays[] = {
    Way::kDownload,    Way::kDownloadWithDelegate, Way::kDownloadTo, Way::kDownloadToWithDelegate,
    Way::kSendAndRead, Way::kUploadWithDelegate,   Way::kUploadFrom, Way::kUploadFromWithDelegate};

// Makes one transfer and returns why it failed.
inline TransferError ReasonOf(Way way, const std::string& url, const std::string& upload = "data") {
  return AskForReason(way, url, upload).error;
}

// Make a blocking GET, or a POST of `data`, and return the answer with the reason of a failure.
inline Answer Get(const std::string& url) { return AskForReason(Way::kDownload, url, ""); }
inline Answer PostTo(const std::string& url, const std::string& data) {
  return AskForReason(Way::kSendAndRead, url, data);
}

}  // namespace stowra_test

#endif  // TESTS_PLATFORM_HTTP_END_LISTENER_H_
