// SPDX-License-Identifier: MIT
// Compares a document with the tree that it should hold.

#ifndef FUZZ_JSON_DOCUMENT_CHECK_H_
#define FUZZ_JSON_DOCUMENT_CHECK_H_

#include <string>
#include <string_view>

#include "common_stowraapi/json/document.h"
#include "common_stowraapi/json/value.h"
#include "common_stowraapi/platform/ustring.h"
#include "fuzz/json/json_model.h"

namespace stowra_fuzz {

ovrant::utils::ovrant_ustring FromUtf8(std::string_view utf8);

// Reads every node below `value` in every way. A double of the model that was not settled becomes
// the one that was found.
void CheckTree(const ovrant::json::Value& value, JsonNode& model);

// The same from the document's own operations, and the text that it writes, which is returned.
// REQUIRES: the doubles are settled.
std::string CheckDocument(ovrant::json::Document& document, const JsonNode& model);

// Whether two trees of one shape have the same doubles.
bool HasSameDoubles(const JsonNode& a, const JsonNode& b);

// Whether the tree holds a number that JSON cannot write. The text ends there.
bool HasUnspellableNumber(const JsonNode& model);

}  // namespace stowra_fuzz

#endif  // FUZZ_JSON_DOCUMENT_CHECK_H_
