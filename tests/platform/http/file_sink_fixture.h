// SPDX-License-Identifier: MIT
// Downloads to a file, from a server that may break off.

#ifndef TESTS_PLATFORM_HTTP_FILE_SINK_FIXTURE_H_
#define TESTS_PLATFORM_HTTP_FILE_SINK_FIXTURE_H_

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "common_stowraapi/platform/file_sink.h"
#include "tests/platform/http/body_fixture.h"
#include "tests/support/temporary_folder.h"

namespace stowra_test {

using ovrant::internet::FileSink;
using Names = std::vector<std::string>;

constexpr FileSink::Start kAnew = FileSink::Start::kAnew;
constexpr FileSink::Start kContinue = FileSink::Start::kContinue;
constexpr FileSink::Existing kKeep = FileSink::Existing::kKeep;

constexpr char kEtag[] = "ETag: \"v1\"\r\n";

// What a server has, and how it answers.
struct Thing {
  std::string content;
  std::string headers = kEtag;  // of every answer, each with its line end
  std::size_t cut = SIZE_MAX;   // the connection ends after so many bytes of a body
  const char* range = nullptr;  // in place of the right Content-Range
  bool has_ranges = true;
};

inline RawServer::Handler Serve(const Thing& thing) {
  return [&thing](const RawRequest& request, RawConnection& connection) {
    std::string head = "HTTP/1.1 200 OK\r\n";
    std::size_t first = 0;
    const std::size_t size = thing.content.size();
    const std::string validator = request.Header("If-Range");
    const bool is_same = thing.headers.find(": " + validator + "\r\n") != std::string::npos;
    if (thing.has_ranges && request.HasHeader("Range") && is_same) {
      first = std::stoul(request.Header("Range").substr(6));
      if (first >= size) return static_cast<void>(connection.Write(Response(416, "no")));
      const std::string range = "bytes " + std::to_string(first) + "-" + std::to_string(size - 1) +
                                "/" + std::to_string(size);
      head =
          "HTTP/1.1 206 Part\r\nContent-Range: " + (thing.range == nullptr ? range : thing.range) +
          "\r\n";
    }
    const std::string body = thing.content.substr(first);
    connection.Write(head + thing.headers + "Content-Length: " + std::to_string(body.size()) +
                     "\r\n\r\n" + body.substr(0, thing.cut));
    if (thing.cut < body.size()) connection.Close();
  };
}

class FileSinkFixture : public BodyFixture {
 protected:
  std::string Path(const std::string& name = "x") const { return (folder_.path() / name).string(); }
  void Make(const std::string& name, const std::string& content) const {
    std::ofstream(Path(name), std::ios::binary) << content;
  }
  std::string Content(const std::string& name = "x") const {
    std::ifstream file(Path(name), std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();
    return file ? content.str() : "(none)";
  }
  bool WaitForContent(const std::string& name, const std::string& content) const {
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (Content(name) != content) {
      if (std::chrono::steady_clock::now() > end) return false;
      std::this_thread::yield();
    }
    return true;
  }
  Names All() const {
    Names names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder_.path())) {
      names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }

  // Sends "abcdef", and runs `between` when `part` holds the first half.
  RawServer::Handler InHalves(std::function<void()> between, std::string part = "x.part",
                              std::string headers = "") const {
    return [=](const RawRequest&, RawConnection& connection) {
      connection.Write("HTTP/1.1 200 OK\r\n" + headers + "Content-Length: 6\r\n\r\nabc");
      EXPECT_TRUE(WaitForContent(part, "abc"));
      between();
      connection.Write("def");
    };
  }

  // Download to `target` with a new sink, from `url` or from a server that has `thing`.
  Answer FetchFrom(const std::string& url, FileSink::Start start = kContinue,
                   FileSink::Existing existing = FileSink::Existing::kReplace) {
    const auto sink = std::make_shared<FileSink>(Path(target), start, existing);
    const Answer answer = Download(url, sink);
    error = sink->error();
    size = sink->size();
    continued = sink->continued_size();
    can_continue = sink->CanContinue();
    return answer;
  }
  Answer Fetch(const Thing& thing, FileSink::Start start = kContinue,
               FileSink::Existing existing = FileSink::Existing::kReplace) {
    server_.reset();
    served_ = thing;
    server_ = std::make_unique<RawServer>(Serve(served_));
    return FetchFrom(server_->Url(), start, existing);
  }

  // A sink whose download has broken off.
  std::shared_ptr<FileSink> BrokenOff(const Thing& cut) {
    const RawServer server(Serve(cut));
    auto sink = std::make_shared<FileSink>(Path(), kContinue);
    EXPECT_EQ(Download(server.Url(), sink), Failed(200, TransferError::kCutOff));
    return sink;
  }

  // Leaves a part of `bytes` bytes.
  void LeavePart(Thing thing, std::size_t bytes) {
    thing.cut = bytes;
    EXPECT_EQ(Fetch(thing, kAnew), Failed(200, TransferError::kCutOff));
    EXPECT_TRUE(can_continue);
    EXPECT_TRUE(Content("x.part") == thing.content.substr(0, bytes));
  }

  void ExpectWhole(const Thing& thing) const {
    EXPECT_TRUE(Content() == thing.content);
    EXPECT_EQ(All(), Names{"x"});
    EXPECT_EQ(size, thing.content.size());
    EXPECT_EQ(error, 0);
  }

  void ExpectPart() const { EXPECT_EQ(All(), (Names{"x.part", "x.part.validator"})); }

  std::size_t CountRequests() const { return server_->requests().size(); }
  RawRequest First() const { return server_->requests().at(0); }

  const TemporaryFolder folder_;
  Thing served_;  // outlives the server
  std::unique_ptr<RawServer> server_;

  std::string target = "x";

  // Of the last Fetch.
  int error = 0;
  std::uint64_t size = 0;
  std::uint64_t continued = 0;
  bool can_continue = false;
};

}  // namespace stowra_test

#endif  // TESTS_PLATFORM_HTTP_FILE_SINK_FIXTURE_H_
