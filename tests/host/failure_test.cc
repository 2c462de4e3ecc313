// SPDX-License-Identifier: MIT
// What the commands say of a failure.

#include "tests/host/content_replies.h"
#include "tests/host/host_test.h"

namespace stowra_test {
namespace {

constexpr char kPlainText[] = "Content-Type: text/plain\r\n";

class JsonErrorTest : public InBothModes {};
IN_BOTH_MODES(JsonErrorTest);

TEST_P(JsonErrorTest, TellsReasonMessageAndUrl) {
  struct Row {
    RawServer::Handler handler;
    std::vector<std::string> options;
    int exit_status;
    const char* reason;
    std::string message;
    int status;
    std::string server_message;
  };
  const std::string useless = "the response is not usable: it lacks uid, email, vkr_id";
  const std::string too_late = "not done after 0.3 seconds (see --max-time)";
  const Row rows[] = {
      {Always(Response(404, "no such\x1B[2J user\nat all", kPlainText)),
       {},
       4,
       "http-status",
       "HTTP status 404",
       404,
       "no such\\u001B[2J user"},
      {Silence(), {"--timeout", "0.3"}, 3, "silent", "no data for 0.3 seconds", 0, ""},
      {Silence(), {"--max-time", "0.3"}, 3, "max-time", too_late, 0, ""},
      {Replies("{}"), {}, 5, "unusable-response", useless, 200, ""},
  };
  for (const Row& row : rows) {
    const RawServer server(row.handler);
    const std::string end = row.server_message.empty() ? "" : ": " + row.server_message;
    EXPECT_THAT(RunInMode(Joined({"user-info", server.Url(), "--json"}, row.options)),
                Ends(row.exit_status,
                     std::string(R"({"error":{"reason":")") + row.reason + R"(","message":")" +
                         row.message + R"(","url":")" + server.Url() + R"(","status":)" +
                         std::to_string(row.status) + R"(,"server_message":")" +
                         row.server_message + "\"}}\n",
                     Message(server.Url(), row.message + end)))
        << row.reason;
  }
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

class NotificationTest : public InBothModes {};
IN_BOTH_MODES(NotificationTest);

TEST_P(NotificationTest, IsPrintedOnRequest) {
  const EmulatorProcess emulator;
  const std::string body = R"({"extensions":[{"id":"roof-tools","version":"1.0"}]})";
  const std::string update = "notification UpdateQueryAsync";
  const std::string extensions = "notification ExtensionStoreAsyncStatus";
  struct Row {
    std::vector<std::string> command;
    const char* output;  // a part of it
    std::string success;
    std::string failure;
  };
  const Row rows[] = {
      {{"user-info"}, "user id  u-1001\n", "notification UserInfoUpdated\n", ""},
      {{"update"}, "\ndata file", update + "Succeeded\n", update + "Failed\n"},
      {{"extensions", "--body", "-"},
       "roof-tools  2.5      yes",
       IsAsync() ? extensions + "Succeeded\n" : "",
       IsAsync() ? extensions + "Failed\n" : ""},
  };
  for (const auto& [command, output, success, failure] : rows) {
    const std::string url = emulator.url() + "/" + command[0];
    const std::string faulty = url + "?fault=status:404";
    EXPECT_THAT(RunInMode(Joined(command, {url, "--notifications"}), body),
                Ends(0, HasSubstr(output), success));
    EXPECT_THAT(
        RunInMode(Joined(command, {faulty, "--notifications"}), body),
        Fails(4, failure + Message(faulty, "HTTP status 404: this status is a fault on purpose")));
  }
}

TEST(UnusableResponseTest, IsReportedByEveryCommand) {
  const std::vector<std::string> user_info = {"user-info", "--notifications"};
  const std::vector<std::string> update = {"update"};
  const std::vector<std::string> extensions = {"extensions", "--body", "-"};
  const std::vector<std::string> search = {"search"};
  const std::vector<std::string> config = {"upload-config"};
  const std::string no_status = "it contains no extension's status";
  const std::string no_feed =
      "it is not an Atom feed with title, totalResults, startIndex and itemsPerPage";
  const std::string no_config = "it is not a complete upload configuration";
  const std::string no_versions = "it lacks update.current_version, update.expire_version";
  std::string no_start = Feed({});
  no_start.replace(no_start.find("<o:startIndex>1</o:startIndex>"), 30, "");
  const std::tuple<std::vector<std::string>, std::string, std::string> rows[] = {
      {user_info, "", "it is empty"},
      {user_info, "{\"uid\":", "it cannot be read as JSON"},
      {user_info, "[]", "it lacks uid, email, vkr_id"},
      {user_info, R"({"uid":"u","email":"e"})", "it lacks vkr_id"},
      {user_info, R"({"email":"e","vkr_id":"v"})", "it lacks uid"},
      {update, "", "it is empty"},
      {update, "update", "it cannot be read as JSON"},
      {update, R"({"datafiles":[{"version":1}]})", "it lacks update"},
      {update, R"({"update":{}})", no_versions},
      {update, R"({"update":{"current_version":2,"expire_version":""}})", no_versions},
      {update, R"({"update":{"current_version":"1"}})", "it lacks update.expire_version"},
      {update, R"({"update":{"expire_version":"1"}})", "it lacks update.current_version"},
      {extensions, "", no_status},
      {extensions, "{\"extensions\":", no_status},
      {extensions, "[]", no_status},
      {extensions, "{}", no_status},
      {extensions, R"({"extensions":[]})", no_status},
      {extensions, R"({"extensions":[1,"x"]})", no_status},
      {extensions, R"({"extensions":{"id":"x"}})", no_status},
      {search, "<html/>", no_feed},
      {search, "{}", no_feed},
      {search, no_start, no_feed},
      {config, "<upload/>", no_config},
      {config, "x", no_config},
      {config, "", no_config},
      {{"upload", kStowra, "--subject-id", "m"}, "<upload/>", no_config},
  };
  for (const auto& [command, body, fault] : rows) {
    const RawServer server(Replies(body));
    const auto failure = Fails(5, Message(server.Url(), "the response is not usable: " + fault));
    std::vector<std::string> arguments = command;
    arguments.insert(arguments.begin() + 1, server.Url());
    EXPECT_THAT(RunStowra(arguments, "{}"), failure) << command[0] << ": " << body;
    if (command != user_info && command != update && command != extensions) continue;
    EXPECT_THAT(RunStowra(Joined(arguments, {"--async"}), "{}"), failure)
        << command[0] << ", async: " << body;
  }
}

}  // namespace
}  // namespace stowra_test
