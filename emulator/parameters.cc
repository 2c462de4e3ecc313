// SPDX-License-Identifier: MIT
#include "emulator/parameters.h"

#include <algorithm>
#include <charconv>
#include <system_error>

#include "emulator/request_error.h"

namespace stowra_emulator {
namespace {

std::string Quoted(const std::string& text) { return "'" + text + "'"; }

}  // namespace

void AllowParameters(const httplib::Request& request, std::initializer_list<const char*> names) {
  for (const auto& parameter : request.params) {
    const std::string& name = parameter.first;
    if (name == "fault" || std::find(names.begin(), names.end(), name) != names.end()) continue;
    std::string known;
    for (const char* allowed : names) known += (known.empty() ? "" : ", ") + std::string(allowed);
    throw RequestError(400, "unknown parameter " + Quoted(name) + "; this route takes: " + known);
  }
}

std::string RequiredParameter(const httplib::Request& request, const char* name) {
  std::string value = request.get_param_value(name);
  if (value.empty()) throw RequestError(400, "the parameter " + Quoted(name) + " is missing");
  return value;
}

std::string TextParameter(const httplib::Request& request, const char* name,
                          const char* value_when_absent) {
  return request.has_param(name) ? request.get_param_value(name) : value_when_absent;
}

int NumberParameter(const httplib::Request& request, const char* name, int value_when_absent,
                    int min, int max) {
  if (!request.has_param(name)) return value_when_absent;
  const std::string digits = request.get_param_value(name);
  const char* end = digits.data() + digits.size();
  int number = 0;
  const auto [stop, error] = std::from_chars(digits.data(), end, number);
  if (error != std::errc() || stop != end || number < min || number > max) {
    throw RequestError(400, Quoted(name) + " must be a number between " + std::to_string(min) +
                                " and " + std::to_string(max));
  }
  return number;
}

bool FlagParameter(const httplib::Request& request, const char* name) {
  if (!request.has_param(name)) return false;
  const std::string value = request.get_param_value(name);
  if (value != "true" && value != "false") {
    throw RequestError(400, Quoted(name) + " must be true or false");
  }
  return value == "true";
}

}  // namespace stowra_emulator
