// SPDX-License-Identifier: MIT
#include "emulator/replay/recorder.h"

#include <cerrno>
#include <chrono>
#include <ctime>
#include <iomanip>
#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>
#include <system_error>

#include "emulator/replay/credentials.h"
#include "emulator/replay/har.h"
#include "emulator/replay/upstream.h"

namespace stowra_emulator {
namespace {

constexpr const char* kStart =
    "{\"log\": {\"version\": \"1.2\", "
    "\"creator\": {\"name\": \"stowra-emulator\", \"version\": \"" STOWRA_VERSION
    "\"}, \"entries\": [\n";
constexpr const char* kEnd = "\n]}}\n";

// Such as 2024-01-31T09:00:00.000Z.
std::string Timestamp(std::chrono::system_clock::time_point time) {
  const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
  const auto since_epoch =
      std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch());
  std::tm parts = {};
  ::gmtime_r(&seconds, &parts);
  std::ostringstream text;
  text << std::put_time(&parts, "%Y-%m-%dT%H:%M:%S.") << std::setw(3) << std::setfill('0')
       << since_epoch.count() % 1000 << 'Z';
  return text.str();
}

void CheckAddress(const std::string& upstream) {
  const bool has_scheme = upstream.rfind("http://", 0) == 0 || upstream.rfind("https://", 0) == 0;
  const std::size_t host = upstream.find("://") + 3;
  if (!has_scheme || host >= upstream.size() || upstream.find('/', host) != std::string::npos) {
    throw std::runtime_error("'" + WithoutCredentials(upstream) +
                             "' is not an address such as https://www.example.com");
  }
}

}  // namespace

Recorder::Recorder(const std::string& file, const std::string& upstream, std::uint64_t max_body)
    : file_name_(file), upstream_(upstream), max_body_(max_body) {
  CheckAddress(upstream);
  file_.open(file, std::ios::binary | std::ios::trunc);
  file_ << kStart << kEnd << std::flush;
  if (!file_) throw std::system_error(errno, std::generic_category(), "cannot write " + file);
}

HttpResponse Recorder::Answer(const HttpRequest& request) {
  Exchange exchange;
  exchange.started = Timestamp(std::chrono::system_clock::now());
  const auto start = std::chrono::steady_clock::now();
  HttpResponse response = AskUpstream(upstream_, request, max_body_);
  exchange.response = response;
  exchange.response.delay = std::chrono::duration_cast<std::chrono::milliseconds>(
      std::chrono::steady_clock::now() - start);
  exchange.response.fields = WithoutCredentials(response.fields);
  exchange.request = request;
  exchange.request.fields = WithoutCredentials(request.fields);
  exchange.request.target = WithoutCredentials(request.target);
  exchange.site = WithoutCredentials(upstream_);
  Keep(exchange);
  return response;
}

void Recorder::Keep(const Exchange& exchange) {
  const std::string entry = ToHarEntry(exchange).dump();
  const std::lock_guard<std::mutex> lock(mutex_);
  // Replaces the end of the archive.
  file_.seekp(-static_cast<std::streamoff>(std::string_view(kEnd).size()), std::ios::cur);
  file_ << (is_empty_ ? "" : ",\n") << entry << kEnd << std::flush;
  is_empty_ = false;
  if (!file_) throw std::runtime_error("cannot write " + file_name_);
}

}  // namespace stowra_emulator
