// SPDX-License-Identifier: MIT
#include "host/retry.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <iomanip>
#include <locale>
#include <sstream>
#include <system_error>

namespace stowra {

using ovrant::internet::TransferError;
using ovrant::internet::TransferEvent;
using std::chrono::seconds;

namespace {

constexpr std::array<int, 4> kPassingStatuses = {429, 502, 503, 504};
constexpr std::array<TransferError, 4> kPassingErrors = {
    TransferError::kNameNotFound, TransferError::kNotConnected, TransferError::kSilent,
    TransferError::kCutOff};

// RFC 9110, 5.6.7. The last two are obsolete.
constexpr std::array<const char*, 3> kDateFormats = {
    "%a, %d %b %Y %H:%M:%S GMT", "%A, %d-%b-%y %H:%M:%S GMT", "%a %b %e %H:%M:%S %Y"};

constexpr seconds kLongestPause = std::chrono::minutes(1);
constexpr seconds kLongestWish = std::chrono::hours(1);

template <typename Range, typename Item>
bool Contains(const Range& range, const Item& item) {
  return std::find(range.begin(), range.end(), item) != range.end();
}

std::optional<std::time_t> ReadDate(const std::string& text) {
  for (const char* format : kDateFormats) {
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    std::tm time = {};
    if (stream >> std::get_time(&time, format)) return timegm(&time);
  }
  return std::nullopt;
}

// The pause that the server asks for.
std::optional<seconds> ReadPause(const std::string& retry_after, std::time_t now) {
  long count = 0;
  const char* const end = retry_after.data() + retry_after.size();
  const auto [stop, error] = std::from_chars(retry_after.data(), end, count);
  const bool is_number = stop == end && !retry_after.empty() && retry_after[0] != '-';
  if (is_number && error == std::errc()) return seconds(count);
  if (is_number) return seconds::max();
  const std::optional<std::time_t> date = ReadDate(retry_after);
  if (!date) return std::nullopt;
  return seconds(std::max<std::time_t>(*date - now, 0));
}

}  // namespace

bool MaySucceedLater(const TransferEvent& end) {
  return end.error.empty() ? Contains(kPassingStatuses, end.status)
                           : Contains(kPassingErrors, end.reason);
}

std::optional<seconds> PauseBefore(int attempt, const std::string& retry_after, std::time_t now) {
  if (const std::optional<seconds> wish = ReadPause(retry_after, now)) {
    return *wish <= kLongestWish ? wish : std::nullopt;
  }
  constexpr int kMostDoublings = 6;  // one minute comes before
  return std::min(seconds(1 << std::min(attempt - 2, kMostDoublings)), kLongestPause);
}

}  // namespace stowra
