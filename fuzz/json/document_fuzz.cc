// SPDX-License-Identifier: MIT
// Loads any text, reads it in every way, writes it and loads it again, and compares all that with
// another parser. Then builds trees. The input is a text up to its first NUL, then the operations.

#include "common_stowraapi/json/document.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "common_stowraapi/json/lookup.h"
#include "fuzz/json/document_builder.h"
#include "fuzz/json/document_check.h"
#include "fuzz/json/json_model.h"
#include "fuzz/support/check.h"
#include "fuzz/support/input.h"

namespace {

using ovrant::json::Document;
using ovrant::json::Lookup;
using ovrant::json::Value;
using ovrant::utils::ovrant_ustring;
using stowra_fuzz::CheckDocument;
using stowra_fuzz::CheckTree;
using stowra_fuzz::FromUtf8;
using stowra_fuzz::JsonNode;
using stowra_fuzz::JsonText;

// A text that the library wrote loads again as the same tree. Written again it is the same text,
// unless doubles were rounded.
void CheckRoundTrip(const std::string& written) {
  JsonText expected = stowra_fuzz::ReadJson(written);
  if (expected.verdict == JsonText::Verdict::kEither) return;
  FUZZ_CHECK(expected.verdict == JsonText::Verdict::kTaken);
  Document document;
  FUZZ_CHECK(document.Load(FromUtf8(written)));
  JsonNode settled = expected.root;
  CheckTree(Lookup::Root(document), settled);
  const std::string again = CheckDocument(document, settled);
  if (stowra_fuzz::HasSameDoubles(expected.root, settled)) FUZZ_CHECK(again == written);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  stowra_fuzz::Input input(data, size);
  const ovrant_ustring text = FromUtf8({reinterpret_cast<const char*>(data), size});
  input.Until('\0');

  JsonText expected = stowra_fuzz::ReadJson(text.utf8());
  Document document;
  const bool loaded = document.Load(text);
  if (expected.verdict == JsonText::Verdict::kEither) return 0;
  FUZZ_CHECK(loaded == (expected.verdict == JsonText::Verdict::kTaken));
  CheckTree(Lookup::Root(document), expected.root);
  const std::string written = CheckDocument(document, expected.root);
  if (loaded && !stowra_fuzz::HasUnspellableNumber(expected.root)) CheckRoundTrip(written);

  stowra_fuzz::BuildAndCheck(input, document, expected.root);
  return 0;
}
