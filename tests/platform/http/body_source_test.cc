// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/body_source.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>

#include "common_stowraapi/platform/file_source.h"
#include "common_stowraapi/platform/memory_source.h"
#include "tests/platform/http/body_fixture.h"
#include "tests/support/raw_server.h"
#include "tests/support/temporary_folder.h"

namespace stowra_test {
namespace {

using ovrant::internet::FileSource;
using ovrant::internet::MemorySource;

RawServer::Handler Echo() {
  return [](const RawRequest& request, RawConnection& connection) {
    connection.Write(Response(200, request.body));
  };
}

std::string Numbers(std::size_t size) {
  std::string text;
  while (text.size() < size) text += std::to_string(text.size()) + ",";
  return text;
}

class BodySourceTest : public BodyFixture {};
IN_BOTH_BODY_MODES(BodySourceTest);

TEST_P(BodySourceTest, IsThePostsBody) {
  const RawServer server(Echo());
  for (const std::size_t size : {0U, 1U, 65536U, 3000000U}) {
    const std::string text = size == 0 ? "" : Numbers(size);
    const auto source = std::make_shared<TestSource>(text);
    source->piece = 7777;
    EXPECT_TRUE(Upload(server.Url("/x"), source) == Received(200, text)) << size;
    const RawRequest request = LastRequest(server);
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.Header("Content-Length"), std::to_string(text.size()));
    EXPECT_FALSE(request.HasHeader("Transfer-Encoding"));
    EXPECT_FALSE(request.HasHeader("Expect"));
    EXPECT_EQ(source->rewinds, 1);
  }
}

TEST_P(BodySourceTest, SendsItsLengthInPlaceOfTheHosts) {
  const RawServer server(Echo());
  prepare = [](InternetData& transport) {
    transport.SetValueForHTTPSendHeaders("Content-Length", "-1294967296");
    transport.SetValueForHTTPSendHeaders("Content-Type", "text/x");
    SetSendData("not sent", transport);
  };
  EXPECT_EQ(Upload(server.Url(), std::make_shared<TestSource>("abc")), Received(200, "abc"));
  EXPECT_EQ(LastRequest(server).Header("Content-Length"), "3");
  EXPECT_EQ(LastRequest(server).Header("Content-Type"), "text/x");
}

TEST_P(BodySourceTest, GoesOutInChunksWithoutALength) {
  const RawServer server(
      [](const RawRequest& request, RawConnection& connection) {
        std::string body;
        while (body.find("0\r\n\r\n") == std::string::npos && connection.Read(body)) {
        }
        connection.Write(Response(200, request.Header("Transfer-Encoding") + " " + body));
      },
      {nullptr, false});
  const auto source = std::make_shared<TestSource>("hello");
  source->length = std::nullopt;
  EXPECT_EQ(Upload(server.Url(), source), Received(200, "chunked 5\r\nhello\r\n0\r\n\r\n"));
}

TEST_P(BodySourceTest, MayBeSlowerThanTheTimeout) {
  SetInactivityTimeout(0.4F);
  const RawServer server(Echo());
  const auto source = std::make_shared<TestSource>("abcd");
  source->piece = 2;
  source->on_read = [] { Event().Wait(std::chrono::milliseconds(600)); };
  EXPECT_EQ(Upload(server.Url(), source), Received(200, "abcd"));
}

TEST_P(BodySourceTest, FailsTheUploadWhenItFails) {
  const RawServer server(Echo());
  const auto source = std::make_shared<TestSource>("abcd");
  source->fails = true;
  EXPECT_EQ(Upload(server.Url(), source), Failed(0, TransferError::kBody));
  source->most_rewinds = 0;
  EXPECT_EQ(Upload(server.Url(), source), Failed(0, TransferError::kBody));
  EXPECT_TRUE(server.requests().empty());
}

TEST_P(BodySourceTest, MayThrow) {
  const RawServer server(Echo());
  const auto source = std::make_shared<TestSource>("abcd");
  source->on_read = [] { throw std::runtime_error("test"); };
  EXPECT_EQ(Upload(server.Url(), source), Failed(0, TransferError::kBody));
  source->on_read = [] { throw 5; };
  EXPECT_EQ(Upload(server.Url(), source), Failed(0, TransferError::kBody));
  source->on_read = [] { throw std::bad_alloc(); };
  EXPECT_EQ(Upload(server.Url(), source), Failed(0, TransferError::kOutOfMemory));
}

TEST_P(BodySourceTest, FailsTheUploadWhenItEndsEarly) {
  const RawServer server(Echo());
  for (const std::size_t size : {0U, 3U, 100000U}) {
    const auto source = std::make_shared<TestSource>(std::string(size, 'x'));
    source->length = size + 1;
    EXPECT_EQ(Upload(server.Url(), source), Failed(0, TransferError::kBody)) << size;
  }
  EXPECT_TRUE(server.requests().empty());
}

// The server never gets a whole body.
TEST_P(BodySourceTest, FailsTheUploadWhenItEndsLate) {
  const RawServer server(Echo());
  for (const std::size_t size : {1U, 3U, 100000U}) {
    const auto source = std::make_shared<TestSource>(std::string(size, 'x'));
    source->length = size - 1;
    EXPECT_EQ(Upload(server.Url(), source), Failed(0, TransferError::kBody)) << size;
  }
  EXPECT_TRUE(server.requests().empty());
}

TEST_P(BodySourceTest, GoesBackForARedirect) {
  for (const int status : {307, 308}) {
    const RawServer server([status](const RawRequest& request, RawConnection& connection) {
      connection.Write(request.target == "/from" ? Response(status, "", "Location: /to\r\n")
                                                 : Response(200, request.body));
    });
    const std::string text = Numbers(300000);
    const auto source = std::make_shared<TestSource>(text);
    EXPECT_TRUE(Upload(server.Url("/from"), source) == Received(200, text));
    EXPECT_EQ(source->rewinds, 2);
    ASSERT_EQ(server.requests().size(), 2U);
    EXPECT_TRUE(server.requests()[0].body == text);
  }
}

TEST_P(BodySourceTest, StaysBehindWhenAPostBecomesAGet) {
  const RawServer server([](const RawRequest& request, RawConnection& connection) {
    connection.Write(request.target == "/from" ? Response(303, "", "Location: /to\r\n")
                                               : Response(200, request.method + request.body));
  });
  const auto source = std::make_shared<TestSource>("abc");
  EXPECT_EQ(Upload(server.Url("/from"), source), Received(200, "GET"));
  EXPECT_EQ(source->rewinds, 1);
}

TEST_P(BodySourceTest, DoesNotGoToAnotherOrigin) {
  const RawServer other(Echo());
  const RawServer server(Always(Response(307, "", "Location: " + other.Url("/to") + "\r\n")));
  const auto source = std::make_shared<TestSource>("abc");
  EXPECT_EQ(Upload(server.Url("/from"), source), Received(200, ""));
  EXPECT_EQ(LastRequest(other).method, "POST");
  EXPECT_EQ(LastRequest(other).Header("Content-Length"), "0");
  EXPECT_EQ(source->rewinds, 1);
}

// The server ends the connection between two requests.
TEST_P(BodySourceTest, GoesBackForAFreshConnection) {
  const RawServer server([](const RawRequest& request, RawConnection& connection) {
    connection.Write(Response(200, request.body));
    connection.Close();
  });
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(Upload(server.Url(), std::make_shared<TestSource>("abc")), Received(200, "abc"));
  }
}

