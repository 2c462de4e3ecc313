// SPDX-License-Identifier: MIT
#include "tests/faults/ask.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>

#include "common_stowraapi/platform/body_sink.h"
#include "common_stowraapi/platform/memory_source.h"
#include "tests/platform/http/end_listener.h"
#include "tests/platform/http/transport_fixture.h"

namespace stowra_test {
namespace {

using ovrant::internet::BodySink;
using ovrant::internet::MemorySource;

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

struct Traits {
  const char* name;
  bool is_blocking;
  bool is_upload;
};

const Traits& TraitsOf(Way way) {
  static constexpr std::array<Traits, 8> kTraits = {{{"Download", true, false},
                                                     {"DownloadWithDelegate", false, false},
                                                     {"DownloadTo", true, false},
                                                     {"DownloadToWithDelegate", false, false},
                                                     {"SendAndRead", true, true},
                                                     {"UploadWithDelegate", false, true},
                                                     {"UploadFrom", true, true},
                                                     {"UploadFromWithDelegate", false, true}}};
  return kTraits.at(static_cast<std::size_t>(way));
}

Answer AnswerIn(const InternetData& transport, bool received) {
  if (!received) ExpectFailureState(transport, transport.status_code());
  return {received, transport.status_code(), BodyOf(transport)};
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
  return AnswerOf(sink, AnswerIn(transport, transport.DownloadTo(sink)));
}

bool Start(Way way, const std::string& upload, const std::shared_ptr<TakingSink>& sink,
           Background& background) {
  InternetData& transport = *background.transport;
  InternetDataDelegate* const delegate = background.delegate.get();
  if (way == Way::kDownloadToWithDelegate) {
    return transport.DownloadToWithDelegate(sink, delegate, nullptr);
  }
  if (way == Way::kUploadFromWithDelegate) {
    const auto source = std::make_shared<MemorySource>(upload);
    return transport.UploadFromWithDelegate(source, delegate, nullptr);
  }
  return IsUpload(way) ? background.StartUpload(upload) : background.Start();
}

Answer AskInBackground(Way way, const std::string& url, const std::string& upload) {
  Background background(url);
  const auto sink = std::make_shared<TakingSink>();
  EXPECT_TRUE(Start(way, upload, sink, background));
  const std::string posted = background.WaitForEnd();
  EXPECT_TRUE(posted == kReturned || posted == kFailed) << posted;
  EXPECT_EQ(background.recorder.entries().size(), 1U);
  const Answer answer = AnswerIn(*background.transport, posted == kReturned);
  return way == Way::kDownloadToWithDelegate ? AnswerOf(*sink, answer) : answer;
}

}  // namespace

const char* NameOf(Way way) { return TraitsOf(way).name; }
bool IsBlocking(Way way) { return TraitsOf(way).is_blocking; }
bool IsUpload(Way way) { return TraitsOf(way).is_upload; }

std::string TextOf(const Answer& answer) {
  if (!answer.received) {
    return std::string(NameOf(answer.error)) + ", status " + std::to_string(answer.status);
  }
  return "received " + std::to_string(answer.status) + ", " + std::to_string(answer.body.size()) +
         " bytes";
}

void PrintTo(const Answer& answer, std::ostream* out) { *out << TextOf(answer); }

Answer Ask(Way way, const std::string& url, const std::string& upload) {
  if (!IsBlocking(way)) return AskInBackground(way, url, upload);
  if (way == Way::kDownloadTo) return AskByDownloadTo(url);
  if (way == Way::kSendAndRead) return AskBySendAndRead(url, upload);
  InternetData transport((Text(url)));
  if (way == Way::kDownload) return AnswerIn(transport, transport.Download());
  MemorySource source(upload);
  return AnswerIn(transport, transport.UploadFrom(source));
}

Answer AskForReason(Way way, const std::string& url, const std::string& upload) {
  const EndListener listener;
  Answer answer = Ask(way, url, upload);
  const TransferEvent end = listener.last();
  EXPECT_EQ(end.kind, TransferEvent::Kind::kEnded);
  EXPECT_EQ(end.reason == TransferError::kNone, answer.received);
  EXPECT_EQ(end.error.empty(), answer.received);
  EXPECT_EQ(end.status, answer.status);
  EXPECT_TRUE(!IsBlocking(way) || InternetData::LastError() == end.reason);
  answer.error = end.reason;
  return answer;
}

}  // namespace stowra_test
