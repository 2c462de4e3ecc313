// SPDX-License-Identifier: MIT
#include "emulator/fault.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <system_error>

#include "emulator/gzip_bomb.h"
#include "emulator/json_reply.h"

namespace stowra_emulator {
namespace {

using Kind = Fault::Kind;
using std::chrono::milliseconds;

constexpr int kMaxStallSeconds = 3600;
constexpr int kMaxDripMilliseconds = 60000;
constexpr milliseconds kDefaultDrip(20);

std::optional<int> ParseNumber(std::string_view digits, int min, int max) {
  if (digits.empty() || digits.front() == '-') return std::nullopt;
  int number = 0;
  const char* end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, number);
  if (error != std::errc() || stop != end || number < min || number > max) return std::nullopt;
  return number;
}

// Seconds with up to three decimal places.
std::optional<milliseconds> ParseSeconds(std::string_view text) {
  const std::size_t point = text.find('.');
  const auto whole = ParseNumber(text.substr(0, point), 0, kMaxStallSeconds);
  if (!whole) return std::nullopt;
  milliseconds duration = std::chrono::seconds(*whole);
  if (point == std::string_view::npos) return duration;
  std::string places(text.substr(point + 1));
  if (places.empty() || places.size() > 3) return std::nullopt;
  places.resize(3, '0');
  const auto thousandths = ParseNumber(places, 0, 999);
  if (!thousandths) return std::nullopt;
  return duration + milliseconds(*thousandths);
}

std::optional<Fault> WithArgument(Kind kind, std::string_view argument) {
  Fault fault;
  fault.kind = kind;
  if (kind == Kind::kStatus) {
    const auto status = argument.size() == 3 ? ParseNumber(argument, 100, 599) : std::nullopt;
    if (!status) return std::nullopt;
    fault.status = *status;
  } else if (kind == Kind::kStall) {
    const auto pause = ParseSeconds(argument);
    if (!pause) return std::nullopt;
    fault.pause = *pause;
  } else if (kind == Kind::kDrip) {
    const auto interval = ParseNumber(argument, 0, kMaxDripMilliseconds);
    if (!interval) return std::nullopt;
    fault.pause = milliseconds(*interval);
  } else {
    return std::nullopt;
  }
  return fault;
}

std::optional<Fault> WithoutArgument(Kind kind) {
  if (kind == Kind::kStatus || kind == Kind::kStall) return std::nullopt;
  Fault fault;
  fault.kind = kind;
  if (kind == Kind::kDrip) fault.pause = kDefaultDrip;
  return fault;
}

void AnswerStatus(int status, httplib::Response& response) {
  const bool has_body = status >= 200 && status != 204 && status != 304;
  if (has_body) {
    SetError(response, status, "this status is a fault on purpose");
  } else {
    response.status = status;
  }
}

}  // namespace

const std::vector<FaultDescription>& Faults() {
  static const std::vector<FaultDescription> faults = {
      {Kind::kStatus, "status", "status:CODE", "answers with that status, 100 to 599"},
      {Kind::kStall, "stall", "stall:SECONDS",
       "waits before it sends anything; 0.5 is half a second"},
      {Kind::kTruncate, "truncate", "truncate",
       "declares the whole length, sends half of the body and closes"},
      {Kind::kReset, "reset", "reset", "resets the connection in the middle of the body"},
      {Kind::kDrip, "drip", "drip[:MILLISECONDS]",
       "sends the body byte by byte, every 20 ms or as given"},
      {Kind::kBomb, "bomb", "bomb", "sends 1 MB of gzip that inflates to 1 GiB of spaces"},
      {Kind::kGarbage, "garbage", "garbage",
       "answers with status 200 and a body in no known format"},
      {Kind::kRedirectLoop, "redirect-loop", "redirect-loop", "redirects to the same address"},
  };
  return faults;
}

std::string FaultUsages() {
  std::string usages;
  for (const FaultDescription& fault : Faults()) {
    if (!usages.empty()) usages += ", ";
    usages += fault.usage;
  }
  return usages;
}

std::optional<Fault> ParseFault(std::string_view text) {
  const std::size_t colon = text.find(':');
  const std::string_view name = text.substr(0, colon);
  const auto found =
      std::find_if(Faults().begin(), Faults().end(),
                   [name](const FaultDescription& fault) { return fault.name == name; });
  if (found == Faults().end()) return std::nullopt;
  std::optional<Fault> fault = colon == std::string_view::npos
                                   ? WithoutArgument(found->kind)
                                   : WithArgument(found->kind, text.substr(colon + 1));
  if (fault) fault->text = text;
  return fault;
}

bool AnswerInstead(const Fault& fault, const httplib::Request& request,
                   httplib::Response& response) {
  switch (fault.kind) {
    case Kind::kStatus:
      AnswerStatus(fault.status, response);
      return true;
    case Kind::kBomb:
      // The engine would compress JSON once more.
      response.set_content(GzipBomb(), "application/octet-stream");
      response.set_header("Content-Encoding", "gzip");
      return true;
    case Kind::kGarbage:
      response.set_content("\xFF\xFE neither { JSON nor <XML>, nor UTF-8", "application/json");
      return true;
    case Kind::kRedirectLoop:
      response.set_redirect(request.target);
      return true;
    case Kind::kNone:
    case Kind::kStall:
    case Kind::kTruncate:
    case Kind::kReset:
    case Kind::kDrip:
      return false;
  }
  return false;
}

}  // namespace stowra_emulator
