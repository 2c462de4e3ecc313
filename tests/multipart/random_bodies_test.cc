// SPDX-License-Identifier: MIT
// Reads the library's bodies back with two parsers that share no code with it or each other.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <httplib.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "common_stowraapi/platform/internet_data.h"
#include "tests/multipart/node_reader.h"
#include "tests/multipart/part.h"
#include "tests/multipart/random_upload.h"

namespace stowra_test {
namespace {

using ovrant::internet::InternetData;
using ovrant::utils::ovrant_ustring;
using testing::ElementsAreArray;

constexpr std::uint32_t kThreads = 2;

void AnswerWithParts(const httplib::Request& request, httplib::Response& response,
                     const httplib::ContentReader& read_content) {
  if (!request.is_multipart_form_data()) {
    response.status = 400;
    return;
  }
  Reading reading;
  const bool is_read = read_content(
      [&reading](const httplib::MultipartFormData& header) {
        reading.parts.push_back({header.name, header.filename, header.content_type, {}, ""});
        return true;
      },
      [&reading](const char* data, std::size_t length) {
        reading.parts.back().content.append(data, length);
        return true;
      });
  if (!is_read) return;  // the server has set the status
  response.set_content(Encode(reading), "application/octet-stream");
}

// A server that parses multipart bodies with cpp-httplib. Listens on 127.0.0.1. Answers a POST with
// the parts of its body in order, encoded as in part.h. A status other than 200 means that it could
// not read the body.
class HttpReader {
 public:
  HttpReader() {
    server_.set_keep_alive_max_count(std::numeric_limits<std::size_t>::max());
    server_.set_tcp_nodelay(true);
    server_.Post("/upload", AnswerWithParts);
    server_.Get("/ready", [](const httplib::Request&, httplib::Response&) {});
    port_ = server_.bind_to_any_port("127.0.0.1");
    EXPECT_GT(port_, 0);
    thread_ = std::thread([this] { server_.listen_after_bind(); });
    // The server must be running before stop() works.
    EXPECT_TRUE(httplib::Client("127.0.0.1", port_).Get("/ready"));
  }
  ~HttpReader() {
    server_.stop();
    thread_.join();
  }
  HttpReader(const HttpReader&) = delete;
  HttpReader& operator=(const HttpReader&) = delete;

  std::string Url() const { return "http://127.0.0.1:" + std::to_string(port_) + "/upload"; }

 private:
  httplib::Server server_;
  int port_;
  std::thread thread_;
};

// The parts as cpp-httplib reports them. It leaves out the whole Content-Disposition. It reports an
// absent file name or type as empty.
std::vector<Part> AsHttplibTells(std::vector<Part> parts) {
  for (Part& part : parts) {
    part.disposition.reset();
    part.file_name = part.file_name.value_or("");
    part.type = part.type.value_or("");
  }
  return parts;
}

// Posts the body with its headers as a host does, and returns the parts of the answer.
std::vector<Part> PostTo(const std::string& url, BuiltUpload upload) {
  InternetData transport{ovrant_ustring(url.c_str())};
  transport.set_send_data(reinterpret_cast<const unsigned char*>(upload.body.data()),
                          static_cast<unsigned long>(upload.body.size()));
  unsigned char* data = nullptr;
  unsigned long length = 0;
  int status = 0;
  EXPECT_TRUE(transport.SendAndRead(url.c_str(), &data, &length, &status, &upload.headers, false,
                                    false, true, "", "", nullptr));
  EXPECT_EQ(status, 200);
  if (status != 200) return {};
  return Decode(std::string_view(reinterpret_cast<const char*>(data), length)).parts;
}

TEST(RandomBodiesTest, HttplibReadsBackUploadedParts) {
  const std::uint32_t bodies = CountBodies(5000);
  HttpReader reader;
  std::atomic<std::uint32_t> next{0};
  std::vector<std::thread> threads;
  for (std::uint32_t i = 0; i < kThreads; ++i) {
    threads.emplace_back([&] {
      for (std::uint32_t number = next++; number < bodies && !testing::Test::HasFailure();
           number = next++) {
        SCOPED_TRACE("upload " + std::to_string(number));
        const RandomUpload upload = MakeRandomUpload(number);
        EXPECT_THAT(PostTo(reader.Url(), Build(upload)),
                    ElementsAreArray(AsHttplibTells(upload.parts)));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

TEST(RandomBodiesTest, MultipartyReadsBackBuiltParts) {
  SKIP_WITHOUT_NODE();
  const std::uint32_t bodies = CountBodies(5000);
  NodeReader reader;
  std::uint32_t rewritten = 0;
  for (std::uint32_t number = 0; number < bodies && !HasFailure(); ++number) {
    SCOPED_TRACE("upload " + std::to_string(number));
    RandomUpload upload = MakeRandomUpload(number);
    const BuiltUpload built = Build(upload);
    Reading reading = reader.Read(built.ContentType(), built.body);
    EXPECT_EQ(reading.error, "");
    for (Part& part : upload.parts) {
      if (!IsRewrittenByMultiparty(part.file_name.value_or(""))) continue;
      // The whole Content-Disposition is still compared.
      part.file_name.reset();
      for (Part& found : reading.parts) found.file_name.reset();
      ++rewritten;
    }
    EXPECT_THAT(reading.parts, ElementsAreArray(upload.parts));
  }
  EXPECT_LT(rewritten, bodies / 2);
}

}  // namespace
}  // namespace stowra_test
