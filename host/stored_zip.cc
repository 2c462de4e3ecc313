// SPDX-License-Identifier: MIT
#include "host/stored_zip.h"

#include <cstddef>
#include <cstdint>

namespace stowra {

namespace {

constexpr std::uint32_t kLocalHeader = 0x04034B50;
constexpr std::uint32_t kDirectoryEntry = 0x02014B50;
constexpr std::uint32_t kDirectoryEnd = 0x06054B50;

constexpr unsigned kVersion = 10;         // 1.0; no newer feature is used
constexpr unsigned kUtf8Name = 1U << 11;  // flag
constexpr unsigned kStored = 0;           // method
constexpr unsigned kMidnight = 0;
constexpr unsigned kFirstOf1980 = (1U << 5) | 1;  // the earliest date

// Little-endian, whatever the machine.
void Append(std::uint32_t number, std::size_t bytes, std::string& text) {
  for (; bytes > 0; --bytes, number >>= 8) text += static_cast<char>(number & 0xFF);
}
void Append16(std::size_t number, std::string& text) {
  Append(static_cast<std::uint32_t>(number), 2, text);
}
void Append32(std::size_t number, std::string& text) {
  Append(static_cast<std::uint32_t>(number), 4, text);
}

std::uint32_t Crc32(std::string_view bytes) {
  constexpr std::uint32_t kReversedPolynomial = 0xEDB88320;
  std::uint32_t crc = 0xFFFFFFFF;
  for (const char byte : bytes) {
    crc ^= static_cast<unsigned char>(byte);
    for (int bit = 0; bit < 8; ++bit) {
      crc = (crc >> 1) ^ ((crc & 1) != 0 ? kReversedPolynomial : 0);
    }
  }
  return ~crc;
}

// The fields that the local header and the directory entry share.
std::string Describe(std::string_view name, std::string_view content) {
  std::string fields;
  Append16(kVersion, fields);
  Append16(kUtf8Name, fields);
  Append16(kStored, fields);
  Append16(kMidnight, fields);
  Append16(kFirstOf1980, fields);
  Append32(Crc32(content), fields);
  Append32(content.size(), fields);  // compressed
  Append32(content.size(), fields);
  Append16(name.size(), fields);
  Append16(0, fields);  // extra fields
  return fields;
}

}  // namespace

std::string MakeStoredZip(std::string_view name, std::string_view content) {
  const std::string description = Describe(name, content);
  std::string archive;
  Append32(kLocalHeader, archive);
  archive.append(description).append(name).append(content);

  const std::size_t directory = archive.size();
  Append32(kDirectoryEntry, archive);
  Append16(kVersion, archive);  // made by
  archive.append(description);
  Append16(0, archive);  // comment
  Append16(0, archive);  // disk
  Append16(0, archive);  // internal attributes
  Append32(0, archive);  // external attributes
  Append32(0, archive);  // offset of the local header
  archive.append(name);
  const std::size_t directory_size = archive.size() - directory;

  Append32(kDirectoryEnd, archive);
  Append16(0, archive);  // this disk
  Append16(0, archive);  // disk of the directory
  Append16(1, archive);  // entries on this disk
  Append16(1, archive);  // entries
  Append32(directory_size, archive);
  Append32(directory, archive);
  Append16(0, archive);  // comment
  return archive;
}

}  // namespace stowra
