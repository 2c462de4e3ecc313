// SPDX-License-Identifier: MIT
// Finds text in strings.

#ifndef COMMON_STOWRAAPI_CONTENT_TEXT_SEARCH_H_
#define COMMON_STOWRAAPI_CONTENT_TEXT_SEARCH_H_

#include "common_stowraapi/platform/ustring.h"

namespace ovrant::stowraapiclient {

// The result of FindText for a text that does not occur.
inline constexpr int kAbsent = -1;

// The index of the first occurrence of `text` in `whole` at or after `start`, or kAbsent. Only the
// low 32 bits of find() count: the cast turns its "absent" into kAbsent.
inline int FindText(const ovrant::utils::ovrant_ustring& whole,
                    const ovrant::utils::ovrant_ustring& text, int start) {
  return static_cast<int>(whole.find(text, static_cast<unsigned long>(start)));
}

inline bool Contains(const ovrant::utils::ovrant_ustring& whole,
                     const ovrant::utils::ovrant_ustring& text) {
  return FindText(whole, text, 0) != kAbsent;
}

inline int Length(const ovrant::utils::ovrant_ustring& text) {
  return static_cast<int>(text.length());
}

}  // namespace ovrant::stowraapiclient

#endif  // COMMON_STOWRAAPI_CONTENT_TEXT_SEARCH_H_
