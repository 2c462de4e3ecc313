// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/body_sink.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <new>
#include <sstream>
#include <stdexcept>
#include <string>

#include "common_stowraapi/platform/memory_sink.h"
#include "tests/platform/http/body_fixture.h"
#include "tests/platform/http/gzip_text.h"
#include "tests/platform/http/handlers.h"
#include "tests/support/closed_port.h"

namespace stowra_test {
namespace {

using ovrant::internet::MemorySink;

// Counts and forgets.
class CountingSink final : public BodySink {
 public:
  bool Write(const unsigned char*, std::size_t size) override {
    EXPECT_GT(size, 0U);
    count += size;
    return true;
  }
  std::size_t count = 0;
};

class BodySinkTest : public BodyFixture {
 protected:
  const RawServer abc_{Always(Response(200, "abc"))};
  const std::shared_ptr<TestSink> sink_ = std::make_shared<TestSink>();
};
IN_BOTH_BODY_MODES(BodySinkTest);

TEST_P(BodySinkTest, TakesTheBodyOfAReply) {
  const std::string text(300000, 'x');
  const RawServer server(Always(Response(200, text, "X-Name: value\r\n")));
  EXPECT_EQ(Download(server.Url(), sink_), Received(200, ""));
  EXPECT_TRUE(sink_->bytes == text);
  EXPECT_EQ(sink_->begins, 1);
  EXPECT_EQ(sink_->begin_status, 200);
  EXPECT_EQ(sink_->begin_headers["X-Name"].utf8(), "value");
  EXPECT_EQ(sink_->ends, 1);
  EXPECT_EQ(transport().received_headers(), sink_->begin_headers);
  EXPECT_EQ(LastRequest(server).method, "GET");
}

TEST_P(BodySinkTest, TakesChunksAndAnEmptyBody) {
  const RawServer chunked(Always(
      "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n2\r\nde\r\n0\r\n\r\n"));
  EXPECT_EQ(Download(chunked.Url(), sink_), Received(200, ""));
  EXPECT_EQ(sink_->bytes, "abcde");
  const RawServer empty(Always("HTTP/1.1 204 None\r\n\r\n"));
  EXPECT_EQ(Download(empty.Url(), sink_), Received(204, ""));
  EXPECT_EQ(sink_->ends, 2);
}

TEST_P(BodySinkTest, GetsDecodedBytesInSmallPieces) {
  const std::string text(std::size_t{64} << 20, 'x');
  const RawServer server(Always(Response(200, Gzip(text), kGzipHeader)));
  EXPECT_EQ(Download(server.Url(), sink_), Received(200, ""));
  EXPECT_TRUE(sink_->bytes == text);
  EXPECT_LE(sink_->largest, std::size_t{2} << 20);
  EXPECT_EQ(last_end.bytes_received, text.size());
  EXPECT_LT(last_end.wire_bytes_received, text.size() / 100);
}

// The first chunk is the head of the gzip stream, which holds no bytes of the body.
TEST_P(BodySinkTest, GetsNoEmptyPieces) {
  const std::string gzip = Gzip("hello");
  constexpr std::size_t kHead = 10;
  std::ostringstream rest;
  rest << std::hex << gzip.size() - kHead << "\r\n" << gzip.substr(kHead);
  const RawServer server(Always("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n" +
                                std::string(kGzipHeader) + "\r\na\r\n" + gzip.substr(0, kHead) +
                                "\r\n" + rest.str() + "\r\n0\r\n\r\n"));
  const auto sink = std::make_shared<CountingSink>();
  EXPECT_EQ(Download(server.Url(), sink), Received(200, ""));
  EXPECT_EQ(sink->count, 5U);
}

TEST_P(BodySinkTest, LeavesOtherRepliesInMemory) {
  for (const int status : {206, 300, 404, 500}) {
    const RawServer server(Always(Response(status, "message")));
    const auto sink = std::make_shared<TestSink>();
    EXPECT_EQ(Download(server.Url(), sink), Received(status, "message"));
    EXPECT_EQ(sink->bytes, "");
    EXPECT_EQ(sink->begins, 1);
    EXPECT_EQ(sink->ends, 0);
  }
}

TEST_P(BodySinkTest, MayRefuseAnyReply) {
  sink_->choice = BodySink::Choice::kLeave;
  EXPECT_EQ(Download(abc_.Url(), sink_), Received(200, "abc"));
  EXPECT_EQ(sink_->bytes, "");
  sink_->choice = BodySink::Choice::kFail;
  EXPECT_EQ(Download(abc_.Url(), sink_), Failed(200, TransferError::kBody));
}

// The host's own headers do not leave the origin.
TEST_P(BodySinkTest, AddsHeadersToEveryRequest) {
  const RawServer other(Always(Response(200, "there")));
  const RawServer server(Always(Redirect(302, other.Url("/to"))));
  prepare = [](InternetData& transport) {
    transport.SetValueForHTTPSendHeaders("range", "bytes=0-");
    transport.SetValueForHTTPSendHeaders("X-Own", "1");
  };
  sink_->request_headers["Range"] = "bytes=5-";
  EXPECT_EQ(Download(server.Url("/from"), sink_), Received(200, ""));
  EXPECT_EQ(LastRequest(server).Header("Range"), "bytes=5-");
  EXPECT_EQ(LastRequest(server).Header("X-Own"), "1");
  EXPECT_EQ(LastRequest(other).Header("Range"), "bytes=5-");
  EXPECT_FALSE(LastRequest(other).HasHeader("X-Own"));
  EXPECT_EQ(sink_->bytes, "there");
  EXPECT_EQ(sink_->begins, 1) << "the sink is not offered the redirect";
}

TEST_P(BodySinkTest, MayAskOnceMore) {
  const RawServer server([](const RawRequest& request, RawConnection& connection) {
    connection.Write(request.HasHeader("Range") ? Response(416, std::string(1000000, 'x'))
                                                : Response(200, "whole"));
  });
  sink_->request_headers["Range"] = "bytes=5-";
  sink_->choice = BodySink::Choice::kAskAgain;
  sink_->on_begin = [this] {
    if (sink_->begins == 2) sink_->choice = BodySink::Choice::kTake;
    sink_->request_headers.clear();
  };
  EXPECT_EQ(Download(server.Url(), sink_), Received(200, ""));
  EXPECT_EQ(sink_->bytes, "whole");
  EXPECT_EQ(server.requests().size(), 2U);
}

TEST_P(BodySinkTest, FailsWhenItAsksOnAndOn) {
  sink_->choice = BodySink::Choice::kAskAgain;
  EXPECT_EQ(Download(abc_.Url(), sink_), Failed(200, TransferError::kBody));
  EXPECT_EQ(abc_.requests().size(), 2U);
}

TEST_P(BodySinkTest, MayBeSlowerThanTheTimeout) {
  SetInactivityTimeout(1.5F);
  const auto be_slow = [] { Event().Wait(std::chrono::milliseconds(1800)); };
  sink_->on_begin = be_slow;
  sink_->on_write = be_slow;
  sink_->on_end = be_slow;
  EXPECT_EQ(Download(abc_.Url(), sink_), Received(200, ""));
  EXPECT_EQ(sink_->bytes, "abc");
}

TEST_P(BodySinkTest, FailsTheDownloadWhenItFails) {
  sink_->end_fails = true;
  EXPECT_EQ(Download(abc_.Url(), sink_), Failed(200, TransferError::kBody));
  EXPECT_EQ(sink_->ends, 1);
  sink_->write_fails = true;
  EXPECT_EQ(Download(abc_.Url(), sink_), Failed(200, TransferError::kBody));
  EXPECT_EQ(sink_->ends, 1);
}

TEST_P(BodySinkTest, MayThrow) {
  const auto throw_error = [] { throw std::runtime_error("test"); };
  const auto throw_bad_alloc = [] { throw std::bad_alloc(); };
  for (const auto place : {&TestSink::on_begin, &TestSink::on_write, &TestSink::on_end}) {
    const auto sink = std::make_shared<TestSink>();
    sink.get()->*place = throw_error;
    EXPECT_EQ(Download(abc_.Url(), sink), Failed(200, TransferError::kBody));
    sink.get()->*place = throw_bad_alloc;
    EXPECT_EQ(Download(abc_.Url(), sink), Failed(200, TransferError::kOutOfMemory));
  }
}

TEST_P(BodySinkTest, HearsNoEndOfABrokenReply) {
  const std::string gzip = Gzip("abc");
  for (const std::string& reply :
       {std::string("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nabc"),
        std::string("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nabc"),
        Response(200, gzip.substr(0, gzip.size() - 4), kGzipHeader)}) {
    const RawServer server(AlwaysThenClose(reply));
    const auto sink = std::make_shared<TestSink>();
    EXPECT_EQ(Download(server.Url(), sink), Failed(200, TransferError::kCutOff)) << reply;
    EXPECT_EQ(sink->bytes, "abc") << reply;
    EXPECT_EQ(sink->ends, 0) << reply;
  }
}

TEST_P(BodySinkTest, HasNoCapByDefault) {
  constexpr int kMebibytes = 257;
  const auto handler = [](int status) {
    return [status](const RawRequest&, RawConnection& connection) {
      connection.Write("HTTP/1.1 " + std::to_string(status) + " Text\r\n\r\n");
      const std::string mebibyte(1U << 20U, 'x');
      for (int i = 0; i < kMebibytes && connection.Write(mebibyte); ++i) {
      }
      connection.Close();
    };
  };
  const RawServer server(handler(200));
  const auto sink = std::make_shared<CountingSink>();
  EXPECT_EQ(Download(server.Url(), sink), Received(200, ""));
  EXPECT_EQ(sink->count, std::size_t{kMebibytes} << 20U);
  // What the sink leaves is held in memory.
  const RawServer error(handler(500));
  EXPECT_EQ(Download(error.Url(), sink), Failed(500, TransferError::kTooLarge));
}

TEST_P(BodySinkTest, IsLetGoBeforeThePost) {
  EXPECT_EQ(Download(abc_.Url(), sink_), Received(200, ""));
  EXPECT_EQ(sink_.use_count(), 1);
}

TEST_P(BodySinkTest, MemorySinkHoldsTheLastBody) {
  const RawServer server([count = 0](const RawRequest&, RawConnection& connection) mutable {
    connection.Write(Response(200, "body " + std::to_string(++count)));
  });
  const auto sink = std::make_shared<MemorySink>();
  EXPECT_EQ(Download(server.Url(), sink), Received(200, ""));
  EXPECT_EQ(sink->bytes(), "body 1");
  EXPECT_EQ(Download(server.Url(), sink), Received(200, ""));
  EXPECT_EQ(sink->bytes(), "body 2");
  EXPECT_FALSE(Download(ClosedPort().Url(), sink).received);
  EXPECT_EQ(sink->bytes(), "");
}

TEST_P(BodySinkTest, ADownloadAfterItStaysInMemory) {
  EXPECT_EQ(Download(abc_.Url(), sink_), Received(200, ""));
  EXPECT_TRUE(transport().Download());
  EXPECT_EQ(BodyOf(transport()), "abc");
  EXPECT_EQ(sink_->begins, 1);
}

}  // namespace
}  // namespace stowra_test
