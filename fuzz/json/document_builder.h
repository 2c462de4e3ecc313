// Building and taking apart of trees, as the fuzzer's bytes say, beside a model.

#ifndef FUZZ_JSON_DOCUMENT_BUILDER_H_
#define FUZZ_JSON_DOCUMENT_BUILDER_H_

#include "common_stowraapi/json/document.h"
#include "fuzz/json/json_model.h"
#include "fuzz/support/input.h"

namespace stowra_fuzz {

// Does up to some dozens of operations on the document, whose tree is `root`, and on nodes beside
// it; compares all of them in the end. Ends early, with nothing compared, at a text to load that
// the model does not judge. REQUIRES: the doubles of `root` are settled.
void BuildAndCheck(Input& input, ovrant::json::Document& document, JsonNode& root);

}  // namespace stowra_fuzz

#endif  // FUZZ_JSON_DOCUMENT_BUILDER_H_
