// SPDX-License-Identifier: MIT
// A download that goes on with what an earlier one has left.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>

#include "tests/platform/http/file_sink_fixture.h"
#include "tests/platform/http/gzip_text.h"
#include "tests/platform/http/handlers.h"

namespace stowra_test {
namespace {

class FileSinkPartTest : public FileSinkFixture {
 protected:
  Thing thing_{Numbers(100)};
};
IN_BOTH_BODY_MODES(FileSinkPartTest);

TEST_P(FileSinkPartTest, ContinuesWhatBrokenDownloadsLeft) {
  Thing thing{Numbers(200000)};
  LeavePart(thing, 70000);
  ExpectPart();
  thing.cut = 50000;
  EXPECT_EQ(Fetch(thing), Failed(206, TransferError::kCutOff));
  EXPECT_EQ(First().Header("Range"), "bytes=70000-");
  EXPECT_EQ(First().Header("If-Range"), "\"v1\"");
  EXPECT_EQ(continued, 70000U);
  EXPECT_EQ(size, 120000U);
  EXPECT_TRUE(can_continue);
  thing.cut = SIZE_MAX;
  EXPECT_EQ(Fetch(thing), Received(206, ""));
  EXPECT_EQ(continued, 120000U);
  ExpectWhole(thing);
}

TEST_P(FileSinkPartTest, OneSinkMayContinueItself) {
  const auto sink = BrokenOff({thing_.content, kEtag, 30});
  const RawServer server(Serve(thing_));
  EXPECT_EQ(Download(server.Url(), sink), Received(206, ""));
  EXPECT_EQ(sink->continued_size(), 30U);
  EXPECT_EQ(Content(), thing_.content);
  EXPECT_EQ(All(), Names{"x"});
}

TEST_P(FileSinkPartTest, OneSinkDoesNotContinueWhatItCannot) {
  for (const Thing& cut : {Thing{thing_.content, "", 30}, Thing{thing_.content, kEtag, 0}}) {
    const auto sink = BrokenOff(cut);
    const RawServer server(Serve(thing_));
    EXPECT_EQ(Download(server.Url(), sink), Received(200, ""));
    EXPECT_FALSE(LastRequest(server).HasHeader("Range"));
    EXPECT_EQ(Content(), thing_.content);
  }
}

// Names of headers come in any letter case.
TEST_P(FileSinkPartTest, ContinuesByDateWithoutAnEtag) {
  thing_.headers =
      "etag: W/\"weak\"\r\nlast-modified: Sun, 22 Nov 2026 08:00:00 GMT\r\n"
      "DATE: Sun, 22 Nov 2026 08:01:00 GMT\r\n";
  LeavePart(thing_, 30);
  EXPECT_EQ(Fetch(thing_), Received(206, ""));
  EXPECT_EQ(First().Header("If-Range"), "Sun, 22 Nov 2026 08:00:00 GMT");
  ExpectWhole(thing_);
  // The rest need not repeat the date.
  LeavePart(thing_, 30);
  const RawServer server(
      Always(Response(206, thing_.content.substr(30), "Content-Range: bytes 30-99/100\r\n")));
  EXPECT_EQ(FetchFrom(server.Url()), Received(206, ""));
  ExpectWhole(thing_);
}

TEST_P(FileSinkPartTest, LeavesNoPartWithoutAStrongValidator) {
  for (const char* headers :
       {"", "ETag: W/\"v1\"\r\n", "Last-Modified: Sun, 22 Nov 2026 08:00:00 GMT\r\n",
        "Last-Modified: Sun, 22 Nov 2026 08:00:00 GMT\r\nDate: Sun, 22 Nov 2026 08:00:59 GMT\r\n",
        "ETag: \"v1\"\r\nContent-Encoding: gzip\r\n"}) {
    Thing thing{Gzip(Numbers(1000))};
    thing.headers = headers;
    thing.cut = 30;
    EXPECT_FALSE(Fetch(thing).received) << headers;
    EXPECT_FALSE(can_continue);
    EXPECT_EQ(All(), Names{}) << headers;
  }
}

// A folder has the note's name.
TEST_P(FileSinkPartTest, LeavesNoPartWithoutItsNote) {
  std::filesystem::create_directory(Path("x.part.validator"));
  EXPECT_EQ(Fetch({Numbers(100), kEtag, 30}), Failed(200, TransferError::kCutOff));
  EXPECT_FALSE(can_continue);
  EXPECT_EQ(All(), Names{"x.part.validator"});
}

TEST_P(FileSinkPartTest, BeginsAnewUnlessToldToContinue) {
  LeavePart(thing_, 30);
  EXPECT_EQ(Fetch(thing_, kAnew), Received(200, ""));
  EXPECT_FALSE(First().HasHeader("Range"));
  ExpectWhole(thing_);
}

TEST_P(FileSinkPartTest, BeginsAnewWhenTheThingHasChanged) {
  LeavePart(thing_, 30);
  Thing changed{"something else"};
  changed.headers = "ETag: \"v2\"\r\n";
  EXPECT_EQ(Fetch(changed), Received(200, ""));
  EXPECT_EQ(First().Header("Range"), "bytes=30-");
  EXPECT_EQ(continued, 0U);
  ExpectWhole(changed);
}

TEST_P(FileSinkPartTest, BeginsAnewWithoutRangesOnTheServer) {
  LeavePart(thing_, 30);
  thing_.has_ranges = false;
  EXPECT_EQ(Fetch(thing_), Received(200, ""));
  EXPECT_EQ(CountRequests(), 1U);
  ExpectWhole(thing_);
}

TEST_P(FileSinkPartTest, AsksAgainAfterARangeThatDoesNotFit) {
  for (const char* range :
       {"bytes 31-99/100", "bytes 30-98/100", "bytes 30-99/101", "bytes 30-100/101",
        "bytes 0-99/100", "bytes */100", "bytes 30-99/*", "lines 30-99/100", "30-99/100",
        "bytes 30-99", "bytes 30-99/100x", "bytes 99-30/100", "bytes 30-18446744073709551615/0",
        "bytes -1-99/100"}) {
    Thing thing{Numbers(100)};
    LeavePart(thing, 30);
    thing.range = range;
    EXPECT_EQ(Fetch(thing), Received(200, "")) << range;
    EXPECT_EQ(CountRequests(), 2U);
    EXPECT_FALSE(LastRequest(*server_).HasHeader("Range"));
    ExpectWhole(thing);
  }
}

TEST_P(FileSinkPartTest, AsksAgainWhenTheRestIsOfAnotherThing) {
  const std::string date = "Date: Sun, 22 Nov 2026 09:00:00 GMT\r\n";
  const struct {
    std::string headers_of_part;
    std::string headers_of_rest;
  } kCases[] = {
      {kEtag, ""},
      {kEtag, "ETag: \"v2\"\r\n"},
      {kEtag, kEtag + std::string(kGzipHeader)},
      {"Last-Modified: Sun, 22 Nov 2026 08:00:00 GMT\r\n" + date,
       "Last-Modified: Sun, 22 Nov 2026 08:00:01 GMT\r\n" + date},
  };
  for (const auto& headers : kCases) {
    const std::string rest = Response(
        206, std::string(70, 'x'), headers.headers_of_rest + "Content-Range: bytes 30-99/100\r\n");
    const RawServer server([&rest](const RawRequest& request, RawConnection& connection) {
      connection.Write(request.HasHeader("Range") ? rest : Response(200, "new"));
    });
    LeavePart({Numbers(100), headers.headers_of_part}, 30);
    EXPECT_EQ(FetchFrom(server.Url()), Received(200, "")) << headers.headers_of_rest;
    EXPECT_EQ(Content(), "new");
  }
}

TEST_P(FileSinkPartTest, AsksAgainWhenTheServerHasNoRest) {
  LeavePart(thing_, 30);
  thing_.content = Numbers(20);
  EXPECT_EQ(Fetch(thing_), Received(200, ""));
  EXPECT_EQ(CountRequests(), 2U);
  ExpectWhole(thing_);
}

TEST_P(FileSinkPartTest, KeepsThePartWhenTheServerIsBusy) {
  LeavePart(thing_, 30);
  const RawServer busy(Always(Response(503, "later")));
  EXPECT_EQ(FetchFrom(busy.Url()), Received(503, "later"));
  EXPECT_TRUE(can_continue);
  ExpectPart();
}

TEST_P(FileSinkPartTest, IgnoresAPartWithoutAUsableNote) {
  const struct {
    const char* part;
    const char* note;
  } kParts[] = {
      {"abc", ""}, {"abc", "\n"}, {"abc", "\n100\n"}, {"abc", "\x01\n"}, {"", "\"v1\"\n100\n"}};
  for (const auto& left : kParts) {
    const Thing thing{Numbers(100)};
    Make("x.part", left.part);
    Make("x.part.validator", left.note);
    EXPECT_EQ(Fetch(thing), Received(200, "")) << left.note;
    EXPECT_FALSE(First().HasHeader("Range")) << left.note;
    ExpectWhole(thing);
  }
}

TEST_P(FileSinkPartTest, ContinuesAfterARedirect) {
  LeavePart(thing_, 30);
  const RawServer other(Serve(thing_));
  const RawServer server(Always(Response(302, "", "Location: " + other.Url("/to") + "\r\n")));
  EXPECT_EQ(FetchFrom(server.Url()), Received(206, ""));
  EXPECT_EQ(LastRequest(other).Header("Range"), "bytes=30-");
  ExpectWhole(thing_);
}

TEST_P(FileSinkPartTest, FailsWhenTheRestIsNotAsLongAsItsRange) {
  for (const char* rest : {"abc", "abcde"}) {
    const RawServer server([rest](const RawRequest& request, RawConnection& connection) {
      connection.Write(request.HasHeader("Range")
                           ? "HTTP/1.1 206 Part\r\nETag: \"v1\"\r\nContent-Range: bytes 5-8/9\r\n"
                             "Connection: close\r\n\r\n" +
                                 std::string(rest)
                           : "HTTP/1.1 200 OK\r\nETag: \"v1\"\r\nTransfer-Encoding: chunked\r\n\r\n"
                             "5\r\nhello\r\n");
      connection.Close();
    });
    EXPECT_EQ(FetchFrom(server.Url(), kAnew), Failed(200, TransferError::kCutOff));
    EXPECT_EQ(FetchFrom(server.Url()), Failed(206, TransferError::kBody)) << rest;
    EXPECT_EQ(error, EBADMSG);
    EXPECT_TRUE(can_continue);
    ExpectPart();
  }
}

// Another sink lets go of the part before the answer comes.
TEST_P(FileSinkPartTest, KeepsAPartThatWasBusy) {
  LeavePart({"0123456789"}, 5);
  const int other = open(Path("x.part").c_str(), O_RDWR);
  ASSERT_EQ(flock(other, LOCK_EX), 0);
  const RawServer server([other](const RawRequest&, RawConnection& connection) {
    close(other);
    connection.Write(Response(200, "0123456789"));
  });
  EXPECT_EQ(FetchFrom(server.Url()), Failed(200, TransferError::kBody));
  EXPECT_EQ(error, EWOULDBLOCK);
  EXPECT_EQ(Content("x.part"), "01234");
  ExpectPart();
}

TEST_P(FileSinkPartTest, GivesNoNameToAPartOfSomebodyElse) {
  const RawServer server(InHalves([this] {
    std::filesystem::remove(Path("x.part"));
    Make("x.part", "half");
  }));
  EXPECT_EQ(FetchFrom(server.Url(), kAnew), Failed(200, TransferError::kBody));
  EXPECT_EQ(error, ENOENT);
  EXPECT_EQ(All(), Names{"x.part"});
  EXPECT_EQ(Content("x.part"), "half");
}

TEST_P(FileSinkPartTest, KnowsThePartsSizeWithoutAReply) {
  LeavePart({"0123456789"}, 5);
  EXPECT_FALSE(FetchFrom("http://127.0.0.1:1/").received);
  EXPECT_EQ(size, 5U);
  EXPECT_TRUE(can_continue);
}

}  // namespace
}  // namespace stowra_test
