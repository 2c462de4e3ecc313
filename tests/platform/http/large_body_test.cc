// SPDX-License-Identifier: MIT
// Bodies whose length does not fit 32 bits. They take no space on disk.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>

#include "tests/platform/http/body_fixture.h"

namespace stowra_test {
namespace {

constexpr std::uint64_t kLengths[] = {(std::uint64_t{1} << 31) - 1, std::uint64_t{1} << 31,
                                      std::uint64_t{1} << 32, 5'000'000'000};

// A sum that depends on each byte and on its place, however the bytes are cut. Adds whole blocks,
// word by word.
class BlockSum {
 public:
  void Add(const char* data, std::size_t size) {
    count_ += size;
    while (size > 0) {
      const std::size_t taken = std::min(size, kBlock - block_.size());
      block_.append(data, taken);
      data += taken;
      size -= taken;
      if (block_.size() == kBlock) Flush();
    }
  }
  std::uint64_t count() const { return count_; }
  std::uint64_t Sum() {
    Flush();
    return sum_;
  }

 private:
  static constexpr std::size_t kBlock = std::size_t{1} << 16;

  void Flush() {
    for (std::size_t i = 0; i < block_.size(); i += sizeof(std::uint64_t)) {
      std::uint64_t word = 0;
      std::memcpy(&word, block_.data() + i, std::min(block_.size() - i, sizeof(word)));
      sum_ = (sum_ ^ word) * 0x9E3779B97F4A7C15U + 1;
    }
    block_.clear();
  }

  std::uint64_t sum_ = 0;
  std::string block_;
  std::uint64_t count_ = 0;
};

// Each megabyte holds its number at its start, and zeros.
class NumberedSource final : public BodySource {
 public:
  explicit NumberedSource(std::uint64_t length) : length_(length) {}

  bool Rewind() override {
    place_ = 0;
    sum = BlockSum();
    return true;
  }
  std::optional<std::uint64_t> Length() override { return length_; }
  bool Read(unsigned char* data, std::size_t size, std::size_t& count) override {
    constexpr std::uint64_t kMegabyte = std::uint64_t{1} << 20;
    const std::uint64_t left = std::min(length_ - place_, kMegabyte - place_ % kMegabyte);
    count = static_cast<std::size_t>(std::min<std::uint64_t>(size, left));
    std::memset(data, 0, count);
    const std::uint64_t number = place_ / kMegabyte;
    if (place_ % kMegabyte == 0) std::memcpy(data, &number, std::min(count, sizeof(number)));
    sum.Add(reinterpret_cast<const char*>(data), count);
    place_ += count;
    return true;
  }

  BlockSum sum;

 private:
  const std::uint64_t length_;
  std::uint64_t place_ = 0;
};

// Counts and sums what it reads after the head of a request.
class CountingHandler {
 public:
  void operator()(const RawRequest& request, RawConnection& connection) {
    announced = request.Header("Content-Length");
    const std::uint64_t length = std::stoull(announced);
    std::string piece;
    while (sum.count() < length && connection.Read(piece)) {
      sum.Add(piece.data(), piece.size());
      piece.clear();
    }
    connection.Write(Response(200, ""));
  }

  std::string announced;
  BlockSum sum;
};

class LargeBodyTest : public TransportTest, public ::testing::WithParamInterface<std::uint64_t> {};
INSTANTIATE_TEST_SUITE_P(, LargeBodyTest, testing::ValuesIn(kLengths),
                         [](const auto& test) { return std::to_string(test.param); });

TEST_P(LargeBodyTest, IsSentWhole) {
  CountingHandler handler;
  const RawServer server(std::ref(handler), {nullptr, false});
  NumberedSource source(GetParam());
  InternetData transport(Text(server.Url()));
  const EndListener listener;
  EXPECT_TRUE(transport.UploadFrom(source));
  EXPECT_EQ(transport.status_code(), 200);
  EXPECT_EQ(handler.announced, std::to_string(GetParam()));
  EXPECT_EQ(handler.sum.count(), GetParam());
  EXPECT_EQ(handler.sum.Sum(), source.sum.Sum());
  EXPECT_EQ(listener.last().bytes_sent, GetParam());
  EXPECT_EQ(listener.last().bytes_to_send, GetParam());
}

class CountingSink final : public BodySink {
 public:
  bool Write(const unsigned char* data, std::size_t size) override {
    sum.Add(reinterpret_cast<const char*>(data), size);
    return true;
  }
  BlockSum sum;
};

TEST_P(LargeBodyTest, IsReceivedWhole) {
  NumberedSource content(GetParam());
  const RawServer server([&content](const RawRequest&, RawConnection& connection) {
    connection.Write("HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(GetParam()) +
                     "\r\n\r\n");
    std::string piece(1 << 20, '\0');
    content.Rewind();
    for (std::size_t count = 1; count > 0;) {
      content.Read(reinterpret_cast<unsigned char*>(piece.data()), piece.size(), count);
      if (!connection.Write(std::string_view(piece).substr(0, count))) return;
    }
  });
  CountingSink sink;
  InternetData transport(Text(server.Url()));
  const EndListener listener;
  EXPECT_TRUE(transport.DownloadTo(sink));
  EXPECT_EQ(sink.sum.count(), GetParam());
  EXPECT_EQ(sink.sum.Sum(), content.sum.Sum());
  EXPECT_EQ(listener.last().bytes_received, GetParam());
  EXPECT_EQ(listener.last().bytes_expected, GetParam());
}

}  // namespace
}  // namespace stowra_test
