// SPDX-License-Identifier: MIT
// Compares a parameter of a URL with a second reader's result. The input is the parameter's name, a
// NUL and the URL.

#include "common_stowraapi/platform/url.h"

#include <cctype>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "common_stowraapi/platform/ustring.h"
#include "fuzz/support/check.h"
#include "fuzz/support/input.h"

namespace {

using ovrant::utils::ovrant_ustring;

ovrant_ustring Text(std::string_view utf8) { return ovrant_ustring(utf8.data(), utf8.size()); }

std::string Decoded(std::string_view value) {
  std::string decoded;
  for (std::size_t i = 0; i < value.size(); ++i) {
    const std::string digits(value.substr(i).substr(1, 2));
    if (value[i] == '%' && digits.size() == 2 &&
        std::isxdigit(static_cast<unsigned char>(digits[0])) != 0 &&
        std::isxdigit(static_cast<unsigned char>(digits[1])) != 0) {
      decoded.push_back(static_cast<char>(std::stoi(digits, nullptr, 16)));
      i += 2;
    } else {
      decoded.push_back(value[i] == '+' ? ' ' : value[i]);
    }
  }
  return decoded;
}

std::optional<std::string> Find(std::string_view name, std::string url) {
  url = url.substr(0, url.find('#'));
  const std::size_t mark = url.find('?');
  if (mark == std::string::npos) return std::nullopt;
  std::string rest = url.substr(mark + 1) + '&';
  while (!rest.empty()) {
    const std::string parameter = rest.substr(0, rest.find('&'));
    rest.erase(0, parameter.size() + 1);
    if (parameter.empty() || parameter.substr(0, parameter.find('=')) != name) continue;
    const std::size_t equals = parameter.find('=');
    return equals == std::string::npos ? std::string() : Decoded(parameter.substr(equals + 1));
  }
  return std::nullopt;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  stowra_fuzz::Input input(data, size);
  const ovrant_ustring name = Text(input.Until('\0'));
  const ovrant_ustring url = Text(input.Rest());

  ovrant_ustring value("unchanged");
  const bool found = ovrant::internet::URL(url).getValueForExtraInfoKey(name, value);
  const std::optional<std::string> expected = Find(name.utf8(), url.utf8());
  FUZZ_CHECK(found == expected.has_value());
  FUZZ_CHECK(value == (expected ? Text(*expected) : ovrant_ustring("unchanged")));
  return 0;
}
