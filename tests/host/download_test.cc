// SPDX-License-Identifier: MIT
#include <atomic>

#include "tests/host/host_test.h"

namespace stowra_test {
namespace {

using std::filesystem::create_directory;
using std::filesystem::create_symlink;

constexpr char kNamed[] = "content-disposition: attachment; filename=\"../Blue chair.qmf\"\r\n";

std::string Content() {
  std::string content;
  for (int i = 0; i < 3000; ++i) content += static_cast<char>(i);
  return content;
}

class DownloadTest : public FolderTest {
 protected:
  // Runs the program in the test's folder, after a shell command.
  Outcome Run(const std::vector<std::string>& arguments, const std::string& command = ":") const {
    return RunProgram("/bin/sh", Download(arguments, command));
  }

  const RawServer server_{Always(Response(200, "new", kNamed))};
};

TEST_F(DownloadTest, UsesTheServersFileName) {
  const RawServer server(Always(Response(200, Content(), kNamed)));
  EXPECT_THAT(Run({server.Url("/x")}), Prints("file   Blue chair.qmf\nbytes  3000\n"));
  EXPECT_THAT(Names(), ElementsAre("Blue chair.qmf"));
  EXPECT_TRUE(ReadFile(Path("Blue chair.qmf")) == Content());
}

TEST_F(DownloadTest, UsesTheUrlsFileNameWithoutHeader) {
  const RawServer server(Always(Response(200, "")));
  EXPECT_THAT(Run({server.Url("/files/chair.bin?x=1")}), Prints("file   chair.bin\nbytes  0\n"));
  EXPECT_THAT(Run({server.Url("/")}), Prints("file   download\nbytes  0\n"));
  EXPECT_EQ(ReadFile(Path("download")), "");
}

TEST_F(DownloadTest, PrintsFileAsJson) {
  EXPECT_THAT(Run({server_.Url(), "--json"}),
              Prints("{\"file\":\"Blue chair.qmf\",\"bytes\":3}\n"));
}

TEST_F(DownloadTest, KeepsExistingFile) {
  Make("Blue chair.qmf", "old");
  const char* const why = "File exists (name another file with --output)";
  EXPECT_THAT(Run({server_.Url()}), Fails(1, Message("Blue chair.qmf", why)));
  EXPECT_THAT(Files(), ElementsAre(Pair("Blue chair.qmf", "old")));
}

TEST_F(DownloadTest, ReplacesExistingFileGivenAsOutput) {
  Make("mine.qmf", "old");
  EXPECT_THAT(Run({server_.Url(), "--output", "mine.qmf"}), Prints("file   mine.qmf\nbytes  3\n"));
  EXPECT_THAT(Files(), ElementsAre(Pair("mine.qmf", "new")));
}

TEST_F(DownloadTest, SendsNoRequestWithoutWritableDestination) {
  create_directory(Path("sub"));
  EXPECT_THAT(Run({server_.Url(), "-o", "sub"}), Fails(1, Message("sub", "not a regular file")));
  const std::string removed = "'" + Path("sub") + "'";
  EXPECT_THAT(RunProgram("/bin/sh", AfterCommand("cd " + removed + "; rmdir " + removed,
                                                 {"download", server_.Url()})),
              Fails(1, Message("the current folder", "No such file or directory")));
  EXPECT_TRUE(server_.requests().empty());
}

TEST_F(DownloadTest, ReportsLimitThatTheFileExceeds) {
  EXPECT_THAT(Run({server_.Url(), "--max-bytes", "2"}),
              Fails(3, Message(server_.Url(),
                               "the response's body is too large: more than 2 bytes "
                               "(see --max-bytes)")));
  EXPECT_THAT(Names(), IsEmpty());
  EXPECT_EQ(Run({server_.Url(), "--max-bytes", "3"}).status, 0);
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
  EXPECT_THAT(Run({server.Url(), "-o", "x"}), Prints("file   x\nbytes  269484032\n"));
  EXPECT_THAT(Run({"--help"}).out, HasSubstr("(default: any size)"));
}

TEST_F(DownloadTest, WritesNoFileForOtherStatus) {
  for (const int status : {201, 204, 404, 500}) {
    const RawServer server(Always(Response(status, "", kNamed)));
    const std::string message = Message(server.Url(), "HTTP status " + std::to_string(status));
    EXPECT_THAT(Run({server.Url()}), Fails(4, message));
    EXPECT_THAT(Run({server.Url(), "-o", "x"}), Fails(4, message));
    EXPECT_THAT(Names(), IsEmpty());
  }
}

TEST_F(DownloadTest, KeepsOldFileWhenWritingFails) {
  Make("mine.qmf", "old");
  const RawServer server(Always(Response(200, std::string(100000, 'x'))));
  EXPECT_THAT(Run({server.Url(), "-o", "mine.qmf"}, "trap '' XFSZ; ulimit -f 8"),
              Fails(1, Message("mine.qmf", "File too large")));
  EXPECT_THAT(Files(), ElementsAre(Pair("mine.qmf", "old")));
}

// A rename would replace the file behind standard output.
TEST_F(DownloadTest, RefusesNamesOfOpenDescriptors) {
  const std::string log = Make("log", "old\n");
  create_symlink("/dev/stdout", Path("link"));
  for (const std::string name : {"/dev/stdout", "/dev/fd/1", "/proc/self/fd/1", "link"}) {
    EXPECT_THAT(Run({server_.Url(), "-o", name}, "exec >>'" + log + "'"),
                Fails(1, Message(name, "not a regular file")));
  }
  EXPECT_TRUE(server_.requests().empty());
  EXPECT_EQ(ReadFile(log), "old\n");
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
  EXPECT_THAT(Names(), IsEmpty());
  EXPECT_THAT(Run({server.Url(), "-o", "-"}, "exec >/dev/full"),
              Fails(1, Message("standard output", "No space left on device")));
  EXPECT_EQ(Run({server.Url(), "-o", "./-"}).status, 0);
  EXPECT_THAT(Names(), ElementsAre("-"));
}

TEST_F(DownloadTest, DownloadsModelFromTheEmulator) {
  const EmulatorProcess emulator;
  EXPECT_THAT(Run({emulator.url() + "/download?mid=m-1041&rtyp=k2"}), Prints(_));
  EXPECT_THAT(Names(), ElementsAre("木の椅子.kmz"));
  EXPECT_EQ(Run({emulator.url() + "/download?mid=m-1041&rtyp=z"}).status, 0);
  EXPECT_THAT(Names(), ElementsAre("木の椅子.kmz", "木の椅子.zip"));
}

TEST_F(DownloadTest, WritesNoFileAfterFault) {
  const EmulatorProcess emulator;
  const std::string url = emulator.url() + "/download?mid=m-1001&rtyp=k2&fault=";
  const std::pair<const char*, int> rows[] = {
      {"status:503", 4}, {"truncate", 3}, {"reset", 3}, {"bomb", 3}, {"redirect-loop", 3}};
  for (const auto& [fault, status] : rows) {
    EXPECT_THAT(Run({url + fault, "--max-bytes", "1000000"}), Fails(status, _)) << fault;
    EXPECT_THAT(Names(), testing::Each(HasSubstr(".part"))) << fault;
  }
}

TEST_F(DownloadTest, ContinuesFromTheEmulator) {
  const EmulatorProcess emulator;
  const std::string url = emulator.url() + "/download?mid=m-1001&rtyp=k2";
  EXPECT_EQ(Run({url, "-o", "whole"}).status, 0);
  EXPECT_THAT(Run({url + "&fault=truncate", "-o", "x"}),
              Fails(3, HasSubstr("--continue --output x goes on from there")));
  EXPECT_THAT(Run({url, "-o", "x", "--continue"}), Prints(HasSubstr("continued at  ")));
  EXPECT_TRUE(ReadFile(Path("x")) == ReadFile(Path("whole")));
  EXPECT_THAT(Names(), ElementsAre("whole", "x"));
}

}  // namespace
}  // namespace stowra_test
