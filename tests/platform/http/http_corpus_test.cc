// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <openssl/sha.h>

#include <array>
#include <cstdio>
#include <map>
#include <nlohmann/json.hpp>
#include <string>

#include "tests/platform/http/internet_data_test_peer.h"
#include "tests/platform/http/transport_fixture.h"
#include "tests/support/corpora.h"
#include "tests/support/raw_server.h"

namespace stowra_test {
namespace {

struct Difference {
  const char* outcome;
  const char* why;
};

// Responses with another outcome than libcurl gives by itself. The known outcomes were taken
// without gzip, which the transport decodes. All others are failures that libcurl accepts.
const std::map<std::string, Difference> kDifferences = {
    {"1493.http", {"failed", "the only transfer encoding taken is chunked, alone"}},
    {"1494.http", {"failed", "the only transfer encoding taken is chunked, alone"}},
    {"1513.http", {"failed", "the connection closes inside the headers"}},
    {"1539.http", {"failed", "the connection closes inside the headers"}},
    {"1546.http", {"failed", "the only transfer encoding taken is chunked, alone"}},
    {"1591.http", {"failed", "the connection closes inside the headers"}},
    {"1618.http", {"failed", "the content encoding is br, which was not offered"}},
    {"1704.http", {"failed", "101 answers a request to switch protocols, which was not made"}},
    {"220.http",
     {"200, 24 bytes, c639a5ebc5024dcc3595e2f06c030bd44433a5063f08e1492d12a6fe753b26b3",
      "the content encoding is gzip, and decoded"}},
    {"221.http", {"failed", "the content encoding is gzip, and the stream is no gzip"}},
    {"2305.http",
     {"200, 14 bytes, c98c24b677eff44860afea6f493bbaec5bb1c4cbb209c6fc2bbb47f66ff2ad31",
      "the content encoding is gzip of two members, and both are decoded"}},
    {"316.http", {"failed", "the content encoding is br, which was not offered"}},
    {"328.http", {"failed", "the content encoding is none, which does not exist"}},
    {"393.http", {"failed", "the length is beyond all numbers, so the body cannot be whole"}},
    {"771.http", {"failed", "the response has two different lengths"}},
};

std::string Sha256(const InternetData& transport) {
  std::array<unsigned char, SHA256_DIGEST_LENGTH> digest;
  SHA256(transport.received_data(), transport.received_data_length(), digest.data());
  std::string text;
  for (const unsigned char byte : digest) {
    std::array<char, 3> hex;
    std::snprintf(hex.data(), hex.size(), "%02x", byte);
    text += hex.data();
  }
  return text;
}

// "failed", or the comparable part of the response.
std::string Outcome(const InternetData& transport, bool received) {
  if (!received) return "failed";
  return std::to_string(transport.status_code()) + ", " +
         std::to_string(transport.received_data_length()) + " bytes, " + Sha256(transport);
}

std::string Expected(const nlohmann::json& entry) {
  if (entry.at("curlcode") != 0) return "failed";
  return std::to_string(entry.at("status").get<int>()) + ", " +
         std::to_string(entry.at("body_length").get<int>()) + " bytes, " +
         entry.at("body_sha256").get<std::string>();
}

class HttpCorpusTest : public TransportTest {};

TEST_F(HttpCorpusTest, EveryResponseHasTheKnownOutcome) {
  SKIP_WITHOUT_CORPUS(folder, "http-responses");
  const auto expected = nlohmann::json::parse(ReadFile(folder / "expected.json"));
  const auto files = FilesIn(folder / "responses");
  ASSERT_EQ(files.size(), 231U);
  ASSERT_EQ(expected.size(), files.size());
  for (const auto& difference : kDifferences) EXPECT_TRUE(expected.contains(difference.first));
  // Some responses announce more than they send, and only the server ends them.
  SetInactivityTimeout(10);

  for (const auto& file : files) {
    const std::string name = file.filename().string();
    // Each file has its own server. Extra bytes on a closing connection must not answer the next
    // request.
    const RawServer server([&file](const RawRequest&, RawConnection& connection) {
      connection.Write(ReadFile(file));
      connection.Close();
    });
    InternetData transport(Text(server.Url("/" + name)));
    ovrant::internet::InternetDataTestPeer::StopFollowingRedirects(transport);
    const bool received = transport.Download();
    const std::string known = Expected(expected.at(name));
    const auto difference = kDifferences.find(name);
    if (difference == kDifferences.end()) {
      EXPECT_EQ(Outcome(transport, received), known) << name;
    } else {
      EXPECT_EQ(Outcome(transport, received), difference->second.outcome)
          << name << ": " << difference->second.why;
      EXPECT_NE(difference->second.outcome, known) << name << " is no difference";
    }
  }
}

}  // namespace
}  // namespace stowra_test
