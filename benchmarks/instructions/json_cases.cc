// SPDX-License-Identifier: MIT
#include <memory>

#include "benchmarks/instructions/case.h"
#include "benchmarks/json/bare_rapidjson.h"
#include "benchmarks/support/inputs.h"
#include "common_stowraapi/json/document.h"
#include "common_stowraapi/platform/ustring.h"

namespace stowra_bench {
namespace {

using ovrant::json::Document;
using ovrant::utils::ovrant_ustring;

constexpr int kExtensions = 200;

}  // namespace

void AddJsonCases(Cases& cases) {
  const std::string count = std::to_string(kExtensions);
  const std::string body = MakeExtensionStatus(kExtensions);
  const ovrant_ustring text(body.data(), body.size());
  cases.push_back({"DocumentLoad/stowra/" + count, [text] {
                     Document document;
                     return document.Load(text);
                   }});
  cases.push_back({"DocumentLoad/rapidjson/" + count, [body] { return ParseBareJson(body); }});
  cases.push_back({"BytesToDocument/stowra/" + count, [body] {
                     Document document;
                     return document.Load(ovrant_ustring(body.data(), body.size()));
                   }});
  const auto loaded = std::make_shared<Document>();
  loaded->Load(text);
  cases.push_back({"DocumentToString/stowra/" + count, [loaded, size = text.length()] {
                     ovrant_ustring written;
                     loaded->ToString(written);
                     // The output lacks the input's white space.
                     return written.length() > size * 9 / 10;
                   }});
}

}  // namespace stowra_bench
