// SPDX-License-Identifier: MIT
// SECURITY.md states the library's limits.

#include <gtest/gtest.h>

#include <string>

#include "common_stowraapi/json/document.h"
#include "common_stowraapi/platform/http/background_worker.h"
#include "common_stowraapi/platform/http/chunk_decoder.h"
#include "common_stowraapi/platform/http/message.h"
#include "common_stowraapi/platform/http/response_head.h"
#include "common_stowraapi/platform/text/number_format.h"
#include "common_stowraapi/platform/xml/limits.h"
#include "tests/support/corpora.h"

namespace stowra_test {
namespace {

using ovrant::internet::BackgroundWorker;
using ovrant::internet::ChunkDecoder;
using ovrant::internet::HttpRequest;
using ovrant::internet::ResponseHead;

constexpr std::size_t kKib = 1024;
constexpr std::size_t kMib = 1024 * kKib;
constexpr std::size_t kGib = 1024 * kMib;

// Expects a table row that begins with these cells.
void ExpectRow(const std::string& what, const std::string& limit) {
  const std::string row = "\n| " + what + " | " + limit;
  EXPECT_NE(ReadFile(STOWRA_SECURITY_PAGE).find(row), std::string::npos) << row;
}

void ExpectRow(const char* what, std::size_t limit, const char* unit = " |") {
  ExpectRow(what, std::to_string(limit) + unit);
}

TEST(SecurityPageTest, StatesTheLimitsOfReplies) {
  ExpectRow("body of a reply, decoded, in memory", HttpRequest::kDefaultBodyCap / kMib, " MiB,");
  ExpectRow("header lines of a reply", ResponseHead::kMaxBytes / kKib, " KiB with");
  ExpectRow("line with the size of a chunk", ChunkDecoder::kMaxSizeLine / kKib, " KiB |");
  ExpectRow("one line of the trailing section of chunks", ChunkDecoder::kMaxTrailerLine,
            " bytes |");
  ExpectRow("redirects", HttpRequest::kDefaultRedirectLimit);
  ExpectRow("background transfers at a time", BackgroundWorker::kMaxActive);
}

TEST(SecurityPageTest, StatesTheLimitsOfJson) {
  ExpectRow("JSON: levels", ovrant::json::Document::kMaxDepth);
}

TEST(SecurityPageTest, StatesTheLimitsOfXml) {
  namespace xml = ovrant::xml;
  ExpectRow("XML: levels of elements", xml::kMaxDepth);
  ExpectRow("XML: a namespace URI", xml::kMaxNamespaceUri, " bytes |");
  const std::size_t added = xml::MemoryLimit(0);
  const std::size_t per_byte = xml::MemoryLimit(1) - added;
  ExpectRow("XML: bytes of the tree, and of the parser",
            "each " + std::to_string(per_byte) + " times the document and " +
                std::to_string(added / kMib) + " MiB |");
  ExpectRow("XML: document", xml::kMaxDocument / kGib, " GiB |");
}

TEST(SecurityPageTest, StatesTheLimitOfFormat) {
  ExpectRow("`Format`: width, and precision of a number", ovrant::utils::kMaxFormatCount);
}

}  // namespace
}  // namespace stowra_test
