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

  // Runs the program in this test's own folder, after `preparation` in the shell.
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

  // The names of all that is in the folder.
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

TEST_F(DownloadTest, FileIsNamedByTheServer) {
  const RawServer server(Always(Response(200, Content(), kNamed)));
  const Outcome outcome = Run({server.Url("/x")});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "file   Blue chair.qmf\nbytes  3000\n");
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(Names(), NameList{"Blue chair.qmf"});
  EXPECT_TRUE(ReadFile(Path("Blue chair.qmf")) == Content());
}

TEST_F(DownloadTest, FileIsNamedByTheAddressOtherwise) {
  const RawServer server(Always(Response(200, "")));
  EXPECT_EQ(Run({server.Url("/files/chair.bin?x=1")}).out, "file   chair.bin\nbytes  0\n");
  EXPECT_EQ(Run({server.Url("/")}).out, "file   download\nbytes  0\n");
  EXPECT_EQ(ReadFile(Path("download")), "");
}

TEST_F(DownloadTest, PrintsTheFileAsJson) {
  const RawServer server(Always(Response(200, "abc", kNamed)));
  EXPECT_EQ(Run({server.Url(), "--json"}).out, "{\"file\":\"Blue chair.qmf\",\"bytes\":3}\n");
}

TEST_F(DownloadTest, FileThatIsThereIsKept) {
  Make("Blue chair.qmf", "old");
  const RawServer server(Always(Response(200, "new", kNamed)));
  const Outcome outcome = Run({server.Url()});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, "stowra: Blue chair.qmf: File exists\n");
  EXPECT_EQ(ReadFile(Path("Blue chair.qmf")), "old");
  EXPECT_EQ(Names().size(), 1U);
}

TEST_F(DownloadTest, NamedOutputReplacesAFile) {
  Make("mine.qmf", "old");
  const RawServer server(Always(Response(200, "new", kNamed)));
  const Outcome outcome = Run({server.Url(), "-o", "mine.qmf"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "file   mine.qmf\nbytes  3\n");
  EXPECT_EQ(ReadFile(Path("mine.qmf")), "new");
  EXPECT_EQ(Names(), NameList{"mine.qmf"});
}

TEST_F(DownloadTest, NamedOutputMayBeInAnotherFolder) {
  std::filesystem::create_directory(Path("sub"));
  const RawServer server(Always(Response(200, "new", kNamed)));
  EXPECT_EQ(Run({server.Url(), "--output", Path("sub/x")}).status, 0);
  EXPECT_EQ(ReadFile(Path("sub/x")), "new");
  EXPECT_EQ(Names(), NameList{"sub"});
}

TEST_F(DownloadTest, DeviceIsNotReplaced) {
  const RawServer server(Always(Response(200, "new")));
  std::filesystem::create_symlink("/dev/null", Path("null"));
  const Outcome outcome = Run({server.Url(), "-o", "null"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "stowra: null: not a regular file\n");
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

TEST_F(DownloadTest, OtherStatusLeavesNoFile) {
  for (const int status : {201, 204, 404, 500}) {
    const RawServer server(Always(Response(status, "", kNamed)));
    const Outcome outcome = Run({server.Url()});
    EXPECT_EQ(outcome.status, 4);
    EXPECT_EQ(outcome.err,
              "stowra: " + server.Url() + ": HTTP status " + std::to_string(status) + "\n");
    EXPECT_EQ(Names(), NameList{});
  }
}

TEST_F(DownloadTest, ReplyThatBreaksOffLeavesNoFile) {
  Make("mine.qmf", "old");
  const RawServer server(AlwaysThenClose("HTTP/1.1 200 Text\r\nContent-Length: 10\r\n\r\n12345"));
  const Outcome outcome = Run({server.Url(), "-o", "mine.qmf"});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.err, StartsWith("stowra: " + server.Url() + ": "));
  EXPECT_EQ(ReadFile(Path("mine.qmf")), "old");
  EXPECT_EQ(Names(), NameList{"mine.qmf"});
}

TEST_F(DownloadTest, FileThatCannotBeWrittenWholeIsTakenAway) {
  Make("mine.qmf", "old");
  const RawServer server(Always(Response(200, std::string(100000, 'x'))));
  const Outcome outcome = Run({server.Url(), "-o", "mine.qmf"}, "trap '' XFSZ; ulimit -f 8");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, "stowra: mine.qmf: File too large\n");
  EXPECT_EQ(ReadFile(Path("mine.qmf")), "old");
  EXPECT_EQ(Names(), NameList{"mine.qmf"});
}

TEST_F(DownloadTest, EmptyOutputNameIsWrongUsage) {
  const Outcome outcome = Run({"http://127.0.0.1:1/", "-o", ""});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.err, HasSubstr("(see stowra download --help)"));
}

TEST_F(DownloadTest, GetsAModelOfTheEmulator) {
  const EmulatorProcess emulator;
  const Outcome outcome = Run({emulator.url() + "/download?mid=m-1041&rtyp=k2"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(Names(), NameList{"木の椅子.kmz"});
}

TEST_F(DownloadTest, FaultsLeaveNothingBehind) {
  const EmulatorProcess emulator;
  const struct {
    const char* fault;
    int status;
  } faults[] = {
      {"status:503", 4}, {"truncate", 3}, {"reset", 3}, {"bomb", 3}, {"redirect-loop", 3}};
  for (const auto& [fault, status] : faults) {
    const Outcome outcome = Run({emulator.url() + "/download?mid=m-1001&rtyp=k2&fault=" + fault});
    EXPECT_EQ(outcome.status, status) << fault;
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(Names(), NameList{}) << fault;
  }
}

}  // namespace
}  // namespace stowra_test
