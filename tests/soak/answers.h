// What the server of a soak is asked, and what it answers.

#ifndef TESTS_SOAK_ANSWERS_H_
#define TESTS_SOAK_ANSWERS_H_

#include <cstdint>
#include <string>

#include "tests/soak/report.h"
#include "tests/support/raw_server.h"

namespace stowra_test {

enum class Document { kNumber, kUser, kUpdate, kExtensions, kFeed, kConfiguration };

// How the document comes.
enum class Manner {
  kWell,
  kGzip,
  kSlow,
  kClosing,
  kRedirected,
  kMissing,  // with status 404
  kBroken,   // with status 500
  kBig,
  kCut,
  kReset,
  kResetInside,
  kStall,
  kStallInside,
  kLoop,
};
inline constexpr std::uint32_t kManners = 14;

// A document of its own for each number.
struct Target {
  Document document = Document::kNumber;
  Manner manner = Manner::kWell;
  std::uint32_t number = 0;

  std::string Path() const;
};

// Mostly those that are answered at once.
Manner DrawManner(Random& random);

// The status of a whole reply; 0 where none may come.
int StatusOf(Manner manner);

std::string BodyOf(const Target& target);

// Violates unless this reply to a GET of `target` may have been received.
void CheckReply(const Target& target, bool received, int status, const std::string& body);

// The handler of the server. A POST is answered with its body where a GET gets the document.
void Answer(const RawRequest& request, RawConnection& connection);

// How many requests are being answered.
int AnswersUnderWay();

}  // namespace stowra_test

#endif  // TESTS_SOAK_ANSWERS_H_
