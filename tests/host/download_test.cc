// SPDX-License-Identifier: MIT
#include <sys/stat.h>

#include <atomic>
#include <fstream>

#include "tests/host/host_test.h"
#include "tests/support/corpora.h"
#include "tests/support/temporary_folder.h"

namespace stowra_test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

constexpr char kNamed[] = "content-disposition: attachment; filename=\"../Blue chair.qmf\"\r\n";

std::string Content() {
  std::string content;
  for (int i = 0; i < 3000; ++i) content += static_cast<char>(i);
  return content;
}

class DownloadTest : public testing::Test {
 protected:
  std::string Path(const std::string& name) const { return (folder_.path() / name).string(); }

  // Runs the program in the test's folder, after the shell command `preparation`.
  Outcome Run(const std::vector<std::string>& arguments,
              const std::string& preparation = ":") const {
    Start start;
    start.arguments = {"-c", preparation + "; cd \"$0\" && exec \"$@\"", folder_.path().string(),
                       kStowra, "download"};
    start.arguments.insert(start.arguments.end(), arguments.begin(), arguments.end());
    return RunProgram("/bin/sh", start);
  }

  void Make(const std::string& name, const std::string& content) const {
    std::ofstream(Path(name), std::ios::binary) << content;
  }

  // The names of the folder's entries.
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.path())) {
      names.push_back(entry.path().filename().string());
    }
    return names;
  }

  using NameList = std::vector<std::string>;

 private:
  const TemporaryFolder folder_;
};

TEST_F(DownloadTest, UsesTheServersFileName) {
  const RawServer server(Always(Response(200, Content(), kNamed)));
  const Outcome outcome = Run({server.Url("/x")});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "file   Blue chair.qmf\nbytes  3000\n");
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(Names(), NameList{"Blue chair.qmf"});
  EXPECT_TRUE(ReadFile(Path("Blue chair.qmf")) == Content());
}

TEST_F(DownloadTest, UsesTheUrlsFileNameWithoutHeader) {
  const RawServer server(Always(Response(200, "")));
  EXPECT_EQ(Run({server.Url("/files/chair.bin?x=1")}).out, "file   chair.bin\nbytes  0\n");
  EXPECT_EQ(Run({server.Url("/")}).out, "file   download\nbytes  0\n");
  EXPECT_EQ(ReadFile(Path("download")), "");
}

TEST_F(DownloadTest, PrintsFileAsJson) {
  const RawServer server(Always(Response(200, "abc", kNamed)));
  EXPECT_EQ(Run({server.Url(), "--json"}).out, "{\"file\":\"Blue chair.qmf\",\"bytes\":3}\n");
}

TEST_F(DownloadTest, KeepsExistingFile) {
  Make("Blue chair.qmf", "old");
  const RawServer server(Always(Response(200, "new", kNamed)));
  const Outcome outcome = Run({server.Url()});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, "stowra: Blue chair.qmf: File exists (name another file with --output)\n");
  EXPECT_EQ(ReadFile(Path("Blue chair.qmf")), "old");
  EXPECT_EQ(Names().size(), 1U);
}

TEST_F(DownloadTest, ReplacesExistingFileGivenAsOutput) {
  Make("mine.qmf", "old");
  const RawServer server(Always(Response(200, "new", kNamed)));
  const Outcome outcome = Run({server.Url(), "-o", "mine.qmf"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "file   mine.qmf\nbytes  3\n");
  EXPECT_EQ(ReadFile(Path("mine.qmf")), "new");
  EXPECT_EQ(Names(), NameList{"mine.qmf"});
}

TEST_F(DownloadTest, WritesToAnotherFolder) {
  std::filesystem::create_directory(Path("sub"));
  const RawServer server(Always(Response(200, "new", kNamed)));
  EXPECT_EQ(Run({server.Url(), "--output", Path("sub/x")}).status, 0);
  EXPECT_EQ(ReadFile(Path("sub/x")), "new");
  EXPECT_EQ(Names(), NameList{"sub"});
}

// Uses no system device, since a broken program would replace it.
TEST_F(DownloadTest, RefusesOutputThatIsNotARegularFile) {
  const RawServer server(Always(Response(200, "new")));
  ASSERT_EQ(mkfifo(Path("fifo").c_str(), 0600), 0);
  std::filesystem::create_symlink("fifo", Path("link"));
  for (const std::string name : {"fifo", "link"}) {
    const Outcome outcome = Run({server.Url(), "-o", name});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "stowra: " + name + ": not a regular file\n");
  }
  EXPECT_TRUE(std::filesystem::is_fifo(Path("fifo")));
  EXPECT_TRUE(std::filesystem::is_symlink(Path("link")));
}

