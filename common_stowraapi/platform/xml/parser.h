// SPDX-License-Identifier: MIT
// From the bytes of an XML document to its tree.

#ifndef COMMON_STOWRAAPI_PLATFORM_XML_PARSER_H_
#define COMMON_STOWRAAPI_PLATFORM_XML_PARSER_H_

#include <memory>
#include <string_view>

#include "common_stowraapi/platform/xml/tree.h"

namespace ovrant::xml {

// Null for what Get_IXMLInput refuses.
std::unique_ptr<const Tree> Parse(std::string_view document) noexcept;

}  // namespace ovrant::xml

#endif  // COMMON_STOWRAAPI_PLATFORM_XML_PARSER_H_
