// SPDX-License-Identifier: MIT
#include "emulator/fault.h"

#include <zlib.h>

#include <array>
#include <cstring>
#include <nlohmann/json.hpp>

#include "emulator/gzip_bomb.h"
#include "tests/emulator/http_client.h"

namespace stowra_emulator {
namespace {

TEST(ParseFaultTest, ReadsArguments) {
  EXPECT_EQ(ParseFault("status:100")->status, 100);
  EXPECT_EQ(ParseFault("status:599")->status, 599);
  EXPECT_EQ(ParseFault("stall:0")->pause, milliseconds(0));
  EXPECT_EQ(ParseFault("stall:3600")->pause, milliseconds(3600000));
  EXPECT_EQ(ParseFault("stall:1.5")->pause, milliseconds(1500));
  EXPECT_EQ(ParseFault("stall:0.05")->pause, milliseconds(50));
  EXPECT_EQ(ParseFault("drip")->pause, milliseconds(20));
  EXPECT_EQ(ParseFault("drip:7")->pause, milliseconds(7));
  EXPECT_EQ(ParseFault("drip:60000")->pause, milliseconds(60000));
  EXPECT_EQ(ParseFault("redirect-loop")->kind, Fault::Kind::kRedirectLoop);
}

TEST(ParseFaultTest, RefusesUnknownNamesAndBadArguments) {
  for (const char* text :
       {"",           "bogus",      "Status:503",  "status",     "status:",      "status:99",
        "status:600", "status:+50", "status:0503", "status:5x3", "stall",        "stall:",
        "stall:-1",   "stall:-0.5", "stall:1.",    "stall:.5",   "stall:1.2345", "stall:3601",
        "stall:1.-5", "stall:1s",   "drip:",       "drip:-1",    "drip:60001",   "drip:1.5",
        "truncate:1", "truncate:",  "bomb:2",      " bomb",      "reset ",       ":"}) {
    EXPECT_FALSE(ParseFault(text)) << text;
  }
}

class FaultTest : public ClientTest {
 protected:
  RawResponse Raw(const std::string& target) { return RawGet(emulator_.port(), target); }
};

TEST_F(FaultTest, RefusesUnknownFaultAndListsTheKnownOnes) {
  const std::string error = GetError("/user-info?fault=bogus", 400);
  for (const FaultDescription& fault : Faults()) EXPECT_THAT(error, HasSubstr(fault.usage));
  Get("/user-info?fault=", 400);
}

TEST_F(FaultTest, StatusAnswersWithAnyStatus) {
  for (const int status : {200, 201, 299, 302, 400, 404, 418, 500, 503, 599}) {
    EXPECT_NE(GetError("/user-info?fault=status:" + std::to_string(status), status), "");
  }
}

TEST_F(FaultTest, StatusWithoutBodySendsNone) {
  for (const int status : {204, 304}) {
    const RawResponse response = Raw("/user-info?fault=status:" + std::to_string(status));
    EXPECT_EQ(response.status(), status);
    EXPECT_EQ(response.body, "");
  }
}

TEST_F(FaultTest, InterimStatusEndsTheConnection) {
  RawClient client(emulator_.port());
  client.Send(GetRequest("/user-info?fault=status:102"));
  const RawResponse response = SplitResponse(client.ReadToEnd());
  EXPECT_EQ(response.status(), 102);
  EXPECT_EQ(response.body, "");
}

TEST_F(FaultTest, StallWaitsBeforeTheFirstByte) {
  const RawResponse ordinary = Raw("/user-info");
  RawClient client(emulator_.port());
  std::string first;
  const auto time = TimeOf([&] {
    client.Send(GetRequest("/user-info?fault=stall:0.3"));
    first = client.Read(1);
  });
  EXPECT_GE(time, milliseconds(300));
  const RawResponse response = ReadResponse(client);
  EXPECT_EQ(first + response.head.substr(0, 14), "HTTP/1.1 200 OK");
  EXPECT_EQ(response.body, ordinary.body);
}

TEST_F(FaultTest, StallBlocksNoOtherRequest) {
  std::vector<RawClient> stalled;
  for (int i = 0; i < 40; ++i) {
    stalled.emplace_back(emulator_.port()).Send(GetRequest("/user-info?fault=stall:600"));
  }
  Get("/user-info");
}

TEST_F(FaultTest, TruncateAndResetSendHalfOfTheBody) {
  const RawResponse ordinary = Raw("/user-info");
  for (const char* fault : {"truncate", "reset"}) {
    SCOPED_TRACE(fault);
    RawClient client(emulator_.port());
    client.Send(GetRequest(std::string("/user-info?fault=") + fault));
    const RawResponse response = SplitResponse(client.ReadToEnd());
    EXPECT_EQ(client.was_reset(), fault == std::string("reset"));
    EXPECT_EQ(response.Header("Content-Length"), std::to_string(ordinary.body.size()));
    EXPECT_EQ(response.body, ordinary.body.substr(0, ordinary.body.size() / 2));
    EXPECT_NE(response.body, "");
  }
}

TEST_F(FaultTest, DripSendsTheBodyByteByByte) {
  const RawResponse ordinary = Raw("/user-info");
  RawClient client(emulator_.port());
  RawResponse response;
  const auto time = TimeOf([&] { response = client.Get("/user-info?fault=drip:4"); });
  EXPECT_GE(time, milliseconds(4) * (ordinary.body.size() - 1));
  EXPECT_EQ(response.status(), 200);
  EXPECT_EQ(response.Header("Content-Length"), std::to_string(ordinary.body.size()));
  EXPECT_EQ(response.body, ordinary.body);
}

TEST_F(FaultTest, FaultsWithWholeResponseKeepTheConnection) {
  RawClient client(emulator_.port());
  for (const char* fault : {"drip:0", "stall:0", "status:503", "garbage"}) {
    const RawResponse response = client.Get(std::string("/user-info?fault=") + fault);
    EXPECT_THAT(response.head, StartsWith("HTTP/1.1 ")) << fault;
  }
  EXPECT_EQ(client.Get("/user-info").status(), 200);
}

TEST_F(FaultTest, BombIsSmallBeforeItInflates) {
  RawClient client(emulator_.port());
  const RawResponse response =
      client.Ask("GET /user-info?fault=bomb HTTP/1.1\r\nAccept-Encoding: gzip\r\n\r\n");
  EXPECT_EQ(response.status(), 200);
  EXPECT_EQ(response.Header("Content-Encoding"), "gzip");
  EXPECT_EQ(response.Header("Content-Length"), std::to_string(response.body.size()));
  EXPECT_GT(response.body.size(), 100u << 10);
  EXPECT_LT(response.body.size(), 1100u << 10);
  EXPECT_EQ(response.body, GzipBomb());
}

TEST(GzipBombTest, InflatesToOneGibibyteOfSpaces) {
  const std::string& bomb = GzipBomb();
  z_stream stream = {};
  ASSERT_EQ(inflateInit2(&stream, MAX_WBITS + 16), Z_OK);
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bomb.data()));
  stream.avail_in = static_cast<uInt>(bomb.size());
  static std::array<Bytef, 1 << 20> output;
  const std::string spaces(output.size(), ' ');
  int result = Z_OK;
  bool all_spaces = true;
  while (result == Z_OK && all_spaces) {
    stream.next_out = output.data();
    stream.avail_out = static_cast<uInt>(output.size());
    result = inflate(&stream, Z_NO_FLUSH);
    all_spaces = std::memcmp(output.data(), spaces.data(), output.size() - stream.avail_out) == 0;
  }
  // zlib reports the end only if the checksum and the size in the trailer match.
  EXPECT_EQ(result, Z_STREAM_END);
  EXPECT_TRUE(all_spaces);
  EXPECT_EQ(stream.total_out, 1u << 30);
  EXPECT_EQ(stream.avail_in, 0u);
  inflateEnd(&stream);
}

