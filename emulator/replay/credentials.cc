// SPDX-License-Identifier: MIT
#include "emulator/replay/credentials.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <string_view>

namespace stowra_emulator {
namespace {

// Parts of names, in lower case. "api_key" and "Api-Key" both become "apikey".
constexpr std::array<std::string_view, 10> kSecretNames = {
    "authorization", "authentication", "cookie",     "token",   "secret",
    "password",      "apikey",         "credential", "session", "signature"};

bool NamesACredential(std::string_view name) {
  std::string plain;
  for (const char c : name) {
    if (c == '-' || c == '_') continue;
    plain += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  }
  return std::any_of(kSecretNames.begin(), kSecretNames.end(), [&plain](std::string_view secret) {
    return plain.find(secret) != std::string::npos;
  });
}

void BlankUserInfo(std::string& text) {
  constexpr std::string_view kMark = "://";
  constexpr std::string_view kEnds = "/?#\"'<> \t\r\n";
  for (std::size_t mark = text.find(kMark); mark != std::string::npos;
       mark = text.find(kMark, mark + 1)) {
    const std::size_t start = mark + kMark.size();
    const std::size_t end = std::min(text.find_first_of(kEnds, start), text.size());
    const std::size_t at = text.substr(start, end - start).rfind('@');
    if (at != std::string::npos) text.replace(start, at, kBlank);
  }
}

void BlankParameters(std::string& text) {
  constexpr std::string_view kEnds = "&#\"'<> \t\r\n";
  std::size_t start = text.find('?');
  while (start != std::string::npos) {
    ++start;
    const std::size_t end = std::min(text.find_first_of(kEnds, start), text.size());
    const std::size_t equals = std::min(text.find('=', start), end);
    const bool is_secret = equals < end && NamesACredential({text.data() + start, equals - start});
    if (is_secret) text.replace(equals + 1, end - equals - 1, kBlank);
    start = text.find_first_of("?&", start);
  }
}

}  // namespace

HttpFields WithoutCredentials(HttpFields fields) {
  for (auto& [name, value] : fields) {
    value = NamesACredential(name) ? kBlank : WithoutCredentials(std::move(value));
  }
  return fields;
}

std::string WithoutCredentials(std::string text) {
  BlankUserInfo(text);
  BlankParameters(text);
  return text;
}

}  // namespace stowra_emulator
