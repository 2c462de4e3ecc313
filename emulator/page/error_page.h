// SPDX-License-Identifier: MIT
// Errors for people.

#ifndef EMULATOR_PAGE_ERROR_PAGE_H_
#define EMULATOR_PAGE_ERROR_PAGE_H_

#include <httplib.h>

namespace stowra_emulator {

// Turns an error that SetError has set into a web page with the same status and text. Leaves other
// responses as they are.
void MakeErrorPage(httplib::Response& response);

}  // namespace stowra_emulator

#endif  // EMULATOR_PAGE_ERROR_PAGE_H_
