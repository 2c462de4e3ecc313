// SPDX-License-Identifier: MIT
#include "host/suggestion.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace stowra {

namespace {

// The optimal string alignment distance.
std::size_t Distance(const std::string& a, const std::string& b) {
  std::vector<std::size_t> before_last;
  std::vector<std::size_t> last;
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    before_last = std::exchange(last, row);
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t change = a[i - 1] == b[j - 1] ? 0 : 1;
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + change});
      const bool swapped = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
      if (swapped) row[j] = std::min(row[j], before_last[j - 2] + 1);
    }
  }
  return row.back();
}

}  // namespace

std::string ClosestTo(const std::string& word, const std::vector<std::string>& candidates) {
  constexpr std::size_t kCharactersPerChange = 3;
  std::string closest;
  std::size_t fewest = word.size() / kCharactersPerChange + 1;
  for (const std::string& candidate : candidates) {
    const std::size_t distance = Distance(word, candidate);
    if (distance >= fewest) continue;
    fewest = distance;
    closest = candidate;
  }
  return closest;
}

}  // namespace stowra
