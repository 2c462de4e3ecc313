// SPDX-License-Identifier: MIT
// Code that must not compile: one case for each value of MISUSE. Case 0 is correct.

#include <string>
#include <string_view>

#include "common_stowraapi/platform/ustring.h"

using ovrant::utils::ovrant_ustring;

struct Convertible {
  operator ovrant_ustring() const { return "text"; }  // NOLINT(google-explicit-constructor)
};

void Use(ovrant_ustring text, const std::string& bytes) {
#if MISUSE == 0
  text.Format("%s %s", bytes.c_str(), ovrant_ustring(bytes));
#elif MISUSE == 1
  text.Format("%s", bytes);
#elif MISUSE == 2
  text.Format("%s", std::string_view(bytes));
#elif MISUSE == 3
  text.Format("%s", Convertible());
#elif MISUSE == 4
  const ovrant_ustring copy = bytes;
#elif MISUSE == 5
  const ovrant_ustring copy = std::u16string();
#elif MISUSE == 6
  text = ovrant_ustring(nullptr);
#elif MISUSE == 7
  text = text + 1;
#elif MISUSE == 8
  text += 'c';
#elif MISUSE == 9
  const std::string back = text;
#elif MISUSE == 10
  text = std::wstring(L"wide");
#else
#error "no such case"
#endif
}
