// SPDX-License-Identifier: MIT
#include "tests/host/host_test.h"

namespace stowra_test {
namespace {

class UpdateTest : public InBothModes {};
IN_BOTH_MODES(UpdateTest);

constexpr char kReply[] = R"({
  "update": {"current_version": "24.0", "expire_version": "22.0"},
  "message": {"id": 42, "max_shows": 3, "width": 640, "height": 480,
              "title": "façades", "url": "http://m.example/42"},
  "datafiles": [{"version": 17, "filename": "materials.dat", "url": "http://d.example/m"},
                {"version": 4, "filename": "屋根.dat", "url": "http://d.example/r"}]})";

TEST_P(UpdateTest, PrintsOfferAsTable) {
  const RawServer server(Replies(kReply));
  EXPECT_THAT(RunInMode({"update", server.Url()}),
              Prints("current version  24.0\n"
                     "expire version   22.0\n"
                     "message          42\n"
                     "  title          façades\n"
                     "  url            http://m.example/42\n"
                     "  size           640 x 480\n"
                     "  max shows      3\n"
                     "\n"
                     "data file      version  url\n"
                     "materials.dat  17       http://d.example/m\n"
                     "屋根.dat       4        http://d.example/r\n"));
}

TEST_P(UpdateTest, PrintsOfferAsJson) {
  const RawServer server(Replies(kReply));
  EXPECT_THAT(RunInMode({"update", server.Url(), "--json"}),
              Prints(R"({"current_version":"24.0","expire_version":"22.0","message":{"id":42,)"
                     R"("max_shows":3,"width":640,"height":480,"title":"façades",)"
                     R"("url":"http://m.example/42"},"data_files":[{"version":17,)"
                     R"("filename":"materials.dat","url":"http://d.example/m"},)"
                     R"({"version":4,"filename":"屋根.dat","url":"http://d.example/r"}]})"
                     "\n"));
}

TEST_P(UpdateTest, PrintsOnlyVersionsWithoutOtherOffers) {
  const RawServer server(Replies(R"({"update":{"current_version":"2","expire_version":"1"}})"));
  EXPECT_THAT(RunInMode({"update", server.Url()}),
              Prints("current version  2\nexpire version   1\n"));
  EXPECT_THAT(RunInMode({"update", server.Url(), "--json"}),
              Prints("{\"current_version\":\"2\",\"expire_version\":\"1\",\"message\":null,"
                     "\"data_files\":[]}\n"));
}

}  // namespace
}  // namespace stowra_test
