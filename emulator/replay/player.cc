// SPDX-License-Identifier: MIT
#include "emulator/replay/player.h"

#include <cerrno>
#include <fstream>
#include <iterator>
#include <set>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "emulator/replay/credentials.h"
#include "emulator/replay/har.h"
#include "emulator/request_error.h"

namespace stowra_emulator {
namespace {

std::string PathOf(const std::string& target) { return target.substr(0, target.find('?')); }

std::string ReadFile(const std::string& file) {
  std::ifstream input(file, std::ios::binary);
  std::string text((std::istreambuf_iterator<char>(input)), std::istreambuf_iterator<char>());
  if (!input) throw std::system_error(errno, std::generic_category());
  return text;
}

}  // namespace

Player::Player(std::vector<Exchange> exchanges, ReplayOrder order, double speed)
    : exchanges_(std::move(exchanges)),
      order_(order),
      speed_(speed),
      was_played_(exchanges_.size(), false) {}

HttpResponse Player::Answer(const HttpRequest& request) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const Exchange* exchange = FindNext(request);
  if (exchange == nullptr && order_ == ReplayOrder::kRecorded) {
    throw RequestError(410, "the recording has ended");
  }
  if (exchange == nullptr) {
    throw RequestError(404, "the recording has no " + request.method + " " + request.target);
  }
  HttpResponse response = exchange->response;
  const double milliseconds =
      speed_ == 0 ? 0 : static_cast<double>(response.delay.count()) / speed_;
  response.delay = std::chrono::milliseconds(static_cast<long>(milliseconds));
  return response;
}

std::vector<std::string> Player::Paths() const {
  std::set<std::string> paths;
  for (const Exchange& exchange : exchanges_) paths.insert(PathOf(exchange.request.target));
  return {paths.begin(), paths.end()};
}

const Exchange* Player::FindNext(const HttpRequest& request) {
  if (order_ == ReplayOrder::kRecorded) {
    return next_ < exchanges_.size() ? &exchanges_[next_++] : nullptr;
  }
  // The recording has no credentials in its targets.
  const std::string target = WithoutCredentials(request.target);
  for (const bool with_query : {true, false}) {
    const Exchange* last = nullptr;
    for (std::size_t i = 0; i < exchanges_.size(); ++i) {
      const HttpRequest& recorded = exchanges_[i].request;
      const bool is_match =
          recorded.method == request.method &&
          (with_query ? recorded.target == target : PathOf(recorded.target) == PathOf(target));
      if (!is_match) continue;
      last = &exchanges_[i];
      if (was_played_[i]) continue;
      was_played_[i] = true;
      return last;
    }
    if (last != nullptr) return last;
  }
  return nullptr;
}

std::vector<Exchange> ReadRecording(const std::string& file) {
  try {
    std::vector<Exchange> exchanges = ParseHar(ReadFile(file));
    if (exchanges.empty()) throw std::runtime_error("it holds no exchange");
    return exchanges;
  } catch (const std::exception& error) {
    throw std::runtime_error("cannot replay " + file + ": " + error.what());
  }
}

}  // namespace stowra_emulator
