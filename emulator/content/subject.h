// SPDX-License-Identifier: MIT
// What the seeded models show.

#ifndef EMULATOR_CONTENT_SUBJECT_H_
#define EMULATOR_CONTENT_SUBJECT_H_

#include <array>
#include <cstddef>
#include <vector>

namespace stowra_emulator {

constexpr std::size_t kTitlesOfSubject = 10;

struct Subject {
  const char* shape;
  const char* keywords;
  std::array<const char*, kTitlesOfSubject> titles;
};

// All ten.
const std::vector<Subject>& Subjects();

}  // namespace stowra_emulator

#endif  // EMULATOR_CONTENT_SUBJECT_H_
