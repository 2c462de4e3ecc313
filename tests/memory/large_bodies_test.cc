// SPDX-License-Identifier: MIT
// Bodies that a source gives, a sink takes or a server only announces need no memory of their own.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>

#include "common_stowraapi/platform/body_sink.h"
#include "common_stowraapi/platform/body_source.h"
#include "common_stowraapi/platform/internet_data.h"
#include "tests/support/failing_malloc.h"
#include "tests/support/raw_server.h"

#ifdef STOWRA_COUNTS_MEMORY

namespace stowra_test {
namespace {

using ovrant::internet::BodySink;
using ovrant::internet::BodySource;
using ovrant::internet::InternetData;
using ovrant::internet::TransferDefaults;

constexpr std::size_t kMebibyte = std::size_t{1} << 20;
constexpr std::size_t kMebibytes = 256;
constexpr std::size_t kSize = kMebibytes * kMebibyte;
constexpr std::size_t kMostMemory = 2 * kMebibyte;
const std::string kHead =
    "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(kSize) + "\r\n\r\n";

class CountingSink final : public BodySink {
 public:
  bool Write(const unsigned char*, std::size_t size) override {
    count += size;
    return true;
  }
  std::size_t count = 0;
};

class ZeroSource final : public BodySource {
 public:
  bool Rewind() override {
    left_ = kSize;
    return true;
  }
  std::optional<std::uint64_t> Length() override { return kSize; }
  bool Read(unsigned char* data, std::size_t size, std::size_t& count) override {
    count = std::min(size, left_);
    left_ -= count;
    std::memset(data, 0, count);
    return true;
  }

 private:
  std::size_t left_ = 0;
};

TEST(LargeBodiesTest, ADownloadToASinkTakesLittleMemory) {
  const RawServer server([](const RawRequest&, RawConnection& connection) {
    connection.Write(kHead);
    const std::string mebibyte(kMebibyte, 'x');
    for (std::size_t i = 0; i < kMebibytes && connection.Write(mebibyte); ++i) {
    }
  });
  InternetData transport(server.Url().c_str());
  CountingSink sink;
  const MemoryWatch watch;
  EXPECT_TRUE(transport.DownloadTo(sink));
  EXPECT_EQ(sink.count, kSize);
  EXPECT_LT(watch.peak(), kMostMemory);
}

TEST(LargeBodiesTest, AnUploadFromASourceTakesLittleMemory) {
  const RawServer server(
      [](const RawRequest&, RawConnection& connection) {
        std::string piece;
        for (std::size_t left = kSize; left > 0; piece.clear()) {
          if (!connection.Read(piece)) return;
          left -= std::min(left, piece.size());
        }
        connection.Write(Response(200, ""));
      },
      {nullptr, false});
  InternetData transport(server.Url().c_str());
  ZeroSource source;
  const MemoryWatch watch;
  EXPECT_TRUE(transport.UploadFrom(source));
  EXPECT_EQ(transport.status_code(), 200);
  EXPECT_LT(watch.peak(), kMostMemory);
}

TEST(LargeBodiesTest, ALengthBeyondTheCapReservesNoMemory) {
  TransferDefaults defaults;
  defaults.body_cap = 10'000;
  InternetData::SetDefaults(defaults);
  const RawServer server(AlwaysThenClose(kHead + "hello"));
  InternetData transport(server.Url().c_str());
  const MemoryWatch watch;
  EXPECT_FALSE(transport.Download());
  EXPECT_EQ(transport.status_code(), 200);
  EXPECT_LT(watch.peak(), kMostMemory);
  InternetData::SetDefaults(TransferDefaults());
}

}  // namespace
}  // namespace stowra_test

#endif  // STOWRA_COUNTS_MEMORY
