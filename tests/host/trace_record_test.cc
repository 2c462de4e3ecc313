// SPDX-License-Identifier: MIT
#include "host/trace_record.h"

#include "tests/host/host_test.h"

namespace stowra_test {
namespace {

using ovrant::internet::TransferError;
using ovrant::internet::TransferEvent;
using stowra::ReadTraceLine;
using stowra::ToTraceLine;
using stowra::TraceRecord;
using Kind = TransferEvent::Kind;

// Every member has a value of its own.
TraceRecord FullRecord(Kind kind) {
  TraceRecord record;
  record.time = 1.25;
  TransferEvent& event = record.event;
  event.kind = kind;
  event.number = 3;
  event.request = 2;
  event.request_method = "POST";
  event.request_url = "http://a/b?c=***";
  event.status = 302;
  event.bytes_sent = 4;
  event.bytes_to_send = 5'000'000'000;
  event.wire_bytes_received = 6;
  event.bytes_received = 7;
  event.reason = TransferError::kCutOff;
  event.error = "cut \"off\"\n";
  event.times = {0.1, 0.2, 0.3, 0.4, 0.5, 1.5};
  event.address = "::1";
  event.port = 8080;
  event.is_reused = true;
  event.tls = "TLSv1.3";
  event.head = "GET / HTTP/1.1\nHost: a\n";
  event.redirect_url = "http://d/";
  event.notification = "Posted";
  event.thread = 9;
  return record;
}

TEST(TraceRecordTest, WritesItsMembersOnOneLine) {
  EXPECT_EQ(ToTraceLine(FullRecord(Kind::kConnected)),
            R"({"time":1.25,"transfer":3,"event":"connected","thread":9,"method":"POST",)"
            R"("url":"http://a/b?c=***","request":2,"status":302,"bytes_sent":4,)"
            R"("bytes_to_send":5000000000,"wire_bytes_received":6,"bytes_received":7,)"
            R"("times":{"queued":0.1,"name":0.2,"connect":0.3,"tls":0.4,"first_byte":0.5,)"
            R"("total":1.5},"address":"::1","port":8080,"tls":"TLSv1.3","reused":true,)"
            R"("head":["GET / HTTP/1.1","Host: a"]})"
            "\n");
}

TEST(TraceRecordTest, RoundsTimesToMicroseconds) {
  TransferEvent event;
  event.times.total = 1.23456789;
  const TraceRecord record = stowra::MakeTraceRecord(0.0000123456, event);
  EXPECT_EQ(record.time, 0.000012);
  EXPECT_EQ(record.event.times.total, 1.234568);
}

TEST(TraceRecordTest, ReadsWhatItWrites) {
  for (const Kind kind :
       {Kind::kStarted, Kind::kEnded, Kind::kQueued, Kind::kConnected, Kind::kRequest,
        Kind::kFirstByte, Kind::kResponse, Kind::kRedirected, Kind::kPosted}) {
    const std::string line = ToTraceLine(FullRecord(kind));
    TraceRecord record;
    std::string why;
    ASSERT_TRUE(ReadTraceLine(line, record, why)) << why;
    EXPECT_EQ(record.event.kind, kind);
    EXPECT_EQ(ToTraceLine(record), line);
  }
}

TEST(TraceRecordTest, RefusesWhatIsNotARecord) {
  const std::string good = ToTraceLine(FullRecord(Kind::kEnded));
  const std::tuple<const char*, const char*, const char*> rows[] = {
      {R"("time":1.25)", R"("time":"1")", "'time' is not a number"},
      {R"("time":1.25)", R"("time":-1)", "'time' is not 0 or above"},
      {R"("transfer":3)", R"("transfer":-3)", "'transfer' is not a whole number"},
      {R"("transfer":3,)", "", "'transfer' is not there"},
      {R"("event":"ended")", R"("event":"begun")", "'event' is not a known word"},
      {R"("reason":"cut-off")", R"("reason":"")", "'reason' is not a known word"},
      {R"("port":8080)", R"("port":99999999999)", "'port' is not a number of this size"},
      {R"("reused":true)", R"("reused":1)", "'reused' is not true or false"},
      {R"("url":"http)", R"("url":null,"x":"http)", "'url' is not a text"},
      {R"("times":{)", R"("times":[],"x":{)", "'times' is not an object"},
      {"}\n", "", "not a line of JSON"},
  };
  for (const auto& [from, to, reason] : rows) {
    std::string line = good;
    ASSERT_THAT(line, HasSubstr(from));
    line.replace(line.find(from), std::string(from).size(), to);
    TraceRecord record;
    std::string why;
    EXPECT_FALSE(ReadTraceLine(line, record, why)) << line;
    EXPECT_EQ(why, reason);
  }
}

TEST(TraceRecordTest, LeavesOutUnknownMembers) {
  std::string line = ToTraceLine(FullRecord(Kind::kStarted));
  line.insert(1, R"("later":[1],)");
  TraceRecord record;
  std::string why;
  EXPECT_TRUE(ReadTraceLine(line, record, why)) << why;
}

}  // namespace
}  // namespace stowra_test