// libcurl finds out that a kept connection is dead only when it has sent on it.
TEST_P(BodySourceTest, GoesBackWhenTheKeptConnectionDies) {
  const RawServer server(
      [](const RawRequest& request, RawConnection& connection) {
        // The body is read first: a source that nobody read from is not taken back.
        std::string body;
        while (body.size() < 3 && connection.Read(body)) {
        }
        const bool is_second = request.target == "/second" && request.connection == 0;
        if (is_second) return connection.Reset();
        connection.Write(Response(200, body));
      },
      {nullptr, false});
  EXPECT_EQ(Upload(server.Url("/first"), std::make_shared<TestSource>("abc")),
            Received(200, "abc"));
  const auto source = std::make_shared<TestSource>("xyz");
  EXPECT_EQ(Upload(server.Url("/second"), source), Received(200, "xyz"));
  EXPECT_EQ(source->rewinds, 2);
}

// A byte longer after each Rewind.
class GrowingSource final : public BodySource {
 public:
  bool Rewind() override {
    left_ = ++length_;
    return true;
  }
  std::optional<std::uint64_t> Length() override { return length_; }
  bool Read(unsigned char* data, std::size_t size, std::size_t& count) override {
    count = std::min(size, left_);
    left_ -= count;
    std::fill_n(data, count, static_cast<unsigned char>('x'));
    return true;
  }

 private:
  std::size_t length_ = 2;
  std::size_t left_ = 0;
};

