// SPDX-License-Identifier: MIT
#include <sys/stat.h>

#include <ctime>
#include <thread>

#include "common_stowraapi/platform/random.h"
#include "tests/host/content_replies.h"
#include "tests/host/host_test.h"

namespace stowra_test {
namespace {

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
                         const std::string& content, bool zipped = false) {
  const std::string begin = "--" + BoundaryOf(request) + "\r\nContent-Disposition: form-data; ";
  std::string body =
      begin + "name=\"name\"\r\n\r\nChair\r\n" + begin + "name=\"subjectId\"\r\n\r\nm42\r\n" +
      begin + "name=\"subjectClass\"\r\n\r\nentity\r\n" + begin + "name=\"binary\"; filename=\"" +
      name + "\"\r\nContent-Type: t/u\r\n\r\n" + content + "\r\n" + begin +
      "name=\"task\"\r\n\r\ncreate\r\n" + begin + "name=\"priority\"\r\n\r\n1\r\n";
  if (zipped) body += begin + "name=\"isZipped\"\r\n\r\ntrue\r\n";
  return body + "--" + BoundaryOf(request) + "--\r\n";
}

// A service that asks for this many files, at /0, /1 and so on. It wants the second one zipped.
RawServer::Handler Service(int files, const std::string& reply = Response(201, "")) {
  return [files, reply](const RawRequest& request, RawConnection& connection) {
    const std::string base = "http://" + request.Header("Host") + "/";
    std::vector<ConfigFile> wanted;
    for (int i = 0; i < files; ++i) wanted.push_back({base + std::to_string(i) + kQuery, i == 1});
    connection.Write(request.method == "POST" ? reply : Response(200, Config(wanted)));
  };
}

class UploadTest : public FolderTest {
 protected:
  static Outcome Upload(const RawServer& server, const std::vector<std::string>& files) {
    return RunStowra(Joined({"upload", server.Url("/config"), "--subject-id", "m42"}, files));
  }

  // A file of one byte.
  std::string SmallFile(const std::string& name = "a.qmf") const { return Make(name, "1"); }

  const RawServer server_{Service(1)};
};

TEST_F(UploadTest, SendsFormAndPrintsResult) {
  const RawServer server(Service(1, Response(201, "{}", "location: http://m/1\r\n")));
  const std::string content("a\r\n--b\0\xFF", 8);
  EXPECT_THAT(Upload(server, {Make("chair.qmf", content)}),
              Prints(EndsWith("  8      201          http://m/1\n\nresult url  http://r/yes\n")));
  ASSERT_EQ(server.requests().size(), 2U);
  const RawRequest request = server.requests()[1];
  EXPECT_EQ(request.method, "POST");
  EXPECT_EQ(request.target, std::string("/0") + kQuery);
  EXPECT_THAT(request.Header("Content-Type"),
              MatchesRegex("multipart/form-data; boundary=BrevixClient[0-9]{16}"));
  EXPECT_EQ(request.Header("Content-Length"), std::to_string(request.body.size()));
  EXPECT_EQ(request.Header("Proxy-Connection"), "keep-alive");
  EXPECT_EQ(request.body, ExpectedBody(request, "chair.qmf", content));
}

TEST_F(UploadTest, SendsEachFileToItsOwnUrl) {
  const RawServer server(Service(3));
  const Outcome outcome =
      Upload(server, {Make("a.qmf", "1"), Make("b.qmf.zip", "22"), Make("c.png", "")});
  EXPECT_EQ(outcome.status, 0);
  const std::vector<RawRequest> requests = server.requests();
  ASSERT_EQ(requests.size(), 4U);
  EXPECT_EQ(requests[1].body, ExpectedBody(requests[1], "a.qmf", "1"));
  EXPECT_EQ(requests[2].body, ExpectedBody(requests[2], "b.qmf.zip", "22", true));
  EXPECT_EQ(requests[3].body, ExpectedBody(requests[3], "c.png", ""));
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(requests[i + 1].target, "/" + std::to_string(i) + kQuery);
  }
}

TEST_F(UploadTest, PrintsResultAsJson) {
  const RawServer server(Service(1, Response(200, "", "Location: http://m/1\r\n")));
  const std::string file = Make("chair.qmf", "abc");
  EXPECT_THAT(Upload(server, {file, "--json"}),
              Prints("{\"files\":[{\"file\":\"" + file +
                     "\",\"bytes\":3,\"status\":200,\"location\":"
                     "\"http://m/1\"}],\"result_url\":\"http://r/yes\"}\n"));
}

TEST_F(UploadTest, SendsLargeFileWhole) {
  std::string content;
  while (content.size() < (5U << 20)) content += std::to_string(content.size());
  EXPECT_THAT(Upload(server_, {Make("large.qmf", content)}), Prints(_));
  const RawRequest request = server_.requests()[1];
  EXPECT_TRUE(request.body == ExpectedBody(request, "large.qmf", content));
}

TEST_F(UploadTest, StopsAtRefusedFile) {
  const RawServer server(
      Service(3, Response(400, "the model\x1B[31m is broken\nor not",
                          "Location: http://no\r\nContent-Type: text/plain\r\n")));
  const std::string file = SmallFile();
  EXPECT_THAT(
      Upload(server, {file, file, file}),
      Ends(4, HasSubstr("  1      400          \n\nresult url  http://r/no\n"),
           Message(server.Url("/0") + kQuery, "HTTP status 400: the model\\u001B[31m is broken")));
  EXPECT_EQ(server.requests().size(), 2U);
}

