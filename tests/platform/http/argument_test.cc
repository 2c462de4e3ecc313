// SPDX-License-Identifier: MIT
// Arguments that a caller should not pass. No exception but std::bad_alloc comes of them.

#include <gtest/gtest.h>

#include <limits>
#include <new>
#include <string>
#include <vector>

#include "tests/platform/http/transport_fixture.h"

namespace stowra_test {
namespace {

class ArgumentTest : public TransportTest {
 protected:
  const RawServer server_{Always(Response(200, "hello"))};
};

TEST_F(ArgumentTest, TooMuchSendDataIsRefusedAndChangesNothing) {
  InternetData transport(Text(server_.Url()));
  SetSendData("data", transport);
  const unsigned char byte = 0;
  EXPECT_THROW(transport.set_send_data(&byte, std::numeric_limits<unsigned long>::max()),
               std::bad_alloc);
  EXPECT_TRUE(Post(server_.Url(), transport));
  EXPECT_EQ(LastRequest(server_).body, "data");
}

TEST_F(ArgumentTest, NullNamesOfADelegateCountAsEmptyOnes) {
  NotificationRecorder recorder({""});
  const auto delegate = MakeDelegate(nullptr, nullptr, nullptr);
  std::size_t posts = 0;
  for (const std::string& url : {server_.Url(), std::string("none:")}) {
    InternetData transport(Text(url));
    EXPECT_TRUE(transport.DownloadWithDelegate(delegate.get(), nullptr));
    ASSERT_TRUE(recorder.WaitFor(++posts));
    EXPECT_TRUE(transport.UploadWithDelegate(delegate.get(), nullptr));
    ASSERT_TRUE(recorder.WaitFor(++posts));
  }
  LetWorkerCatchUp();
  EXPECT_EQ(recorder.names(), std::vector<std::string>(4));
}

TEST_F(ArgumentTest, DelegateWithOneNamePostsThatOne) {
  NotificationRecorder recorder({kReturned, kFailed});
  const auto returned_only = MakeDelegate(nullptr, kReturned, nullptr);
  const auto failed_only = MakeDelegate(nullptr, nullptr, kFailed);
  InternetData good(Text(server_.Url()));
  InternetData bad(Text("none:"));
  EXPECT_TRUE(good.DownloadWithDelegate(returned_only.get(), nullptr));
  ASSERT_TRUE(recorder.WaitFor(1));
  EXPECT_TRUE(bad.DownloadWithDelegate(failed_only.get(), nullptr));
  ASSERT_TRUE(recorder.WaitFor(2));
  EXPECT_EQ(recorder.names(), (std::vector<std::string>{kReturned, kFailed}));
}

}  // namespace
}  // namespace stowra_test