TEST_P(BodySourceTest, FailsWhenItsLengthChangesForAFreshConnection) {
  const RawServer server(
      [](const RawRequest& request, RawConnection& connection) {
        std::string body;
        while (body.size() < 3 && connection.Read(body)) {
        }
        if (request.target == "/second" && request.connection == 0) return connection.Reset();
        connection.Write(Response(200, body));
      },
      {nullptr, false});
  EXPECT_EQ(Upload(server.Url("/first"), std::make_shared<TestSource>("abc")),
            Received(200, "abc"));
  EXPECT_EQ(Upload(server.Url("/second"), std::make_shared<GrowingSource>()),
            Failed(0, TransferError::kBody));
}

TEST_P(BodySourceTest, MayBeAnsweredEarly) {
  const RawServer server(
      [](const RawRequest&, RawConnection& connection) {
        connection.Write(Response(413, "too large"));
        connection.StallWithoutReading();
      },
      {nullptr, false, 4096});
  const auto source = std::make_shared<TestSource>(std::string(kLargeBody, 'x'));
  EXPECT_EQ(Upload(server.Url(), source), Received(413, "too large"));
}

TEST_P(BodySourceTest, IsSilentWhenTheServerStopsReading) {
  SetInactivityTimeout(0.5F);
  const RawServer server(
      [](const RawRequest&, RawConnection& connection) { connection.StallWithoutReading(); },
      {nullptr, false, 4096});
  const auto source = std::make_shared<TestSource>(std::string(kLargeBody, 'x'));
  EXPECT_EQ(Upload(server.Url(), source), Failed(0, TransferError::kSilent));
}

TEST_P(BodySourceTest, CountsInTheEvents) {
  const RawServer server(Echo());
  EndListener listener;
  Background background(server.Url());
  MemorySource source(std::string(100000, 'x'));
  EXPECT_TRUE(background.transport->UploadFrom(source));
  EXPECT_EQ(listener.last().bytes_sent, 100000U);
  EXPECT_EQ(listener.last().bytes_to_send, 100000U);
  EXPECT_STREQ(listener.last().method, "POST");
}

TEST_P(BodySourceTest, IsLetGoBeforeThePost) {
  const RawServer server(Echo());
  const auto source = std::make_shared<TestSource>("abc");
  EXPECT_EQ(Upload(server.Url(), source), Received(200, "abc"));
  EXPECT_EQ(source.use_count(), 1);
}

TEST_P(BodySourceTest, MemorySourceGivesItsBytes) {
  const RawServer server(Echo());
  const std::string text = Numbers(200000);
  EXPECT_TRUE(Upload(server.Url(), std::make_shared<MemorySource>(text)) == Received(200, text));
}

class FileSourceTest : public BodyFixture {
 protected:
  std::string Path(const char* name) const { return (folder_.path() / name).string(); }
  std::string Make(const char* name, const std::string& content) const {
    std::ofstream(Path(name), std::ios::binary) << content;
    return Path(name);
  }

 private:
  const TemporaryFolder folder_;
};
IN_BOTH_BODY_MODES(FileSourceTest);

TEST_P(FileSourceTest, GivesTheFile) {
  const RawServer server(Echo());
  const std::string text = Numbers(500000);
  const auto source = std::make_shared<FileSource>(Make("x", text));
  EXPECT_TRUE(Upload(server.Url(), source) == Received(200, text));
  EXPECT_TRUE(Upload(server.Url(), source) == Received(200, text)) << "a second time";
  EXPECT_EQ(source->error(), 0);
}

TEST_P(FileSourceTest, SaysWhyItFails) {
  const RawServer server(Echo());
  const auto missing = std::make_shared<FileSource>(Path("none"));
  EXPECT_EQ(missing->error(), ENOENT);
  EXPECT_EQ(Upload(server.Url(), missing), Failed(0, TransferError::kBody));
  const auto folder = std::make_shared<FileSource>(Path("."));
  EXPECT_EQ(folder->error(), EISDIR);
  EXPECT_EQ(Upload(server.Url(), folder), Failed(0, TransferError::kBody));
  EXPECT_TRUE(server.requests().empty());
}

// Truncates the file when its first piece is on the way.
TEST_P(FileSourceTest, FailsWhenTheFileShrinks) {
  const std::string path = Make("x", std::string(kLargeBody, 'x'));
  const RawServer server(
      [&path](const RawRequest&, RawConnection& connection) {
        std::filesystem::resize_file(path, 10);
        connection.Stall();
      },
      {nullptr, false, 4096});
  const auto source = std::make_shared<FileSource>(path);
  EXPECT_EQ(Upload(server.Url(), source), Failed(0, TransferError::kBody));
}

}  // namespace
}  // namespace stowra_test
