// SPDX-License-Identifier: MIT
// The body that is read while it is sent, against the one that is written to a stream.

#include "common_stowraapi/content/payload_source.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "common_stowraapi/platform/internet_data.h"
#include "tests/multipart/random_upload.h"
#include "tests/support/raw_server.h"
#include "tests/support/temporary_folder.h"

namespace stowra_test {
namespace {

using ovrant::internet::BodySource;
using ovrant::internet::InternetData;
using ovrant::stowraapiclient::multipartupload::MakePayloadSource;

class PayloadSourceTest : public testing::Test {
 protected:
  std::string Path() const { return (folder_.path() / "content").string(); }
  void WriteContent(const std::string& content) const {
    std::ofstream(Path(), std::ios::binary) << content;
  }
  std::unique_ptr<BodySource> Make(const RandomUpload& upload) const {
    return MakePayloadSource(upload.subject_id, &upload.file, Path(), upload.boundary);
  }

  const TemporaryFolder folder_;
};

// Reads in random pieces of up to `most` bytes.
std::string ReadAll(BodySource& source, std::size_t most, std::mt19937& random) {
  EXPECT_TRUE(source.Rewind());
  std::string body;
  std::vector<unsigned char> piece(most);
  std::size_t count = 0;
  do {
    const std::size_t size = 1 + random() % most;
    if (!source.Read(piece.data(), size, count) || count > size) {
      ADD_FAILURE() << "read failed";
      return body;
    }
    body.append(reinterpret_cast<const char*>(piece.data()), count);
  } while (count > 0);
  return body;
}

TEST_F(PayloadSourceTest, EqualsTheBodyOfSetupPayload) {
  std::mt19937 random(5);
  const std::uint32_t bodies = CountBodies(2000);
  for (std::uint32_t number = 0; number < bodies && !HasFailure(); ++number) {
    SCOPED_TRACE("upload " + std::to_string(number));
    const RandomUpload upload = MakeRandomUpload(number);
    WriteContent(upload.data);
    const std::string expected = Build(upload).body;
    const std::unique_ptr<BodySource> source = Make(upload);
    ASSERT_TRUE(source);
    EXPECT_EQ(source->Length(), expected.size());
    for (const std::size_t most : {std::size_t{1} << 16, std::size_t{100}}) {
      EXPECT_TRUE(ReadAll(*source, most, random) == expected) << most;
    }
  }
}

TEST_F(PayloadSourceTest, GoesOutWithItsRealLength) {
  const RandomUpload upload = MakeRandomUpload(7);
  WriteContent(upload.data);
  const BuiltUpload built = Build(upload);
  const RawServer server(Always(Response(200, "")));
  InternetData transport(server.Url().c_str());
  for (const auto& [name, value] : built.headers) {
    transport.SetValueForHTTPSendHeaders(name, value);
  }
  transport.SetValueForHTTPSendHeaders("Content-Length", "-1294967296");
  EXPECT_TRUE(transport.UploadFrom(*Make(upload)));
  const RawRequest request = server.requests().at(0);
  EXPECT_EQ(request.Header("Content-Length"), std::to_string(built.body.size()));
  EXPECT_EQ(request.Header("Content-Type"), built.ContentType());
  EXPECT_TRUE(request.body == built.body);
}

// The file has holes and takes no space.
TEST_F(PayloadSourceTest, KnowsTheLengthOfFilesOfAnySize) {
  const RandomUpload upload = MakeRandomUpload(7);
  RandomUpload empty = upload;
  empty.data.clear();
  const std::uint64_t frame = Build(empty).body.size();
  WriteContent("");
  for (const std::uint64_t size :
       {std::uint64_t{0}, (std::uint64_t{1} << 31) - 1, std::uint64_t{1} << 31,
        std::uint64_t{1} << 32, std::uint64_t{5'000'000'000}}) {
    ASSERT_EQ(truncate(Path().c_str(), static_cast<off_t>(size)), 0);
    EXPECT_EQ(Make(upload)->Length(), frame + size);
  }
}

TEST_F(PayloadSourceTest, IsNullWithoutTheFile) {
  EXPECT_EQ(Make(MakeRandomUpload(7)), nullptr);
  EXPECT_EQ(errno, ENOENT);
}

// Not even when it is asked again.
TEST_F(PayloadSourceTest, CannotGoBackInAPipe) {
  ASSERT_EQ(mkfifo(Path().c_str(), 0600), 0);
  std::thread writer([this] { WriteContent("from a pipe"); });
  const RandomUpload upload = MakeRandomUpload(1);
  const std::unique_ptr<BodySource> source = Make(upload);
  ASSERT_TRUE(source);
  std::mt19937 random(5);
  EXPECT_NE(ReadAll(*source, 100, random).find("from a pipe"), std::string::npos);
  writer.join();
  EXPECT_FALSE(source->Rewind());
  EXPECT_FALSE(source->Rewind());
}

}  // namespace
}  // namespace stowra_test
