// SPDX-License-Identifier: MIT
#include "tests/faults/ask.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <memory>

#include "tests/platform/http/transport_fixture.h"

namespace stowra_test {
namespace {

using ovrant::internet::TransferError;

const char* NameOf(TransferError error) {
  constexpr std::array<const char*, 14> kNames = {
      "kNone",     "kBadUrl",     "kNameNotFound",     "kNotConnected",
      "kTls",      "kSilent",     "kCutOff",           "kMalformed",
      "kTooLarge", "kEncoding",   "kTooManyRedirects", "kForbiddenRedirect",
      "kDropped",  "kOutOfMemory"};
  return kNames.at(static_cast<std::size_t>(error));
}

// Holds the reason with which the last transfer ended.
class ReasonListener {
 public:
  ReasonListener() {
    InternetData::SetTransferListener([reason = reason_](const TransferEvent& event) {
      if (event.kind == TransferEvent::Kind::kEnded) *reason = event.reason;
    });
  }
  ~ReasonListener() { InternetData::SetTransferListener(nullptr); }

  ReasonListener(const ReasonListener&) = delete;
  ReasonListener& operator=(const ReasonListener&) = delete;

  TransferError reason() const { return *reason_; }

 private:
  const std::shared_ptr<std::atomic<TransferError>> reason_ =
      std::make_shared<std::atomic<TransferError>>(TransferError::kNone);
};

Answer AnswerIn(const InternetData& transport, bool received) {
  if (!received) ExpectFailureState(transport, transport.status_code());
  return {received, transport.status_code(), BodyOf(transport)};
}

Answer AskByDownload(const std::string& url) {
  InternetData transport((Text(url)));
  const bool received = transport.Download();
  return AnswerIn(transport, received);
}

Answer AskBySendAndRead(const std::string& url, const std::string& upload) {
  InternetData transport(Text("none:"));
  SetSendData(upload, transport);
  unsigned char* data = nullptr;
  unsigned long length = 1;
  int status = -1;
  StringMap headers;
  const bool received = transport.SendAndRead(Text(url), &data, &length, &status, nullptr, false,
                                              false, true, "", "", &headers);
  EXPECT_EQ(data, transport.received_data());
  EXPECT_EQ(length, transport.received_data_length());
  EXPECT_EQ(status, transport.status_code());
  EXPECT_EQ(headers, transport.received_headers());
  return AnswerIn(transport, received);
}

// `upload` is null for a download.
Answer AskInBackground(const std::string& url, const std::string* upload) {
  Background background(url);
  InternetData& transport = *background.transport;
  if (upload == nullptr) {
    EXPECT_TRUE(background.Start());
  } else {
    SetSendData(*upload, transport);
    EXPECT_TRUE(transport.UploadWithDelegate(background.delegate.get(), nullptr));
  }
  const std::string posted = background.WaitForEnd();
  EXPECT_TRUE(posted == kReturned || posted == kFailed) << posted;
  EXPECT_EQ(background.recorder.entries().size(), 1U);
  return AnswerIn(transport, posted == kReturned);
}

}  // namespace

const char* NameOf(Way way) {
  switch (way) {
    case Way::kDownload:
      return "Download";
    case Way::kDownloadWithDelegate:
      return "DownloadWithDelegate";
    case Way::kSendAndRead:
      return "SendAndRead";
    case Way::kUploadWithDelegate:
      return "UploadWithDelegate";
  }
  return "";
}

std::string TextOf(const Answer& answer) {
  if (!answer.received) {
    return std::string(NameOf(answer.error)) + ", status " + std::to_string(answer.status);
  }
  return "received " + std::to_string(answer.status) + ", " + std::to_string(answer.body.size()) +
         " bytes";
}

void PrintTo(const Answer& answer, std::ostream* out) { *out << TextOf(answer); }

Answer Ask(Way way, const std::string& url, const std::string& upload) {
  switch (way) {
    case Way::kDownload:
      return AskByDownload(url);
    case Way::kDownloadWithDelegate:
      return AskInBackground(url, nullptr);
    case Way::kSendAndRead:
      return AskBySendAndRead(url, upload);
    case Way::kUploadWithDelegate:
      return AskInBackground(url, &upload);
  }
  return {};
}

Answer AskForReason(Way way, const std::string& url, const std::string& upload) {
  const ReasonListener listener;
  Answer answer = Ask(way, url, upload);
  answer.error = listener.reason();
  const bool is_blocking = way == Way::kDownload || way == Way::kSendAndRead;
  EXPECT_TRUE(!is_blocking || InternetData::LastError() == answer.error);
  return answer;
}

}  // namespace stowra_test
