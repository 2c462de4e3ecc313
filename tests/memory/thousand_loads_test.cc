// SPDX-License-Identifier: MIT
// Loads a thousand texts into one object: good, cut off and empty ones in turn.

#include <gtest/gtest.h>

#include <string>

#include "benchmarks/support/inputs.h"
#include "common_stowraapi/content/content_query.h"
#include "common_stowraapi/content/upload_config.h"
#include "common_stowraapi/platform/internet_data.h"
#include "common_stowraapi/services/item_map.h"
#include "common_stowraapi/services/update_query.h"
#include "common_stowraapi/services/user_info_query.h"
#include "tests/content/feed_text.h"
#include "tests/support/failing_malloc.h"
#include "tests/support/raw_server.h"
#include "tests/support/text.h"

#ifdef STOWRA_COUNTS_MEMORY

namespace stowra_test {
namespace {

using ovrant::stowraapiclient::ContentQuery;
using ovrant::stowraapiclient::UploadConfig;
using ovrant::webservices::UpdateQuery;
using ovrant::webservices::UserInfoQuery;

constexpr char kConfig[] =
    "<upload><successUrl>s</successUrl><failureUrl>f</failureUrl><files>"
    "<file><type>model</type><uploadUrl>https://host/u</uploadUrl></file></files></upload>";

// `load` returns whether it accepted the text. The object may keep memory from the first loads and
// reuse it. Later loads must not add to that.
template <typename Load>
void ExpectThatNothingIsLeft(const std::string& good, const Load& load) {
  const std::string bad = good.substr(0, good.size() / 2);
  const auto load_each = [&] {
    EXPECT_TRUE(load(good));
    EXPECT_FALSE(load(bad));
    EXPECT_FALSE(load(""));
    EXPECT_TRUE(load(good));
  };
  load_each();
  const MemoryWatch watch;
  for (int i = 0; i < 250; ++i) load_each();
  EXPECT_EQ(watch.live(), 0U);
}

TEST(ThousandLoadsTest, FeedsLeaveNoMemory) {
  ContentQuery query;
  ExpectThatNothingIsLeft(stowra_bench::MakeFeed(4),
                          [&](const std::string& text) { return LoadText(text, query); });
}

TEST(ThousandLoadsTest, UploadConfigurationsLeaveNoMemory) {
  UploadConfig config;
  ExpectThatNothingIsLeft(kConfig, [&config](const std::string& text) {
    config.Clear();
    return config.ParseResponse(Bytes(text).data(), text.size());
  });
}

TEST(ThousandLoadsTest, UpdatesAndUserInfosLeaveNoMemory) {
  UpdateQuery update;
  ExpectThatNothingIsLeft(stowra_bench::MakeUpdateResponse(), [&](const std::string& text) {
    return update.ParseResponse(Text(text));
  });
  UserInfoQuery user;
  ExpectThatNothingIsLeft(R"({"uid":"u-1","email":"zoe@example.com","vkr_id":"v-1"})",
                          [&](const std::string& text) { return user.ParseResponse(Text(text)); });
}

TEST(ThousandLoadsTest, ExtensionsLeaveNoMemory) {
  ExpectThatNothingIsLeft(stowra_bench::MakeExtensionStatus(4), [](const std::string& text) {
    return !ovrant::extensionstoreapi::ReadItemMap(Text(text)).empty();
  });
}

TEST(ThousandLoadsTest, TransfersLeaveNoMemory) {
  const RawServer server([](const RawRequest& request, RawConnection& connection) {
    if (request.target == "/good") {
      connection.Write(Response(200, std::string(3000, 'x')));
    } else {
      connection.Write("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\ncut");
      connection.Close();
    }
  });
  ovrant::internet::InternetData good(Text(server.Url("/good")));
  ovrant::internet::InternetData bad(Text(server.Url("/cut")));
  const auto download_each = [&] {
    EXPECT_TRUE(good.Download());
    EXPECT_FALSE(bad.Download());
  };
  for (int i = 0; i < 20; ++i) download_each();
  const MemoryWatch watch;
  for (int i = 0; i < 500; ++i) download_each();
  // The record of a pooled connection varies with the lengths of its addresses.
  EXPECT_LT(watch.live(), 1000U);
}

}  // namespace
}  // namespace stowra_test

#endif  // STOWRA_COUNTS_MEMORY
