// SPDX-License-Identifier: MIT
// Feeds whole server replies to the transport over socket pairs. The input is a byte of choices and
// the replies.
//
// A separator stands after each reply but the last. "<<NEXT>>" leaves the connection open,
// "<<SHUT>>" closes it. Redirects take the next reply, and a second transfer takes the rest. A good
// reply at the end must be received after all that.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "common_stowraapi/platform/internet_data.h"
#include "common_stowraapi/platform/ustring.h"
#include "fuzz/platform/http/fake_network.h"
#include "fuzz/platform/http/joined_fields.h"
#include "fuzz/platform/http/wire_model.h"
#include "fuzz/support/check.h"
#include "fuzz/support/input.h"
#include "tests/platform/http/internet_data_test_peer.h"

namespace {

using ovrant::internet::InternetData;
using ovrant::internet::InternetDataTestPeer;
using ovrant::utils::ovrant_ustring;
using ovrant::utils::StringMap;
using stowra_fuzz::FakeNetwork;
using stowra_fuzz::HttpOutcome;
using stowra_fuzz::ServerReply;

constexpr std::size_t kCap = std::size_t{64} << 10;
constexpr std::size_t kRedirectLimit = 20;
constexpr char kUrl[] = "http://127.0.0.1:1/";
constexpr char kNext[] = "<<NEXT>>";
constexpr char kShut[] = "<<SHUT>>";

struct Choices {
  bool is_upload;
  bool has_data;
  bool follows_redirects;
  bool closes_last;
  bool second_is_upload;
};

Choices ReadChoices(std::uint8_t bits) {
  return {(bits & 1) != 0, (bits & 2) != 0, (bits & 4) == 0, (bits & 8) == 0, (bits & 16) != 0};
}

// Empty replies are left out. libcurl repeats a request when a used connection closes without a
// reply.
std::vector<ServerReply> ReadReplies(std::string_view text, bool closes_last) {
  std::vector<ServerReply> replies;
  while (!text.empty()) {
    const std::size_t next = text.find(kNext);
    const std::size_t shut = text.find(kShut);
    const std::size_t end = std::min(next, shut);
    const bool closes = end == std::string_view::npos ? closes_last : shut < next;
    const std::string_view bytes = text.substr(0, end);
    if (!bytes.empty()) replies.push_back({std::string(bytes), closes});
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + sizeof(kNext) - 1);
  }
  return replies;
}

// Loading certificates would take most of the time.
bool MentionsTls(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = static_cast<char>(c | 0x20);
  return lower.find("https") != std::string::npos;
}

// libcurl repeats a request on a used connection also if it closes inside the first line.
bool MayBeRepeated(const std::vector<ServerReply>& replies, std::size_t index) {
  return index > 0 && replies[index].bytes.find('\n') == std::string::npos;
}

// The expected outcome of a request, by the server's replies from `first` on.
HttpOutcome Expect(const std::vector<ServerReply>& replies, std::size_t first,
                   bool follows_redirects) {
  for (std::size_t i = first; i < replies.size() && i <= first + kRedirectLimit; ++i) {
    if (MayBeRepeated(replies, i)) return {};
    HttpOutcome outcome = stowra_fuzz::ReadReply(replies[i].bytes, follows_redirects, kCap);
    if (outcome.kind != HttpOutcome::Kind::kRedirect) return outcome;
  }
  HttpOutcome failure;
  failure.kind = HttpOutcome::Kind::kFailed;
  return failure;
}

std::string BodyOf(const InternetData& transport) {
  const unsigned long length = transport.received_data_length();
  FUZZ_CHECK((transport.received_data() == nullptr) == (length == 0));
  return std::string(reinterpret_cast<const char*>(transport.received_data()), length);
}

bool Send(InternetData& transport) {
  unsigned char* data = nullptr;
  unsigned long length = 1;
  int status = -1;
  StringMap headers;
  const bool received = transport.SendAndRead(kUrl, &data, &length, &status, nullptr, false, false,
                                              true, "", "", &headers);
  FUZZ_CHECK(data == transport.received_data());
  FUZZ_CHECK(length == transport.received_data_length());
  FUZZ_CHECK(status == transport.status_code());
  FUZZ_CHECK(headers == transport.received_headers());
  return received;
}

// Checks what holds for every transfer. It took the replies from `first` to `end`.
void CheckAnyway(const InternetData& transport, bool received,
                 const std::vector<ServerReply>& replies, std::size_t first, std::size_t end) {
  if (!received) {
    FUZZ_CHECK(BodyOf(transport).empty());
    FUZZ_CHECK(transport.received_headers().empty());
    return;
  }
  FUZZ_CHECK(BodyOf(transport).size() <= kCap);
  FUZZ_CHECK(transport.status_code() >= 200 && transport.status_code() <= 999);
  FUZZ_CHECK(end > first && end <= replies.size());
  FUZZ_CHECK(stowra_fuzz::HasStatusLine(replies[end - 1].bytes, transport.status_code()));
}

void CheckOutcome(const InternetData& transport, bool received, const HttpOutcome& expected) {
  if (expected.kind == HttpOutcome::Kind::kUnclear) return;
  FUZZ_CHECK(received == (expected.kind == HttpOutcome::Kind::kReceived));
  if (!received) return;
  FUZZ_CHECK(transport.status_code() == expected.head.status);
  FUZZ_CHECK(BodyOf(transport) == expected.body);
  stowra_fuzz::CheckFields(expected.head.fields, transport.received_headers());
}

void Transfer(InternetData& transport, bool is_upload, const Choices& choices,
              const std::vector<ServerReply>& replies, const FakeNetwork& network) {
  const std::size_t first = network.sent();
  const bool received = is_upload ? Send(transport) : transport.Download();
  CheckAnyway(transport, received, replies, first, network.sent());
  CheckOutcome(transport, received, Expect(replies, first, choices.follows_redirects));
}

void TransferGood() {
  const std::vector<ServerReply> replies = {
      {"HTTP/1.1 200 OK\r\nContent-Length: 5\r\nConnection: close\r\n\r\nhello", false}};
  const FakeNetwork network(replies);
  InternetData transport(kUrl);
  FUZZ_CHECK(transport.Download());
  FUZZ_CHECK(transport.status_code() == 200);
  FUZZ_CHECK(BodyOf(transport) == "hello");
  FUZZ_CHECK(transport.received_headers().size() == 2);
}

// Makes each input independent of the environment.
void SetUp() {
  setenv("no_proxy", "*", 1);
  ovrant::internet::TransferDefaults defaults;
  defaults.body_cap = kCap;
  defaults.inactivity_timeout = 60;
  InternetData::SetDefaults(defaults);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  stowra_fuzz::Input input(data, size);
  const Choices choices = ReadChoices(input.Byte());
  const std::string_view text = input.Rest();
  if (MentionsTls(text)) return 0;
  SetUp();
  {
    const std::vector<ServerReply> replies = ReadReplies(text, choices.closes_last);
    const FakeNetwork network(replies);
    InternetData transport(kUrl);
    if (!choices.follows_redirects) InternetDataTestPeer::StopFollowingRedirects(transport);
    if (choices.has_data) {
      transport.set_send_data(reinterpret_cast<const unsigned char*>("some data"), 9);
    }
    Transfer(transport, choices.is_upload, choices, replies, network);
    if (network.sent() < replies.size()) {
      Transfer(transport, choices.second_is_upload, choices, replies, network);
    }
    FUZZ_CHECK(!network.has_waited());
  }
  TransferGood();
  return 0;
}
