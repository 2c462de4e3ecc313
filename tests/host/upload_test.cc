// SPDX-License-Identifier: MIT
#include <sys/stat.h>

#include <ctime>
#include <fstream>
#include <iterator>
#include <thread>

#include "common_stowraapi/platform/random.h"
#include "tests/host/content_replies.h"
#include "tests/host/host_test.h"
#include "tests/support/temporary_folder.h"

namespace stowra_test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

constexpr char kQuery[] = "?name=Chair&type=t/u&task=create&priority=1";

// The boundary that the library makes in this second.
std::string BoundaryOf(std::time_t second) {
  Random::SetSeed(static_cast<std::uint32_t>(second));
  std::string boundary = "BrevixClient";
  for (int i = 0; i < 16; ++i) boundary += std::to_string(Random::GetValue(0, 9));
  return boundary;
}

std::string BoundaryOf(const RawRequest& request) {
  const std::string type = request.Header("Content-Type");
  return type.substr(type.find('=') + 1);
}

// The expected body of a request that uploads `content` as `name`.
std::string ExpectedBody(const RawRequest& request, const std::string& name,
                         const std::string& content, bool zipped) {
  const std::string begin = "--" + BoundaryOf(request) + "\r\nContent-Disposition: form-data; ";
  std::string body =
      begin + "name=\"name\"\r\n\r\nChair\r\n" + begin + "name=\"subjectId\"\r\n\r\nm42\r\n" +
      begin + "name=\"subjectClass\"\r\n\r\nentity\r\n" + begin + "name=\"binary\"; filename=\"" +
      name + "\"\r\nContent-Type: t/u\r\n\r\n" + content + "\r\n" + begin +
      "name=\"task\"\r\n\r\ncreate\r\n" + begin + "name=\"priority\"\r\n\r\n1\r\n";
  if (zipped) body += begin + "name=\"isZipped\"\r\n\r\ntrue\r\n";
  return body + "--" + BoundaryOf(request) + "--\r\n";
}

class UploadTest : public testing::Test {
 protected:
  // A service that asks for this many files, at /0, /1 and so on. It wants the second one zipped.
  RawServer::Handler Service(int files, const std::string& reply = Response(201, "")) {
    return [files, reply](const RawRequest& request, RawConnection& connection) {
      if (request.method == "POST") {
        connection.Write(reply);
        return;
      }
      std::vector<ConfigFile> wanted;
      for (int i = 0; i < files; ++i) {
        wanted.push_back(
            {"http://" + request.Header("Host") + "/" + std::to_string(i) + kQuery, i == 1});
      }
      connection.Write(Response(200, Config(wanted)));
    };
  }

  std::string MakeFile(const std::string& name, const std::string& content) {
    const std::filesystem::path file = folder_.path() / name;
    std::ofstream(file, std::ios::binary) << content;
    return file.string();
  }

  static std::vector<std::string> Command(const RawServer& server,
                                          const std::vector<std::string>& files) {
    std::vector<std::string> arguments = {"upload", server.Url("/config"), "--subject-id", "m42"};
    arguments.insert(arguments.end(), files.begin(), files.end());
    return arguments;
  }

 private:
  const TemporaryFolder folder_;
};

TEST_F(UploadTest, SendsFormAndPrintsResult) {
  const RawServer server(Service(1, Response(201, "{}", "location: http://m/1\r\n")));
  std::string content = "a\r\n--b";
  content += '\0';
  content += "\xFF";
  const std::string file = MakeFile("chair.qmf", content);
  const Outcome outcome = RunStowra(Command(server, {file}));
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "");
  EXPECT_THAT(outcome.out, EndsWith("  8      201          http://m/1\n"
                                    "\n"
                                    "result url  http://r/yes\n"));
  ASSERT_EQ(server.requests().size(), 2U);
  const RawRequest request = server.requests()[1];
  EXPECT_EQ(request.method, "POST");
  EXPECT_EQ(request.target, std::string("/0") + kQuery);
  EXPECT_THAT(request.Header("Content-Type"),
              testing::MatchesRegex("multipart/form-data; boundary=BrevixClient[0-9]{16}"));
  EXPECT_EQ(request.Header("Content-Length"), std::to_string(request.body.size()));
  EXPECT_EQ(request.Header("Proxy-Connection"), "keep-alive");
  EXPECT_EQ(request.body, ExpectedBody(request, "chair.qmf", content, false));
}

TEST_F(UploadTest, SendsEachFileToItsOwnUrl) {
  const RawServer server(Service(3));
  const Outcome outcome = RunStowra(Command(
      server, {MakeFile("a.qmf", "1"), MakeFile("b.qmf.zip", "22"), MakeFile("c.png", "")}));
  EXPECT_EQ(outcome.status, 0);
  const std::vector<RawRequest> requests = server.requests();
  ASSERT_EQ(requests.size(), 4U);
  EXPECT_EQ(requests[1].target, std::string("/0") + kQuery);
  EXPECT_EQ(requests[1].body, ExpectedBody(requests[1], "a.qmf", "1", false));
  EXPECT_EQ(requests[2].target, std::string("/1") + kQuery);
  EXPECT_EQ(requests[2].body, ExpectedBody(requests[2], "b.qmf.zip", "22", true));
  EXPECT_EQ(requests[3].target, std::string("/2") + kQuery);
  EXPECT_EQ(requests[3].body, ExpectedBody(requests[3], "c.png", "", false));
}

