// SPDX-License-Identifier: MIT
// Controls the text operations of the substitute.

#ifndef TESTS_SUBSTITUTE_TEXT_OPERATIONS_H_
#define TESTS_SUBSTITUTE_TEXT_OPERATIONS_H_

#include "common_stowraapi/export.h"

namespace stowra_substitute {

// The result of Mid for a negative count: a text that no caller can produce otherwise.
inline constexpr char kNegativeCount[] = "(negative count)";

// While one lives, searching, cutting, splitting, replacing and formatting are recorded, such as
// "find '&' from 3".
class STOWRA_EXPORT RecordingText {
 public:
  RecordingText();
  ~RecordingText();

  RecordingText(const RecordingText&) = delete;
  RecordingText& operator=(const RecordingText&) = delete;
};

// The result of find for a missing text: all bits set at first. Only the low 32 bits count.
STOWRA_EXPORT void SetAbsentIndex(unsigned long index);

// Calls outside the contract since the last call: an index outside the string, a number made of
// other characters than digits, an argument of the wrong type. Each is recorded, too.
STOWRA_EXPORT int TakeTextMisuses();

}  // namespace stowra_substitute

#endif  // TESTS_SUBSTITUTE_TEXT_OPERATIONS_H_
