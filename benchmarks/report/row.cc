// SPDX-License-Identifier: MIT
#include "benchmarks/report/row.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>
#include <set>
#include <stdexcept>

namespace stowra_bench {
namespace {

using nlohmann::json;

constexpr const char* kCounter = "counter:";

void Require(bool condition, const std::string& id, const char* problem) {
  if (!condition) throw std::runtime_error(fmt::format("row {}: {}", id, problem));
}

bool IsMeasure(const std::string& text) {
  return text == "time" || text == "instructions" || text.rfind(kCounter, 0) == 0;
}

Row ReadRow(const json& member) {
  Row row;
  row.id = member.value("row", "");
  row.what = member.value("what", "");
  row.against_text = member.value("against", "");
  const std::string group = member.value("group", "limit");
  row.against = group == "peer" ? Row::Against::kPeer : Row::Against::kLimit;
  row.ours = member.value("ours", "");
  row.other = member.value("other", "");
  row.measure = member.value("measure", "");
  row.unit = member.value("unit", "");
  row.is_times_as_fast = member.contains("times_as_fast");
  row.bound = member.value(row.is_times_as_fast ? "times_as_fast" : "at_most", 0.0);
  row.because = member.value("because", "");

  Require(!row.id.empty() && !row.what.empty() && !row.ours.empty(), row.id,
          "row, what and ours are required");
  Require(group == "limit" || group == "peer", row.id, "group must be limit or peer");
  Require(IsMeasure(row.measure), row.id, "measure must be time, instructions or counter:NAME");
  Require(member.contains("at_most") != row.is_times_as_fast, row.id,
          "either at_most or times_as_fast is required");
  Require(row.bound > 0, row.id, "the bound must be positive");
  Require(!row.other.empty() || (!row.unit.empty() && !row.is_times_as_fast), row.id,
          "a row without other needs unit and at_most");
  return row;
}

std::vector<Row> ReadList(const json& list, std::set<std::string>& ids) {
  std::vector<Row> rows;
  for (const json& member : list) {
    rows.push_back(ReadRow(member));
    Require(ids.insert(rows.back().id).second, rows.back().id, "listed twice");
  }
  return rows;
}

}  // namespace

Rows ReadRows(std::istream& file) {
  const json document = json::parse(file);
  std::set<std::string> ids;
  Rows rows;
  rows.comparisons = ReadList(document.at("rows"), ids);
  rows.growth = ReadList(document.at("growth"), ids);
  return rows;
}

}  // namespace stowra_bench