TEST_F(UploadTest, AcceptsOnlyStatus2xx) {
  const std::pair<int, int> rows[] = {{304, 4}, {404, 4}, {500, 4}, {200, 0}, {202, 0}, {299, 0}};
  for (const auto& [status, expected] : rows) {
    const RawServer server(Service(1, Response(status, "")));
    EXPECT_EQ(Upload(server, {SmallFile()}).status, expected) << status;
  }
}

TEST_F(UploadTest, ReportsTransferThatBreaksOff) {
  const RawServer closing([](const RawRequest& request, RawConnection& connection) {
    if (request.method == "POST") return connection.Reset();
    connection.Write(Response(200, Config({{"http://" + request.Header("Host") + "/0", false}})));
  });
  EXPECT_THAT(Upload(closing, {SmallFile()}),
              Ends(3, EndsWith("\nresult url  http://r/no\n"),
                   StartsWith("stowra: " + closing.Url("/0") + ": ")));
}

TEST_F(UploadTest, SendsNothingForWrongNumberOfFiles) {
  const std::string file = SmallFile();
  const std::tuple<int, std::vector<std::string>, std::string> rows[] = {
      {0, {file, file}, "0 files, but 2 were given"},
      {1, {file, file}, "1 file, but 2 were given"},
      {3, {file, file}, "3 files, but 2 were given"},
      {2, {file}, "2 files, but 1 was given"},
  };
  for (const auto& [wanted, files, why] : rows) {
    const RawServer server(Service(wanted));
    EXPECT_THAT(Upload(server, files),
                Fails(2, Message(server.Url("/config"), "the configuration asks for " + why)));
    EXPECT_EQ(server.requests().size(), 1U);
  }
}

TEST_F(UploadTest, WarnsOfFileNameThatMayBeCut) {
  EXPECT_THAT(
      Upload(server_, {SmallFile("a\nb.qmf")}),
      Ends(0, _, EndsWith("/a\\u000Ab.qmf: a server may cut the file name at its line break\n")));
  EXPECT_EQ(server_.requests().size(), 2U) << "it is sent all the same";
}

TEST_F(UploadTest, WarnsOfFileNameThatIsNotUtf8) {
  EXPECT_THAT(Upload(server_, {SmallFile("a\xFF.qmf")}),
              Ends(0, _,
                   EndsWith("a\uFFFD.qmf: the file name is not UTF-8 and is sent as "
                            "a\uFFFD.qmf\n")));
  const RawRequest request = server_.requests()[1];
  EXPECT_EQ(request.body, ExpectedBody(request, "a\uFFFD.qmf", "1"));
}

TEST_F(UploadTest, WarnsOfFileThatIsNotZipped) {
  const RawServer server(Service(2));
  const std::string file = SmallFile("b.qmf");
  EXPECT_THAT(Upload(server, {file, file}).err,
              HasSubstr(Message("warning: " + file,
                                "the configuration asks for a zip file, but this is not one")));
  EXPECT_THAT(Upload(server, {file, Make("b.zip", "PK1")}).err, Not(HasSubstr("zipped")));
}

TEST_F(UploadTest, WarnsOfBoundaryInFile) {
  // The boundaries of the next ten minutes.
  std::string boundaries;
  const std::time_t now = std::time(nullptr);
  for (int second = 0; second < 600; ++second) boundaries += BoundaryOf(now + second) + "\r\n";
  const std::string file = Make("a.qmf", boundaries);
  const Outcome outcome = Upload(server_, {file});
  EXPECT_THAT(outcome, Ends(0, _,
                            Message("warning: " + file, "the file contains the boundary " +
                                                            BoundaryOf(server_.requests()[1]) +
                                                            ", and a server may cut it there")));
}

TEST_F(UploadTest, WarnsOfRepeatedBoundary) {
  const RawServer server(Service(9));
  std::vector<std::string> files;
  for (int i = 0; i < 9; ++i) files.push_back(Make(std::to_string(i) + ".qmf", "PK"));
  const Outcome outcome = Upload(server, files);
  const std::vector<RawRequest> requests = server.requests();
  ASSERT_EQ(requests.size(), 10U);
  std::string expected;
  for (std::size_t i = 1; i < files.size(); ++i) {
    if (BoundaryOf(requests[i + 1]) != BoundaryOf(requests[i])) continue;
    expected +=
        Message("warning: " + files[i],
                "the boundary is the same as for the previous file, because both were made within "
                "one second");
  }
  EXPECT_THAT(outcome, Ends(0, _, expected));
}

TEST_F(UploadTest, SendsAllOfAPipe) {
  const EmulatorProcess emulator;
  const std::string content(100'000, 'p');
  const std::string pipe = Path("pipe.qmf");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  std::thread writer([&] { std::ofstream(pipe, std::ios::binary) << content; });
  const Outcome sent = RunStowra(
      {"upload", "--json", emulator.url() + "/upload-config", pipe, "--subject-id", "m42"});
  writer.join();
  EXPECT_EQ(sent.status, 0);
  EXPECT_THAT(sent.out, HasSubstr("\"bytes\":100000,"));
  const std::string url = emulator.url() + "/download?mid=m-1101&rtyp=s";
  EXPECT_EQ(RunStowra({"download", url, "-o", Path("received")}).status, 0);
  EXPECT_TRUE(ReadFile(Path("received")) == content);
}

}  // namespace
}  // namespace stowra_test
