// The parameters in a request's query. Each operation throws RequestError, status 400, for what it
// does not take.

#ifndef EMULATOR_PARAMETERS_H_
#define EMULATOR_PARAMETERS_H_

#include <httplib.h>

#include <initializer_list>
#include <string>

namespace stowra_emulator {

// Throws when there is a parameter of any other name. `fault` is always allowed.
void AllowParameters(const httplib::Request& request, std::initializer_list<const char*> names);

// Throws when it is absent or empty.
std::string RequiredParameter(const httplib::Request& request, const char* name);

std::string TextParameter(const httplib::Request& request, const char* name,
                          const char* value_when_absent);

// Throws when it is no decimal number between `min`, not negative, and `max`.
int NumberParameter(const httplib::Request& request, const char* name, int value_when_absent,
                    int min, int max);

// Throws unless it is absent, "true" or "false".
bool FlagParameter(const httplib::Request& request, const char* name);

}  // namespace stowra_emulator

#endif  // EMULATOR_PARAMETERS_H_
