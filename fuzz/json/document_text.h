// SPDX-License-Identifier: MIT
// The text of a document.

#ifndef FUZZ_JSON_DOCUMENT_TEXT_H_
#define FUZZ_JSON_DOCUMENT_TEXT_H_

#include <string_view>

#include "fuzz/json/json_model.h"

namespace stowra_fuzz {

// Checks that `text` is what a document with this tree writes.
void CheckText(std::string_view text, const JsonNode& root);

}  // namespace stowra_fuzz

#endif  // FUZZ_JSON_DOCUMENT_TEXT_H_
