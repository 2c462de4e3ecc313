// SPDX-License-Identifier: MIT
// What can be done to a response on purpose.

#ifndef EMULATOR_FAULT_H_
#define EMULATOR_FAULT_H_

#include <httplib.h>

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace stowra_emulator {

struct Fault {
  enum class Kind {
    kNone,
    kStatus,
    kStall,
    kTruncate,
    kReset,
    kDrip,
    kBomb,
    kGarbage,
    kRedirectLoop
  };

  Kind kind = Kind::kNone;
  std::string text;                    // As ParseFault read it.
  int status = 0;                      // Of kStatus.
  std::chrono::milliseconds pause{0};  // Of kStall, before the response; of kDrip, between bytes.
};

struct FaultDescription {
  Fault::Kind kind;
  const char* name;
  const char* usage;
  const char* description;
};

// All faults.
const std::vector<FaultDescription>& Faults();

// The usages of all faults, separated by commas.
std::string FaultUsages();

// Parses a fault such as "status:503". Empty if the name is unknown, or the argument is missing,
// unexpected or out of range.
std::optional<Fault> ParseFault(std::string_view text);

// Sets the response if the fault replaces it. False, with nothing set, if the fault only changes
// how an ordinary response is sent.
bool AnswerInstead(const Fault& fault, const httplib::Request& request,
                   httplib::Response& response);

}  // namespace stowra_emulator

#endif  // EMULATOR_FAULT_H_
