// SPDX-License-Identifier: MIT
#include "host/service_url.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cctype>

namespace stowra {

namespace {

bool BeginsWith(std::string_view text, std::string_view begin) {
  return std::equal(
      begin.begin(), begin.end(), text.begin(),
      text.begin() + static_cast<std::ptrdiff_t>(std::min(begin.size(), text.size())),
      [](char a, char b) { return a == std::tolower(static_cast<unsigned char>(b)); });
}

// The length of "http://" or "https://", or 0.
std::size_t SchemeLength(std::string_view text) {
  for (const std::string_view scheme : {"http://", "https://"}) {
    if (BeginsWith(text, scheme)) return scheme.size();
  }
  return 0;
}

bool IsBlankOrControl(char c) { return static_cast<unsigned char>(c) <= ' ' || c == '\x7F'; }

std::string WithoutEndFrom(const char* delimiters, const std::string& url) {
  return url.substr(0, url.find_first_of(delimiters, SchemeLength(url)));
}

std::string Encode(std::string_view text) {
  std::string encoded;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    const bool is_plain = byte < 0x80 && (std::isalnum(byte) != 0 || c == '-' || c == '_');
    encoded += is_plain ? std::string(1, c) : fmt::format("%{:02X}", byte);
  }
  return encoded;
}

}  // namespace

bool IsWebUrl(std::string_view text) {
  const std::size_t scheme = SchemeLength(text);
  const bool has_host = scheme > 0 && text.size() > scheme &&
                        std::string_view("/?#").find(text[scheme]) == std::string_view::npos;
  return has_host && std::none_of(text.begin(), text.end(), IsBlankOrControl);
}

std::string CheckWebUrl(const std::string& text) {
  return IsWebUrl(text) ? "" : fmt::format("'{}' is not an http or https URL", text);
}

std::string ResolveUrl(const std::string& base, const std::string& address) {
  if (base.empty() || IsWebUrl(address)) return address;
  if (!address.empty() && address[0] == '/') return WithoutEndFrom("/?#", base) + address;
  std::string folder = WithoutEndFrom("?#", base);
  while (!folder.empty() && folder.back() == '/') folder.pop_back();
  const bool is_query = !address.empty() && address[0] == '?';
  return folder + (is_query ? "" : "/") + address;
}

std::string SearchAddress(const std::vector<std::string>& words) {
  return words.empty()
             ? "search"
             : fmt::format("search?q={}", Encode(fmt::format("{}", fmt::join(words, " "))));
}

}  // namespace stowra
