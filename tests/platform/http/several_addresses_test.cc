// SPDX-License-Identifier: MIT
// Names with several addresses, of which some do not answer.
//
// A child program makes the transfers. It sees its own /etc/hosts, which gives the addresses.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <optional>
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

  // Lets a child program download from a name with these addresses. Expects what it prints, and
  // that it takes a time between these parts of the timeout.
  void ExpectOutcome(const std::vector<std::string>& addresses, const std::string& expected,
                     double least, double most) const {
    WriteHosts(addresses);
    const auto output = OutputOf(
        InOwnWorld(STOWRA_ADDRESS_CHILD " " + std::string(GetParam()) + " http://" + kName + ":" +
                   std::to_string(server_.port()) + "/ " + std::to_string(kTimeout)));
    ASSERT_TRUE(output) << "the child program has failed";
    const std::size_t space = output->rfind(' ');
    ASSERT_NE(space, std::string::npos) << *output;
    EXPECT_EQ(output->substr(0, space), expected);
    const double time = std::stod(output->substr(space)) / (kTimeout * 1000);
    EXPECT_GT(time, least);
    EXPECT_LT(time, most);
  }

  const TemporaryFolder folder_;
  const std::string hosts_ = folder_.path() / "hosts";
  const RawServer server_{Always(Response(200, "hello")), {nullptr, true, 0, true, kThird}};
  const FullListener dead_{kFirst, server_.port()};
  const FullListener dead_too_{kSecond, server_.port()};
};

INSTANTIATE_TEST_SUITE_P(Ways, SeveralAddressesTest, ::testing::Values("blocking", "background"),
                         [](const auto& test) { return test.param; });

// The first address gets half of the time.
TEST_P(SeveralAddressesTest, ConnectsToTheSecondIfTheFirstIsDead) {
  ExpectOutcome({kFirst, kThird}, "hello", 0.4, 1);
}

TEST_P(SeveralAddressesTest, ConnectsToTheThirdIfTwoAreDead) {
  ExpectOutcome({kFirst, kSecond, kThird}, "hello", 0.6, 1);
}

TEST_P(SeveralAddressesTest, IsSilentIfAllAreDead) {
  const int reason = static_cast<int>(TransferError::kSilent);
  ExpectOutcome({kFirst, kSecond}, "failed " + std::to_string(reason), 0.9, 1.5);
}

TEST_P(SeveralAddressesTest, ConnectsAtOnceIfTheFirstAnswers) {
  ExpectOutcome({kThird, kFirst}, "hello", -1, 0.4);
}

}  // namespace
}  // namespace stowra_test
