// SPDX-License-Identifier: MIT
// Headers that the transport sets unless the host does.

#include <gtest/gtest.h>

#include <string>

#include "tests/platform/http/transport_fixture.h"
#include "tests/support/raw_server.h"

namespace stowra_test {
namespace {

int Count(const RawRequest& request, const std::string& name) {
  int count = 0;
  for (const auto& header : request.headers) count += header.first == name ? 1 : 0;
  return count;
}

class OwnHeaderTest : public TransportTest {
 protected:
  const RawServer server_{Always(Response(200, ""))};
  InternetData transport_{Text(server_.Url())};
};

TEST_F(OwnHeaderTest, HostMaySetTheOfferedEncodings) {
  transport_.SetValueForHTTPSendHeaders("Accept-Encoding", "identity");
  ASSERT_TRUE(transport_.Download());
  const RawRequest request = LastRequest(server_);
  EXPECT_EQ(request.Header("Accept-Encoding"), "identity");
  EXPECT_EQ(Count(request, "Accept-Encoding"), 1);
}

TEST_F(OwnHeaderTest, HostMaySetExpect) {
  transport_.SetValueForHTTPSendHeaders("Expect", "nothing");
  SetSendData("data", transport_);
  int status = 0;
  ASSERT_TRUE(transport_.SendAndRead(Text(server_.Url()), nullptr, nullptr, &status, nullptr, false,
                                     false, true, "", "", nullptr));
  const RawRequest request = LastRequest(server_);
  EXPECT_EQ(request.Header("Expect"), "nothing");
  EXPECT_EQ(Count(request, "Expect"), 1);
  EXPECT_EQ(request.body, "data");
}

}  // namespace
}  // namespace stowra_test
