// SPDX-License-Identifier: MIT
// How the options change the transfers.

#include <signal.h>

#include <chrono>
#include <filesystem>

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

TEST_P(OptionsTest, ReportsHeaderThatCannotBeSent) {
  const Outcome outcome = RunInMode({"user-info", "http://127.0.0.1:1/", "--header", "a b: c"});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(outcome.err, "stowra: http://127.0.0.1:1/: a request header cannot be sent\n");
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
