// SPDX-License-Identifier: MIT
// Guesses what a mistyped word should be.

#ifndef HOST_SUGGESTION_H_
#define HOST_SUGGESTION_H_

#include <string>
#include <vector>

namespace stowra {

// The candidate that takes the fewest changes, and at most one for every three characters: a
// character more, less or other, or two that changed places. Empty without one.
std::string ClosestTo(const std::string& word, const std::vector<std::string>& candidates);

}  // namespace stowra

#endif  // HOST_SUGGESTION_H_
