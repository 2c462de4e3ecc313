// SPDX-License-Identifier: MIT
// Values as XML texts spell them.

#ifndef COMMON_STOWRAAPI_PLATFORM_XML_VALUES_H_
#define COMMON_STOWRAAPI_PLATFORM_XML_VALUES_H_

#include <optional>
#include <string_view>

namespace ovrant::xml {

// Without the white space of XML (XML 1.0, 2.3) around it.
std::string_view Trim(std::string_view text);

// An optional sign and decimal digits that fit.
std::optional<int> ToInt(std::string_view text);

// "true", "false", "1" or "0".
std::optional<bool> ToBool(std::string_view text);

}  // namespace ovrant::xml

#endif  // COMMON_STOWRAAPI_PLATFORM_XML_VALUES_H_
