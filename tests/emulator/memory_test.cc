// SPDX-License-Identifier: MIT
// The memory of the emulator's process. Sanitizers add memory of their own, so there the tests are
// smaller and compare with a run that does little.

#include <signal.h>

#include <cstddef>
#include <cstdint>
#include <functional>

#include "tests/emulator/child_program.h"
#include "tests/emulator/raw_client.h"

namespace stowra_emulator {
namespace {

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define STOWRA_WITH_SANITIZER
#endif
#endif

constexpr std::size_t kMegabyte = std::size_t{1} << 20;
constexpr std::size_t kPart = 3 << 20;

#ifdef STOWRA_WITH_SANITIZER
constexpr std::uint64_t kUploadSize = 256 * kMegabyte;
constexpr std::size_t kUploadMemory = 200 * kMegabyte;
#else
constexpr std::uint64_t kUploadSize = 4096 * kMegabyte + 4321;
constexpr std::size_t kUploadMemory = 64 * kMegabyte;
#endif

// The peak memory of an emulator that is used so and then ended.
std::size_t PeakMemory(const std::function<void(const std::string& url)>& use) {
  ChildProgram program({"--quiet"});
  use(program.ReadLine());
  EXPECT_EQ(program.EndBy(SIGTERM), 0);
  EXPECT_GT(program.peak_memory(), kMegabyte);
  return program.peak_memory();
}

void GetOnce(const std::string& url) { GetFrom(url, "/user-info"); }

// Sends `start`, then 300 MB or until the emulator closes.
void Flood(const std::string& url, const std::string& start) {
  RawClient client(PortOf(url));
  client.Send(start);
  const std::string bytes(64 << 10, 'x');
  for (std::size_t left = 300 * kMegabyte; left > 0 && client.TrySend(bytes);) left -= bytes.size();
  client.ReadUntil("\r\n");
}

TEST(MemoryTest, EndlessHeaderLineTakesLittleMemory) {
  const std::size_t usual = PeakMemory(GetOnce);
  const std::size_t peak = PeakMemory([](const std::string& url) {
    for (int i = 0; i < 4; ++i) {
      Flood(url, "GET / HTTP/1.1\r\nX: ");
      Flood(url, "GET /");
    }
  });
  EXPECT_LT(peak, usual + 8 * kMegabyte);
}

const std::string kPostUpload =
    "POST /upload HTTP/1.1\r\nContent-Type: multipart/form-data; boundary=b\r\nContent-Length: ";

TEST(MemoryTest, EndlessPartHeaderTakesLittleMemory) {
  const std::size_t usual = PeakMemory(GetOnce);
  const std::size_t peak = PeakMemory(
      [](const std::string& url) { Flood(url, kPostUpload + "8000000000\r\n\r\n--b\r\nX: "); });
  EXPECT_LT(peak, usual + 8 * kMegabyte);
}

std::string PartHead(const std::string& name, const std::string& more = "") {
  return "--b\r\nContent-Disposition: form-data; name=\"" + name + "\"" + more + "\r\n\r\n";
}

// Uploads a file of `size` bytes, which repeats `block`. Returns the answer.
std::string UploadBlocks(RawClient& client, const std::string& block, std::uint64_t size) {
  const std::string start = PartHead("name") + "Huge\r\n" + PartHead("subjectId") + "m42\r\n" +
                            PartHead("subjectClass") + "entity\r\n" +
                            PartHead("binary", "; filename=\"huge.bin\"");
  const std::string end = "\r\n--b--\r\n";
  client.Send(kPostUpload + std::to_string(start.size() + size + end.size()) + "\r\n\r\n" + start);
  std::uint64_t left = size;
  for (; left >= block.size(); left -= block.size()) client.Send(block);
  client.Send(block.substr(0, static_cast<std::size_t>(left)));
  client.Send(end);
  return ReadResponse(client).body;
}

// `size` bytes from `offset` on of what UploadBlocks has sent.
std::string BytesFrom(const std::string& block, std::uint64_t offset, std::size_t size) {
  std::string bytes;
  for (std::size_t i = 0; i < size; ++i) bytes += block[(offset + i) % block.size()];
  return bytes;
}

TEST(MemoryTest, UploadsFourGibibytesInLittleMemory) {
  std::string block(1 << 20, '\0');
  for (std::size_t i = 0; i < block.size(); ++i) block[i] = static_cast<char>(i * i >> 7);
  const std::size_t usual = PeakMemory(GetOnce);
  const std::size_t peak = PeakMemory([&block](const std::string& url) {
    RawClient client(PortOf(url));
    EXPECT_THAT(UploadBlocks(client, block, kUploadSize), HasSubstr("\"mid\": \"m-1101\""));
    for (const std::uint64_t offset : {std::uint64_t{0}, kUploadSize / 2, kUploadSize - kPart}) {
      const std::string range =
          "bytes=" + std::to_string(offset) + "-" + std::to_string(offset + kPart - 1);
      const RawResponse part =
          GetFrom(url, "/download?mid=m-1101&rtyp=o", 206, "Range: " + range + "\r\n");
      EXPECT_EQ(part.Header("Content-Range"),
                "bytes " + range.substr(6) + "/" + std::to_string(kUploadSize));
      EXPECT_TRUE(part.body == BytesFrom(block, offset, kPart)) << offset;
    }
  });
  EXPECT_LT(peak, usual + kUploadMemory);
}

}  // namespace
}  // namespace stowra_emulator
