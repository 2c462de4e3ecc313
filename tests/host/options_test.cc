// SPDX-License-Identifier: MIT
// How the options change the transfers.

#include <signal.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>

#include "tests/host/host_test.h"
#include "tests/support/certificates.h"
#include "tests/support/temporary_folder.h"

namespace stowra_test {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;

constexpr char kUser[] = R"({"uid":"u","email":"e","vkr_id":"v"})";

class OptionsTest : public InBothModes {};
IN_BOTH_MODES(OptionsTest);

TEST_P(OptionsTest, SendsGivenHeaders) {
  const RawServer server(Replies(kUser));
  const Outcome outcome = RunInMode({"user-info", "--header", "Authorization: Bearer a:b",
                                     "--header", "X-Empty:", "--header", "X-Twice: one",
                                     server.Url(), "--header", "x-twice:  two "});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  ASSERT_EQ(server.requests().size(), 1U);
  const RawRequest request = server.requests()[0];
  EXPECT_EQ(request.Header("Authorization"), "Bearer a:b");
  EXPECT_TRUE(request.HasHeader("X-Empty"));
  EXPECT_EQ(request.Header("X-Empty"), "");
  EXPECT_EQ(request.Header("X-Twice"), "two");
  EXPECT_THAT(request.Header("User-Agent"), MatchesRegex("stowra/[0-9]+"));
}

TEST_P(OptionsTest, SendsEachHeaderToItsServerOnly) {
  const RawServer last(Replies(kUser));
  const RawServer first([&last](const RawRequest&, RawConnection& connection) {
    connection.Write("HTTP/1.1 302 Found\r\nLocation: " + last.Url("/there") +
                     "\r\nContent-Length: 0\r\n\r\n");
  });
  const Outcome outcome =
      RunInMode({"user-info", first.Url(), "--header", "X-First: 1", "--header-to", last.Url(),
                 "X-Last: 2", "--header-to", "http://127.0.0.1:1", "X-Nobody: 3"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  ASSERT_EQ(first.requests().size(), 1U);
  ASSERT_EQ(last.requests().size(), 1U);
  EXPECT_EQ(first.requests()[0].Header("X-First"), "1");
  EXPECT_FALSE(first.requests()[0].HasHeader("X-Last"));
  EXPECT_FALSE(last.requests()[0].HasHeader("X-First"));
  EXPECT_EQ(last.requests()[0].Header("X-Last"), "2");
  EXPECT_FALSE(last.requests()[0].HasHeader("X-Nobody"));
}

TEST_P(OptionsTest, ReadsHeadersFromFiles) {
  const RawServer server(Replies(kUser));
  const TemporaryFolder folder;
  const std::string file = (folder.path() / "headers").string();
  std::ofstream(file) << "Authorization: Bearer s3cret\r\n\nX-Two: 2\n";
  const Outcome outcome = RunInMode({"user-info", server.Url(), "--header", "@" + file});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  const Outcome to = RunInMode({"user-info", server.Url(), "--header-to", server.Url(), "@-"},
                               "Authorization: Bearer s3cret\nX-Two: 2");
  EXPECT_EQ(to.status, 0) << to.err;
  ASSERT_EQ(server.requests().size(), 2U);
  for (const RawRequest& request : server.requests()) {
    EXPECT_EQ(request.Header("Authorization"), "Bearer s3cret");
    EXPECT_EQ(request.Header("X-Two"), "2");
  }
}

TEST_P(OptionsTest, ReportsHeaderFileWithoutItsSecrets) {
  const TemporaryFolder folder;
  const std::string file = (folder.path() / "headers").string();
  std::ofstream(file) << "X-Good: 1\ns3cret\n";
  const Outcome outcome = RunInMode({"user-info", "http://127.0.0.1:1/", "--header", "@" + file});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.err,
            "stowra: --header: " + file +
                ", line 2: a header has the form \"Name: value\" (see stowra user-info "
                "--help)\n");
}

TEST_P(OptionsTest, TakesOptionsFromEnvironment) {
  const RawServer server(Replies(kUser));
  Start start;
  start.arguments = {"user-info"};
  if (*GetParam() != '\0') start.arguments.emplace_back(GetParam());
  start.environment = {"STOWRA_URL_BASE=" + server.Url("/api/"), "STOWRA_HEADER=X-Key: s3cret"};
  EXPECT_EQ(RunProgram(kStowra, start).status, 0);
  ASSERT_EQ(server.requests().size(), 1U);
  EXPECT_EQ(server.requests()[0].target, "/api/user-info");
  EXPECT_EQ(server.requests()[0].Header("X-Key"), "s3cret");
  start.environment = {"STOWRA_URL_BASE=nonsense"};
  const Outcome bad = RunProgram(kStowra, start);
  EXPECT_EQ(bad.status, 2);
  EXPECT_THAT(bad.err, HasSubstr("'nonsense' is not an http or https URL"));
}

TEST_P(OptionsTest, EndsCommandAfterMaxTime) {
  const RawServer server(Silence());
  const Outcome outcome =
      RunInMode({"user-info", server.Url(), "--max-time", "0.4", "--retry", "9"});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(outcome.err,
            "stowra: " + server.Url() + ": not done after 0.4 seconds (see --max-time)\n");
}

TEST_P(OptionsTest, RepeatsRequestUntilItSucceeds) {
  std::atomic<int> count = 0;
  const RawServer server([&count](const RawRequest&, RawConnection& connection) {
    const bool fails = count++ < 2;
    connection.Write(fails
                         ? Response(503, "later", "Retry-After: 0\r\nContent-Type: text/plain\r\n")
                         : Response(200, kUser));
  });
  const Outcome outcome = RunInMode({"user-info", server.Url(), "--retry", "2"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "stowra: warning: " + server.Url() +
                             ": HTTP status 503; attempt 2 of 3 in 0 s\n"
                             "stowra: warning: " +
                             server.Url() + ": HTTP status 503; attempt 3 of 3 in 0 s\n");
  EXPECT_EQ(server.requests().size(), 3U);
}

TEST_P(OptionsTest, GivesUpAfterTheLastRepetition) {
  const RawServer server(
      Always(Response(429, "too fast", "Retry-After: 0\r\nContent-Type: text/plain\r\n")));
  const Outcome outcome = RunInMode({"user-info", server.Url(), "--retry", "1"});
  EXPECT_EQ(outcome.status, 4);
  EXPECT_THAT(outcome.err,
              testing::EndsWith("stowra: " + server.Url() + ": HTTP status 429: too fast\n"));
  EXPECT_EQ(server.requests().size(), 2U);
}

TEST_P(OptionsTest, DoesNotRepeatOtherFailures) {
  for (const std::string& response :
       {Response(404, ""), Response(200, "{}"), Response(503, "", "Retry-After: 7200\r\n")}) {
    const RawServer server(Always(response));
    EXPECT_NE(RunInMode({"user-info", server.Url(), "--retry", "5"}).status, 0);
    EXPECT_EQ(server.requests().size(), 1U);
  }
}

TEST_P(OptionsTest, EndsStalledTransferAtTimeout) {
  const RawServer server(Silence());
  const auto start = std::chrono::steady_clock::now();
  const Outcome outcome = RunInMode({"user-info", server.Url(), "--timeout", "0.5"});
  const auto took = std::chrono::steady_clock::now() - start;
  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(outcome.err, "stowra: " + server.Url() + ": no data for 0.5 seconds\n");
  EXPECT_GE(took, std::chrono::milliseconds(500));
  EXPECT_LT(took, std::chrono::seconds(20));
}

TEST_P(OptionsTest, EndsOnInterruptDuringTransfer) {
  const RawServer server(Silence());
  Start start;
  start.arguments = {"user-info", server.Url()};
  if (*GetParam() != '\0') start.arguments.emplace_back(GetParam());
  Child child(kStowra, start);
  ASSERT_TRUE(server.WaitForRequests(1));
  child.Signal(SIGINT);
  const Outcome outcome = child.Wait();
  EXPECT_EQ(outcome.status, -SIGINT);
  EXPECT_EQ(outcome.out, "");
}

TEST_P(OptionsTest, TrustsGivenCertificateAuthority) {
  const CertificateAuthority authority("host test authority");
  const Certificate certificate = authority.Issue("IP:127.0.0.1");
  const std::filesystem::path file =
      std::filesystem::temp_directory_path() / ("stowra-ca-" + std::to_string(::getpid()) + ".pem");
  authority.WriteTo(file);
  RawServer::Options options;
  options.certificate = &certificate;
  const RawServer server(Replies(kUser), options);

  const Outcome distrusted = RunInMode({"user-info", server.Url()});
  EXPECT_EQ(distrusted.status, 3);
  EXPECT_EQ(distrusted.out, "");
  EXPECT_THAT(distrusted.err, HasSubstr("certificate"));

  const Outcome trusted = RunInMode({"user-info", server.Url(), "--cacert", file.string()});
  EXPECT_EQ(trusted.status, 0) << trusted.err;
  EXPECT_THAT(trusted.out, HasSubstr("user id  u\n"));
}

}  // namespace
}  // namespace stowra_test
