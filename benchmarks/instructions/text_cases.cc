// SPDX-License-Identifier: MIT
#include "benchmarks/instructions/case.h"
#include "benchmarks/support/inputs.h"
#include "common_stowraapi/platform/ustring.h"

namespace stowra_bench {
namespace {

using ovrant::utils::ovrant_ustring;

void AddBothWays(const std::string& kind, const std::string& bytes, Cases& cases) {
  const std::string size = std::to_string(bytes.size());
  const ovrant_ustring text(bytes.data(), bytes.size());
  cases.push_back({kind + "FromUtf8/stowra/" + size, [bytes, length = text.length()] {
                     return ovrant_ustring(bytes.data(), bytes.size()).length() == length;
                   }});
  cases.push_back({kind + "ToUtf8/stowra/" + size,
                   [text, size = bytes.size()] { return text.utf8().size() == size; }});
}

}  // namespace

void AddTextCases(Cases& cases) {
  constexpr std::size_t kSize = 1000;
  AddBothWays("Ascii", MakeAsciiText(kSize), cases);
  AddBothWays("Mixed", MakeMixedText(kSize), cases);
}

}  // namespace stowra_bench
