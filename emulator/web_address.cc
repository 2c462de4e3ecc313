// SPDX-License-Identifier: MIT
#include "emulator/web_address.h"

#include <algorithm>

namespace stowra_emulator {
namespace {

bool IsLetterOrDigit(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

// A host name or IP address, with or without a port.
bool IsUsableHost(std::string_view host) {
  constexpr std::string_view kMarks = "-._:[]";
  return !host.empty() && std::all_of(host.begin(), host.end(), [=](char c) {
    return IsLetterOrDigit(c) || kMarks.find(c) != std::string_view::npos;
  });
}

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace

std::string SiteAddress(const httplib::Request& request) {
  const bool is_secure = request.get_header_value("X-Forwarded-Proto") == "https";
  std::string host = request.get_header_value("X-Forwarded-Host");
  if (!IsUsableHost(host)) host = request.get_header_value("Host");
  if (!IsUsableHost(host)) host = "127.0.0.1:" + std::to_string(request.local_port);
  return (is_secure ? "https://" : "http://") + host;
}

std::string PercentEncode(std::string_view text, std::string_view also_kept) {
  constexpr std::string_view kMarks = "-._~";
  constexpr std::string_view kHexDigits = "0123456789ABCDEF";
  std::string encoded;
  for (const char c : text) {
    if (IsLetterOrDigit(c) || kMarks.find(c) != std::string_view::npos ||
        also_kept.find(c) != std::string_view::npos) {
      encoded += c;
    } else {
      const auto byte = static_cast<unsigned char>(c);
      encoded += {'%', kHexDigits[byte >> 4], kHexDigits[byte & 15]};
    }
  }
  return encoded;
}

std::string PercentDecode(std::string_view text) {
  std::string decoded;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool has_digits = text[i] == '%' && i + 2 < text.size();
    const int high = has_digits ? HexDigit(text[i + 1]) : -1;
    const int low = has_digits ? HexDigit(text[i + 2]) : -1;
    if (high < 0 || low < 0) {
      decoded += text[i];
    } else {
      decoded += static_cast<char>(high * 16 + low);
      i += 2;
    }
  }
  return decoded;
}

}  // namespace stowra_emulator
