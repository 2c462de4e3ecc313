#include "common_stowraapi/platform/url.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace ovrant::internet {
namespace {

using utils::ovrant_ustring;

std::string_view Before(std::string_view text, char mark) {
  return text.substr(0, text.find(mark));
}

// Empty where there is no mark.
std::string_view After(std::string_view text, char mark) {
  const std::size_t found = text.find(mark);
  return found == std::string_view::npos ? std::string_view() : text.substr(found + 1);
}

// The value of a hexadecimal digit, or -1.
int HexValue(char digit) {
  if (digit >= '0' && digit <= '9') return digit - '0';
  if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
  if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
  return -1;
}

std::string Decode(std::string_view value) {
  std::string decoded;
  decoded.reserve(value.size());
  for (std::size_t i = 0; i < value.size(); ++i) {
    if (value[i] == '%' && value.size() - i > 2) {
      const int high = HexValue(value[i + 1]);
      const int low = HexValue(value[i + 2]);
      if (high >= 0 && low >= 0) {
        decoded += static_cast<char>(high << 4 | low);
        i += 2;
        continue;
      }
    }
    decoded += value[i] == '+' ? ' ' : value[i];
  }
  return decoded;
}

}  // namespace

URL::URL(ovrant_ustring url) {
  const std::string text = url.utf8();
  const std::string_view query = After(Before(text, '#'), '?');
  query_ = ovrant_ustring(query.data(), query.size());
}

bool URL::getValueForExtraInfoKey(ovrant_ustring key, ovrant_ustring& value) {
  const std::string query = query_.utf8();
  const std::string name = key.utf8();
  for (std::string_view rest = query; !rest.empty(); rest = After(rest, '&')) {
    const std::string_view parameter = Before(rest, '&');
    if (parameter.empty() || Before(parameter, '=') != name) continue;
    const std::string decoded = Decode(After(parameter, '='));
    value = ovrant_ustring(decoded.data(), decoded.size());
    return true;
  }
  return false;
}

}  // namespace ovrant::internet
