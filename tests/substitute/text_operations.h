// The test's side of the substitute's text operations.

#ifndef TESTS_SUBSTITUTE_TEXT_OPERATIONS_H_
#define TESTS_SUBSTITUTE_TEXT_OPERATIONS_H_

#include "common_stowraapi/export.h"

namespace stowra_substitute {

// What Mid gives for a negative count: no text that a caller could have made up.
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

// What find gives for a text that does not occur: all bits set at first. Only the low 32 count.
STOWRA_EXPORT void SetAbsentIndex(unsigned long index);

// Calls outside the contract since the last call: an index outside the string, a number made of
// something else than digits, an argument that its conversion does not take. Each is recorded, too.
STOWRA_EXPORT int TakeTextMisuses();

}  // namespace stowra_substitute

#endif  // TESTS_SUBSTITUTE_TEXT_OPERATIONS_H_
