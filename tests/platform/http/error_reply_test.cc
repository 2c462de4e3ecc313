// SPDX-License-Identifier: MIT
// What the listener hears of an error response.

#include <gtest/gtest.h>

#include <string>

#include "tests/platform/http/transport_fixture.h"

namespace stowra_test {
namespace {

class ErrorReplyTest : public TransportTest {
 protected:
  // The end of a download that the server answers so and then closes.
  static TransferEvent EndAfter(const std::string& response, bool is_whole = true) {
    TransferEvent end;
    InternetData::SetTransferListener([&end](const TransferEvent& event) {
      if (event.kind == TransferEvent::Kind::kEnded) {
        end = event;
      } else {
        EXPECT_EQ(event.error_body, "");
      }
    });
    const RawServer server(AlwaysThenClose(response));
    InternetData transport(Text(server.Url()));
    EXPECT_EQ(transport.Download(), is_whole);
    InternetData::SetTransferListener(nullptr);
    return end;
  }
};

TEST_F(ErrorReplyTest, GivesFieldsAndBodyOfErrorResponse) {
  for (const int status : {400, 503}) {
    const TransferEvent end =
        EndAfter(Response(status, "no such ü", "CONTENT-TYPE: text/plain\r\nretry-after: 7\r\n"));
    EXPECT_EQ(end.status, status);
    EXPECT_EQ(end.content_type, "text/plain");
    EXPECT_EQ(end.retry_after, "7");
    EXPECT_EQ(end.error_body, "no such ü");
  }
}

TEST_F(ErrorReplyTest, GivesNothingOfOtherOrBrokenResponses) {
  for (const int status : {200, 304, 404}) {
    const bool is_whole = status != 404;
    std::string response = Response(status, is_whole ? "" : "no such",
                                    "Content-Type: text/plain\r\nRetry-After: 7\r\n");
    if (!is_whole) response.pop_back();
    const TransferEvent end = EndAfter(response, is_whole);
    EXPECT_EQ(end.status, status);
    EXPECT_EQ(end.content_type, "");
    EXPECT_EQ(end.retry_after, "");
    EXPECT_EQ(end.error_body, "");
  }
}

TEST_F(ErrorReplyTest, CutsLongBody) {
  const std::string body(20000, 'x');
  EXPECT_EQ(EndAfter(Response(500, body)).error_body.utf8(), body.substr(0, 16384));
}

}  // namespace
}  // namespace stowra_test