TEST_F(UploadTest, PrintsResultAsJson) {
  const RawServer server(Service(1, Response(200, "", "Location: http://m/1\r\n")));
  const std::string file = MakeFile("chair.qmf", "abc");
  std::vector<std::string> arguments = Command(server, {file});
  arguments.emplace_back("--json");
  EXPECT_EQ(RunStowra(arguments).out, "{\"files\":[{\"file\":\"" + file +
                                          "\",\"bytes\":3,\"status\":200,\"location\":"
                                          "\"http://m/1\"}],\"result_url\":\"http://r/yes\"}\n");
}

TEST_F(UploadTest, SendsLargeFileWhole) {
  const RawServer server(Service(1));
  std::string content;
  while (content.size() < (5U << 20)) content += std::to_string(content.size());
  const Outcome outcome = RunStowra(Command(server, {MakeFile("large.qmf", content)}));
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "");
  const RawRequest request = server.requests()[1];
  EXPECT_TRUE(request.body == ExpectedBody(request, "large.qmf", content, false));
}

TEST_F(UploadTest, StopsAtRefusedFile) {
  const RawServer server(Service(3, Response(400, "no", "Location: http://no\r\n")));
  const std::string file = MakeFile("a.qmf", "1");
  const Outcome outcome = RunStowra(Command(server, {file, file, file}));
  EXPECT_EQ(outcome.status, 4);
  EXPECT_EQ(outcome.err, "stowra: " + server.Url("/0") + kQuery + ": HTTP status 400\n");
  EXPECT_THAT(outcome.out, HasSubstr("  1      400          \n\nresult url  http://r/no\n"));
  EXPECT_EQ(server.requests().size(), 2U);
}

TEST_F(UploadTest, PrintsTheServersMessage) {
  const RawServer server(Service(
      1, Response(400, "the model\x1B[31m is broken\nor not", "Content-Type: text/plain\r\n")));
  const Outcome outcome = RunStowra(Command(server, {MakeFile("a.qmf", "1")}));
  EXPECT_EQ(outcome.status, 4);
  EXPECT_EQ(outcome.err, "stowra: " + server.Url("/0") + kQuery +
                             ": HTTP status 400: the model\\u001B[31m is broken\n");
}

TEST_F(UploadTest, AcceptsOnlyStatus2xx) {
  for (const int status : {304, 404, 500}) {
    const RawServer server(Service(1, Response(status, "")));
    EXPECT_EQ(RunStowra(Command(server, {MakeFile("a.qmf", "1")})).status, 4) << status;
  }
  for (const int status : {200, 202, 299}) {
    const RawServer server(Service(1, Response(status, "")));
    EXPECT_EQ(RunStowra(Command(server, {MakeFile("a.qmf", "1")})).status, 0) << status;
  }
}

TEST_F(UploadTest, ReportsTransferThatBreaksOff) {
  const RawServer closing([](const RawRequest& request, RawConnection& connection) {
    if (request.method == "POST") {
      connection.Reset();
    } else {
      connection.Write(Response(200, Config({{"http://" + request.Header("Host") + "/0", false}})));
    }
  });
  const Outcome outcome = RunStowra(Command(closing, {MakeFile("a.qmf", "1")}));
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.err, StartsWith("stowra: " + closing.Url("/0") + ": "));
  EXPECT_THAT(outcome.out, EndsWith("\nresult url  http://r/no\n"));
}

TEST_F(UploadTest, SendsNothingForWrongNumberOfFiles) {
  const std::string file = MakeFile("a.qmf", "1");
  for (const int wanted : {0, 1, 3}) {
    const RawServer server(Service(wanted));
    const Outcome outcome = RunStowra(Command(server, {file, file}));
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "stowra: " + server.Url("/config") + ": the configuration asks for " +
                               std::to_string(wanted) + (wanted == 1 ? " file" : " files") +
                               ", but 2 were given\n");
    EXPECT_EQ(server.requests().size(), 1U);
  }
  const RawServer server(Service(2));
  EXPECT_EQ(RunStowra(Command(server, {file})).err,
            "stowra: " + server.Url("/config") +
                ": the configuration asks for 2 files, but 1 was given\n");
}

TEST_F(UploadTest, SendsNoRequestForMissingFile) {
  const RawServer server(Service(2));
  const std::string missing = MakeFile("a.qmf", "1") + ".not";
  const Outcome outcome = RunStowra(Command(server, {MakeFile("a.qmf", "1"), missing}));
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.err, HasSubstr(missing));
  EXPECT_TRUE(server.requests().empty());
}

TEST_F(UploadTest, StopsWhenConfigurationFails) {
  const std::string file = MakeFile("a.qmf", "1");
  const RawServer refusing(Always(Response(503, "")));
  EXPECT_EQ(RunStowra(Command(refusing, {file})).status, 4);
  const RawServer useless(Always(Response(200, "<upload/>")));
  EXPECT_EQ(RunStowra(Command(useless, {file})).status, 5);
}