TEST_F(FaultTest, GarbageHasStatus200AndIsNotJson) {
  const std::string body = Get("/user-info?fault=garbage").body;
  EXPECT_NE(body, "");
  EXPECT_FALSE(nlohmann::json::accept(body));
}

TEST_F(FaultTest, RedirectLoopLeadsBackToTheSameAddress) {
  const std::string target = "/user-info?user=u-1002&fault=redirect-loop";
  EXPECT_EQ(Get(target, 302).Header("Location"), target);
  client_.set_follow_location(true);
  const httplib::Result followed = client_.Get(target);
  ASSERT_FALSE(followed);
  EXPECT_EQ(followed.error(), httplib::Error::ExceedRedirectCount);
}

TEST_F(FaultTest, EveryRouteTakesFaults) {
  for (const std::string route :
       {"/?", "/update?", "/user-info?", "/search?q=chair&", "/search.html?", "/thumbnail?mid=c-1&",
        "/download?mid=m-1001&rtyp=k2&"}) {
    Get(route + "fault=status:503", 503);
    Get(route + "fault=drip:0");
    EXPECT_FALSE(client_.Get(route + "fault=truncate")) << route;
    EXPECT_FALSE(client_.Get(route + "fault=reset")) << route;
  }
  EXPECT_THAT(GetFeed("/search?fault=drip:0").Link("next"), Not(HasSubstr("fault")));
  ResponseOf(client_.Post("/extensions?fault=status:503", kExtensions, "application/json"), 503);
  EXPECT_FALSE(client_.Post("/extensions?fault=truncate", kExtensions, "application/json"));
}

}  // namespace
}  // namespace stowra_emulator
