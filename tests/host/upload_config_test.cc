// SPDX-License-Identifier: MIT
#include "tests/host/content_replies.h"
#include "tests/host/host_test.h"

namespace stowra_test {
namespace {

TEST(UploadConfigTest, PrintsFilesAsTable) {
  const RawServer server(
      Always(Response(200, Config({{"http://u/1?name=a&type=b", false}, {"http://u/2", true}}))));
  const Outcome outcome = RunStowra({"upload-config", server.Url()});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out,
            "success url  http://r/yes\n"
            "failure url  http://r/no\n"
            "\n"
            "file    type  format  zipped  size     upload url\n"
            "Stühle  t/u   qmf     no      64 x 48  http://u/1?name=a&type=b\n"
            "Stühle  t/u   qmf     yes     64 x 48  http://u/2\n");
  EXPECT_EQ(outcome.err, "");
}

TEST(UploadConfigTest, PrintsFilesAsJson) {
  const RawServer server(Always(Response(200, Config({{"http://u/1", true}}))));
  const Outcome outcome = RunStowra({"upload-config", server.Url(), "--json"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, R"({"success_url":"http://r/yes","failure_url":"http://r/no","files":[)"
                         R"({"upload_url":"http://u/1","type":"t/u","zipped":true,"name":"Stühle",)"
                         R"("format":"qmf","width":64,"height":48}]})"
                         "\n");
}

TEST(UploadConfigTest, AcceptsConfigurationWithoutFiles) {
  const RawServer server(Always(Response(200, Config({}))));
  EXPECT_EQ(RunStowra({"upload-config", server.Url()}).out,
            "success url  http://r/yes\nfailure url  http://r/no\n");
}

TEST(UploadConfigTest, ReportsIncompleteConfiguration) {
  for (const char* body : {"<upload/>", "x", ""}) {
    const RawServer server(Always(Response(200, body)));
    const Outcome outcome = RunStowra({"upload-config", server.Url()});
    EXPECT_EQ(outcome.status, 5);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "stowra: " + server.Url() +
                               ": the response is not usable: it is not a complete upload "
                               "configuration\n");
  }
}

TEST(UploadConfigTest, ReportsRefusal) {
  const RawServer server(Always(Response(403, "no")));
  const Outcome outcome = RunStowra({"upload-config", server.Url()});
  EXPECT_EQ(outcome.status, 4);
  EXPECT_EQ(outcome.err, "stowra: " + server.Url() + ": HTTP status 403\n");
}

TEST(UploadConfigTest, ReadsConfigurationOfTheEmulator) {
  const EmulatorProcess emulator;
  const Outcome outcome =
      RunStowra({"upload-config", emulator.url() + "/upload-config?name=Chair&zipped=true"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, testing::HasSubstr("\nChair  application/vnd.brevix.qmf  qmf     yes"));
}

}  // namespace
}  // namespace stowra_test
