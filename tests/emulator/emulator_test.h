// SPDX-License-Identifier: MIT
// Shared by the tests of the emulator.

#ifndef TESTS_EMULATOR_EMULATOR_TEST_H_
#define TESTS_EMULATOR_EMULATOR_TEST_H_

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "emulator/emulator.h"
#include "tests/support/event.h"

namespace stowra_emulator {

using std::chrono::milliseconds;
using stowra_test::kPatience;

// A body that asks for one extension.
inline constexpr char kExtensions[] = R"({"extensions":[{"id":"roof-tools"}]})";

// The matchers of these tests.
using testing::AllOf;
using testing::AnyOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;
using testing::Pair;
using testing::SizeIs;
using testing::StartsWith;
using testing::ThrowsMessage;

}  // namespace stowra_emulator

#endif  // TESTS_EMULATOR_EMULATOR_TEST_H_
