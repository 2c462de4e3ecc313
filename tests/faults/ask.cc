// SPDX-License-Identifier: MIT
#include "tests/faults/ask.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <memory>

#include "common_stowraapi/platform/body_sink.h"
#include "common_stowraapi/platform/memory_source.h"
#include "tests/platform/http/transport_fixture.h"

namespace stowra_test {
namespace {

using ovrant::internet::BodySink;
using ovrant::internet::MemorySource;
using ovrant::internet::TransferError;

const char* NameOf(TransferError error) {
  constexpr std::array<const char*, 15> kNames = {"kNone",
                                                  "kBadUrl",
                                                  "kNameNotFound",
                                                  "kNotConnected",
                                                  "kTls",
                                                  "kSilent",
                                                  "kCutOff",
                                                  "kMalformed",
                                                  "kTooLarge",
                                                  "kEncoding",
                                                  "kTooManyRedirects",
                                                  "kForbiddenRedirect",
                                                  "kDropped",
                                                  "kOutOfMemory",
                                                  "kBody"};
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

// Takes the body of any reply.
class TakingSink final : public BodySink {
 public:
  Choice Begin(int /*status*/, const StringMap& /*headers*/) override { return Choice::kTake; }
  bool Write(const unsigned char* data, std::size_t size) override {
    bytes.append(reinterpret_cast<const char*>(data), size);
    return true;
  }
  std::string bytes;
};

Answer AnswerOf(const TakingSink& sink, Answer answer) {
  EXPECT_EQ(answer.body, "");
  if (answer.received) answer.body = sink.bytes;
  return answer;
}

Answer AskByDownloadTo(const std::string& url) {
  InternetData transport((Text(url)));
  TakingSink sink;
  const bool received = transport.DownloadTo(sink);
  return AnswerOf(sink, AnswerIn(transport, received));
}

Answer AskByUploadFrom(const std::string& url, const std::string& upload) {
  InternetData transport((Text(url)));
  MemorySource source(upload);
  const bool received = transport.UploadFrom(source);
  return AnswerIn(transport, received);
}

bool Start(Way way, const std::string& upload, const std::shared_ptr<TakingSink>& sink,
           Background& background) {
  InternetData& transport = *background.transport;
  InternetDataDelegate* const delegate = background.delegate.get();
  switch (way) {
    case Way::kDownloadToWithDelegate:
      return transport.DownloadToWithDelegate(sink, delegate, nullptr);
    case Way::kUploadWithDelegate:
      return background.StartUpload(upload);
    case Way::kUploadFromWithDelegate:
      return transport.UploadFromWithDelegate(std::make_shared<MemorySource>(upload), delegate,
                                              nullptr);
    default:
      return background.Start();
  }
}

Answer AskInBackground(Way way, const std::string& url, const std::string& upload) {
  Background background(url);
  InternetData& transport = *background.transport;
  const auto sink = std::make_shared<TakingSink>();
  EXPECT_TRUE(Start(way, upload, sink, background));
  const std::string posted = background.WaitForEnd();
  EXPECT_TRUE(posted == kReturned || posted == kFailed) << posted;
  EXPECT_EQ(background.recorder.entries().size(), 1U);
  const Answer answer = AnswerIn(transport, posted == kReturned);
  return way == Way::kDownloadToWithDelegate ? AnswerOf(*sink, answer) : answer;
}

}  // namespace

const char* NameOf(Way way) {
  switch (way) {
    case Way::kDownload:
      return "Download";
    case Way::kDownloadWithDelegate:
      return "DownloadWithDelegate";
    case Way::kDownloadTo:
      return "DownloadTo";
    case Way::kDownloadToWithDelegate:
      return "DownloadToWithDelegate";
    case Way::kSendAndRead:
      return "SendAndRead";
    case Way::kUploadWithDelegate:
      return "UploadWithDelegate";
    case Way::kUploadFrom:
      return "UploadFrom";
    case Way::kUploadFromWithDelegate:
      return "UploadFromWithDelegate";
  }
  return "";
}

bool IsBlocking(Way way) {
  return way == Way::kDownload || way == Way::kDownloadTo || way == Way::kSendAndRead ||
         way == Way::kUploadFrom;
}

bool IsUpload(Way way) {
  return way == Way::kSendAndRead || way == Way::kUploadWithDelegate || way == Way::kUploadFrom ||
         way == Way::kUploadFromWithDelegate;
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
    case Way::kDownloadTo:
      return AskByDownloadTo(url);
    case Way::kSendAndRead:
      return AskBySendAndRead(url, upload);
    case Way::kUploadFrom:
      return AskByUploadFrom(url, upload);
    default:
      return AskInBackground(way, url, upload);
  }
}

Answer AskForReason(Way way, const std::string& url, const std::string& upload) {
  const ReasonListener listener;
  Answer answer = Ask(way, url, upload);
  answer.error = listener.reason();
  EXPECT_TRUE(!IsBlocking(way) || InternetData::LastError() == answer.error);
  return answer;
}

}  // namespace stowra_test
