// SPDX-License-Identifier: MIT
// Reads a document without growing it, for the library's own services.

#ifndef COMMON_STOWRAAPI_JSON_LOOKUP_H_
#define COMMON_STOWRAAPI_JSON_LOOKUP_H_

#include <string_view>

#include "common_stowraapi/json/document.h"
#include "common_stowraapi/json/value.h"

namespace ovrant::json {

// Does what the operations of Document and Value do, but only the caller keeps the handles. Reading
// a long array or object therefore costs no memory. Names are UTF-8.
struct Lookup {
  static Value Root(const Document& document);
  static Value Member(const Value& object, std::string_view name);
  static Value MemberAt(const Value& object, unsigned int index);
  static Value Element(const Value& array, unsigned int index);
};

}  // namespace ovrant::json

#endif  // COMMON_STOWRAAPI_JSON_LOOKUP_H_