TEST_F(DownloadTest, ReplacesLinkTargetAndKeepsLink) {
  std::filesystem::create_directory(Path("sub"));
  Make("sub/x", "old");
  std::filesystem::permissions(Path("sub/x"), std::filesystem::perms{0600});
  std::filesystem::create_symlink("sub/x", Path("link"));
  const RawServer server(Always(Response(200, "new")));
  const Outcome outcome = Run({server.Url(), "-o", "link"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "file   link\nbytes  3\n");
  EXPECT_TRUE(std::filesystem::is_symlink(Path("link")));
  EXPECT_EQ(ReadFile(Path("sub/x")), "new");
  EXPECT_EQ(std::filesystem::status(Path("sub/x")).permissions(), std::filesystem::perms{0600});
}

TEST_F(DownloadTest, SendsNoRequestWithoutWritableDestination) {
  const RawServer server(Always(Response(200, "new")));
  Make("file", "old");
  std::filesystem::create_directory(Path("sub"));
  const std::string long_name(300, 'a');
  const struct {
    std::string file;
    const char* why;
  } cases[] = {{"sub", "not a regular file"},
               {"none/x", "No such file or directory"},
               {"file/x", "Not a directory"},
               {long_name, "File name too long"}};
  for (const auto& [file, why] : cases) {
    const Outcome outcome = Run({server.Url(), "-o", file});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "stowra: " + file + ": " + why + "\n");
  }
  Start start;
  start.arguments = {"-c",        "cd \"$0\" && rmdir \"$0\" && exec \"$@\"",
                     Path("sub"), kStowra,
                     "download",  server.Url()};
  const Outcome outcome = RunProgram("/bin/sh", start);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "stowra: the current folder: No such file or directory\n");
  EXPECT_TRUE(server.requests().empty());
}

TEST_F(DownloadTest, ReportsLimitThatTheFileExceeds) {
  const RawServer server(Always(Response(200, "12345", kNamed)));
  const Outcome outcome = Run({server.Url(), "--max-bytes", "4"});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err,
            "stowra: " + server.Url() +
                ": the response's body is too large: more than 4 bytes (see --max-bytes)\n");
  EXPECT_EQ(Names(), NameList{});
  EXPECT_EQ(Run({server.Url(), "--max-bytes", "5"}).status, 0);
}

TEST_F(DownloadTest, AcceptsFileBeyondTheLibrarysDefaultLimit) {
  constexpr int kMebibytes = 257;
  const RawServer server([](const RawRequest&, RawConnection& connection) {
    connection.Write("HTTP/1.1 200 Text\r\nTransfer-Encoding: chunked\r\n\r\n");
    const std::string mebibyte = "100000\r\n" + std::string(1U << 20, 'x') + "\r\n";
    for (int i = 0; i < kMebibytes && connection.Write(mebibyte); ++i) {
    }
    connection.Write("0\r\n\r\n");
  });
  const Outcome outcome = Run({server.Url(), "-o", "x"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(outcome.out, "file   x\nbytes  269484032\n");
  EXPECT_THAT(Run({"--help"}).out, HasSubstr("(default: any size)"));
}

TEST_F(DownloadTest, WritesNoFileForOtherStatus) {
  for (const int status : {201, 204, 404, 500}) {
    const RawServer server(Always(Response(status, "", kNamed)));
    const Outcome outcome = Run({server.Url()});
    EXPECT_EQ(outcome.status, 4);
    EXPECT_EQ(outcome.err,
              "stowra: " + server.Url() + ": HTTP status " + std::to_string(status) + "\n");
    EXPECT_EQ(Names(), NameList{});
  }
}

TEST_F(DownloadTest, KeepsOldFileWhenReplyBreaksOff) {
  Make("mine.qmf", "old");
  const RawServer server(AlwaysThenClose("HTTP/1.1 200 Text\r\nContent-Length: 10\r\n\r\n12345"));
  const Outcome outcome = Run({server.Url(), "-o", "mine.qmf"});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.err, StartsWith("stowra: " + server.Url() + ": "));
  EXPECT_EQ(ReadFile(Path("mine.qmf")), "old");
  EXPECT_EQ(Names(), NameList{"mine.qmf"});
}

TEST_F(DownloadTest, KeepsOldFileWhenWritingFails) {
  Make("mine.qmf", "old");
  const RawServer server(Always(Response(200, std::string(100000, 'x'))));
  const Outcome outcome = Run({server.Url(), "-o", "mine.qmf"}, "trap '' XFSZ; ulimit -f 8");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, "stowra: mine.qmf: File too large\n");
  EXPECT_EQ(ReadFile(Path("mine.qmf")), "old");
  EXPECT_EQ(Names(), NameList{"mine.qmf"});
}

