// SPDX-License-Identifier: MIT
#include "tests/platform/http/end_listener.h"

#include <gtest/gtest.h>

#include "common_stowraapi/platform/internet_data.h"

namespace stowra_test {

using ovrant::internet::InternetData;
using ovrant::internet::TransferEvent;

EndListener::EndListener() {
  InternetData::SetTransferListener([this](const TransferEvent& event) {
    if (event.kind != TransferEvent::Kind::kEnded) return;
    const std::lock_guard<std::mutex> lock(mutex_);
    last_ = event;
  });
}

EndListener::~EndListener() { InternetData::SetTransferListener(nullptr); }

TransferEvent EndListener::last() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return last_;
}

TransferError ReasonOf(Way way, const std::string& url, const std::string& upload) {
  const EndListener listener;
  const Answer answer = Ask(way, url, upload);
  const TransferEvent end = listener.last();
  EXPECT_EQ(end.kind, TransferEvent::Kind::kEnded);
  EXPECT_EQ(end.reason == TransferError::kNone, answer.received);
  EXPECT_EQ(end.error.empty(), answer.received);
  EXPECT_EQ(end.status, answer.status);
  EXPECT_TRUE(!IsBlocking(way) || InternetData::LastError() == end.reason);
  return end.reason;
}

}  // namespace stowra_test
