// SPDX-License-Identifier: MIT
#include "host/waterfall.h"

#include "host/waterfall_text.h"
#include "tests/host/host_test.h"

namespace stowra_test {
namespace {

using ovrant::internet::TransferError;
using ovrant::internet::TransferEvent;
using stowra::Phase;
using stowra::RequestRow;
using stowra::ToSvg;
using stowra::ToText;
using stowra::TraceRecord;
using stowra::Waterfall;
using Kind = TransferEvent::Kind;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

TraceRecord Record(double time, Kind kind, unsigned long transfer = 1) {
  TraceRecord record;
  record.time = time;
  record.event.kind = kind;
  record.event.number = transfer;
  record.event.request_method = "GET";
  record.event.request_url = "http://a/b";
  record.event.status = 200;
  return record;
}

std::string TextOf(const RequestRow& row) {
  std::string text = row.method + " " + row.url + " " + row.result;
  for (const auto& bar : row.bars) {
    text += std::string(" ") + NameOf(bar.phase) + " " + std::to_string(bar.begin).substr(0, 4) +
            "-" + std::to_string(bar.end).substr(0, 4);
  }
  return text;
}

// A request that takes ten seconds, and each phase of it.
Waterfall OneRequest() {
  Waterfall waterfall;
  waterfall.Add(Record(0, Kind::kQueued));
  waterfall.Add(Record(1, Kind::kStarted));
  TraceRecord connected = Record(5, Kind::kConnected);
  connected.event.times.name = 1;
  connected.event.times.connect = 2;
  connected.event.times.tls = 1;
  waterfall.Add(connected);
  waterfall.Add(Record(8, Kind::kFirstByte));
  waterfall.Add(Record(10, Kind::kEnded));
  return waterfall;
}

TEST(WaterfallTest, ShowsThePhasesOfARequest) {
  const auto rows = OneRequest().Rows();
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_EQ(TextOf(rows[0]),
            "GET http://a/b 200 queued 0.00-1.00 name 1.00-2.00 connect 2.00-4.00 TLS 4.00-5.00 "
            "waiting 5.00-8.00 receiving 8.00-10.0");
}

TEST(WaterfallTest, RedirectIsAnotherRequest) {
  Waterfall waterfall;
  waterfall.Add(Record(0, Kind::kStarted));
  TraceRecord connected = Record(1, Kind::kConnected);
  connected.event.times.connect = 1;
  waterfall.Add(connected);
  TraceRecord redirected = Record(2, Kind::kRedirected);
  redirected.event.status = 302;
  redirected.event.times.connect = 1;
  redirected.event.redirect_url = "http://c/";
  waterfall.Add(redirected);
  TraceRecord again = Record(3, Kind::kConnected);
  again.event.times.connect = 1;
  again.event.times.name = 0.5;
  again.event.is_reused = true;
  waterfall.Add(again);
  waterfall.Add(Record(4, Kind::kEnded));
  const auto rows = waterfall.Rows();
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_EQ(TextOf(rows[0]), "GET http://a/b 302 connect 0.00-1.00 waiting 1.00-2.00");
  EXPECT_EQ(TextOf(rows[1]), "GET http://c/ 200 waiting 3.00-4.00");
  EXPECT_TRUE(rows[1].is_reused);
}

TEST(WaterfallTest, AskingAgainIsAnotherRequest) {
  Waterfall waterfall;
  waterfall.Add(Record(0, Kind::kStarted));
  waterfall.Add(Record(1, Kind::kConnected));
  waterfall.Add(Record(2, Kind::kFirstByte));
  TraceRecord response = Record(2, Kind::kResponse);
  response.event.status = 416;
  waterfall.Add(response);
  waterfall.Add(Record(3, Kind::kConnected));
  waterfall.Add(Record(4, Kind::kEnded));
  const auto rows = waterfall.Rows();
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_EQ(TextOf(rows[0]), "GET http://a/b 416 waiting 1.00-2.00 receiving 2.00-3.00");
  EXPECT_EQ(TextOf(rows[1]), "GET http://a/b 200 waiting 3.00-4.00");
}

TEST(WaterfallTest, FailureEndsThePhaseThatRuns) {
  Waterfall waterfall;
  waterfall.Add(Record(0, Kind::kStarted));
  TraceRecord ended = Record(2, Kind::kEnded);
  ended.event.times.name = 1;
  ended.event.reason = TransferError::kNotConnected;
  waterfall.Add(ended);
  const auto rows = waterfall.Rows();
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_TRUE(rows[0].has_failed);
  EXPECT_EQ(TextOf(rows[0]), "GET http://a/b not-connected name 0.00-1.00 connect 1.00-2.00");
}

TEST(WaterfallTest, RequestWithoutEndIsUnfinished) {
  Waterfall waterfall;
  waterfall.Add(Record(0, Kind::kStarted, 1));
  waterfall.Add(Record(1, Kind::kConnected, 1));
  waterfall.Add(Record(3, Kind::kStarted, 2));
  const auto rows = waterfall.Rows();
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_EQ(rows[0].result, "unfinished");
  EXPECT_EQ(rows[0].end, 3);
}

TEST(WaterfallTest, StepsOfAnUnknownTransferAreLeftOut) {
  Waterfall waterfall;
  for (const Kind kind : {Kind::kConnected, Kind::kFirstByte, Kind::kEnded, Kind::kPosted}) {
    waterfall.Add(Record(1, kind));
  }
  EXPECT_TRUE(waterfall.Rows().empty());
}

TEST(WaterfallTextTest, DrawsEachPhaseWithItsLetter) {
  EXPECT_EQ(ToText(OneRequest().Rows(), 60, false),
            "  1  GET a/b  200    10.00 s  |...nnncccccttt--------======|\n" +
                std::string(46, ' ') +
                "10.00 s in all\n"
                ". queued  n name  c connect  t TLS  - waiting  = receiving\n");
}

TEST(WaterfallTextTest, ShortRequestsAreStillSeen) {
  Waterfall waterfall = OneRequest();
  waterfall.Add(Record(8, Kind::kStarted, 2));
  waterfall.Add(Record(8.001, Kind::kConnected, 2));
  waterfall.Add(Record(8.002, Kind::kEnded, 2));
  EXPECT_THAT(ToText(waterfall.Rows(), 60, false),
              HasSubstr("2.00 ms  |" + std::string(22, ' ') + "-     |\n"));
}

TEST(WaterfallTextTest, KeepsTheWidthWithLongUrls) {
  TraceRecord record = Record(0, Kind::kStarted);
  record.event.request_url = std::string(500, 'x').c_str();
  Waterfall waterfall;
  waterfall.Add(record);
  for (const std::size_t width : {0U, 60U, 80U, 200U}) {
    const std::string text = ToText(waterfall.Rows(), width, false);
    EXPECT_EQ(text.find('\n'), std::max<std::size_t>(width, 60)) << text;
  }
}

TEST(WaterfallTextTest, LongUrlsLoseTheirQueryFirst) {
  TraceRecord record = Record(0, Kind::kStarted);
  record.event.request_url = "http://a.example/search?q=***&count=***";
  Waterfall waterfall;
  waterfall.Add(record);
  EXPECT_THAT(ToText(waterfall.Rows(), 80, false), HasSubstr("GET a.example/search?~  "));
  EXPECT_THAT(ToText(waterfall.Rows(), 60, false), HasSubstr("GET ~mple/search?~  "));
  EXPECT_THAT(ToText(waterfall.Rows(), 200, false), HasSubstr("/search?q=***&count=***  "));
}

TEST(WaterfallTextTest, TextFromAServerCannotSteerATerminal) {
  TraceRecord record = Record(0, Kind::kStarted);
  record.event.request_url = "http://a/\x1B[31m\n\xC3\xBC";
  Waterfall waterfall;
  waterfall.Add(record);
  EXPECT_THAT(ToText(waterfall.Rows(), 80, false), HasSubstr("GET a/%1B[31m%0A%C3%BC"));
  EXPECT_THAT(ToSvg(waterfall.Rows()), HasSubstr("/%1B[31m%0A%C3%BC"));
}

TEST(WaterfallTextTest, SaysThatThereAreNoTransfers) {
  EXPECT_EQ(ToText({}, 80, false), "no transfers\n");
}

TEST(WaterfallSvgTest, HasARowForEachRequestAndEscapesTexts) {
  Waterfall waterfall = OneRequest();
  TraceRecord record = Record(8, Kind::kStarted, 2);
  record.event.request_url = "http://a/<&\">";
  waterfall.Add(record);
  const std::string svg = ToSvg(waterfall.Rows());
  EXPECT_THAT(svg, AllOf(HasSubstr("1 GET http://a/b<"), HasSubstr("/&lt;&amp;&quot;&gt;<"),
                         HasSubstr("<title>connect 2.00 s</title>"), Not(HasSubstr("<&"))));
}

}  // namespace
}  // namespace stowra_test
