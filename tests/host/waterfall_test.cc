// SPDX-License-Identifier: MIT
#include "host/waterfall.h"

#include "host/waterfall_text.h"
#include "tests/host/host_test.h"

namespace stowra_test {
namespace {

using ovrant::internet::TransferError;
using ovrant::internet::TransferEvent;
using stowra::RequestRow;
using stowra::ToSvg;
using stowra::ToText;
using stowra::TraceRecord;
using stowra::Waterfall;
using Kind = TransferEvent::Kind;

TraceRecord Record(double time, Kind kind, unsigned long transfer = 1,
                   const char* url = "http://a/b") {
  TraceRecord record;
  record.time = time;
  record.event.kind = kind;
  record.event.number = transfer;
  record.event.request_method = "GET";
  record.event.request_url = url;
  record.event.status = 200;
  return record;
}

TraceRecord Connected(double time, double name, double connect, double tls) {
  TraceRecord record = Record(time, Kind::kConnected);
  record.event.times.name = name;
  record.event.times.connect = connect;
  record.event.times.tls = tls;
  return record;
}

std::vector<RequestRow> RowsOf(const std::vector<TraceRecord>& records) {
  Waterfall waterfall;
  for (const TraceRecord& record : records) waterfall.Add(record);
  return waterfall.Rows();
}

// A transfer that has started.
std::vector<RequestRow> RowsOf(const char* url) {
  return RowsOf({Record(0, Kind::kStarted, 1, url)});
}

// Each request as a line.
std::vector<std::string> TextsOf(const std::vector<RequestRow>& rows) {
  std::vector<std::string> texts;
  for (const RequestRow& row : rows) {
    std::string text = row.method + " " + row.url + " " + row.result;
    if (row.has_failed) text += " failed";
    if (row.is_reused) text += " reused";
    for (const auto& bar : row.bars) {
      text += std::string(" ") + NameOf(bar.phase) + " " + std::to_string(bar.begin).substr(0, 4) +
              "-" + std::to_string(bar.end).substr(0, 4);
    }
    texts.push_back(text);
  }
  return texts;
}

// A request that takes ten seconds, and each phase of it. Further records may follow.
std::vector<RequestRow> OneRequest(const std::vector<TraceRecord>& more = {}) {
  std::vector<TraceRecord> records = {Record(0, Kind::kQueued), Record(1, Kind::kStarted),
                                      Connected(5, 1, 2, 1), Record(8, Kind::kFirstByte),
                                      Record(10, Kind::kEnded)};
  records.insert(records.end(), more.begin(), more.end());
  return RowsOf(records);
}

TEST(WaterfallTest, ShowsThePhasesOfARequest) {
  EXPECT_THAT(
      TextsOf(OneRequest()),
      ElementsAre(
          "GET http://a/b 200 queued 0.00-1.00 name 1.00-2.00 connect 2.00-4.00 TLS 4.00-5.00 "
          "waiting 5.00-8.00 receiving 8.00-10.0"));
}

TEST(WaterfallTest, RedirectIsAnotherRequest) {
  TraceRecord redirected = Record(2, Kind::kRedirected);
  redirected.event.status = 302;
  redirected.event.times.connect = 1;
  redirected.event.redirect_url = "http://c/";
  TraceRecord again = Connected(3, 0.5, 1, 0);
  again.event.is_reused = true;
  const auto rows = RowsOf({Record(0, Kind::kStarted), Connected(1, 0, 1, 0), redirected, again,
                            Record(4, Kind::kEnded)});
  EXPECT_THAT(TextsOf(rows), ElementsAre("GET http://a/b 302 connect 0.00-1.00 waiting 1.00-2.00",
                                         "GET http://c/ 200 reused waiting 3.00-4.00"));
}

TEST(WaterfallTest, AskingAgainIsAnotherRequest) {
  TraceRecord response = Record(2, Kind::kResponse);
  response.event.status = 416;
  const auto rows =
      RowsOf({Record(0, Kind::kStarted), Record(1, Kind::kConnected), Record(2, Kind::kFirstByte),
              response, Record(3, Kind::kConnected), Record(4, Kind::kEnded)});
  EXPECT_THAT(TextsOf(rows), ElementsAre("GET http://a/b 416 waiting 1.00-2.00 receiving 2.00-3.00",
                                         "GET http://a/b 200 waiting 3.00-4.00"));
}

TEST(WaterfallTest, FailureEndsThePhaseThatRuns) {
  TraceRecord ended = Record(2, Kind::kEnded);
  ended.event.times.name = 1;
  ended.event.reason = TransferError::kNotConnected;
  EXPECT_THAT(TextsOf(RowsOf({Record(0, Kind::kStarted), ended})),
              ElementsAre("GET http://a/b not-connected failed name 0.00-1.00 connect 1.00-2.00"));
}

TEST(WaterfallTest, RequestWithoutEndIsUnfinished) {
  const auto rows = RowsOf(
      {Record(0, Kind::kStarted), Record(1, Kind::kConnected), Record(3, Kind::kStarted, 2)});
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_EQ(rows[0].result, "unfinished");
  EXPECT_EQ(rows[0].end, 3);
}

TEST(WaterfallTest, StepsOfAnUnknownTransferAreLeftOut) {
  EXPECT_THAT(RowsOf({Record(1, Kind::kConnected), Record(1, Kind::kFirstByte),
                      Record(1, Kind::kEnded), Record(1, Kind::kPosted)}),
              IsEmpty());
}

TEST(WaterfallTextTest, DrawsEachPhaseWithItsLetter) {
  EXPECT_EQ(ToText(OneRequest(), 60, false),
            "  1  GET a/b  200    10.00 s  |...nnncccccttt--------======|\n" +
                std::string(46, ' ') +
                "10.00 s in all\n"
                ". queued  n name  c connect  t TLS  - waiting  = receiving\n");
}

TEST(WaterfallTextTest, ShortRequestsAreStillSeen) {
  const auto rows = OneRequest({Record(8, Kind::kStarted, 2), Record(8.001, Kind::kConnected, 2),
                                Record(8.002, Kind::kEnded, 2)});
  EXPECT_THAT(ToText(rows, 60, false),
              HasSubstr("2.00 ms  |" + std::string(22, ' ') + "-     |\n"));
}

TEST(WaterfallTextTest, KeepsTheWidthWithLongUrls) {
  const auto rows = RowsOf(std::string(500, 'x').c_str());
  for (const std::size_t width : {0U, 60U, 80U, 200U}) {
    const std::string text = ToText(rows, width, false);
    EXPECT_EQ(text.find('\n'), std::max<std::size_t>(width, 60)) << text;
  }
}

TEST(WaterfallTextTest, LongUrlsLoseTheirQueryFirst) {
  const auto rows = RowsOf("http://a.example/search?q=***&count=***");
  EXPECT_THAT(ToText(rows, 80, false), HasSubstr("GET a.example/search?~  "));
  EXPECT_THAT(ToText(rows, 60, false), HasSubstr("GET ~mple/search?~  "));
  EXPECT_THAT(ToText(rows, 200, false), HasSubstr("/search?q=***&count=***  "));
}

TEST(WaterfallTextTest, TextFromAServerCannotSteerATerminal) {
  const auto rows = RowsOf("http://a/\x1B[31m\n\xC3\xBC");
  EXPECT_THAT(ToText(rows, 80, false), HasSubstr("GET a/%1B[31m%0A%C3%BC"));
  EXPECT_THAT(ToSvg(rows), HasSubstr("/%1B[31m%0A%C3%BC"));
}

TEST(WaterfallSvgTest, HasARowForEachRequestAndEscapesTexts) {
  const std::string svg = ToSvg(OneRequest({Record(8, Kind::kStarted, 2, "http://a/<&\">")}));
  EXPECT_THAT(svg, AllOf(HasSubstr("1 GET http://a/b<"), HasSubstr("/&lt;&amp;&quot;&gt;<"),
                         HasSubstr("<title>connect 2.00 s</title>"), Not(HasSubstr("<&"))));
}

}  // namespace
}  // namespace stowra_test
