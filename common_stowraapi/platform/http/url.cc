// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/url.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "common_stowraapi/platform/text/utf_conversion.h"

namespace ovrant::internet {
namespace {

using utils::ovrant_ustring;

using Units = std::u16string_view;

Units Before(Units text, char16_t mark) { return text.substr(0, text.find(mark)); }

// Empty if there is no mark.
Units After(Units text, char16_t mark) {
  const std::size_t at = text.find(mark);
  return at == Units::npos ? Units() : text.substr(at + 1);
}

bool StandsForItself(char16_t unit) { return unit < 0x80 && unit != u'%' && unit != u'+'; }

// The value of a hexadecimal digit, or -1.
int HexValue(char digit) {
  if (digit >= '0' && digit <= '9') return digit - '0';
  if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
  if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
  return -1;
}

void Decode(Units value, ovrant_ustring& decoded_value) {
  if (std::all_of(value.begin(), value.end(), StandsForItself)) {
    decoded_value = value;
    return;
  }
  const std::string utf8 = utils::Utf16ToUtf8(value);
  std::string decoded;
  decoded.reserve(utf8.size());
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    if (utf8[i] == '%' && utf8.size() - i > 2) {
      const int high = HexValue(utf8[i + 1]);
      const int low = HexValue(utf8[i + 2]);
      if (high >= 0 && low >= 0) {
        decoded += static_cast<char>(high << 4 | low);
        i += 2;
        continue;
      }
    }
    decoded += utf8[i] == '+' ? ' ' : utf8[i];
  }
  decoded_value = ovrant_ustring(decoded.data(), decoded.size());
}

}  // namespace

URL::URL(ovrant_ustring url) : query_(std::move(url)) {
  query_ = After(Before(query_.units(), u'#'), u'?');
}

bool URL::getValueForExtraInfoKey(ovrant_ustring key, ovrant_ustring& value) {
  const Units name = key.units();
  for (Units rest = query_.units(); !rest.empty();) {
    const Units parameter = Before(rest, u'&');
    if (!parameter.empty() && Before(parameter, u'=') == name) {
      Decode(After(parameter, u'='), value);
      return true;
    }
    rest.remove_prefix(std::min(parameter.size() + 1, rest.size()));
  }
  return false;
}

}  // namespace ovrant::internet
