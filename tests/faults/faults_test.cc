// SPDX-License-Identifier: MIT
// Every network fault with every call that makes a transfer. Each row checks the outcome, the time
// and what stays in the process.
//
// Run as one program, without ctest, it prints the table of all rows:
//   build/release/tests/faults/faults_test

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <ostream>
#include <string>
#include <vector>

#include "tests/faults/ask.h"
#include "tests/faults/fault.h"
#include "tests/faults/fault_table.h"
#include "tests/platform/http/transport_fixture.h"

namespace stowra_test {
namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<float>;

// Long enough that a busy machine does not cause a timeout.
constexpr Seconds kShortTimeout(2);

// The tolerance of a transfer's end.
constexpr Seconds kEarly(0.01F);

struct Case {
  Fault fault;
  Way way;
};

void PrintTo(const Case& item, std::ostream* out) {
  *out << item.fault.name << " " << NameOf(item.way);
}

std::vector<Case> AllCases() {
  std::vector<Case> cases;
  for (auto* const faults : {ConnectionFaults, ReplyFaults, RedirectFaults, TlsFaults}) {
    for (const Fault& fault : faults()) {
      for (const Way way : fault.ways) cases.push_back({fault, way});
    }
  }
  return cases;
}

Seconds TimeoutFor(End end) { return end == End::kBefore ? kPatience : kShortTimeout; }

void ExpectTimely(End end, Seconds took) {
  const Seconds timeout = TimeoutFor(end);
  if (end == End::kBefore) {
    EXPECT_LT(took.count(), timeout.count());
  } else {
    EXPECT_GT(took.count(), (timeout - kEarly).count());
  }
  if (end == End::kAt) {
    EXPECT_LT(took.count(), (timeout + kPatience).count());
  }
}

// The download that shares its connections with `way`.
Way DownloadLike(Way way) { return IsBlocking(way) ? Way::kDownload : Way::kDownloadWithDelegate; }

class FaultTest : public TransportTest, public ::testing::WithParamInterface<Case> {};

TEST_P(FaultTest, EndsInItsAnswerAndLeavesNothing) {
  const Fault& fault = GetParam().fault;
  const Way way = GetParam().way;
  const std::string upload(fault.upload_size, 'x');
  Stage stage;
  fault.set(stage);
  stage.defaults.inactivity_timeout = TimeoutFor(fault.end).count();
  InternetData::SetDefaults(stage.defaults);

  const RawServer calm(Always(Response(200, kGoodBody)), kWithoutRecords);

  const auto run = [&](FaultRow& current) {
    if (fault.on_used_connection) {
      ASSERT_EQ(AskForReason(way, stage.Url(kGoodTarget), upload), Received(200, kGoodBody));
    }
    stage.before();
    const auto begin = Clock::now();
    Answer answer = AskForReason(way, stage.Url(), upload);
    const auto took = Clock::now() - begin;
    if (fault.may_lose_status && answer.status == 0) answer.status = fault.answer.status;
    ASSERT_EQ(answer, fault.answer);
    ExpectTimely(fault.end, took);
    stage.after();
    ASSERT_TRUE(stage.WaitUntilQuiet(fault.kept_connections));
    current.answer = TextOf(answer);
    current.longest = std::max<decltype(current.longest)>(current.longest, took);
  };
  const auto settle = [&] {
    ASSERT_EQ(AskForReason(DownloadLike(way), calm.Url(), ""), Received(200, kGoodBody));
  };
  ExpectNothingIsLeft({fault.name, NameOf(way), fault.runs},
                      fault.end == End::kBefore ? kWarmUpRuns : 1, run, settle);
}

INSTANTIATE_TEST_SUITE_P(Faults, FaultTest, ::testing::ValuesIn(AllCases()), [](const auto& test) {
  return std::string(test.param.fault.name) + "_" + NameOf(test.param.way);
});

}  // namespace
}  // namespace stowra_test
