// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/file_sink.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "tests/platform/http/body_fixture.h"
#include "tests/platform/http/gzip_text.h"
#include "tests/support/raw_server.h"
#include "tests/support/temporary_folder.h"

namespace stowra_test {
namespace {

using ovrant::internet::FileSink;
using Names = std::vector<std::string>;

constexpr char kEtag[] = "ETag: \"v1\"\r\n";

// What a server has, and how it answers.
struct Thing {
  std::string content;
  std::string headers = kEtag;  // of every answer, each with its line end
  std::size_t cut = SIZE_MAX;   // the connection ends after so many bytes of a body
  const char* range = nullptr;  // in place of the right Content-Range
  bool has_ranges = true;
};

RawServer::Handler Serve(const Thing& thing) {
  return [&thing](const RawRequest& request, RawConnection& connection) {
    std::string head = "HTTP/1.1 200 OK\r\n";
    std::size_t first = 0;
    const std::size_t size = thing.content.size();
    const std::string validator = request.Header("If-Range");
    const bool is_same = thing.headers.find(": " + validator + "\r\n") != std::string::npos;
    if (thing.has_ranges && request.HasHeader("Range") && is_same) {
      first = std::stoul(request.Header("Range").substr(6));
      if (first >= size) return static_cast<void>(connection.Write(Response(416, "no")));
      const std::string range = "bytes " + std::to_string(first) + "-" + std::to_string(size - 1) +
                                "/" + std::to_string(size);
      head =
          "HTTP/1.1 206 Part\r\nContent-Range: " + (thing.range == nullptr ? range : thing.range) +
          "\r\n";
    }
    const std::string body = thing.content.substr(first);
    connection.Write(head + thing.headers + "Content-Length: " + std::to_string(body.size()) +
                     "\r\n\r\n" + body.substr(0, thing.cut));
    if (thing.cut < body.size()) connection.Close();
  };
}

std::string Letters(std::size_t size) {
  std::string text(size, '\0');
  for (std::size_t i = 0; i < size; ++i) text[i] = static_cast<char>('a' + i * 7 % 26);
  return text;
}

class FileSinkTest : public BodyFixture {
 protected:
  std::string Path(const std::string& name = "x") const { return (folder_.path() / name).string(); }
  void Make(const std::string& name, const std::string& content) const {
    std::ofstream(Path(name), std::ios::binary) << content;
  }
  std::string Content(const std::string& name = "x") const {
    std::ifstream file(Path(name), std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();
    return file ? content.str() : "(none)";
  }
  bool WaitForContent(const std::string& name, const std::string& content) const {
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (Content(name) != content) {
      if (std::chrono::steady_clock::now() > end) return false;
      std::this_thread::yield();
    }
    return true;
  }
  Names All() const {
    Names names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder_.path())) {
      names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }

  // Downloads `thing` to "x" with a new sink.
  Answer Fetch(const Thing& thing, FileSink::Start start = FileSink::Start::kContinue,
               FileSink::Existing existing = FileSink::Existing::kReplace) {
    server_.reset();
    served_ = thing;
    server_ = std::make_unique<RawServer>(Serve(served_));
    auto sink = std::make_shared<FileSink>(Path(), start, existing);
    const Answer answer = Download(server_->Url(), sink);
    error = sink->error();
    size = sink->size();
    continued = sink->continued_size();
    can_continue = sink->CanContinue();
    return answer;
  }

  // Leaves a part of `bytes` bytes.
  void LeavePart(Thing thing, std::size_t bytes) {
    thing.cut = bytes;
    EXPECT_EQ(Fetch(thing, FileSink::Start::kAnew), Failed(200, TransferError::kCutOff));
    EXPECT_TRUE(can_continue);
    EXPECT_TRUE(Content("x.part") == thing.content.substr(0, bytes));
  }

  void ExpectWhole(const Thing& thing) const {
    EXPECT_TRUE(Content() == thing.content);
    EXPECT_EQ(All(), Names{"x"});
    EXPECT_EQ(size, thing.content.size());
    EXPECT_EQ(error, 0);
  }

  std::size_t CountRequests() const { return server_->requests().size(); }
  RawRequest First() const { return server_->requests().at(0); }

  const TemporaryFolder folder_;
  Thing served_;  // outlives the server
  std::unique_ptr<RawServer> server_;

