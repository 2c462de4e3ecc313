// SPDX-License-Identifier: MIT
// Transfers with sources and sinks whose behaviour the test chooses.

#ifndef TESTS_PLATFORM_HTTP_BODY_FIXTURE_H_
#define TESTS_PLATFORM_HTTP_BODY_FIXTURE_H_

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "common_stowraapi/platform/body_sink.h"
#include "common_stowraapi/platform/body_source.h"
#include "tests/platform/http/end_listener.h"
#include "tests/platform/http/transport_fixture.h"

namespace stowra_test {

using ovrant::internet::BodySink;
using ovrant::internet::BodySource;

// A text of that size.
inline std::string Numbers(std::size_t size) {
  std::string text;
  while (text.size() < size) text += std::to_string(text.size()) + ",";
  text.resize(size);
  return text;
}

// Gives `bytes` in pieces of at most `piece`.
class TestSource final : public BodySource {
 public:
  explicit TestSource(std::string text) : bytes(std::move(text)), length(bytes.size()) {}

  bool Rewind() override {
    ++rewinds;
    if (on_rewind) on_rewind();
    read_ = 0;
    return rewinds <= most_rewinds;
  }
  std::optional<std::uint64_t> Length() override { return length; }
  bool Read(unsigned char* data, std::size_t size, std::size_t& count) override {
    if (on_read) on_read();
    if (fails) return false;
    count = bytes.copy(reinterpret_cast<char*>(data), std::min(size, piece), read_);
    read_ += count;
    if (claims_too_much) count = size + 1;
    return true;
  }

  std::string bytes;
  std::optional<std::uint64_t> length;
  std::size_t piece = SIZE_MAX;
  std::function<void()> on_rewind;
  std::function<void()> on_read;
  bool fails = false;
  bool claims_too_much = false;  // than there is room for
  int rewinds = 0;
  int most_rewinds = 100;

 private:
  std::size_t read_ = 0;
};

// Records what it gets.
class TestSink final : public BodySink {
 public:
  StringMap RequestHeaders() override { return request_headers; }
  Choice Begin(int status, const StringMap& headers) override {
    ++begins;
    if (on_begin) on_begin();
    begin_status = status;
    begin_headers = headers;
    return choice ? *choice : BodySink::Begin(status, headers);
  }
  bool Write(const unsigned char* data, std::size_t size) override {
    if (on_write) on_write();
    bytes.append(reinterpret_cast<const char*>(data), size);
    largest = std::max(largest, size);
    return !write_fails;
  }
  bool End() override {
    ++ends;
    if (on_end) on_end();
    return !end_fails;
  }

  StringMap request_headers;
  std::optional<Choice> choice;
  std::function<void()> on_begin;
  std::function<void()> on_write;
  std::function<void()> on_end;
  bool write_fails = false;
  bool end_fails = false;

  int begins = 0;
  int begin_status = 0;
  StringMap begin_headers;
  std::string bytes;
  std::size_t largest = 0;
  int ends = 0;
};

enum class Mode { kBlocking, kBackground };

inline std::string NameOfMode(const testing::TestParamInfo<Mode>& test) {
  return test.param == Mode::kBlocking ? "Blocking" : "Background";
}

// Each test runs in both modes. The last transfer's transport stays for a look at it.
class BodyFixture : public TransportTest, public ::testing::WithParamInterface<Mode> {
 protected:
  // Make one transfer. The answer's body is the one in the transport's memory.
  Answer Upload(const std::string& url, const std::shared_ptr<BodySource>& source) {
    return Run(
        url, [&](InternetData& transport) { return transport.UploadFrom(*source); },
        [&](Background& background) {
          return background.transport->UploadFromWithDelegate(source, background.delegate.get(),
                                                              nullptr);
        });
  }
  Answer Download(const std::string& url, const std::shared_ptr<BodySink>& sink) {
    return Run(
        url, [&](InternetData& transport) { return transport.DownloadTo(*sink); },
        [&](Background& background) {
          return background.transport->DownloadToWithDelegate(sink, background.delegate.get(),
                                                              nullptr);
        });
  }

  InternetData& transport() { return *background_->transport; }

  // Is called before the transfer starts.
  std::function<void(InternetData&)> prepare;

  TransferEvent last_end;  // of the last transfer

 private:
  Answer Run(const std::string& url, const std::function<bool(InternetData&)>& block,
             const std::function<bool(Background&)>& start) {
    const EndListener listener;
    background_ = std::make_unique<Background>(url);
    if (prepare) prepare(transport());
    bool received = false;
    if (GetParam() == Mode::kBlocking) {
      received = block(transport());
      EXPECT_EQ(InternetData::LastError(), listener.last().reason);
    } else {
      EXPECT_TRUE(start(*background_));
      received = background_->WaitForEnd() == kReturned;
      EXPECT_EQ(background_->recorder.entries().size(), 1U);
    }
    last_end = listener.last();
    EXPECT_EQ(last_end.kind, TransferEvent::Kind::kEnded);
    if (!received) ExpectFailureState(transport(), transport().status_code());
    return {received, transport().status_code(), BodyOf(transport()), last_end.reason};
  }

  std::unique_ptr<Background> background_;
};

#define IN_BOTH_BODY_MODES(Suite) \
  INSTANTIATE_TEST_SUITE_P(, Suite, testing::Values(Mode::kBlocking, Mode::kBackground), NameOfMode)

}  // namespace stowra_test

#endif  // TESTS_PLATFORM_HTTP_BODY_FIXTURE_H_
