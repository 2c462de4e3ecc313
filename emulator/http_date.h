// SPDX-License-Identifier: MIT
// Dates in HTTP fields.

#ifndef EMULATOR_HTTP_DATE_H_
#define EMULATOR_HTTP_DATE_H_

#include <string>

namespace stowra_emulator {

// Turns "2024-01-31T09:00:00Z" into "Wed, 31 Jan 2024 09:00:00 GMT". Empty if it is no such time.
std::string HttpDate(const std::string& time);

}  // namespace stowra_emulator

#endif  // EMULATOR_HTTP_DATE_H_
