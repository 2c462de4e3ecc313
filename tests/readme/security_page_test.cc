// SPDX-License-Identifier: MIT
// SECURITY.md states the library's limits.

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

#include "common_stowraapi/json/document.h"
#include "common_stowraapi/platform/http/background_worker.h"
#include "common_stowraapi/platform/http/chunk_decoder.h"
#include "common_stowraapi/platform/http/message.h"
#include "common_stowraapi/platform/http/response_head.h"
#include "common_stowraapi/platform/text/number_format.h"
#include "common_stowraapi/platform/xml/limits.h"

namespace stowra_test {
namespace {

using ovrant::internet::BackgroundWorker;
using ovrant::internet::ChunkDecoder;
using ovrant::internet::HttpRequest;
using ovrant::internet::ResponseHead;

constexpr std::size_t kKib = 1024;
constexpr std::size_t kMib = 1024 * kKib;
constexpr std::size_t kGib = 1024 * kMib;

std::string Page() {
  std::ifstream file(STOWRA_SECURITY_PAGE);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// Expects a table row that begins with these cells.
void ExpectRow(const std::string& what, const std::string& limit) {
  EXPECT_NE(Page().find("\n| " + what + " | " + limit), std::string::npos)
      << what << " is limited to " << limit;
}

TEST(SecurityPageTest, StatesTheLimitsOfReplies) {
  ExpectRow("body of a reply, decoded, in memory",
            std::to_string(HttpRequest::kDefaultBodyCap / kMib) + " MiB,");
  ExpectRow("header lines of a reply",
            std::to_string(ResponseHead::kMaxBytes / kKib) + " KiB with");
  ExpectRow("line with the size of a chunk",
            std::to_string(ChunkDecoder::kMaxSizeLine / kKib) + " KiB |");
  ExpectRow("one line of the trailing section of chunks",
            std::to_string(ChunkDecoder::kMaxTrailerLine) + " bytes |");
  ExpectRow("redirects", std::to_string(HttpRequest::kDefaultRedirectLimit) + " |");
  ExpectRow("background transfers at a time", std::to_string(BackgroundWorker::kMaxActive) + " |");
}

TEST(SecurityPageTest, StatesTheLimitsOfJson) {
  ExpectRow("JSON: levels", std::to_string(ovrant::json::Document::kMaxDepth) + " |");
}

TEST(SecurityPageTest, StatesTheLimitsOfXml) {
  namespace xml = ovrant::xml;
  ExpectRow("XML: levels of elements", std::to_string(xml::kMaxDepth) + " |");
  ExpectRow("XML: a namespace URI", std::to_string(xml::kMaxNamespaceUri) + " bytes |");
  const std::size_t added = xml::MemoryLimit(0);
  const std::size_t per_byte = xml::MemoryLimit(1) - added;
  ExpectRow("XML: bytes of the tree, and of the parser",
            "each " + std::to_string(per_byte) + " times the document and " +
                std::to_string(added / kMib) + " MiB |");
  ExpectRow("XML: document", std::to_string(xml::kMaxDocument / kGib) + " GiB |");
}

TEST(SecurityPageTest, StatesTheLimitOfFormat) {
  ExpectRow("`Format`: width, and precision of a number",
            std::to_string(ovrant::utils::kMaxFormatCount) + " |");
}

}  // namespace
}  // namespace stowra_test