TEST_F(DownloadTest, RefusesEmptyOutputName) {
  const Outcome outcome = Run({"http://127.0.0.1:1/", "-o", ""});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.err, HasSubstr("must not be empty (see stowra download --help)"));
}

// A rename would replace the file behind standard output.
TEST_F(DownloadTest, RefusesNamesOfOpenDescriptors) {
  const RawServer server(Always(Response(200, "new")));
  Make("log", "old\n");
  std::filesystem::create_symlink("/dev/stdout", Path("link"));
  for (const char* name : {"/dev/stdout", "/dev/fd/1", "/proc/self/fd/1", "link"}) {
    const Outcome outcome = Run({server.Url(), "-o", name}, "exec >>" + Path("log"));
    EXPECT_EQ(outcome.status, 1) << name;
    EXPECT_EQ(outcome.err, "stowra: " + std::string(name) + ": not a regular file\n");
  }
  EXPECT_TRUE(server.requests().empty());
  EXPECT_EQ(ReadFile(Path("log")), "old\n");
}

TEST_F(DownloadTest, RepeatsFailedDownload) {
  std::atomic<int> count = 0;
  const RawServer server([&count](const RawRequest&, RawConnection& connection) {
    connection.Write(count++ == 0 ? Response(503, "", "Retry-After: 0\r\n")
                                  : Response(200, "abc", kNamed));
  });
  EXPECT_EQ(Run({server.Url(), "--retry", "1", "--max-bytes", "1K"}).status, 0);
  EXPECT_EQ(ReadFile(Path("Blue chair.qmf")), "abc");
}

TEST_F(DownloadTest, WritesToStandardOutput) {
  const RawServer server(Always(Response(200, Content())));
  const Outcome outcome = Run({server.Url(), "-o", "-"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(outcome.out == Content());
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(Names(), NameList{});
  const Outcome full = Run({server.Url(), "-o", "-"}, "exec >/dev/full");
  EXPECT_EQ(full.status, 1);
  EXPECT_EQ(full.err, "stowra: standard output: No space left on device\n");
  EXPECT_EQ(Run({server.Url(), "-o", "./-"}).status, 0);
  EXPECT_EQ(Names(), NameList{"-"});
}

TEST_F(DownloadTest, DownloadsModelFromTheEmulator) {
  const EmulatorProcess emulator;
  const Outcome outcome = Run({emulator.url() + "/download?mid=m-1041&rtyp=k2"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(Names(), NameList{"木の椅子.kmz"});
  EXPECT_EQ(Run({emulator.url() + "/download?mid=m-1041&rtyp=z"}).status, 0);
  EXPECT_THAT(Names(), testing::UnorderedElementsAre("木の椅子.kmz", "木の椅子.zip"));
}

TEST_F(DownloadTest, WritesNoFileAfterFault) {
  const EmulatorProcess emulator;
  const struct {
    const char* fault;
    int status;
  } faults[] = {
      {"status:503", 4}, {"truncate", 3}, {"reset", 3}, {"bomb", 3}, {"redirect-loop", 3}};
  for (const auto& [fault, status] : faults) {
    const Outcome outcome = Run(
        {emulator.url() + "/download?mid=m-1001&rtyp=k2&fault=" + fault, "--max-bytes", "1000000"});
    EXPECT_EQ(outcome.status, status) << fault;
    EXPECT_EQ(outcome.out, "");
    for (const std::string& name : Names()) EXPECT_THAT(name, HasSubstr(".part")) << fault;
  }
}

TEST_F(DownloadTest, ContinuesFromTheEmulator) {
  const EmulatorProcess emulator;
  const std::string url = emulator.url() + "/download?mid=m-1001&rtyp=k2";
  EXPECT_EQ(Run({url, "-o", "whole"}).status, 0);
  const Outcome broken = Run({url + "&fault=truncate", "-o", "x"});
  EXPECT_EQ(broken.status, 3);
  EXPECT_THAT(broken.err, HasSubstr("--continue --output x goes on from there"));
  const Outcome outcome = Run({url, "-o", "x", "--continue"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_THAT(outcome.out, HasSubstr("continued at  "));
  EXPECT_TRUE(ReadFile(Path("x")) == ReadFile(Path("whole")));
  EXPECT_EQ(Names().size(), 2U);
}

}  // namespace
}  // namespace stowra_test
