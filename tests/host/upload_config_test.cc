// SPDX-License-Identifier: MIT
#include "tests/host/content_replies.h"
#include "tests/host/host_test.h"

namespace stowra_test {
namespace {

TEST(UploadConfigTest, PrintsFilesAsTable) {
  const RawServer server(
      Always(Response(200, Config({{"http://u/1?name=a&type=b", false}, {"http://u/2", true}}))));
  EXPECT_THAT(RunStowra({"upload-config", server.Url()}),
              Prints("success url  http://r/yes\n"
                     "failure url  http://r/no\n"
                     "\n"
                     "file    type  format  zipped  size     upload url\n"
                     "Stühle  t/u   qmf     no      64 x 48  http://u/1?name=a&type=b\n"
                     "Stühle  t/u   qmf     yes     64 x 48  http://u/2\n"));
}

TEST(UploadConfigTest, PrintsFilesAsJson) {
  const RawServer server(Always(Response(200, Config({{"http://u/1", true}}))));
  EXPECT_THAT(RunStowra({"upload-config", server.Url(), "--json"}),
              Prints(R"({"success_url":"http://r/yes","failure_url":"http://r/no","files":[)"
                     R"({"upload_url":"http://u/1","type":"t/u","zipped":true,"name":"Stühle",)"
                     R"("format":"qmf","width":64,"height":48}]})"
                     "\n"));
}

TEST(UploadConfigTest, AcceptsConfigurationWithoutFiles) {
  const RawServer server(Always(Response(200, Config({}))));
  EXPECT_THAT(RunStowra({"upload-config", server.Url()}),
              Prints("success url  http://r/yes\nfailure url  http://r/no\n"));
}

TEST(UploadConfigTest, ReadsConfigurationOfTheEmulator) {
  const EmulatorProcess emulator;
  EXPECT_THAT(
      RunStowra({"upload-config", emulator.url() + "/upload-config?name=Chair&zipped=true"}),
      Prints(HasSubstr("\nChair  application/vnd.brevix.qmf  qmf     yes")));
}

}  // namespace
}  // namespace stowra_test
