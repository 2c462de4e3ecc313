// SPDX-License-Identifier: MIT
// One transfer by any of the calls, and its outcome.

#ifndef TESTS_FAULTS_ASK_H_
#define TESTS_FAULTS_ASK_H_

#include <ostream>
#include <string>
#include <utility>

#include "common_stowraapi/platform/transfer_types.h"

namespace stowra_test {

enum class Way {
  kDownload,
  kDownloadWithDelegate,
  kDownloadTo,
  kDownloadToWithDelegate,
  kSendAndRead,
  kUploadWithDelegate,
  kUploadFrom,
  kUploadFromWithDelegate,
};

bool IsBlocking(Way way);
bool IsUpload(Way way);

const char* NameOf(Way way);

struct Answer {
  bool received = false;
  int status = 0;
  std::string body;
  ovrant::internet::TransferError error =
      ovrant::internet::TransferError::kNone;  // by AskForReason

  friend bool operator==(const Answer& a, const Answer& b) {
    return a.received == b.received && a.status == b.status && a.body == b.body &&
           a.error == b.error;
  }
};

inline Answer Received(int status, std::string body) { return {true, status, std::move(body)}; }
inline Answer Failed(int status, ovrant::internet::TransferError error) {
  return {false, status, "", error};
}

// "received 200, 5 bytes" or "kSilent, status 0".
std::string TextOf(const Answer& answer);
void PrintTo(const Answer& answer, std::ostream* out);

// Makes one transfer of `url`. Uploads send `upload`. A sink takes the body of any reply. Expects
// that a failure leaves neither body nor headers, and that a background transfer posts once.
Answer Ask(Way way, const std::string& url, const std::string& upload);

// The same, with the reason of a failure. Expects that the event, LastError and the answer agree.
// Takes the place of the transfer listener.
Answer AskForReason(Way way, const std::string& url, const std::string& upload);

}  // namespace stowra_test

#endif  // TESTS_FAULTS_ASK_H_