TEST_F(UploadTest, WarnsOfFileNameThatMayBeCut) {
  const RawServer server(Service(1));
  const std::string quoted = MakeFile("a\"b.qmf", "1");
  const Outcome outcome = RunStowra(Command(server, {quoted}));
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "stowra: warning: " + quoted +
                             ": a server may cut the file name at its quotation mark\n");
  const Outcome broken = RunStowra(Command(server, {MakeFile("a\nb.qmf", "1")}));
  EXPECT_THAT(broken.err,
              EndsWith("/a\\u000Ab.qmf: a server may cut the file name at its line break\n"));
  EXPECT_EQ(server.requests().size(), 4U) << "both are sent all the same";
}

TEST_F(UploadTest, WarnsOfFileNameThatIsNotUtf8) {
  const RawServer server(Service(1));
  const Outcome outcome = RunStowra(Command(server, {MakeFile("a\xFF.qmf", "1")}));
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.err, EndsWith("a\uFFFD.qmf: the file name is not UTF-8 and is sent as "
                                    "a\uFFFD.qmf\n"));
  const RawRequest request = server.requests()[1];
  EXPECT_EQ(request.body, ExpectedBody(request, "a\uFFFD.qmf", "1", false));
}

TEST_F(UploadTest, WarnsOfFileThatIsNotZipped) {
  const RawServer server(Service(2));
  const std::string file = MakeFile("b.qmf", "1");
  EXPECT_THAT(RunStowra(Command(server, {file, file})).err,
              HasSubstr("stowra: warning: " + file +
                        ": the configuration asks for a zip file, but this is not one\n"));
  const std::string zip = MakeFile("b.zip", "PK1");
  EXPECT_THAT(RunStowra(Command(server, {file, zip})).err, testing::Not(HasSubstr("zipped")));
}

TEST_F(UploadTest, WarnsOfBoundaryInFile) {
  // The boundaries of the next ten minutes.
  std::string boundaries;
  const std::time_t now = std::time(nullptr);
  for (int second = 0; second < 600; ++second) boundaries += BoundaryOf(now + second) + "\r\n";
  const RawServer server(Service(1));
  const std::string file = MakeFile("a.qmf", boundaries);
  const Outcome outcome = RunStowra(Command(server, {file}));
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "stowra: warning: " + file + ": the file contains the boundary " +
                             BoundaryOf(server.requests()[1]) +
                             ", and a server may cut it there\n");
}

TEST_F(UploadTest, WarnsOfRepeatedBoundary) {
  const RawServer server(Service(9));
  std::vector<std::string> files;
  for (int i = 0; i < 9; ++i) files.push_back(MakeFile(std::to_string(i) + ".qmf", "PK"));
  const Outcome outcome = RunStowra(Command(server, files));
  EXPECT_EQ(outcome.status, 0);
  const std::vector<RawRequest> requests = server.requests();
  ASSERT_EQ(requests.size(), 10U);
  std::string expected;
  for (std::size_t i = 1; i < files.size(); ++i) {
    if (BoundaryOf(requests[i + 1]) != BoundaryOf(requests[i])) continue;
    expected +=
        "stowra: warning: " + files[i] +
        ": the boundary is the same as for the previous file, because both were made within "
        "one second\n";
  }
  EXPECT_NE(expected, "");
  EXPECT_EQ(outcome.err, expected);
}

TEST_F(UploadTest, UploadsToTheEmulator) {
  const EmulatorProcess emulator;
  const std::string file = MakeFile("chair.qmf", std::string("\0\r\n\xFF", 4));
  const Outcome outcome = RunStowra(
      {"upload", emulator.url() + "/upload-config?name=Stool", file, "--subject-id", "m42"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, HasSubstr(emulator.url() + "/model?mid=m-1101\n"));
  EXPECT_THAT(outcome.out, HasSubstr("result url  " + emulator.url() + "/upload-succeeded\n"));
}

TEST_F(UploadTest, SendsAllOfAPipe) {
  const EmulatorProcess emulator;
  const std::string content(100'000, 'p');
  const std::string pipe = MakeFile("pipe.qmf", "") + ".fifo";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  std::thread writer([&] { std::ofstream(pipe, std::ios::binary) << content; });
  const Outcome sent = RunStowra(
      {"upload", "--json", emulator.url() + "/upload-config", pipe, "--subject-id", "m42"});
  writer.join();
  EXPECT_EQ(sent.status, 0);
  EXPECT_THAT(sent.out, HasSubstr("\"bytes\":100000,"));
  const std::string received = pipe + ".received";
  EXPECT_EQ(RunStowra({"download", emulator.url() + "/download?mid=m-1101&rtyp=s", "-o", received})
                .status,
            0);
  std::ifstream file(received, std::ios::binary);
  EXPECT_TRUE(std::string(std::istreambuf_iterator<char>(file), {}) == content);
}

}  // namespace
}  // namespace stowra_test
