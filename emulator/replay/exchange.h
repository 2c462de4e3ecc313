// SPDX-License-Identifier: MIT
// A request and its response, as they are kept.

#ifndef EMULATOR_REPLAY_EXCHANGE_H_
#define EMULATOR_REPLAY_EXCHANGE_H_

#include <chrono>
#include <string>

#include "emulator/exchange_source.h"

namespace stowra_emulator {

struct Exchange {
  HttpRequest request;
  HttpResponse response;  // Its delay is the time until the response was there.
  std::string site;       // Such as "https://www.example.com".
  std::string started;    // Such as 2024-01-31T09:00:00.000Z.
};

}  // namespace stowra_emulator

#endif  // EMULATOR_REPLAY_EXCHANGE_H_
