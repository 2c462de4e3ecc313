// Replies that break the rules of HTTP or of their encoding, and many that do not.

#include <utility>

#include "tests/faults/fault.h"
#include "tests/platform/http/gzip_text.h"
#include "tests/support/failing_malloc.h"

namespace stowra_test {
namespace {

constexpr char kChunked[] = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
constexpr char kGzipHeader[] = "Content-Encoding: gzip\r\n";

constexpr std::size_t kMegabyte = std::size_t{1} << 20;

Fault Says(const char* name, std::string bytes, Answer answer) {
  return {name, [bytes = std::move(bytes)](Stage& stage) { stage.AddServer(SayThenClose(bytes)); },
          std::move(answer)};
}

Fault Refused(const char* name, std::string bytes) {
  return Says(name, std::move(bytes), {false, 200, ""});
}

Fault RefusedChunks(const char* name, const char* chunks) {
  return Refused(name, std::string(kChunked) + chunks);
}

Fault RefusedEncoding(const char* name, const char* encoding) {
  return Refused(
      name, Response(200, Gzip("hello"), std::string("Content-Encoding: ") + encoding + "\r\n"));
}

Fault RefusedGzip(const char* name, const std::string& gzip) {
  return Refused(name, Response(200, gzip, kGzipHeader));
}

// The HTTP framing is intact, so the connection stays open.
Fault CutGzip(const char* name, const std::string& gzip, std::size_t length) {
  Fault fault = {name,
                 [response = Response(200, gzip.substr(0, length), kGzipHeader)](Stage& stage) {
                   stage.AddServer(Always(response));
                 },
                 {false, 200, ""}};
  fault.kept_connections = 1;
  fault.runs = 1500;
  fault.kept_blocks = kMostKeptBlocks;
  return fault;
}

Fault LargeHead(const char* name, std::size_t line_length, std::size_t lines) {
  const auto set = [line_length, lines](Stage& stage) {
    std::string head = "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n";
    for (std::size_t i = 0; i < lines; ++i) {
      head += "X-Header: " + std::string(line_length, 'x') + "\r\n";
    }
    stage.AddServer(SayThenClose(head + "\r\n"));
  };
  Fault fault = {name, set, {false, 200, ""}};
  fault.runs = 500;
  fault.kept_blocks = 400;
  return fault;
}

std::string Corrupt(std::string gzip) {
  gzip[gzip.size() / 2] = static_cast<char>(gzip[gzip.size() / 2] ^ 0x55);
  return gzip;
}

// Small on the wire, and 64 times the cap when decoded.
Fault GzipBomb() {
  Fault fault = {"GzipBomb",
                 [](Stage& stage) {
                   stage.defaults().body_cap = kMegabyte;
                   static const std::string bomb = Gzip(std::string(64 * kMegabyte, '\0'));
                   stage.AddServer(SayThenClose(Response(200, bomb, kGzipHeader)));
                 },
                 {false, 200, ""}};
  return fault;
}

Fault EmptyBodies(const char* name, std::vector<Way> ways, int runs) {
  Fault fault = {
      name, [](Stage& stage) { stage.AddServer(Always(Response(200, ""))); }, {true, 200, ""}};
  fault.ways = std::move(ways);
  fault.kept_connections = 1;
  fault.runs = runs;
  fault.kept_blocks = kMostKeptBlocks;
  return fault;
}

}  // namespace

std::vector<Fault> ReplyFaults() {
  const std::string gzip = Gzip("hello world, hello world");
  return {
    Refused("CutInsideBodyWithLength", "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhel"),
        RefusedChunks("CutInsideChunk", "5\r\nhel"),
        RefusedChunks("CutBeforeLastChunk", "5\r\nhello\r\n"),
        // Without a length or chunks the end of the connection ends the body.
        Says("BodyEndedByClose", "HTTP/1.1 200 OK\r\n\r\nhello", {true, 200, "hello"}),
        RefusedChunks("ChunkSizeNoNumber", "xyz\r\nhello\r\n0\r\n\r\n"),
        RefusedChunks("ChunkSizeBeyondAllNumbers", "fffffffffffffffff\r\nhello\r\n0\r\n\r\n"),
        RefusedChunks("ChunkWithoutLineEnd", "5\r\nhello0\r\n\r\n"),
        Refused("TwoLengths",
                "HTTP/1.1 200 OK\r\nContent-Length: 5\r\nContent-Length: 3\r\n\r\nhello"),
        LargeHead("TwoMegabytesInOneHeader", 2 * kMegabyte, 1),
        LargeHead("TwoMegabytesOfHeaders", 1000, 2 * kMegabyte / 1000), GzipBomb(),
        CutGzip("GzipTruncated", gzip, gzip.size() / 2),
        CutGzip("GzipWithoutItsTrailer", gzip, gzip.size() - 8),
        RefusedGzip("GzipWithGarbageBehind", gzip + "garbage"),
        RefusedGzip("GzipCorrupt", Corrupt(gzip)), RefusedEncoding("EncodingBrotli", "br"),
        RefusedEncoding("EncodingDeflate", "deflate"), RefusedEncoding("EncodingZstd", "zstd"),
        RefusedEncoding("EncodingGzipTwice", "gzip, gzip"),
#if defined(STOWRA_UNDER_ADDRESS_SANITIZER) || defined(STOWRA_UNDER_THREAD_SANITIZER)
        EmptyBodies("TwoThousandEmptyBodies", EveryWay(), 2'000),
#else
        EmptyBodies("HundredThousandEmptyBodies", {Way::kDownload}, 100'000),
        EmptyBodies("TwoThousandEmptyBodies",
                    {Way::kDownloadWithDelegate, Way::kSendAndRead, Way::kUploadWithDelegate},
                    2'000),
#endif
  };
}

}  // namespace stowra_test
