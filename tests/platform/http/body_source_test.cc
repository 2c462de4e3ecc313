// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/body_source.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

#include "common_stowraapi/platform/file_source.h"
#include "common_stowraapi/platform/memory_source.h"
#include "tests/platform/http/body_fixture.h"
#include "tests/platform/http/handlers.h"
#include "tests/support/temporary_folder.h"

namespace stowra_test {
namespace {

using ovrant::internet::FileSource;
using ovrant::internet::MemorySource;

std::shared_ptr<TestSource> Source(std::string text) {
  return std::make_shared<TestSource>(std::move(text));
}

// Waits for three bytes of a body and answers with them. Resets the first connection instead when
// it asks for /second.
void DieOnSecond(const RawRequest& request, RawConnection& connection) {
  // The body is read first: a source that nobody read from is not taken back.
  std::string body;
  while (body.size() < 3 && connection.Read(body)) {
  }
  if (request.target == "/second" && request.connection == 0) return connection.Reset();
  connection.Write(Response(200, body));
}

// Answers with a body of chunks as it came. For servers that do not read bodies.
void EchoChunks(const RawRequest& request, RawConnection& connection) {
  std::string body;
  while (body.find("0\r\n\r\n") == std::string::npos && connection.Read(body)) {
  }
  connection.Write(Response(200, request.Header("Transfer-Encoding") + " " + body));
}

class BodySourceTest : public BodyFixture {
 protected:
  const RawServer echo_{Echo};
  const std::shared_ptr<TestSource> source_ = Source("abc");
};
IN_BOTH_BODY_MODES(BodySourceTest);

TEST_P(BodySourceTest, IsThePostsBody) {
  for (const std::size_t size : {0U, 1U, 65536U, 3000000U}) {
    const std::string text = Numbers(size);
    const auto source = Source(text);
    source->piece = 7777;
    EXPECT_TRUE(Upload(echo_.Url("/x"), source) == Received(200, text)) << size;
    const RawRequest request = LastRequest(echo_);
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.Header("Content-Length"), std::to_string(text.size()));
    EXPECT_FALSE(request.HasHeader("Transfer-Encoding"));
    EXPECT_FALSE(request.HasHeader("Expect"));
    EXPECT_EQ(source->rewinds, 1);
    EXPECT_EQ(last_end.bytes_sent, text.size());
    EXPECT_EQ(last_end.bytes_to_send, text.size());
  }
}

TEST_P(BodySourceTest, SendsItsLengthInPlaceOfTheHosts) {
  prepare = [](InternetData& transport) {
    transport.SetValueForHTTPSendHeaders("Content-Length", "-1294967296");
    transport.SetValueForHTTPSendHeaders("Content-Type", "text/x");
    SetSendData("not sent", transport);
  };
  EXPECT_EQ(Upload(echo_.Url(), source_), Received(200, "abc"));
  EXPECT_EQ(LastRequest(echo_).Header("Content-Length"), "3");
  EXPECT_EQ(LastRequest(echo_).Header("Content-Type"), "text/x");
}

TEST_P(BodySourceTest, GoesOutInChunksWithoutALength) {
  const RawServer server(EchoChunks, {nullptr, false});
  const auto source = Source("hello");
  source->length = std::nullopt;
  source->piece = 4;
  EXPECT_EQ(Upload(server.Url(), source),
            Received(200, "chunked 4\r\nhell\r\n1\r\no\r\n0\r\n\r\n"));
}

TEST_P(BodySourceTest, MayBeSlowerThanTheTimeout) {
  SetInactivityTimeout(1.5F);
  const auto source = Source("abcd");
  source->piece = 2;
  source->on_read = [] { Event().Wait(std::chrono::milliseconds(1800)); };
  EXPECT_EQ(Upload(echo_.Url(), source), Received(200, "abcd"));
}

TEST_P(BodySourceTest, FailsTheUploadWhenItFails) {
  source_->fails = true;
  EXPECT_EQ(Upload(echo_.Url(), source_), Failed(0, TransferError::kBody));
  source_->most_rewinds = 0;
  EXPECT_EQ(Upload(echo_.Url(), source_), Failed(0, TransferError::kBody));
  EXPECT_TRUE(echo_.requests().empty());
}

TEST_P(BodySourceTest, MayThrow) {
  source_->on_read = [] { throw std::runtime_error("test"); };
  EXPECT_EQ(Upload(echo_.Url(), source_), Failed(0, TransferError::kBody));
  source_->on_read = [] { throw 5; };
  EXPECT_EQ(Upload(echo_.Url(), source_), Failed(0, TransferError::kBody));
  source_->on_read = [] { throw std::bad_alloc(); };
  EXPECT_EQ(Upload(echo_.Url(), source_), Failed(0, TransferError::kOutOfMemory));
}

TEST_P(BodySourceTest, FailsTheUploadWhenItClaimsTooMuch) {
  source_->claims_too_much = true;
  EXPECT_EQ(Upload(echo_.Url(), source_), Failed(0, TransferError::kBody));
}

// The server never gets a whole body.
TEST_P(BodySourceTest, FailsTheUploadWhenItEndsEarlyOrLate) {
  constexpr std::pair<std::size_t, std::size_t> kSizesAndLengths[] = {
      {0, 1}, {3, 4}, {100000, 100001}, {1, 0}, {3, 2}, {100000, 99999}};
  for (const auto& [size, length] : kSizesAndLengths) {
    const auto source = Source(std::string(size, 'x'));
    source->length = length;
    EXPECT_EQ(Upload(echo_.Url(), source), Failed(0, TransferError::kBody))
        << size << " " << length;
  }
  EXPECT_TRUE(echo_.requests().empty());
}

TEST_P(BodySourceTest, GoesBackForARedirect) {
  for (const int status : {307, 308}) {
    const RawServer server([status](const RawRequest& request, RawConnection& connection) {
      connection.Write(request.target == "/from" ? Response(status, "", "Location: /to\r\n")
                                                 : Response(200, request.body));
    });
    const std::string text = Numbers(300000);
    const auto source = Source(text);
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
  EXPECT_EQ(Upload(server.Url("/from"), source_), Received(200, "GET"));
  EXPECT_EQ(source_->rewinds, 1);
}

TEST_P(BodySourceTest, DoesNotGoToAnotherOrigin) {
  const RawServer other(Echo);
  const RawServer server(Always(Response(307, "", "Location: " + other.Url("/to") + "\r\n")));
  EXPECT_EQ(Upload(server.Url("/from"), source_), Received(200, ""));
  EXPECT_EQ(LastRequest(other).method, "POST");
  EXPECT_EQ(LastRequest(other).Header("Content-Length"), "0");
  EXPECT_EQ(source_->rewinds, 1);
}

// The server ends the connection between two requests.
TEST_P(BodySourceTest, GoesBackForAFreshConnection) {
  const RawServer server([](const RawRequest& request, RawConnection& connection) {
    Echo(request, connection);
    connection.Close();
  });
  for (int i = 0; i < 5; ++i) EXPECT_EQ(Upload(server.Url(), source_), Received(200, "abc"));
}

// libcurl finds out that a kept connection is dead only when it has sent on it.
TEST_P(BodySourceTest, GoesBackWhenTheKeptConnectionDies) {
  const RawServer server(DieOnSecond, {nullptr, false});
  EXPECT_EQ(Upload(server.Url("/first"), Source("abc")), Received(200, "abc"));
  const auto source = Source("xyz");
  EXPECT_EQ(Upload(server.Url("/second"), source), Received(200, "xyz"));
  EXPECT_EQ(source->rewinds, 2);
}

TEST_P(BodySourceTest, FailsWhenItsLengthChangesForAFreshConnection) {
  const RawServer server(DieOnSecond, {nullptr, false});
  EXPECT_EQ(Upload(server.Url("/first"), Source("abc")), Received(200, "abc"));
  source_->on_rewind = [this] { source_->length = (source_->bytes += 'x').size(); };
  EXPECT_EQ(Upload(server.Url("/second"), source_), Failed(0, TransferError::kBody));
}

TEST_P(BodySourceTest, MayBeAnsweredEarly) {
  const RawServer server(AnswerUnread(Response(413, "too large")), kUnread);
  const auto source = Source(std::string(kLargeBody, 'x'));
  EXPECT_EQ(Upload(server.Url(), source), Received(413, "too large"));
  source->length = std::nullopt;
  EXPECT_EQ(Upload(server.Url(), source), Received(413, "too large"));
}

TEST_P(BodySourceTest, IsSilentWhenTheServerStopsReading) {
  SetInactivityTimeout(0.5F);
  const RawServer server(AnswerUnread(""), kUnread);
  EXPECT_EQ(Upload(server.Url(), Source(std::string(kLargeBody, 'x'))),
            Failed(0, TransferError::kSilent));
}

TEST_P(BodySourceTest, IsLetGoBeforeThePost) {
  EXPECT_EQ(Upload(echo_.Url(), source_), Received(200, "abc"));
  EXPECT_EQ(source_.use_count(), 1);
}

TEST_P(BodySourceTest, MemorySourceGivesItsBytes) {
  const std::string text = Numbers(200000);
  EXPECT_TRUE(Upload(echo_.Url(), std::make_shared<MemorySource>(text)) == Received(200, text));
}

class FileSourceTest : public BodySourceTest {
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
  const std::string text = Numbers(500000);
  const auto source = std::make_shared<FileSource>(Make("x", text));
  EXPECT_TRUE(Upload(echo_.Url(), source) == Received(200, text));
  EXPECT_TRUE(Upload(echo_.Url(), source) == Received(200, text)) << "a second time";
  EXPECT_EQ(source->error(), 0);
}

TEST_P(FileSourceTest, GivesAPipeOnce) {
  const std::string path = Path("pipe");
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  const int writer = open(path.c_str(), O_RDWR);
  const auto source = std::make_shared<FileSource>(path);
  EXPECT_EQ(write(writer, "hello", 5), 5);
  close(writer);
  const RawServer server(EchoChunks, {nullptr, false});
  EXPECT_EQ(Upload(server.Url(), source), Received(200, "chunked 5\r\nhello\r\n0\r\n\r\n"));
  EXPECT_EQ(Upload(server.Url(), source), Failed(0, TransferError::kBody));
  EXPECT_EQ(source->error(), ESPIPE);
}

TEST_P(FileSourceTest, SaysWhyItFails) {
  for (const auto& [name, error] : {std::pair("none", ENOENT), std::pair(".", EISDIR)}) {
    const auto source = std::make_shared<FileSource>(Path(name));
    EXPECT_EQ(source->error(), error) << name;
    EXPECT_EQ(Upload(echo_.Url(), source), Failed(0, TransferError::kBody)) << name;
  }
  EXPECT_TRUE(echo_.requests().empty());
}

// Truncates the file when its first piece is on the way.
TEST_P(FileSourceTest, FailsWhenTheFileShrinks) {
  const std::string path = Make("x", std::string(kLargeBody, 'x'));
  const RawServer server(
      [&path](const RawRequest&, RawConnection& connection) {
        std::filesystem::resize_file(path, 10);
        connection.Stall();
      },
      kUnread);
  EXPECT_EQ(Upload(server.Url(), std::make_shared<FileSource>(path)),
            Failed(0, TransferError::kBody));
}

}  // namespace
}  // namespace stowra_test
