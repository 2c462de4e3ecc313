// SPDX-License-Identifier: MIT
// The style sheet of all web pages.

#ifndef EMULATOR_PAGE_STYLE_H_
#define EMULATOR_PAGE_STYLE_H_

namespace stowra_emulator {

extern const char* const kPageStyle;

}  // namespace stowra_emulator

#endif  // EMULATOR_PAGE_STYLE_H_
