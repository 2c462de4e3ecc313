// SPDX-License-Identifier: MIT
// Failures as JSON, and what the server says about them.

#include "tests/host/host_test.h"

namespace stowra_test {
namespace {

class JsonErrorTest : public InBothModes {};
IN_BOTH_MODES(JsonErrorTest);

std::string ErrorObject(const std::string& reason, const std::string& message,
                        const std::string& url, int status, const std::string& server_message) {
  return R"({"error":{"reason":")" + reason + R"(","message":")" + message + R"(","url":")" + url +
         R"(","status":)" + std::to_string(status) + R"(,"server_message":")" + server_message +
         "\"}}\n";
}

TEST_P(JsonErrorTest, TellsHttpStatusAndServersMessage) {
  const RawServer server(
      Always(Response(404, "no such\x1B[2J user\nat all", "Content-Type: text/plain\r\n")));
  const Outcome outcome = RunInMode({"user-info", server.Url(), "--json"});
  EXPECT_EQ(outcome.status, 4);
  EXPECT_EQ(outcome.out, ErrorObject("http-status", "HTTP status 404", server.Url(), 404,
                                     "no such\\u001B[2J user"));
  EXPECT_EQ(outcome.err, "stowra: " + server.Url() + ": HTTP status 404: no such\\u001B[2J user\n");
}

TEST_P(JsonErrorTest, TellsWhyTheTransferFailed) {
  const RawServer server(Silence());
  const Outcome outcome = RunInMode({"user-info", server.Url(), "--json", "--timeout", "0.3"});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(outcome.out, ErrorObject("silent", "no data for 0.3 seconds", server.Url(), 0, ""));
}

TEST_P(JsonErrorTest, TellsWhatIsWrongWithTheResponse) {
  const RawServer server(Replies("{}"));
  const Outcome outcome = RunInMode({"user-info", server.Url(), "--json"});
  EXPECT_EQ(outcome.status, 5);
  EXPECT_EQ(outcome.out, ErrorObject("unusable-response",
                                     "the response is not usable: it lacks uid, email, vkr_id",
                                     server.Url(), 200, ""));
}

TEST_P(JsonErrorTest, TellsOfMaxTime) {
  const RawServer server(Silence());
  const Outcome outcome = RunInMode({"update", server.Url(), "--json", "--max-time", "0.3"});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(outcome.out, ErrorObject("max-time", "not done after 0.3 seconds (see --max-time)",
                                     server.Url(), 0, ""));
}

TEST(ServerMessageTest, IsShownByEveryCommand) {
  const std::string page = "<html><head><title>Down for repairs</title></head></html>";
  const RawServer server(Always(Response(503, page, "Content-Type: text/html\r\n")));
  const std::vector<std::vector<std::string>> commands = {
      {"user-info", server.Url()},
      {"update", server.Url(), "--async"},
      {"extensions", server.Url(), "--body", "-"},
      {"search", server.Url()},
      {"download", server.Url()},
      {"upload-config", server.Url()},
      {"upload", server.Url(), kStowra, "--subject-id", "m"},
  };
  for (const auto& command : commands) {
    const Outcome outcome = RunStowra(command, "{}");
    EXPECT_EQ(outcome.status, 4) << command[0];
    EXPECT_EQ(outcome.err, "stowra: " + server.Url() + ": HTTP status 503: Down for repairs\n");
  }
}

}  // namespace
}  // namespace stowra_test
