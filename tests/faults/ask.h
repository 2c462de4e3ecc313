// One transfer by any of the four calls, and its outcome.

#ifndef TESTS_FAULTS_ASK_H_
#define TESTS_FAULTS_ASK_H_

#include <ostream>
#include <string>

namespace stowra_test {

enum class Way { kDownload, kDownloadWithDelegate, kSendAndRead, kUploadWithDelegate };

const char* NameOf(Way way);

struct Answer {
  bool received = false;
  int status = 0;
  std::string body;

  friend bool operator==(const Answer& a, const Answer& b) {
    return a.received == b.received && a.status == b.status && a.body == b.body;
  }
};

// "received 200, 5 bytes" or "failed, status 0".
std::string TextOf(const Answer& answer);
void PrintTo(const Answer& answer, std::ostream* out);

// Makes one transfer of `url`. Uploads send `upload`. Expects that a failure leaves neither body
// nor headers, and that a background transfer posts once.
Answer Ask(Way way, const std::string& url, const std::string& upload);

}  // namespace stowra_test

#endif  // TESTS_FAULTS_ASK_H_
