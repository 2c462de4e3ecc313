// SPDX-License-Identifier: MIT
// The answer of the account service beside a model. Input: two answers, with a NUL between them.

#include "common_stowraapi/services/user_info_query.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "common_stowraapi/platform/ustring.h"
#include "fuzz/json/json_model.h"
#include "fuzz/support/check.h"
#include "fuzz/support/input.h"

namespace {

using ovrant::utils::ovrant_ustring;
using ovrant::webservices::UserInfoQuery;
using stowra_fuzz::JsonNode;
using stowra_fuzz::JsonText;

using Cache = std::map<std::string, std::string>;

ovrant_ustring Text(std::string_view utf8) { return ovrant_ustring(utf8.data(), utf8.size()); }

// The cache after an answer that is taken; nothing for one that is refused.
std::optional<Cache> ReadAnswer(const JsonText& answer) {
  if (answer.verdict == JsonText::Verdict::kRefused) return std::nullopt;
  Cache cache;
  for (std::size_t i = 0; i < answer.root.names.size(); ++i) {
    const JsonNode& value = answer.root.children[i];
    const bool is_text = value.kind == JsonNode::Kind::kString;
    cache[stowra_fuzz::Shown(answer.root.names[i])] =
        is_text ? stowra_fuzz::Shown(value.text) : std::string();
  }
  for (const char* const required : {"uid", "email", "vkr_id"}) {
    if (cache.count(required) == 0) return std::nullopt;
  }
  return cache;
}

void CheckCache(const UserInfoQuery& query, const Cache& earlier, const Cache& cache) {
  for (const auto& [name, value] : cache) {
    FUZZ_CHECK(query.GetUserInfoValue(Text(name)).utf8() == value);
  }
  // What only an earlier answer had is gone.
  for (const auto& [name, value] : earlier) {
    if (cache.count(name) == 0) FUZZ_CHECK(query.GetUserInfoValue(Text(name)).empty());
  }
  if (cache.count("no such name") == 0) {
    FUZZ_CHECK(query.GetUserInfoValue("no such name").empty());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  stowra_fuzz::Input input(data, size);
  UserInfoQuery query;
  Cache cache = {{"uid", "u-1"}, {"email", "e@example.com"}, {"vkr_id", ""}, {"color", "red"}};
  FUZZ_CHECK(query.ParseResponse(
      R"({"uid": "u-1", "email": "e@example.com", "vkr_id": "", "color": "red"})"));
  CheckCache(query, {}, cache);

  for (int i = 0; i < 2; ++i) {
    const ovrant_ustring body = Text(i == 0 ? input.Until('\0') : input.Rest());
    const JsonText answer = stowra_fuzz::ReadJson(body.utf8());
    const bool taken = query.ParseResponse(body);
    if (answer.verdict == JsonText::Verdict::kEither) return 0;
    const std::optional<Cache> expected = ReadAnswer(answer);
    FUZZ_CHECK(taken == expected.has_value());
    const Cache earlier = cache;
    if (expected) cache = *expected;
    CheckCache(query, earlier, cache);
  }
  return 0;
}
