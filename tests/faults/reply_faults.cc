// SPDX-License-Identifier: MIT
// Replies that break the rules of HTTP or of their encoding, and many that do not. Redirects in a
// circle, to schemes that are not allowed and to a long URL.

#include <utility>

#include "tests/faults/fault.h"
#include "tests/platform/http/gzip_text.h"
#include "tests/platform/http/handlers.h"
#include "tests/support/failing_malloc.h"

namespace stowra_test {
namespace {

constexpr char kChunked[] = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
constexpr char kGzipEndedByClose[] = "HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\n\r\n";

// The beginning of a gzip stream with a file name.
constexpr std::string_view kGzipWithName("\x1F\x8B\x08\x08\0\0\0\0\0\x03", 10);

constexpr std::size_t kMegabyte = std::size_t{1} << 20;

Fault Says(const char* name, std::string bytes, Answer answer) {
  return {name, [bytes = std::move(bytes)](Stage& stage) { stage.AddServer(SayThenClose(bytes)); },
          std::move(answer)};
}

Fault Refused(const char* name, TransferError error, std::string bytes) {
  return Says(name, std::move(bytes), Failed(200, error));
}

Fault RefusedChunks(const char* name, TransferError error, const char* chunks) {
  return Refused(name, error, std::string(kChunked) + chunks);
}

Fault RefusedEncoding(const char* name, const char* encoding) {
  return Refused(
      name, TransferError::kEncoding,
      Response(200, Gzip("hello"), std::string("Content-Encoding: ") + encoding + "\r\n"));
}

Fault RefusedGzip(const char* name, const std::string& gzip) {
  return Refused(name, TransferError::kMalformed, Response(200, gzip, kGzipHeader));
}

// The HTTP framing is intact, so the connection stays open.
Fault CutGzip(const char* name, const std::string& gzip, std::size_t length) {
  const std::string response = Response(200, gzip.substr(0, length), kGzipHeader);
  return {name, [response](Stage& stage) { stage.AddServer(Always(response)); },
          Failed(200, TransferError::kCutOff), Downloads(), 1};
}

Fault LargeHead(const char* name, std::size_t line_length, std::size_t lines) {
  const auto set = [line_length, lines](Stage& stage) {
    std::string head = "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n";
    for (std::size_t i = 0; i < lines; ++i) {
      head += "X-Header: " + std::string(line_length, 'x') + "\r\n";
    }
    stage.AddServer(SayThenClose(head + "\r\n"));
  };
  return {name, set, Failed(200, TransferError::kTooLarge)};
}

// Says `begin` and then `more` again and again, until the client closes.
Fault EndlessReply(const char* name, int status, const std::string& begin,
                   const std::string& more) {
  const auto set = [handler = Endless(begin, more)](Stage& stage) {
    stage.defaults.body_cap = kMegabyte;
    stage.AddServer(GoodOr(handler));
  };
  return {name, set, Failed(status, TransferError::kTooLarge)};
}

std::string Corrupt(std::string gzip) {
  gzip[gzip.size() / 2] = static_cast<char>(gzip[gzip.size() / 2] ^ 0x55);
  return gzip;
}

// Small on the wire, and 64 times the cap when decoded.
Fault GzipBomb() {
  const auto set = [](Stage& stage) {
    stage.defaults.body_cap = kMegabyte;
    static const std::string bomb = Gzip(std::string(64 * kMegabyte, '\0'));
    stage.AddServer(SayThenClose(Response(200, bomb, kGzipHeader)));
  };
  return {"GzipBomb", set, Failed(200, TransferError::kTooLarge)};
}

Fault EmptyBodies(const char* name, std::vector<Way> ways, int runs) {
  Fault fault = {name, [](Stage& stage) { stage.AddServer(Always(Response(200, ""))); },
                 Received(200, ""), std::move(ways), 1};
  fault.runs = runs;
  return fault;
}

Fault RedirectedTo(const char* name, const char* location, TransferError error) {
  return {name, [location](Stage& stage) { stage.AddServer(Always(Redirect(302, location))); },
          Failed(302, error), Downloads(), 1};
}

// libcurl takes no header line as long as this.
Fault LongLocation() {
  const std::string location = '/' + std::string(250'000, 'x');
  return {"LongLocation",
          [location](Stage& stage) { stage.AddServer(SayThenClose(Redirect(302, location))); },
          Failed(302, TransferError::kTooLarge)};
}

}  // namespace

std::vector<Fault> RedirectFaults() {
  return {RedirectedTo("RedirectLoop", "/", TransferError::kTooManyRedirects),
          RedirectedTo("RedirectToFile", "file:///etc/passwd", TransferError::kForbiddenRedirect),
          RedirectedTo("RedirectToFtp", "ftp://127.0.0.1/", TransferError::kForbiddenRedirect),
          LongLocation()};
}

std::vector<Fault> ReplyFaults() {
  const std::string gzip = Gzip("hello world, hello world");
  const std::string line = "X-Long: " + std::string(1000, 'x') + "\r\n";
  return {
    Refused("CutInsideBodyWithLength", TransferError::kCutOff,
            "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhel"),
        RefusedChunks("CutInsideChunk", TransferError::kCutOff, "5\r\nhel"),
        RefusedChunks("CutBeforeLastChunk", TransferError::kCutOff, "5\r\nhello\r\n"),
        // Without a length or chunks the end of the connection ends the body.
        Says("BodyEndedByClose", "HTTP/1.1 200 OK\r\n\r\nhello", Received(200, "hello")),
        RefusedChunks("ChunkSizeNoNumber", TransferError::kMalformed, "xyz\r\nhello\r\n0\r\n\r\n"),
        RefusedChunks("ChunkSizeBeyondAllNumbers", TransferError::kMalformed,
                      "fffffffffffffffff\r\nhello\r\n0\r\n\r\n"),
        RefusedChunks("ChunkWithoutLineEnd", TransferError::kMalformed, "5\r\nhello0\r\n\r\n"),
        Refused("TwoLengths", TransferError::kMalformed,
                "HTTP/1.1 200 OK\r\nContent-Length: 5\r\nContent-Length: 3\r\n\r\nhello"),
        LargeHead("TwoMegabytesInOneHeader", 2 * kMegabyte, 1),
        LargeHead("TwoMegabytesOfHeaders", 1000, 2 * kMegabyte / 1000), GzipBomb(),
        EndlessReply("EndlessGzipName", 200, kGzipEndedByClose + std::string(kGzipWithName), line),
        EndlessReply("EndlessTrailers", 200, std::string(kChunked) + "0\r\n", line),
        EndlessReply("EndlessInterimReplies", 103, "", "HTTP/1.1 103 Early\r\n" + line + "\r\n"),
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
