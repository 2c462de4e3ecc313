// SPDX-License-Identifier: MIT
// Names with several addresses, of which some do not answer.
//
// A child program makes the transfers. It sees its own /etc/hosts, which gives the addresses.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "common_stowraapi/platform/transfer_types.h"
#include "tests/support/full_listener.h"
#include "tests/support/raw_server.h"
#include "tests/support/temporary_folder.h"

namespace stowra_test {
namespace {

using ovrant::internet::TransferError;

constexpr int kTimeout = 4;  // seconds

// getaddrinfo keeps the order of these, because all have as many leading bits in common with the
// machine's own address (RFC 6724, 6).
constexpr char kFirst[] = "127.0.0.4";
constexpr char kSecond[] = "127.0.0.5";
constexpr char kThird[] = "127.0.0.6";

constexpr char kName[] = "several.example";

// What the shell command prints. Nothing when it fails.
std::optional<std::string> OutputOf(const std::string& command) {
  FILE* const pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return std::nullopt;
  std::string output;
  for (int c = 0; (c = std::fgetc(pipe)) != EOF;) output += static_cast<char>(c);
  return pclose(pipe) == 0 ? std::optional(output) : std::nullopt;
}

struct Outcome {
  std::string body;  // or "failed"
  int reason = 0;
  int milliseconds = 0;
};

class SeveralAddressesTest : public ::testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    WriteHosts({kThird});
    if (!OutputOf(InOwnWorld("getent hosts " + std::string(kName)) + " 2>/dev/null")) {
      GTEST_SKIP() << "this system allows no mount namespace with its own /etc/hosts";
    }
  }

  void WriteHosts(const std::vector<std::string>& addresses) const {
    std::ofstream file(hosts_, std::ios::trunc);
    for (const std::string& address : addresses) file << address << " " << kName << "\n";
  }

  // A command that runs `command` with its own /etc/hosts.
  std::string InOwnWorld(const std::string& command) const {
    return "unshare --map-root-user --mount sh -c 'mount --bind " + hosts_ + " /etc/hosts && " +
           command + "'";
  }

  // Lets a child program download from `port` of a name with these addresses.
  Outcome Download(const std::vector<std::string>& addresses, int port) const {
    WriteHosts(addresses);
    const auto output =
        OutputOf(InOwnWorld(STOWRA_ADDRESS_CHILD " " + std::string(GetParam()) + " http://" +
                            kName + ":" + std::to_string(port) + "/ " + std::to_string(kTimeout)));
    Outcome outcome;
    EXPECT_TRUE(output) << "the child program has failed";
    std::istringstream words(output.value_or(""));
    words >> outcome.body;
    if (outcome.body == "failed") words >> outcome.reason;
    words >> outcome.milliseconds;
    EXPECT_TRUE(words) << output.value_or("");
    return outcome;
  }

  const TemporaryFolder folder_;
  const std::string hosts_ = folder_.path() / "hosts";
  const RawServer server_{Always(Response(200, "hello")), {nullptr, true, 0, true, kThird}};
};

INSTANTIATE_TEST_SUITE_P(Ways, SeveralAddressesTest, ::testing::Values("blocking", "background"),
                         [](const auto& test) { return test.param; });

TEST_P(SeveralAddressesTest, ConnectsToTheSecondIfTheFirstIsDead) {
  const FullListener dead(kFirst, server_.port());
  const Outcome outcome = Download({kFirst, kThird}, server_.port());
  EXPECT_EQ(outcome.body, "hello");
  // The first address gets half of the time.
  EXPECT_GT(outcome.milliseconds, kTimeout * 400);
  EXPECT_LT(outcome.milliseconds, kTimeout * 1000);
}

TEST_P(SeveralAddressesTest, ConnectsToTheThirdIfTwoAreDead) {
  const FullListener dead(kFirst, server_.port());
  const FullListener dead_too(kSecond, server_.port());
  const Outcome outcome = Download({kFirst, kSecond, kThird}, server_.port());
  EXPECT_EQ(outcome.body, "hello");
  EXPECT_GT(outcome.milliseconds, kTimeout * 600);
  EXPECT_LT(outcome.milliseconds, kTimeout * 1000);
}

TEST_P(SeveralAddressesTest, IsSilentIfAllAreDead) {
  const FullListener dead(kFirst, server_.port());
  const FullListener dead_too(kSecond, server_.port());
  const Outcome outcome = Download({kFirst, kSecond}, server_.port());
  EXPECT_EQ(outcome.body, "failed");
  EXPECT_EQ(outcome.reason, static_cast<int>(TransferError::kSilent));
  EXPECT_GT(outcome.milliseconds, kTimeout * 900);
  EXPECT_LT(outcome.milliseconds, kTimeout * 1500);
}

TEST_P(SeveralAddressesTest, ConnectsAtOnceIfTheFirstAnswers) {
  const FullListener dead(kFirst, server_.port());
  const Outcome outcome = Download({kThird, kFirst}, server_.port());
  EXPECT_EQ(outcome.body, "hello");
  EXPECT_LT(outcome.milliseconds, kTimeout * 400);
}

}  // namespace
}  // namespace stowra_test
