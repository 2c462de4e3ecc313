// SPDX-License-Identifier: MIT
// The parameters in a request's query. What a function refuses is a RequestError with status 400.

#ifndef EMULATOR_PARAMETERS_H_
#define EMULATOR_PARAMETERS_H_

#include <httplib.h>

#include <initializer_list>
#include <string>

namespace stowra_emulator {

// Throws if the request has any other parameter. `fault` is always allowed.
void AllowParameters(const httplib::Request& request, std::initializer_list<const char*> names);

// Throws if it is absent or empty.
std::string RequiredParameter(const httplib::Request& request, const char* name);

std::string TextParameter(const httplib::Request& request, const char* name,
                          const char* value_when_absent);

// Throws unless the value is a decimal number from `min` to `max`. Requires `min` >= 0.
int NumberParameter(const httplib::Request& request, const char* name, int value_when_absent,
                    int min, int max);

// False if it is absent. Throws unless the value is "true" or "false".
bool FlagParameter(const httplib::Request& request, const char* name);

}  // namespace stowra_emulator

#endif  // EMULATOR_PARAMETERS_H_
