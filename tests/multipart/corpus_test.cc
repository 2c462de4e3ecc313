// SPDX-License-Identifier: MIT
// Tests the second parser itself, on bodies from another source with known parts.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/multipart/node_reader.h"
#include "tests/multipart/part.h"
#include "tests/support/corpora.h"

namespace stowra_test {
namespace {

using testing::ElementsAreArray;

// How multiparty differs from the corpus. The library never builds such bodies.
struct Difference {
  std::string error;  // multiparty's, if it rejects the body
  std::size_t parts;  // that it finds
  const char* reason;
};
const std::map<std::string, Difference> kDifferences = {
    {"CRLF_in_header",
     {"", 1, "takes a line without a colon as the end of the headers, so the part has no name"}},
    {"almost_match_boundary_without_final_hyphen",
     {"Expected HYPHEN Received 81", 0,
      "a line of the data begins with the boundary, which RFC 2046, 5.1.1 forbids"}},
    {"bad_initial_boundary",
     {"", 0, "skips the text before the first boundary as a preamble (RFC 2046, 5.1.1)"}},
    {"header_with_number",
     {"Expected alphabetic character, received 49", 0,
      "allows only letters and hyphens in the name of a header"}},
    {"quoted_printable_encoding",
     {"unknown transfer-encoding: quoted-printable", 0,
      "decodes only base64, since RFC 7578, 4.7 deprecates transfer encodings"}},
    {"single_field_blocks",
     {"stream ended unexpectedly", 0,
      "the corpus says that the boundary is --boundary, but the body uses boundary"}}};

// Removes what the corpus does not state: whole headers, and the type of some parts. A part without
// Content-Type is text/plain (RFC 7578, 4.4).
std::vector<Part> AsCorpusTells(std::vector<Part> parts, const std::vector<Part>& expected) {
  for (std::size_t i = 0; i < parts.size(); ++i) {
    parts[i].disposition.reset();
    const bool is_told = i < expected.size() && expected[i].type.has_value();
    parts[i].type = is_told ? std::optional(parts[i].type.value_or("text/plain")) : std::nullopt;
  }
  return parts;
}

void ExpectDifference(const Reading& reading, const Difference& difference) {
  SCOPED_TRACE(difference.reason);
  EXPECT_EQ(reading.error, difference.error);
  EXPECT_EQ(reading.parts.size(), difference.parts);
}

void ExpectAgreement(const Reading& reading, const Reading& expected) {
  if (!expected.error.empty()) {
    EXPECT_NE(reading.error, "") << expected.error;
    return;
  }
  EXPECT_EQ(reading.error, "");
  EXPECT_THAT(AsCorpusTells(reading.parts, expected.parts), ElementsAreArray(expected.parts));
}

TEST(MultipartCorpusTest, MultipartyFindsExpectedParts) {
  SKIP_WITHOUT_CORPUS(folder, "multipart");
  SKIP_WITHOUT_NODE();
  std::vector<std::string> cases;
  for (const std::filesystem::path& file : FilesIn(folder / "http")) {
    if (file.extension() == ".yaml") cases.push_back(file.string());
  }
  ASSERT_EQ(cases.size(), 30U);

  NodeProgram expectations("read_expectations.mjs", cases);
  NodeReader reader;
  std::size_t differences = 0;
  for (const std::filesystem::path file : cases) {
    SCOPED_TRACE(file.stem().string());
    const std::string boundary = expectations.ReadText();
    const Reading expected = Decode(expectations.ReadText());
    const Reading reading =
        reader.Read("multipart/form-data; boundary=" + boundary,
                    ReadFile(std::filesystem::path(file).replace_extension(".http")));
    const auto known = kDifferences.find(file.stem().string());
    if (known == kDifferences.end()) {
      ExpectAgreement(reading, expected);
    } else {
      ExpectDifference(reading, known->second);
      ++differences;
    }
  }
  EXPECT_EQ(differences, kDifferences.size());
}

TEST(MultipartyTest, UndoesBrowserEscapesInFileNames) {
  SKIP_WITHOUT_NODE();
  const std::vector<std::pair<std::string, std::string>> names = {
      {"chair.qmf", "chair.qmf"},
      {"12%22 chair.qmf", "12\" chair.qmf"},
      {"&#8364;.qmf", "\xE2\x82\xAC.qmf"},
      {"C:\\models\\chair.qmf", "chair.qmf"}};
  NodeReader reader;
  for (const auto& [written, read] : names) {
    EXPECT_EQ(IsRewrittenByMultiparty(written), written != read);
    const Reading reading =
        reader.Read("multipart/form-data; boundary=b",
                    "--b\r\nContent-Disposition: form-data; name=\"binary\"; filename=\"" +
                        written + "\"\r\n\r\n\r\n--b--\r\n");
    ASSERT_EQ(reading.parts.size(), 1U) << reading.error;
    EXPECT_EQ(reading.parts[0].file_name, read);
  }
}

}  // namespace
}  // namespace stowra_test
