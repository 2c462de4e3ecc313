#include "common_stowraapi/platform/xml_values.h"

#include <charconv>

namespace ovrant::xml {

std::string_view Trim(std::string_view text) {
  constexpr std::string_view kWhiteSpace = " \t\r\n";
  const std::size_t begin = text.find_first_not_of(kWhiteSpace);
  if (begin == std::string_view::npos) return text.substr(0, 0);
  return text.substr(begin, text.find_last_not_of(kWhiteSpace) - begin + 1);
}

std::optional<int> ToInt(std::string_view text) {
  // The sign that std::from_chars does not read.
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
  int value = 0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || rest != end) return std::nullopt;
  return value;
}

std::optional<bool> ToBool(std::string_view text) {
  if (text == "true" || text == "1") return true;
  if (text == "false" || text == "0") return false;
  return std::nullopt;
}

}  // namespace ovrant::xml
