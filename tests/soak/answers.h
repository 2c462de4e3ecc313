// SPDX-License-Identifier: MIT
// The requests to the soak's server, and its replies.

#ifndef TESTS_SOAK_ANSWERS_H_
#define TESTS_SOAK_ANSWERS_H_

#include <cstdint>
#include <string>

#include "tests/soak/report.h"
#include "tests/support/raw_server.h"

namespace stowra_test {

enum class Document { kNumber, kUser, kUpdate, kExtensions, kFeed, kConfiguration };

// How the server sends the document.
enum class Manner {
  kWell,
  kGzip,
  kSlow,
  kClosing,
  kRedirected,
  kMissing,  // with status 404
  kBroken,   // with status 500
  kBig,
  // From here on the client gets no whole reply.
  kCut,
  kReset,
  kResetInside,
  kStall,
  kStallInside,
  kLoop,
};
inline constexpr std::uint32_t kManners = 14;

// Each number has its own document.
struct Target {
  Document document = Document::kNumber;
  Manner manner = Manner::kWell;
  std::uint32_t number = 0;

  std::string Path() const;
};

// Identifies a start of a transfer. The delegate's context carries it.
struct StartId {
  std::uint64_t start = 0;  // at that place, from 1
  std::uint64_t place = 0;  // below 256

  void* Pack() const {
    return reinterpret_cast<void*>(static_cast<std::uintptr_t>(start << 8 | place));
  }
  static StartId Unpack(const void* context) {
    const std::uint64_t packed = reinterpret_cast<std::uintptr_t>(context);
    return {packed >> 8, packed & 0xFF};
  }
};

// Random, but mostly a manner that answers at once.
Manner DrawManner(Random& random);

// The status of a whole reply, or 0 if no whole reply may arrive.
int StatusOf(Manner manner);

std::string BodyOf(const Target& target);

// Those that a transport or a call received.
inline std::string BytesOf(const unsigned char* data, unsigned long length) {
  return length == 0 ? "" : std::string(reinterpret_cast<const char*>(data), length);
}

// Reports a violation if a GET of `target` must not have this result.
void CheckReply(const Target& target, bool received, int status, const std::string& body);

// The server's handler. It answers a GET with the document and a POST with the POST's own body.
void Answer(const RawRequest& request, RawConnection& connection);

// The number of requests that the server is answering now.
int AnswersUnderWay();

}  // namespace stowra_test

#endif  // TESTS_SOAK_ANSWERS_H_
