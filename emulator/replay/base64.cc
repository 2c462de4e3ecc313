// SPDX-License-Identifier: MIT
#include "emulator/replay/base64.h"

#include <openssl/evp.h>

#include <algorithm>
#include <cstddef>

namespace stowra_emulator {
namespace {

const unsigned char* Bytes(std::string_view text) {
  return reinterpret_cast<const unsigned char*>(text.data());
}

unsigned char* Bytes(std::string& text) { return reinterpret_cast<unsigned char*>(text.data()); }

}  // namespace

std::string EncodeBase64(std::string_view bytes) {
  // One more for the zero that OpenSSL writes.
  std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0');
  const int size = EVP_EncodeBlock(Bytes(text), Bytes(bytes), static_cast<int>(bytes.size()));
  text.resize(static_cast<std::size_t>(size));
  return text;
}

std::optional<std::string> DecodeBase64(const std::string& text) {
  if (text.size() % 4 != 0) return std::nullopt;
  std::string bytes(text.size() / 4 * 3, '\0');
  const std::string_view coded = text;
  const int size = EVP_DecodeBlock(Bytes(bytes), Bytes(coded), static_cast<int>(coded.size()));
  if (size < 0) return std::nullopt;
  // OpenSSL counts the padding as zero bytes.
  const auto padding =
      std::count(text.end() - std::min<std::ptrdiff_t>(2, static_cast<std::ptrdiff_t>(text.size())),
                 text.end(), '=');
  bytes.resize(static_cast<std::size_t>(size) - static_cast<std::size_t>(padding));
  return bytes;
}

}  // namespace stowra_emulator
