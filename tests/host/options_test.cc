// SPDX-License-Identifier: MIT
// How the options change the transfers.

#include <atomic>
#include <csignal>

#include "tests/host/host_test.h"
#include "tests/support/certificates.h"

namespace stowra_test {
namespace {

class OptionsTest : public InBothModes {
 protected:
  const TemporaryFolder folder_;
  const std::string file_ = (folder_.path() / "file").string();
  const RawServer server_{Replies(kUser)};
};
IN_BOTH_MODES(OptionsTest);

TEST_P(OptionsTest, SendsGivenHeaders) {
  EXPECT_THAT(RunInMode({"user-info", "--header", "Authorization: Bearer a:b", "--header",
                         "X-Empty:", "--header", "X-Twice: one", server_.Url(), "--header",
                         "x-twice:  two "}),
              Prints(_));
  ASSERT_EQ(server_.requests().size(), 1U);
  const RawRequest request = server_.requests()[0];
  EXPECT_EQ(request.Header("Authorization"), "Bearer a:b");
  EXPECT_TRUE(request.HasHeader("X-Empty"));
  EXPECT_EQ(request.Header("X-Empty"), "");
  EXPECT_EQ(request.Header("X-Twice"), "two");
  EXPECT_THAT(request.Header("User-Agent"), MatchesRegex("stowra/[0-9]+"));
}

TEST_P(OptionsTest, SendsEachHeaderToItsServerOnly) {
  const RawServer first(Always(Response(302, "", "Location: " + server_.Url("/there") + "\r\n")));
  EXPECT_THAT(RunInMode({"user-info", first.Url(), "--header", "X-First: 1", "--header-to",
                         server_.Url(), "X-Last: 2", "--header-to", kNowhere, "X-Nobody: 3"}),
              Prints(_));
  ASSERT_EQ(first.requests().size(), 1U);
  ASSERT_EQ(server_.requests().size(), 1U);
  const RawRequest last = server_.requests()[0];
  EXPECT_EQ(first.requests()[0].Header("X-First"), "1");
  EXPECT_FALSE(first.requests()[0].HasHeader("X-Last"));
  EXPECT_FALSE(last.HasHeader("X-First"));
  EXPECT_EQ(last.Header("X-Last"), "2");
  EXPECT_FALSE(last.HasHeader("X-Nobody"));
}

TEST_P(OptionsTest, ReadsHeadersFromFiles) {
  std::ofstream(file_) << "Authorization: Bearer s3cret\r\n\nX-Two: 2\n";
  EXPECT_THAT(RunInMode({"user-info", server_.Url(), "--header", "@" + file_}), Prints(_));
  EXPECT_THAT(RunInMode({"user-info", server_.Url(), "--header-to", server_.Url(), "@-"},
                        "Authorization: Bearer s3cret\nX-Two: 2"),
              Prints(_));
  ASSERT_EQ(server_.requests().size(), 2U);
  for (const RawRequest& request : server_.requests()) {
    EXPECT_EQ(request.Header("Authorization"), "Bearer s3cret");
    EXPECT_EQ(request.Header("X-Two"), "2");
  }
}

TEST_P(OptionsTest, ReportsHeaderFileWithoutItsSecrets) {
  std::ofstream(file_) << "X-Good: 1\ns3cret\n";
  EXPECT_THAT(
      RunInMode({"user-info", kNowhere, "--header", "@" + file_}),
      Fails(2, Message("--header", file_ + ", line 2: a header has the form \"Name: value\" "
                                           "(see stowra user-info --help)")));
}

TEST_P(OptionsTest, TakesOptionsFromEnvironment) {
  const std::string base = "STOWRA_URL_BASE=";
  const std::vector<std::string> command = InMode({"user-info"});
  EXPECT_THAT(
      RunProgram(kStowra,
                 {command, "", {base + server_.Url("/api/"), "STOWRA_HEADER=X-Key: s3cret"}}),
      Prints(_));
  ASSERT_EQ(server_.requests().size(), 1U);
  EXPECT_EQ(server_.requests()[0].target, "/api/user-info");
  EXPECT_EQ(server_.requests()[0].Header("X-Key"), "s3cret");
  EXPECT_THAT(RunProgram(kStowra, {command, "", {base + "nonsense"}}),
              Fails(2, HasSubstr("'nonsense' is not an http or https URL")));
}

TEST_P(OptionsTest, EndsCommandAfterMaxTime) {
  const RawServer server(Silence());
  EXPECT_THAT(RunInMode({"user-info", server.Url(), "--max-time", "0.4", "--retry", "9"}),
              Fails(3, Message(server.Url(), "not done after 0.4 seconds (see --max-time)")));
}

TEST_P(OptionsTest, RepeatsRequestUntilItSucceeds) {
  std::atomic<int> count = 0;
  const RawServer server([&count](const RawRequest&, RawConnection& connection) {
    connection.Write(count++ < 2
                         ? Response(503, "later", "Retry-After: 0\r\nContent-Type: text/plain\r\n")
                         : Response(200, kUser));
  });
  const std::string failure = "HTTP status 503; attempt ";
  EXPECT_THAT(RunInMode({"user-info", server.Url(), "--retry", "2"}),
              Ends(0, _,
                   Message("warning: " + server.Url(), failure + "2 of 3 in 0 s") +
                       Message("warning: " + server.Url(), failure + "3 of 3 in 0 s")));
  EXPECT_EQ(server.requests().size(), 3U);
}

TEST_P(OptionsTest, GivesUpAfterTheLastRepetition) {
  const RawServer server(
      Always(Response(429, "too fast", "Retry-After: 0\r\nContent-Type: text/plain\r\n")));
  EXPECT_THAT(RunInMode({"user-info", server.Url(), "--retry", "1"}),
              Fails(4, EndsWith(Message(server.Url(), "HTTP status 429: too fast"))));
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

TEST_P(OptionsTest, EndsOnInterruptDuringTransfer) {
  const RawServer server(Silence());
  Child child(kStowra, {InMode({"user-info", server.Url()}), "", {}});
  ASSERT_TRUE(server.WaitForRequests(1));
  child.Signal(SIGINT);
  EXPECT_THAT(child.Wait(), Fails(-SIGINT, _));
}

TEST_P(OptionsTest, TrustsGivenCertificateAuthority) {
  const CertificateAuthority authority("host test authority");
  const Certificate certificate = authority.Issue("IP:127.0.0.1");
  authority.WriteTo(file_);
  RawServer::Options options;
  options.certificate = &certificate;
  const RawServer server(Replies(kUser), options);
  EXPECT_THAT(RunInMode({"user-info", server.Url()}), Fails(3, HasSubstr("certificate")));
  EXPECT_THAT(RunInMode({"user-info", server.Url(), "--cacert", file_}),
              Prints(HasSubstr("user id  u\n")));
}

}  // namespace
}  // namespace stowra_test
