// SPDX-License-Identifier: MIT
#include "tests/host/host_test.h"

namespace stowra_test {
namespace {

class ExtensionsTest : public InBothModes {
 protected:
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

TEST(ExtensionsBodyTest, RefusesBodyThatIsNotUtf8) {
  EXPECT_THAT(RunStowra({"extensions", kNowhere, "--body", "-"}, "{\"id\":\"\xFF\"}"),
              Fails(2, Message("--body -", "the text is not UTF-8")));
}

}  // namespace
}  // namespace stowra_test
