// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/blanked_text.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "common_stowraapi/platform/http/header_text.h"

namespace ovrant::internet {

namespace {

constexpr std::string_view kBlank = "***";
constexpr std::string_view kEndsOfUrl = " \t\r\n\"<>";
constexpr std::string_view kEndsOfAuthority = "/?# \t\r\n\"<>";
constexpr std::string_view kEndsOfQuery = "# \t\r\n\"<>";
constexpr std::string_view kEndsOfParameter = "&;# \t\r\n\"<>";

constexpr std::array<std::string_view, 7> kSecretWords = {"auth",   "cookie",  "key",  "password",
                                                          "secret", "session", "token"};

bool IsOneOf(char c, std::string_view set) { return set.find(c) != std::string_view::npos; }

// Takes what stands before the first character of `ends` off the front of `text`.
std::string_view TakeUntil(std::string_view ends, std::string_view& text) {
  const std::string_view taken = text.substr(0, text.find_first_of(ends));
  text.remove_prefix(taken.size());
  return taken;
}

// A parameter without a name may be a secret, too.
void BlankQuery(std::string_view& rest, std::string& blanked) {
  while (!rest.empty() && !IsOneOf(rest.front(), kEndsOfQuery)) {
    const std::string_view parameter = TakeUntil(kEndsOfParameter, rest);
    const std::size_t equals = parameter.find('=');
    if (equals != std::string_view::npos) blanked += parameter.substr(0, equals + 1);
    if (!parameter.empty()) blanked += kBlank;
    if (!rest.empty() && !IsOneOf(rest.front(), kEndsOfQuery)) {
      blanked += rest.front();
      rest.remove_prefix(1);
    }
  }
}

bool IsSecret(const std::string& name, const std::vector<std::string>& more_secrets) {
  return std::any_of(
             kSecretWords.begin(), kSecretWords.end(),
             [&name](std::string_view word) { return name.find(word) != std::string::npos; }) ||
         std::find(more_secrets.begin(), more_secrets.end(), name) != more_secrets.end();
}

}  // namespace

std::string BlankUrls(std::string_view text) {
  std::string blanked;
  char before = '\0';
  while (!text.empty()) {
    const char c = text.front();
    text.remove_prefix(1);
    blanked += c;
    if (c == '?') {
      BlankQuery(text, blanked);
    } else if (c == '#') {
      if (!TakeUntil(kEndsOfUrl, text).empty()) blanked += kBlank;
    } else if (c == '/' && (before == '/' || before == ':')) {
      // The authority of a URL begins after its slashes.
      const std::string_view authority = text.substr(0, text.find_first_of(kEndsOfAuthority));
      const std::size_t at = authority.rfind('@');
      if (at != std::string_view::npos) {
        blanked += kBlank;
        text.remove_prefix(at);
      }
    }
    before = c;
  }
  return blanked;
}

std::string BlankHead(std::string_view head, const std::vector<std::string>& more_secrets) {
  std::string blanked;
  bool is_secret = false;
  for (bool is_first = true; !head.empty(); is_first = false) {
    const std::string_view line = head.substr(0, std::min(head.find('\n'), head.size() - 1) + 1);
    head.remove_prefix(line.size());
    const std::size_t colon = line.find(':');
    const bool continues = BeginsWithBlank(line);
    if (!is_first && !continues) {
      const std::string name = ToLowerCase(std::string(TrimHeaderText(line.substr(0, colon))));
      is_secret = IsSecret(name, more_secrets);
    }
    if (is_secret && (continues || colon != std::string_view::npos)) {
      if (!continues) blanked += line.substr(0, colon + 1);
      blanked.append(" ").append(kBlank).append("\n");
    } else {
      blanked += BlankUrls(line);
    }
  }
  return blanked;
}

}  // namespace ovrant::internet
