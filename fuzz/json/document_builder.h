// SPDX-License-Identifier: MIT
// Builds and changes trees as the fuzzer's bytes say, together with a model.

#ifndef FUZZ_JSON_DOCUMENT_BUILDER_H_
#define FUZZ_JSON_DOCUMENT_BUILDER_H_

#include "common_stowraapi/json/document.h"
#include "fuzz/json/json_model.h"
#include "fuzz/support/input.h"

namespace stowra_fuzz {

// Runs some dozens of operations on the document, whose tree is `root`, and on nodes beside it.
// Then compares all of them. Ends early, without a comparison, at a text that the model does not
// judge. REQUIRES: the doubles of `root` are settled.
void BuildAndCheck(Input& input, ovrant::json::Document& document, JsonNode& root);

}  // namespace stowra_fuzz

#endif  // FUZZ_JSON_DOCUMENT_BUILDER_H_
