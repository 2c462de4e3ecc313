// SPDX-License-Identifier: MIT
// Finds out why requests failed, and repeats those that may pass.
//
// Run:
//   stowra-emulator --port 8080 --fault /update=status:503@60 --seed 2
//   08_why_it_failed http://127.0.0.1:8080
//
// Prints:
//   HTTP status 503
//   24.0.484 is current
//   a response that is not usable
//   the reply was cut off
//   the reply was cut off
//   the reply was cut off

#include <chrono>
#include <iostream>
#include <string>
#include <thread>

#include "common_stowraapi/common_stowraapi.h"

using ovrant::internet::InternetData;
using ovrant::internet::TransferError;
using ovrant::internet::TransferEvent;

// The end of the last transfer on this thread. Blocking transfers run the listener here.
static TransferEvent last_end;

// Whether the network or the server may have recovered when the request is repeated.
static bool MayPass(TransferError reason, int status) {
  switch (reason) {
    case TransferError::kNone:  // there was a response
      return status == 429 || status >= 500;
    case TransferError::kNameNotFound:
    case TransferError::kNotConnected:
    case TransferError::kSilent:
    case TransferError::kCutOff:
      return true;
    default:
      return false;
  }
}

static std::string Why(TransferError reason) {
  if (reason == TransferError::kCutOff) return "the reply was cut off";
  if (reason != TransferError::kNone) return "no response";
  if (last_end.status != 200) return "HTTP status " + std::to_string(last_end.status);
  return "a response that is not usable";
}

static bool Ask(const std::string& url) {
  ovrant::webservices::UpdateQuery query;
  query.Init(url.c_str(), nullptr);
  auto pause = std::chrono::milliseconds(50);
  for (int tries = 3; !query.SynchronousRequest(); pause *= 2) {
    const TransferError reason = InternetData::LastError();
    std::cout << Why(reason) << '\n';
    if (!last_end.error.empty()) std::clog << last_end.error << "\n";  // English, for logs
    if (--tries == 0 || !MayPass(reason, last_end.status)) return false;
    std::this_thread::sleep_for(pause);
  }
  std::cout << query.current_version_ << " is current\n";
  return true;
}

int main(int argc, char** argv) {
  const std::string service = argc > 1 ? argv[1] : "http://127.0.0.1:8080";
  InternetData::SetTransferListener([](const TransferEvent& event) {
    if (event.kind == TransferEvent::Kind::kEnded) last_end = event;
  });
  const bool passes = Ask(service + "/update");
  Ask(service + "/update?fault=garbage");
  Ask(service + "/update?fault=truncate");
  InternetData::SetTransferListener(nullptr);
  return passes ? 0 : 1;
}
