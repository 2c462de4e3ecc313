// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/file_sink.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <string>

#include "tests/platform/http/file_sink_fixture.h"
#include "tests/platform/http/gzip_text.h"
#include "tests/platform/http/handlers.h"

namespace stowra_test {
namespace {

class FileSinkTest : public FileSinkFixture {};
IN_BOTH_BODY_MODES(FileSinkTest);

TEST_P(FileSinkTest, WritesTheFile) {
  for (const std::size_t length : {0U, 1U, 300000U}) {
    const Thing thing{Numbers(length)};
    EXPECT_EQ(Fetch(thing), Received(200, ""));
    ExpectWhole(thing);
    EXPECT_FALSE(can_continue);
    EXPECT_FALSE(First().HasHeader("Range"));
    EXPECT_EQ(First().Header("Accept-Encoding"), "identity");
  }
}

// The Content-Length of such a reply is not that of the file.
TEST_P(FileSinkTest, WritesWhatAReplyInGzipHolds) {
  const RawServer server(Always(Response(200, Gzip("hello"), kGzipHeader)));
  EXPECT_EQ(FetchFrom(server.Url()), Received(200, ""));
  EXPECT_EQ(Content(), "hello");
}

TEST_P(FileSinkTest, NamesTheFileOnlyWhenItIsWhole) {
  Make("x", "old");
  const RawServer server(InHalves([this] { EXPECT_EQ(Content(), "old"); }));
  EXPECT_EQ(FetchFrom(server.Url(), kAnew), Received(200, ""));
  EXPECT_EQ(Content(), "abcdef");
}

TEST_P(FileSinkTest, LeavesOtherRepliesInMemory) {
  for (const int status : {201, 204, 206, 404, 416, 500}) {
    const std::string body = status == 204 ? "" : "message";
    const RawServer server(Always(Response(status, body, kEtag)));
    EXPECT_EQ(FetchFrom(server.Url(), kAnew), Received(status, body));
    EXPECT_EQ(All(), Names{});
  }
}

TEST_P(FileSinkTest, GivesANewFileTheUsualMode) {
  Make("made", "");
  EXPECT_EQ(Fetch({"new"}), Received(200, ""));
  EXPECT_EQ(std::filesystem::status(Path()).permissions(),
            std::filesystem::status(Path("made")).permissions());
}

TEST_P(FileSinkTest, KeepsTheModeOfTheFileThatItReplaces) {
  Make("x", "old");
  std::filesystem::permissions(Path(), std::filesystem::perms{0604});
  // Nobody may read a part who might not read the file.
  const RawServer server(InHalves([this] {
    EXPECT_EQ(std::filesystem::status(Path("x.part")).permissions(), std::filesystem::perms{0600});
  }));
  EXPECT_EQ(FetchFrom(server.Url()), Received(200, ""));
  EXPECT_EQ(std::filesystem::status(Path()).permissions(), std::filesystem::perms{0604});
  EXPECT_EQ(Content(), "abcdef");
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
  EXPECT_EQ(Fetch({"new"}, kAnew, kKeep), Failed(200, TransferError::kBody));
  EXPECT_EQ(error, EEXIST);
  EXPECT_EQ(Content(), "old");
  EXPECT_EQ(All(), Names{"x"});
}

TEST_P(FileSinkTest, KeepsAFileThatAppearsMeanwhile) {
  const RawServer server(InHalves([this] { Make("x", "mine"); }));
  EXPECT_EQ(FetchFrom(server.Url(), kAnew, kKeep), Failed(200, TransferError::kBody));
  EXPECT_EQ(error, EEXIST);
  EXPECT_EQ(Content(), "mine");
  EXPECT_EQ(All(), Names{"x"});
}

TEST_P(FileSinkTest, KeepsAFolderOrALinkThatAppearsMeanwhile) {
  for (const bool is_link : {false, true}) {
    const RawServer server(InHalves([this, is_link] {
      if (is_link) return std::filesystem::create_symlink("none", Path());
      std::filesystem::create_directory(Path());
    }));
    EXPECT_EQ(FetchFrom(server.Url()), Failed(200, TransferError::kBody));
    EXPECT_EQ(error, EEXIST);
    EXPECT_EQ(std::filesystem::is_symlink(Path()), is_link);
    EXPECT_EQ(All(), Names{"x"});
    std::filesystem::remove(Path());
  }
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
  target = "none/x";
  EXPECT_EQ(Fetch({"new"}, kAnew), Failed(200, TransferError::kBody));
  EXPECT_EQ(error, ENOENT);
}

TEST_P(FileSinkTest, ReportsAFolderThatVanishes) {
  std::filesystem::create_directory(Path("sub"));
  const RawServer server(
      InHalves([this] { std::filesystem::remove_all(Path("sub")); }, "sub/x.part", kEtag));
  target = "sub/x";
  EXPECT_EQ(FetchFrom(server.Url(), kAnew), Failed(200, TransferError::kBody));
  EXPECT_EQ(error, ENOENT);
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
  EXPECT_EQ(Fetch({Numbers(200000)}), Failed(200, TransferError::kBody));
  EXPECT_EQ(error, EFBIG);
  EXPECT_FALSE(can_continue);
  EXPECT_EQ(Content(), "old");
  EXPECT_EQ(All(), Names{"x"});
}

TEST_P(FileSinkTest, KeepsAnEarlierPartWhenTheDiskIsFull) {
  const Thing thing{Numbers(200000)};
  LeavePart(thing, 30000);
  {
    const FileSizeLimit limit(50000);
    EXPECT_EQ(Fetch(thing), Failed(206, TransferError::kBody));
    EXPECT_EQ(error, EFBIG);
  }
  EXPECT_EQ(Fetch(thing), Received(206, ""));
  ExpectWhole(thing);
}

TEST_P(FileSinkTest, KeepsItsOwnEarlierPartWhenTheDiskIsFull) {
  const Thing thing{Numbers(200000)};
  const auto sink = BrokenOff({thing.content, kEtag, 30000});
  const RawServer server(Serve(thing));
  const FileSizeLimit limit(50000);
  EXPECT_EQ(Download(server.Url(), sink), Failed(206, TransferError::kBody));
  EXPECT_EQ(sink->error(), EFBIG);
  EXPECT_TRUE(sink->CanContinue());
  ExpectPart();
}

TEST_P(FileSinkTest, TakesTheLongestName) {
  for (const std::string& name :
       {std::string(255, 'n'), "ab" + std::string(251, 'c') + "\xC3\xA9"}) {
    target = name;
    EXPECT_FALSE(Fetch({Numbers(100), kEtag, 30}).received);
    EXPECT_TRUE(can_continue);
    EXPECT_EQ(Fetch({Numbers(100)}), Received(206, ""));
    EXPECT_EQ(Content(name), Numbers(100));
  }
}

TEST_P(FileSinkTest, LeavesTheOtherNameOfAnOldPart) {
  Make("precious", "p");
  std::filesystem::create_hard_link(Path("precious"), Path("x.part"));
  EXPECT_EQ(Fetch({"abc"}, kAnew), Received(200, ""));
  EXPECT_EQ(Content(), "abc");
  EXPECT_EQ(Content("precious"), "p");
}

}  // namespace
}  // namespace stowra_test
