// SPDX-License-Identifier: MIT
#include "tests/multipart/part.h"

#include <gmock/gmock.h>

#include <cstddef>

namespace stowra_test {
namespace {

constexpr std::size_t kNumberSize = 4;
constexpr std::size_t kAbsent = 0xFFFFFFFF;
constexpr std::size_t kShown = 400;

std::string Shown(const std::string& text) {
  return testing::PrintToString(text.substr(0, kShown)) + " (" + std::to_string(text.size()) +
         " bytes)";
}

std::string Shown(const std::optional<std::string>& text) {
  return text.has_value() ? Shown(*text) : "absent";
}

std::string EncodeOptional(const std::optional<std::string>& text) {
  return text.has_value() ? EncodeText(*text) : EncodeNumber(kAbsent);
}

// Decodes values from the front of the bytes.
class Decoder {
 public:
  explicit Decoder(std::string_view bytes) : rest_(bytes) {}

  std::size_t Number() { return DecodeNumber(Take(kNumberSize)); }

  std::optional<std::string> Optional() {
    const std::size_t length = Number();
    if (length == kAbsent) return std::nullopt;
    return std::string(Take(length));
  }

  std::string Text() { return Optional().value_or(""); }

  bool IsWhole() const { return is_whole_ && rest_.empty(); }
  bool IsWholeSoFar() const { return is_whole_; }

 private:
  std::string_view Take(std::size_t count) {
    if (rest_.size() < count) {
      is_whole_ = false;
      rest_ = {};
      return {};
    }
    const std::string_view taken = rest_.substr(0, count);
    rest_.remove_prefix(count);
    return taken;
  }

  std::string_view rest_;
  bool is_whole_ = true;
};

}  // namespace

bool operator==(const Part& a, const Part& b) {
  return a.name == b.name && a.file_name == b.file_name && a.type == b.type &&
         a.disposition == b.disposition && a.content == b.content;
}

std::ostream& operator<<(std::ostream& out, const Part& part) {
  return out << "name " << Shown(part.name) << ", file name " << Shown(part.file_name) << ", type "
             << Shown(part.type) << ", disposition " << Shown(part.disposition) << ", content "
             << Shown(part.content);
}

std::string Encode(const Reading& reading) {
  std::string bytes = EncodeText(reading.error) + EncodeNumber(reading.parts.size());
  for (const Part& part : reading.parts) {
    bytes += EncodeText(part.name);
    bytes += EncodeOptional(part.file_name);
    bytes += EncodeOptional(part.type);
    bytes += EncodeOptional(part.disposition);
    bytes += EncodeText(part.content);
  }
  return bytes;
}

Reading Decode(std::string_view bytes) {
  Decoder decoder(bytes);
  Reading reading;
  reading.error = decoder.Text();
  for (std::size_t left = decoder.Number(); left > 0 && decoder.IsWholeSoFar(); --left) {
    // In the order of the members, which is that of the values.
    reading.parts.push_back({decoder.Text(), decoder.Optional(), decoder.Optional(),
                             decoder.Optional(), decoder.Text()});
  }
  EXPECT_TRUE(decoder.IsWhole()) << "the encoded reading is too short or too long";
  return reading;
}

std::string EncodeNumber(std::size_t number) {
  std::string bytes;
  for (int shift = 24; shift >= 0; shift -= 8) {
    bytes += static_cast<char>(static_cast<unsigned char>(number >> shift));
  }
  return bytes;
}

std::string EncodeText(std::string_view text) {
  std::string bytes = EncodeNumber(text.size());
  bytes += text;
  return bytes;
}

std::size_t DecodeNumber(std::string_view bytes) {
  std::size_t number = 0;
  for (const char c : bytes) number = number << 8 | static_cast<unsigned char>(c);
  return number;
}

}  // namespace stowra_test