  // Of the last Fetch.
  int error = 0;
  std::uint64_t size = 0;
  std::uint64_t continued = 0;
  bool can_continue = false;
};
IN_BOTH_BODY_MODES(FileSinkTest);

TEST_P(FileSinkTest, WritesTheFile) {
  for (const std::size_t length : {0U, 1U, 300000U}) {
    const Thing thing{Letters(length)};
    EXPECT_EQ(Fetch(thing), Received(200, ""));
    ExpectWhole(thing);
    EXPECT_FALSE(can_continue);
    EXPECT_FALSE(First().HasHeader("Range"));
    EXPECT_EQ(First().Header("Accept-Encoding"), "identity");
  }
}

TEST_P(FileSinkTest, NamesTheFileOnlyWhenItIsWhole) {
  Make("x", "old");
  const RawServer server([this](const RawRequest&, RawConnection& connection) {
    connection.Write("HTTP/1.1 200 OK\r\nContent-Length: 6\r\n\r\nabc");
    EXPECT_TRUE(WaitForContent("x.part", "abc"));
    EXPECT_EQ(Content(), "old");
    connection.Write("def");
  });
  EXPECT_EQ(Download(server.Url(), std::make_shared<FileSink>(Path())), Received(200, ""));
  EXPECT_EQ(Content(), "abcdef");
}

TEST_P(FileSinkTest, LeavesOtherRepliesInMemory) {
  for (const int status : {201, 204, 206, 404, 416, 500}) {
    const std::string body = status == 204 ? "" : "message";
    const RawServer server(Always(Response(status, body, kEtag)));
    EXPECT_EQ(Download(server.Url(), std::make_shared<FileSink>(Path())), Received(status, body));
    EXPECT_EQ(All(), Names{});
  }
}

TEST_P(FileSinkTest, ContinuesWhatABrokenDownloadLeft) {
  const Thing thing{Letters(200000)};
  LeavePart(thing, 70000);
  EXPECT_EQ(All(), (Names{"x.part", "x.part.validator"}));
  EXPECT_EQ(Fetch(thing), Received(206, ""));
  EXPECT_EQ(First().Header("Range"), "bytes=70000-");
  EXPECT_EQ(First().Header("If-Range"), "\"v1\"");
  EXPECT_EQ(continued, 70000U);
  ExpectWhole(thing);
}

TEST_P(FileSinkTest, ContinuesTwice) {
  Thing thing{Letters(200000)};
  LeavePart(thing, 70000);
  thing.cut = 50000;
  EXPECT_EQ(Fetch(thing), Failed(206, TransferError::kCutOff));
  EXPECT_EQ(size, 120000U);
  EXPECT_TRUE(can_continue);
  thing.cut = SIZE_MAX;
  EXPECT_EQ(Fetch(thing), Received(206, ""));
  EXPECT_EQ(continued, 120000U);
  ExpectWhole(thing);
}

TEST_P(FileSinkTest, OneSinkMayContinueItself) {
  Thing thing{Letters(100)};
  thing.cut = 30;
  const RawServer server(Serve(thing));
  const auto sink = std::make_shared<FileSink>(Path(), FileSink::Start::kContinue);
  EXPECT_EQ(Download(server.Url(), sink), Failed(200, TransferError::kCutOff));
  thing.cut = SIZE_MAX;
  EXPECT_EQ(Download(server.Url(), sink), Received(206, ""));
  EXPECT_EQ(sink->continued_size(), 30U);
  EXPECT_EQ(Content(), thing.content);
  EXPECT_EQ(All(), Names{"x"});
}

TEST_P(FileSinkTest, ContinuesByDateWithoutAnEtag) {
  Thing thing{Letters(100)};
  thing.headers =
      "ETag: W/\"weak\"\r\nLast-Modified: Sun, 22 Nov 2026 08:00:00 GMT\r\n"
      "Date: Sun, 22 Nov 2026 08:01:00 GMT\r\n";
  LeavePart(thing, 30);
  EXPECT_EQ(Fetch(thing), Received(206, ""));
  EXPECT_EQ(First().Header("If-Range"), "Sun, 22 Nov 2026 08:00:00 GMT");
  ExpectWhole(thing);
}

TEST_P(FileSinkTest, LeavesNoPartWithoutAStrongValidator) {
  for (const char* headers :
       {"", "ETag: W/\"v1\"\r\n", "Last-Modified: Sun, 22 Nov 2026 08:00:00 GMT\r\n",
        "Last-Modified: Sun, 22 Nov 2026 08:00:00 GMT\r\nDate: Sun, 22 Nov 2026 08:00:59 GMT\r\n",
        "ETag: \"v1\"\r\nContent-Encoding: gzip\r\n"}) {
    Thing thing{Gzip(Letters(1000))};
    thing.headers = headers;
    thing.cut = 30;
    EXPECT_FALSE(Fetch(thing).received) << headers;
    EXPECT_FALSE(can_continue);
    EXPECT_EQ(All(), Names{}) << headers;
  }
}

TEST_P(FileSinkTest, BeginsAnewUnlessToldToContinue) {
  const Thing thing{Letters(100)};
  LeavePart(thing, 30);
  EXPECT_EQ(Fetch(thing, FileSink::Start::kAnew), Received(200, ""));
  EXPECT_FALSE(First().HasHeader("Range"));
  ExpectWhole(thing);
}

TEST_P(FileSinkTest, BeginsAnewWhenTheThingHasChanged) {
  LeavePart({Letters(100)}, 30);
  Thing changed{"something else"};
  changed.headers = "ETag: \"v2\"\r\n";
  EXPECT_EQ(Fetch(changed), Received(200, ""));
  EXPECT_EQ(First().Header("Range"), "bytes=30-");
  EXPECT_EQ(continued, 0U);
  ExpectWhole(changed);
}

TEST_P(FileSinkTest, BeginsAnewWithoutRangesOnTheServer) {
  Thing thing{Letters(100)};
  LeavePart(thing, 30);
  thing.has_ranges = false;
  EXPECT_EQ(Fetch(thing), Received(200, ""));
  EXPECT_EQ(CountRequests(), 1U);
  ExpectWhole(thing);
}

TEST_P(FileSinkTest, AsksAgainAfterARangeThatDoesNotFit) {
  for (const char* range :
       {"bytes 31-99/100", "bytes 30-98/100", "bytes 30-99/101", "bytes 0-99/100", "bytes */100",
        "bytes 30-99/*", "lines 30-99/100", "30-99/100", "bytes 30-99", "bytes 30-99/100x",
        "bytes 99-30/100", "bytes 30-18446744073709551615/0", "bytes -1-99/100"}) {
    Thing thing{Letters(100)};
    LeavePart(thing, 30);
    thing.range = range;
    EXPECT_EQ(Fetch(thing), Received(200, "")) << range;
    EXPECT_EQ(CountRequests(), 2U);
    EXPECT_FALSE(LastRequest(*server_).HasHeader("Range"));
    ExpectWhole(thing);
  }
}

TEST_P(FileSinkTest, AsksAgainWhenTheRestHasAnotherValidator) {
  const RawServer server([](const RawRequest& request, RawConnection& connection) {
    const std::string new_etag = "ETag: \"v2\"\r\n";
    connection.Write(
        request.HasHeader("Range")
            ? Response(206, std::string(70, 'x'), new_etag + "Content-Range: bytes 30-99/100\r\n")
            : Response(200, "new", new_etag));
  });
  LeavePart({Letters(100)}, 30);
  const auto sink = std::make_shared<FileSink>(Path(), FileSink::Start::kContinue);
  EXPECT_EQ(Download(server.Url(), sink), Received(200, ""));
  EXPECT_EQ(Content(), "new");
}

TEST_P(FileSinkTest, AsksAgainWhenTheServerHasNoRest) {
  Thing thing{Letters(100)};
  LeavePart(thing, 30);
  thing.content = Letters(20);
  EXPECT_EQ(Fetch(thing), Received(200, ""));
  EXPECT_EQ(CountRequests(), 2U);
  ExpectWhole(thing);
}

TEST_P(FileSinkTest, KeepsThePartWhenTheServerIsBusy) {
  const Thing thing{Letters(100)};
  LeavePart(thing, 30);
  const RawServer busy(Always(Response(503, "later")));
  const auto sink = std::make_shared<FileSink>(Path(), FileSink::Start::kContinue);
  EXPECT_EQ(Download(busy.Url(), sink), Received(503, "later"));
  EXPECT_TRUE(sink->CanContinue());
  EXPECT_EQ(All(), (Names{"x.part", "x.part.validator"}));
}

TEST_P(FileSinkTest, IgnoresAPartWithoutAUsableNote) {
  for (const char* note : {"", "\n", "\n100\n", "\x01\n"}) {
    const Thing thing{Letters(100)};
    Make("x.part", "abc");
    Make("x.part.validator", note);
    EXPECT_EQ(Fetch(thing), Received(200, ""));
    EXPECT_FALSE(First().HasHeader("Range"));
    ExpectWhole(thing);
  }
  Make("x.part", "");
  Make("x.part.validator", "\"v1\"\n100\n");
  EXPECT_EQ(Fetch({Letters(100)}), Received(200, ""));
  EXPECT_FALSE(First().HasHeader("Range"));
}

TEST_P(FileSinkTest, ContinuesAfterARedirect) {
  const Thing thing{Letters(100)};
  LeavePart(thing, 30);
  const RawServer other(Serve(thing));
  const RawServer server(Always(Response(302, "", "Location: " + other.Url("/to") + "\r\n")));
  const auto sink = std::make_shared<FileSink>(Path(), FileSink::Start::kContinue);
  EXPECT_EQ(Download(server.Url(), sink), Received(206, ""));
  EXPECT_EQ(LastRequest(other).Header("Range"), "bytes=30-");
  EXPECT_EQ(Content(), thing.content);
  EXPECT_EQ(All(), Names{"x"});
}

TEST_P(FileSinkTest, KeepsTheModeOfTheFileThatItReplaces) {
  Make("x", "old");
  std::filesystem::permissions(Path(), std::filesystem::perms{0604});
  EXPECT_EQ(Fetch({"new"}), Received(200, ""));
  EXPECT_EQ(std::filesystem::status(Path()).permissions(), std::filesystem::perms{0604});
  EXPECT_EQ(Content(), "new");
}

TEST_P(FileSinkTest, ReplacesTheTargetOfALink) {
  Make("target", "old");
  std::filesystem::create_symlink("target", Path());
  EXPECT_EQ(Fetch({"new"}), Received(200, ""));
  EXPECT_EQ(Content("target"), "new");
  EXPECT_EQ(All(), (Names{"target", "x"}));
  EXPECT_TRUE(std::filesystem::is_symlink(Path()));
}

TEST_P(FileSinkTest, MayKeepAnExistingFile) {
  Make("x", "old");
  EXPECT_EQ(Fetch({"new"}, FileSink::Start::kAnew, FileSink::Existing::kKeep),
            Failed(200, TransferError::kBody));
  EXPECT_EQ(error, EEXIST);
  EXPECT_EQ(Content(), "old");
  EXPECT_EQ(All(), Names{"x"});
}

TEST_P(FileSinkTest, KeepsAFileThatAppearsMeanwhile) {
  const RawServer server([this](const RawRequest&, RawConnection& connection) {
    connection.Write("HTTP/1.1 200 OK\r\nContent-Length: 6\r\n\r\nabc");
    EXPECT_TRUE(WaitForContent("x.part", "abc"));
    Make("x", "mine");
    connection.Write("def");
  });
  const auto sink =
      std::make_shared<FileSink>(Path(), FileSink::Start::kAnew, FileSink::Existing::kKeep);
  EXPECT_EQ(Download(server.Url(), sink), Failed(200, TransferError::kBody));
  EXPECT_EQ(sink->error(), EEXIST);
  EXPECT_EQ(Content(), "mine");
  EXPECT_EQ(All(), Names{"x"});
}

TEST_P(FileSinkTest, RefusesANameThatIsNoFiles) {
  std::filesystem::create_directory(Path());
  EXPECT_EQ(Fetch({"new"}), Failed(200, TransferError::kBody));
  EXPECT_EQ(error, EEXIST);
  std::filesystem::remove(Path());
  ASSERT_EQ(mkfifo(Path("x.part").c_str(), 0600), 0);
  EXPECT_EQ(Fetch({"new"}), Failed(200, TransferError::kBody));
  EXPECT_EQ(error, EEXIST);
  EXPECT_EQ(All(), Names{"x.part"});
}

TEST_P(FileSinkTest, DoesNotFollowALinkThatHasThePartsName) {
  Make("precious", "mine");
  std::filesystem::create_symlink("precious", Path("x.part"));
  EXPECT_EQ(Fetch({"new"}), Failed(200, TransferError::kBody));
  EXPECT_EQ(error, ELOOP);
  EXPECT_EQ(Content("precious"), "mine");
}

TEST_P(FileSinkTest, TwoDoNotWriteOnePart) {
  const int other = open(Path("x.part").c_str(), O_RDWR | O_CREAT, 0600);
  ASSERT_EQ(flock(other, LOCK_EX), 0);
  EXPECT_EQ(Fetch({"new"}), Failed(200, TransferError::kBody));
  EXPECT_EQ(error, EWOULDBLOCK);
  EXPECT_EQ(All(), Names{"x.part"});
  close(other);
  EXPECT_EQ(Fetch({"new"}), Received(200, ""));
}

TEST_P(FileSinkTest, ReportsAMissingFolder) {
  const RawServer server(Always(Response(200, "new", kEtag)));
  const auto sink = std::make_shared<FileSink>(Path("none/x"));
  EXPECT_EQ(Download(server.Url(), sink), Failed(200, TransferError::kBody));
  EXPECT_EQ(sink->error(), ENOENT);
}

TEST_P(FileSinkTest, ReportsAFolderThatVanishes) {
  std::filesystem::create_directory(Path("sub"));
  const RawServer server([this](const RawRequest&, RawConnection& connection) {
    connection.Write(std::string("HTTP/1.1 200 OK\r\n") + kEtag + "Content-Length: 6\r\n\r\nabc");
    EXPECT_TRUE(WaitForContent("sub/x.part", "abc"));
    std::filesystem::remove_all(Path("sub"));
    connection.Write("def");
  });
  const auto sink = std::make_shared<FileSink>(Path("sub/x"));
  EXPECT_EQ(Download(server.Url(), sink), Failed(200, TransferError::kBody));
  EXPECT_EQ(sink->error(), ENOENT);
  EXPECT_EQ(All(), Names{});
}

// Files of this process may have so many bytes while this lives.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) {
    former_handler_ = std::signal(SIGXFSZ, SIG_IGN);
    getrlimit(RLIMIT_FSIZE, &former_);
    const rlimit limit = {bytes, former_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &former_);
    std::signal(SIGXFSZ, former_handler_);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit former_ = {};
  void (*former_handler_)(int);
};

TEST_P(FileSinkTest, LeavesNothingNewWhenTheDiskIsFull) {
  Make("x", "old");
  const FileSizeLimit limit(50000);
  EXPECT_EQ(Fetch({Letters(200000)}), Failed(200, TransferError::kBody));
  EXPECT_EQ(error, EFBIG);
  EXPECT_FALSE(can_continue);
  EXPECT_EQ(Content(), "old");
  EXPECT_EQ(All(), Names{"x"});
}

TEST_P(FileSinkTest, KeepsAnEarlierPartWhenTheDiskIsFull) {
  const Thing thing{Letters(200000)};
  LeavePart(thing, 30000);
  {
    const FileSizeLimit limit(50000);
    EXPECT_EQ(Fetch(thing), Failed(206, TransferError::kBody));
    EXPECT_EQ(error, EFBIG);
  }
  EXPECT_EQ(Fetch(thing), Received(206, ""));
  ExpectWhole(thing);
}

TEST_P(FileSinkTest, TakesTheLongestName) {
  for (const std::string& name :
       {std::string(255, 'n'), "ab" + std::string(251, 'c') + "\xC3\xA9"}) {
    const Thing thing{Letters(100), kEtag, 30};
    const RawServer server(Serve(thing));
    auto sink = std::make_shared<FileSink>(Path(name), FileSink::Start::kContinue);
    EXPECT_FALSE(Download(server.Url(), sink).received);
    EXPECT_TRUE(sink->CanContinue());
    sink.reset();
    Thing whole{Letters(100)};
    const RawServer second(Serve(whole));
    sink = std::make_shared<FileSink>(Path(name), FileSink::Start::kContinue);
    EXPECT_EQ(Download(second.Url(), sink), Received(206, ""));
    EXPECT_EQ(Content(name), Letters(100));
  }
}

TEST_P(FileSinkTest, FailsWhenTheRestIsShorterThanItsRange) {
  const RawServer server([](const RawRequest& request, RawConnection& connection) {
    connection.Write(request.HasHeader("Range")
                         ? "HTTP/1.1 206 Part\r\nETag: \"v1\"\r\nContent-Range: bytes 5-99/100\r\n"
                           "Connection: close\r\n\r\nabc"
                         : "HTTP/1.1 200 OK\r\nETag: \"v1\"\r\nTransfer-Encoding: chunked\r\n\r\n"
                           "5\r\nhello\r\n");
    connection.Close();
  });
  const auto sink = std::make_shared<FileSink>(Path(), FileSink::Start::kContinue);
  EXPECT_EQ(Download(server.Url(), sink), Failed(200, TransferError::kCutOff));
  EXPECT_EQ(Download(server.Url(), sink), Failed(206, TransferError::kBody));
  EXPECT_EQ(sink->error(), EBADMSG);
  EXPECT_TRUE(sink->CanContinue());
  EXPECT_EQ(All(), (Names{"x.part", "x.part.validator"}));
}

TEST_P(FileSinkTest, BeginsAnewWhenTheRestHasNoEtag) {
  LeavePart({"0123456789"}, 5);
  const RawServer server([](const RawRequest& request, RawConnection& connection) {
    connection.Write(request.HasHeader("Range")
                         ? "HTTP/1.1 206 Part\r\nContent-Range: bytes 5-9/10\r\n"
                           "Content-Length: 5\r\n\r\nother"
                         : Response(200, "0123456789"));
  });
  const auto sink = std::make_shared<FileSink>(Path(), FileSink::Start::kContinue);
  EXPECT_EQ(Download(server.Url(), sink), Received(200, ""));
  EXPECT_EQ(Content(), "0123456789");
}

// Another sink lets go of the part before the answer comes.
TEST_P(FileSinkTest, KeepsAPartThatWasBusy) {
  LeavePart({"0123456789"}, 5);
  const int other = open(Path("x.part").c_str(), O_RDWR);
  ASSERT_EQ(flock(other, LOCK_EX), 0);
  const RawServer server([other](const RawRequest&, RawConnection& connection) {
    close(other);
    connection.Write(Response(200, "0123456789"));
  });
  const auto sink = std::make_shared<FileSink>(Path(), FileSink::Start::kContinue);
  EXPECT_EQ(Download(server.Url(), sink), Failed(200, TransferError::kBody));
  EXPECT_EQ(sink->error(), EWOULDBLOCK);
  EXPECT_EQ(Content("x.part"), "01234");
  EXPECT_EQ(All(), (Names{"x.part", "x.part.validator"}));
}

TEST_P(FileSinkTest, GivesNoNameToAPartOfSomebodyElse) {
  const RawServer server([this](const RawRequest&, RawConnection& connection) {
    connection.Write("HTTP/1.1 200 OK\r\nContent-Length: 6\r\n\r\nabc");
    EXPECT_TRUE(WaitForContent("x.part", "abc"));
    std::filesystem::remove(Path("x.part"));
    Make("x.part", "half");
    connection.Write("def");
  });
  const auto sink = std::make_shared<FileSink>(Path());
  EXPECT_EQ(Download(server.Url(), sink), Failed(200, TransferError::kBody));
  EXPECT_EQ(sink->error(), ENOENT);
  EXPECT_EQ(All(), Names{"x.part"});
  EXPECT_EQ(Content("x.part"), "half");
}

TEST_P(FileSinkTest, LeavesTheOtherNameOfAnOldPart) {
  Make("precious", "p");
  std::filesystem::create_hard_link(Path("precious"), Path("x.part"));
  EXPECT_EQ(Fetch({"abc"}, FileSink::Start::kAnew), Received(200, ""));
  EXPECT_EQ(Content(), "abc");
  EXPECT_EQ(Content("precious"), "p");
}

TEST_P(FileSinkTest, KnowsThePartsSizeWithoutAReply) {
  LeavePart({"0123456789"}, 5);
  const auto sink = std::make_shared<FileSink>(Path(), FileSink::Start::kContinue);
  EXPECT_FALSE(Download("http://127.0.0.1:1/", sink).received);
  EXPECT_EQ(sink->size(), 5U);
  EXPECT_TRUE(sink->CanContinue());
}

}  // namespace
}  // namespace stowra_test
