// SPDX-License-Identifier: MIT
// docs/emulator.md states how much a request may hold.

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <iterator>
#include <string>

#include "emulator/limits.h"

namespace stowra_emulator {
namespace {

constexpr std::uint64_t kKib = 1024;
constexpr std::uint64_t kMib = 1024 * kKib;
constexpr std::uint64_t kGib = 1024 * kMib;

// Expects a table row that begins with these cells. `size` must be a multiple of the unit.
void ExpectRow(const std::string& what, std::uint64_t size, std::uint64_t unit,
               const std::string& unit_name) {
  std::ifstream file(STOWRA_EMULATOR_PAGE);
  const std::string page{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  EXPECT_EQ(size % unit, 0u) << what;
  const std::string limit = std::to_string(size / unit) + " " + unit_name;
  EXPECT_NE(page.find("\n| " + what + " | " + limit + " |"), std::string::npos)
      << what << " is limited to " << limit;
}

TEST(LimitsPageTest, StatesTheLimitsOfRequests) {
  const Limits limits;
  ExpectRow("request line", limits.head_line, kKib, "KiB");
  ExpectRow("a header field", limits.head_line, kKib, "KiB");
  ExpectRow("all header fields", limits.head, kKib, "KiB");
  ExpectRow("body, as sent and once inflated", limits.body, kMib, "MiB");
  ExpectRow("body of `POST /upload`", limits.upload, kGib, "GiB");
  ExpectRow("parts of a form that are no files, together", limits.form_texts, kMib, "MiB");
}

}  // namespace
}  // namespace stowra_emulator
