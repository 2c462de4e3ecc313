// SPDX-License-Identifier: MIT
// Reads the library's bodies back with two parsers that share no code with it or each other.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "common_stowraapi/platform/internet_data.h"
#include "tests/multipart/http_reader.h"
#include "tests/multipart/node_reader.h"
#include "tests/multipart/part.h"
#include "tests/multipart/random_upload.h"

namespace stowra_test {
namespace {

using ovrant::internet::InternetData;
using ovrant::utils::ovrant_ustring;
using testing::ElementsAreArray;

// The environment variable STOWRA_MULTIPART_BODIES asks for more.
std::uint32_t CountBodies() {
  const char* const count = std::getenv("STOWRA_MULTIPART_BODIES");
  return count == nullptr ? 5000 : static_cast<std::uint32_t>(std::stoul(count));
}

constexpr std::uint32_t kThreads = 2;

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
  const std::uint32_t bodies = CountBodies();
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
  const std::uint32_t bodies = CountBodies();
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
