// SPDX-License-Identifier: MIT
// The body of an upload, written to streams of every kind and state.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <ios>
#include <sstream>
#include <string>

#include "common_stowraapi/content/multipart_upload.h"
#include "common_stowraapi/content/upload_config.h"
#include "tests/support/failing_new.h"

namespace stowra_test {
namespace {

using ovrant::stowraapiclient::UploadFile;
using ovrant::stowraapiclient::multipartupload::SetupPayload;
using testing::MatchesRegex;

void Append(const std::string& data, std::stringstream& out) {
  UploadFile file;
  file.zipped_ = true;
  file.zipped_file_path_ = "/tmp/a-chair-with-a-long-name.zip";
  file.upload_url_ = "http://u/?name=Chair&type=application/zip&task=create&priority=2";
  SetupPayload("m42", &file, reinterpret_cast<const unsigned char*>(data.data()), data.size(),
               "BrevixClient0385119264730052", &out);
}

std::string Part(const std::string& name, const std::string& value) {
  return "--BrevixClient0385119264730052\r\nContent-Disposition: form-data; name=\"" + name +
         "\"\r\n\r\n" + value + "\r\n";
}

std::string BodyOf(const std::string& data) {
  return Part("name", "Chair") + Part("subjectId", "m42") + Part("subjectClass", "entity") +
         "--BrevixClient0385119264730052\r\nContent-Disposition: form-data; name=\"binary\"; "
         "filename=\"a-chair-with-a-long-name.zip\"\r\nContent-Type: application/zip\r\n\r\n" +
         data + "\r\n" + Part("task", "create") + Part("priority", "2") + Part("isZipped", "true") +
         "--BrevixClient0385119264730052--\r\n";
}

// No period in these bytes can hide a wrong offset.
std::string DataOf(std::size_t size) {
  std::string data(size, '\0');
  unsigned value = 1;
  for (char& byte : data) {
    value = value * 1664525 + 1013904223;
    byte = static_cast<char>(value >> 24);
  }
  return data;
}

class MultipartStreamTest : public testing::Test {
 protected:
  const std::string data_ = DataOf(300'000);
  const std::string body_ = BodyOf(data_);
};

TEST_F(MultipartStreamTest, BodiesOfEverySizeAreWhole) {
  for (const std::size_t around : {0u, 512u, 32768u, 65536u, 131072u, 1u << 20, 1u << 21}) {
    for (const std::size_t size :
         {around, around + 1, around + around / 3, around * 2 - around / 7}) {
      const std::string data = DataOf(size);
      std::stringstream out;
      Append(data, out);
      EXPECT_TRUE(out.good());
      EXPECT_TRUE(out.str() == BodyOf(data)) << size;
      EXPECT_EQ(out.tellp(), static_cast<std::streamoff>(BodyOf(data).size()));
    }
  }
}

// The bytes that a stream can take before it grows.
std::size_t CapacityOf(std::stringbuf& buffer) {
  struct Peek : std::stringbuf {
    static std::size_t CapacityOf(std::stringbuf& other) {
      return static_cast<std::size_t>((other.*&Peek::epptr)() - (other.*&Peek::pbase)());
    }
  };
  return Peek::CapacityOf(buffer);
}

TEST_F(MultipartStreamTest, AFreshStreamTakesHardlyMoreMemoryThanTheBody) {
  for (const std::size_t size : {std::size_t{100}, std::size_t{1} << 16, std::size_t{1} << 20,
                                 std::size_t{3'000'000}, std::size_t{1} << 24}) {
    const std::string data(size, 'x');
    std::stringstream out;
    Append(data, out);
    const std::size_t body_size = BodyOf(data).size();
    EXPECT_LE(CapacityOf(*out.rdbuf()), body_size + body_size / 1000 + 64) << size;
  }
}

TEST_F(MultipartStreamTest, WritesAtTheStreamsPosition) {
  const std::string before = DataOf(1'000'000);
  for (const std::size_t position : {0u, 1u, 500'000u, 999'999u, 1'000'000u}) {
    std::stringstream out(before, std::ios::in | std::ios::out | std::ios::binary);
    out.seekg(7);
    out.seekp(static_cast<std::streamoff>(position));
    Append(data_, out);
    std::string expected = before;
    expected.replace(position, body_.size(), body_);
    EXPECT_TRUE(out.str() == expected) << position;
    EXPECT_EQ(out.tellp(), static_cast<std::streamoff>(position + body_.size()));
    EXPECT_EQ(out.tellg(), 7);
  }
}

TEST_F(MultipartStreamTest, EveryModeThatWritesGivesTheSameBody) {
  using std::ios;
  for (const auto mode :
       {ios::in | ios::out, ios::openmode(ios::out), ios::in | ios::out | ios::ate,
        ios::out | ios::ate, ios::in | ios::out | ios::app, ios::out | ios::app,
        ios::out | ios::trunc}) {
    std::stringstream out(mode);
    Append(data_, out);
    EXPECT_TRUE(out.good()) << mode;
    EXPECT_TRUE(out.str() == body_) << mode;
    Append("2", out);
    EXPECT_TRUE(out.str() == body_ + BodyOf("2")) << mode;
  }
}

TEST_F(MultipartStreamTest, AStreamThatAppendsKeepsItsContent) {
  for (const auto mode : {std::ios::ate, std::ios::app}) {
    std::stringstream out("before", std::ios::in | std::ios::out | mode);
    Append(data_, out);
    EXPECT_TRUE(out.str() == "before" + body_);
  }
}

TEST_F(MultipartStreamTest, AStreamThatOnlyReadsIsBadAndStaysAsItIs) {
  std::stringstream out("before", std::ios::in);
  Append(data_, out);
  EXPECT_TRUE(out.bad());
  EXPECT_EQ(out.str(), "before");
}

TEST_F(MultipartStreamTest, AnEmptiedStreamIsLikeAFreshOne) {
  std::stringstream out;
  Append(data_ + data_, out);
  out.str("");
  Append(data_, out);
  EXPECT_TRUE(out.str() == body_);
}

TEST_F(MultipartStreamTest, TheBodyIsReadFromItsBeginning) {
  std::stringstream out;
  Append(data_, out);
  std::string read(body_.size(), '\0');
  out.read(read.data(), static_cast<std::streamsize>(read.size()));
  EXPECT_TRUE(read == body_);
  EXPECT_EQ(out.get(), std::stringstream::traits_type::eof());
}

TEST_F(MultipartStreamTest, AStreamInAnErrorStaysEmpty) {
  for (const auto state : {std::ios::badbit, std::ios::failbit, std::ios::eofbit}) {
    std::stringstream out;
    out.setstate(state);
    Append(data_, out);
    EXPECT_TRUE(out.rdstate() & state);
    EXPECT_FALSE(out.good());
    EXPECT_EQ(out.str(), "");
  }
}

TEST_F(MultipartStreamTest, AStreamThatThrowsHasNothingToThrow) {
  std::stringstream out;
  out.exceptions(std::ios::badbit | std::ios::failbit | std::ios::eofbit);
  EXPECT_NO_THROW(Append(data_, out));
  EXPECT_TRUE(out.str() == body_);
  EXPECT_EQ(out.exceptions(), std::ios::badbit | std::ios::failbit | std::ios::eofbit);
}

TEST_F(MultipartStreamTest, TheBodyGoesWhereTheStreamWrites) {
  std::stringstream out;
  std::stringbuf other;
  static_cast<std::ios&>(out).rdbuf(&other);
  Append(data_, out);
  EXPECT_TRUE(other.str() == body_);
  EXPECT_EQ(out.str(), "");
  static_cast<std::ios&>(out).rdbuf(out.rdbuf());
}

#ifdef STOWRA_COUNTS_ALLOCATIONS

TEST_F(MultipartStreamTest, WithoutMemoryTheStreamHoldsABeginningOfTheBody) {
  const auto append = [this](std::stringstream& out) { Append(data_, out); };
  std::stringstream warm_up;
  append(warm_up);
  // Each allocation fails in turn: the body is whole, or the call throws, or the stream is bad.
  std::string outcomes;
  while (outcomes.find(std::string(20, 'w')) == std::string::npos) {
    std::stringstream out;
    const auto allowed = static_cast<long>(outcomes.size());
    const bool threw = RunsOutOfMemory([&] { append(out); }, allowed);
    outcomes += threw ? 't' : out.bad() ? 'b' : 'w';
    const std::string content = out.str();
    EXPECT_TRUE(content == body_.substr(0, content.size())) << allowed;
    EXPECT_TRUE(content.empty() || !threw) << allowed;
    EXPECT_EQ(content.size() == body_.size(), outcomes.back() == 'w') << allowed;
  }
  // PrepareToWrite works without memory.
  EXPECT_THAT(outcomes, MatchesRegex("t+w+b+w+"));
}

#endif  // STOWRA_COUNTS_ALLOCATIONS

}  // namespace
}  // namespace stowra_test
