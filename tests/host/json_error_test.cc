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
  const std::string url = server.Url();
  EXPECT_THAT(
      RunInMode({"user-info", url, "--json"}),
      Ends(4, ErrorObject("http-status", "HTTP status 404", url, 404, "no such\\u001B[2J user"),
           Message(url, "HTTP status 404: no such\\u001B[2J user")));
}

TEST_P(JsonErrorTest, TellsWhyTheTransferFailed) {
  const RawServer server(Silence());
  EXPECT_THAT(RunInMode({"user-info", server.Url(), "--json", "--timeout", "0.3"}),
              Ends(3, ErrorObject("silent", "no data for 0.3 seconds", server.Url(), 0, ""), _));
}

TEST_P(JsonErrorTest, TellsWhatIsWrongWithTheResponse) {
  const RawServer server(Replies("{}"));
  const std::string fault = "the response is not usable: it lacks uid, email, vkr_id";
  EXPECT_THAT(RunInMode({"user-info", server.Url(), "--json"}),
              Ends(5, ErrorObject("unusable-response", fault, server.Url(), 200, ""), _));
}

TEST_P(JsonErrorTest, TellsOfMaxTime) {
  const RawServer server(Silence());
  const std::string fault = "not done after 0.3 seconds (see --max-time)";
  EXPECT_THAT(RunInMode({"update", server.Url(), "--json", "--max-time", "0.3"}),
              Ends(3, ErrorObject("max-time", fault, server.Url(), 0, ""), _));
}

TEST(ServerMessageTest, IsShownByEveryCommand) {
  const std::string page = "<html><head><title>Down for repairs</title></head></html>";
  const RawServer server(Always(Response(503, page, "Content-Type: text/html\r\n")));
  const std::vector<std::string> commands[] = {
      {"user-info", server.Url()},
      {"update", server.Url(), "--async"},
      {"extensions", server.Url(), "--body", "-"},
      {"search", server.Url()},
      {"download", server.Url()},
      {"upload-config", server.Url()},
      {"upload", server.Url(), kStowra, "--subject-id", "m"},
  };
  for (const auto& command : commands) {
    EXPECT_THAT(RunStowra(command, "{}"),
                Ends(4, _, Message(server.Url(), "HTTP status 503: Down for repairs")))
        << command[0];
  }
}

}  // namespace
}  // namespace stowra_test
