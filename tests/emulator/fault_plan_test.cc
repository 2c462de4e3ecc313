// SPDX-License-Identifier: MIT
#include "emulator/fault_plan.h"

#include <algorithm>

#include "tests/emulator/raw_client.h"

namespace stowra_emulator {
namespace {

const std::vector<std::string> kRoutes = {"/update", "/search"};

FaultRule Rule(const std::string& text) { return ParseFaultRule(text, {}); }

void ExpectRefusal(const std::string& text, const std::string& reason) {
  EXPECT_THAT([&text] { ParseFaultRule(text, kRoutes); },
              ThrowsMessage<std::invalid_argument>(HasSubstr(reason)))
      << text;
}

std::vector<int> StatusesOf(FaultPlan& plan, const std::string& path, int requests) {
  std::vector<int> statuses;
  for (int i = 0; i < requests; ++i) statuses.push_back(plan.Draw(path).status);
  return statuses;
}

TEST(FaultRuleTest, ReadsRouteFaultAndPercentage) {
  const FaultRule rule = ParseFaultRule("/update=status:503@25", kRoutes);
  EXPECT_EQ(rule.route, "/update");
  EXPECT_EQ(rule.fault.kind, Fault::Kind::kStatus);
  EXPECT_EQ(rule.fault.status, 503);
  EXPECT_EQ(rule.percent, 25);
  EXPECT_EQ(rule.ToString(), "/update=status:503@25");
  EXPECT_EQ(ParseFaultRule("*=drip", kRoutes).ToString(), "*=drip");
  EXPECT_EQ(ParseFaultRule("/search=reset@1", kRoutes).percent, 1);
  EXPECT_EQ(ParseFaultRule("/search=reset@100", kRoutes).percent, 100);
}

TEST(FaultRuleTest, RefusalListsWhatExists) {
  ExpectRefusal("/nope=reset", "'/nope'");
  ExpectRefusal("/nope=reset", "*, /update, /sea");
  for (const char* text : {"/update=bogus", "/update=", "/update=status", "/update=@50"}) {
    ExpectRefusal(text, "status:CODE, stall:SECONDS");
  }
  for (const char* text : {"/update", "=reset", ""}) ExpectRefusal(text, "ROUTE=KIND");
  for (const char* text : {"@", "@0", "@101", "@x", "@5%", "@5@5"}) {
    ExpectRefusal(std::string("/update=reset") + text, "from @1 to @100");
  }
}

TEST(FaultRuleTest, AnyPathIsARouteWhereNoneAreListed) {
  EXPECT_EQ(ParseFaultRule("/any/path=reset", {}).route, "/any/path");
  EXPECT_THROW(ParseFaultRule("any=reset", {}), std::invalid_argument);
}

TEST(FaultPlanTest, MeetsOnlyItsRoute) {
  FaultPlan plan(1);
  plan.Add(Rule("/update=status:503"));
  EXPECT_EQ(plan.Draw("/update").status, 503);
  EXPECT_EQ(plan.Draw("/search").kind, Fault::Kind::kNone);
  EXPECT_EQ(plan.Draw("/update/").kind, Fault::Kind::kNone);
}

TEST(FaultPlanTest, FirstRuleThatStrikesDecides) {
  FaultPlan plan(1);
  plan.Add(Rule("/update=status:501"));
  plan.Add(Rule("*=status:502"));
  EXPECT_EQ(plan.Draw("/update").status, 501);
  EXPECT_EQ(plan.Draw("/search").status, 502);
}

TEST(FaultPlanTest, PercentageMeetsAboutThatMany) {
  FaultPlan plan(1);
  plan.Add(Rule("/update=status:503@25"));
  const std::vector<int> statuses = StatusesOf(plan, "/update", 10000);
  EXPECT_NEAR(static_cast<double>(std::count(statuses.begin(), statuses.end(), 503)), 2500, 199);
}

TEST(FaultPlanTest, SeedRepeatsARun) {
  FaultPlan first(7);
  FaultPlan second(7);
  FaultPlan other(8);
  for (FaultPlan* plan : {&first, &second, &other}) plan->Add(Rule("/update=status:503@50"));
  StatusesOf(second, "/search", 3);  // Requests to other routes change nothing.
  const std::vector<int> statuses = StatusesOf(first, "/update", 64);
  EXPECT_EQ(StatusesOf(second, "/update", 64), statuses);
  EXPECT_NE(StatusesOf(other, "/update", 64), statuses);
}

TEST(FaultPlanTest, SwitchesAndRemovesRules) {
  FaultPlan plan(1);
  plan.Add(Rule("/update=status:501"));
  plan.Add(Rule("/update=status:502"));
  const int first = plan.Entries().at(0).id;
  plan.Switch(first, false);
  EXPECT_FALSE(plan.Entries().at(0).is_on);
  EXPECT_EQ(plan.Draw("/update").status, 502);
  plan.Switch(first, true);
  EXPECT_EQ(plan.Draw("/update").status, 501);
  plan.Remove(first);
  ASSERT_EQ(plan.Entries().size(), 1u);
  EXPECT_EQ(plan.Draw("/update").status, 502);
  plan.Switch(first, false);
  plan.Remove(first);
  EXPECT_EQ(plan.Draw("/update").status, 502);
}

TEST(FaultPlanTest, EmulatorPlaysRulesForUnchangedRequests) {
  EmulatorOptions options;
  options.faults = {Rule("/update=status:503"), Rule("/user-info=status:501"),
                    Rule("*=status:418")};
  const Emulator emulator(options);
  GetFrom(emulator.url(), "/update", 503);
  GetFrom(emulator.url(), "/user-info", 501);
  GetFrom(emulator.url(), "/search?q=chair", 418);
  GetFrom(emulator.url(), "/update?fault=status:502", 502);  // the request's own fault
}

}  // namespace
}  // namespace stowra_emulator
