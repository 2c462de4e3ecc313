// SPDX-License-Identifier: MIT
// Recording what another server answers.

#ifndef EMULATOR_REPLAY_RECORDER_H_
#define EMULATOR_REPLAY_RECORDER_H_

#include <cstdint>
#include <fstream>
#include <mutex>
#include <string>

#include "emulator/exchange_source.h"
#include "emulator/replay/exchange.h"

namespace stowra_emulator {

// Passes each request on to another server, and keeps the exchange without its credentials. The
// file is a whole archive after each exchange.
class Recorder : public ExchangeSource {
 public:
  // `upstream` is such as "https://www.example.com". The file is replaced. Bodies of more than
  // `max_body` bytes are refused. Throws std::runtime_error if the file cannot be written or
  // `upstream` is no such address.
  Recorder(const std::string& file, const std::string& upstream, std::uint64_t max_body);

  // Throws a RequestError with status 502 if the other server gives no usable answer. Nothing is
  // kept then.
  HttpResponse Answer(const HttpRequest& request) override;

 private:
  void Keep(const Exchange& exchange);

  const std::string file_name_;
  const std::string upstream_;
  const std::uint64_t max_body_;
  std::mutex mutex_;
  std::ofstream file_;
  bool is_empty_ = true;
};

}  // namespace stowra_emulator

#endif  // EMULATOR_REPLAY_RECORDER_H_
