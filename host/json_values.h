// SPDX-License-Identifier: MIT
// Makes the values of a JSON document.

#ifndef HOST_JSON_VALUES_H_
#define HOST_JSON_VALUES_H_

#include <cstddef>
#include <string>

#include "common_stowraapi/json/document.h"
#include "common_stowraapi/json/value.h"
#include "common_stowraapi/platform/ustring.h"

namespace stowra {

// Each makes a value that PushBack or AddMember moves into `document`.
ovrant::json::Value MakeObject(ovrant::json::Document& document);
ovrant::json::Value MakeArray(ovrant::json::Document& document);
ovrant::json::Value MakeText(ovrant::json::Document& document,
                             const ovrant::utils::ovrant_ustring& text);
ovrant::json::Value MakeInt(ovrant::json::Document& document, int number);
ovrant::json::Value MakeSize(ovrant::json::Document& document, std::size_t number);
ovrant::json::Value MakeBool(ovrant::json::Document& document, bool value);

// Uses the shortest decimal text of the float: 0.9F becomes 0.9 and not 0.89999998.
// REQUIRES: `number` is finite.
ovrant::json::Value MakeFloat(ovrant::json::Document& document, float number);

// The document as one line of printable text (Printable), with its line break.
std::string ToLine(ovrant::json::Document& document);

}  // namespace stowra

#endif  // HOST_JSON_VALUES_H_
