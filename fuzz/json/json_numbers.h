// SPDX-License-Identifier: MIT
// Predicts how the library reads the numbers of a JSON text.

#ifndef FUZZ_JSON_JSON_NUMBERS_H_
#define FUZZ_JSON_JSON_NUMBERS_H_

#include <string>

namespace stowra_fuzz {

struct NumberText {
  enum class Verdict { kTaken, kRefused, kEither };

  Verdict verdict = Verdict::kTaken;
  double nearest = 0;  // perhaps infinite
  double error = 0;    // by how much the library's double may be off
};

// REQUIRES: `spelling` has only digits, signs, points and the letters e and E; whether it is a
// number is not asked.
NumberText ReadNumber(const std::string& spelling);

}  // namespace stowra_fuzz

#endif  // FUZZ_JSON_JSON_NUMBERS_H_
