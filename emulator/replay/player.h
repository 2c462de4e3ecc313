// SPDX-License-Identifier: MIT
// Giving recorded responses back.

#ifndef EMULATOR_REPLAY_PLAYER_H_
#define EMULATOR_REPLAY_PLAYER_H_

#include <cstddef>
#include <mutex>
#include <string>
#include <vector>

#include "emulator/exchange_source.h"
#include "emulator/replay/exchange.h"

namespace stowra_emulator {

enum class ReplayOrder {
  kRecorded,  // The n-th request gets the n-th response, whatever it asks for.
  // A request gets the next response that was recorded for its method and target, or for its method
  // and path if its query was not recorded. The last one repeats.
  kMatched,
};

class Player : public ExchangeSource {
 public:
  // With speed 2 a response takes half the time that it took when it was recorded. With speed 0 it
  // comes at once.
  Player(std::vector<Exchange> exchanges, ReplayOrder order, double speed);

  // Throws a RequestError with status 410 after the last response, and with status 404 if nothing
  // matches.
  HttpResponse Answer(const HttpRequest& request) override;

  std::vector<std::string> Paths() const override;

 private:
  // Null at the end of the recording or without a match.
  const Exchange* FindNext(const HttpRequest& request);

  const std::vector<Exchange> exchanges_;
  const ReplayOrder order_;
  const double speed_;
  std::mutex mutex_;
  std::vector<bool> was_played_;
  std::size_t next_ = 0;  // In the recorded order.
};

// Reads the archive `file`. Throws std::runtime_error with its name if it cannot be read or holds
// no exchange.
std::vector<Exchange> ReadRecording(const std::string& file);

}  // namespace stowra_emulator

#endif  // EMULATOR_REPLAY_PLAYER_H_
