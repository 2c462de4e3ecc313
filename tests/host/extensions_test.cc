// SPDX-License-Identifier: MIT
#include "tests/host/host_test.h"

namespace stowra_test {
namespace {

class ExtensionsTest : public InBothModes {
 protected:
  // What the program reports of the transfer.
  static std::string Posted(const char* outcome) {
    return IsAsync() ? "notification ExtensionStoreAsyncStatus" + std::string(outcome) + "\n" : "";
  }

  const RawServer server_{Replies(R"({"extensions":[
    {"id":"roof-tools","version_uuid":"u-1","version":"2.5","file_url":"http://e.example/r",
     "update":true,"remote_kill":false,"enabled":1},
    {"id":"窓","version_uuid":"u-2","version":"0.9","file_url":"","update":false,
     "remote_kill":true,"enabled":0}]})")};
  const std::vector<std::string> command_ = {"extensions", server_.Url(), "--body", "-"};
};
IN_BOTH_MODES(ExtensionsTest);

TEST_P(ExtensionsTest, PrintsStatusesAsTable) {
  EXPECT_THAT(
      RunInMode(command_, "{}"),
      Prints("extension   version  update  withdrawn  enabled  version uuid  url\n"
             "roof-tools  2.5      yes     no         yes      u-1           http://e.example/r\n"
             "窓          0.9      no      yes        no       u-2           \n"));
}

TEST_P(ExtensionsTest, PrintsStatusesAsJson) {
  EXPECT_THAT(
      RunInMode(Joined(command_, {"--json"}), "{}"),
      Prints(R"({"extensions":[{"id":"roof-tools","version_uuid":"u-1","version":2.5,)"
             R"("file_url":"http://e.example/r","update":true,"remote_kill":false,"enabled":true},)"
             R"({"id":"窓","version_uuid":"u-2","version":0.9,"file_url":"",)"
             R"("update":false,"remote_kill":true,"enabled":false}]})"
             "\n"));
}

TEST_P(ExtensionsTest, SendsStandardInputUnchanged) {
  const std::string body = "{\"extensions\":[\n{\"id\":\"gärten\"}]}\n";
  EXPECT_EQ(RunInMode(command_, body).status, 0);
  ASSERT_EQ(server_.requests().size(), 1U);
  const RawRequest request = server_.requests()[0];
  EXPECT_EQ(request.method, "POST");
  EXPECT_EQ(request.body, body);
  EXPECT_EQ(request.Header("Content-Type"), "application/json");
}

TEST_P(ExtensionsTest, SendsFileUnchanged) {
  const std::string body = "{\"extensions\":[]}" + std::string(300000, ' ') + std::string(1, '\0');
  const TemporaryFolder folder;
  const std::filesystem::path file = folder.path() / "body.json";
  std::ofstream(file, std::ios::binary) << body;
  EXPECT_EQ(RunInMode({"extensions", server_.Url(), "--body", file.string()}).status, 0);
  ASSERT_EQ(server_.requests().size(), 1U);
  EXPECT_EQ(server_.requests()[0].body, body);
}

TEST_P(ExtensionsTest, ReadsStatusFromTheEmulator) {
  const EmulatorProcess emulator;
  EXPECT_THAT(RunInMode({"extensions", emulator.url() + "/extensions", "--body", "-",
                         "--notifications", "--json"},
                        R"({"extensions":[{"id":"roof-tools","version":"1.0"}]})"),
              Ends(0,
                   AllOf(StartsWith(R"({"extensions":[{"id":"roof-tools",)"),
                         HasSubstr(R"("update":true)")),
                   Posted("Succeeded")));
}

TEST_P(ExtensionsTest, ReportsFailure) {
  const EmulatorProcess emulator;
  const std::string url = emulator.url() + "/extensions?fault=status:500";
  EXPECT_THAT(RunInMode({"extensions", url, "--body", "-", "--notifications"}, "{}"),
              Fails(4, Posted("Failed") +
                           Message(url, "HTTP status 500: this status is a fault on purpose")));
}

TEST_P(ExtensionsTest, RefusesResponseWithoutStatus) {
  for (const char* body : {"", "{\"extensions\":", "[]", "{}", R"({"extensions":[]})",
                           R"({"extensions":[1,"x"]})", R"({"extensions":{"id":"x"}})"}) {
    const RawServer server(Replies(body));
    EXPECT_THAT(RunInMode({"extensions", server.Url(), "--body", "-"}, "{}"),
                Fails(5, Message(server.Url(),
                                 "the response is not usable: it contains no "
                                 "extension's status")))
        << body;
  }
}

TEST(ExtensionsBodyTest, RefusesUnreadableBodyFile) {
  for (const auto& [file, reason] : {std::pair("/nowhere/body.json", "No such file or directory"),
                                     std::pair("/", "Is a directory")}) {
    EXPECT_THAT(RunStowra({"extensions", kNowhere, "--body", file}),
                Fails(2, Message(std::string("--body ") + file, reason)));
  }
}

TEST(ExtensionsBodyTest, RefusesBodyThatIsNotUtf8) {
  EXPECT_THAT(RunStowra({"extensions", kNowhere, "--body", "-"}, "{\"id\":\"\xFF\"}"),
              Fails(2, Message("--body -", "the text is not UTF-8")));
}

}  // namespace
}  // namespace stowra_test
