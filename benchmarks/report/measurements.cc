// SPDX-License-Identifier: MIT
#include "benchmarks/report/measurements.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>
#include <string_view>

namespace stowra_bench {
namespace {

using nlohmann::json;

double NanosecondsIn(const std::string& unit) {
  if (unit == "ns") return 1;
  if (unit == "us") return 1e3;
  if (unit == "ms") return 1e6;
  if (unit == "s") return 1e9;
  throw std::runtime_error("unknown time unit: " + unit);
}

// Counters are the numbers that are not part of every run's description.
bool IsCounter(const json::const_iterator& member) {
  static const std::array kDescription = {"family_index", "per_family_instance_index",
                                          "repetitions",  "repetition_index",
                                          "threads",      "iterations",
                                          "real_time",    "cpu_time"};
  return member->is_number() &&
         std::find(kDescription.begin(), kDescription.end(), member.key()) == kDescription.end();
}

}  // namespace

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const std::size_t middle = values.size() / 2;
  if (values.size() % 2 == 1) return values[middle];
  return (values[middle - 1] + values[middle]) / 2;
}

std::string PlainName(const std::string& name) {
  std::string plain;
  std::istringstream parts(name);
  for (std::string part; std::getline(parts, part, '/');) {
    const bool says_how = part == "real_time" || part == "process_time" || part == "manual_time" ||
                          part.find(':') != std::string::npos;
    if (!says_how) plain += plain.empty() ? part : '/' + part;
  }
  return plain;
}

void Measurements::AddBenchmarks(std::istream& output) {
  const json document = json::parse(output);
  if (date_.empty()) {
    date_ = document.at("context").at("date").get<std::string>();
    processors_ = document.at("context").at("num_cpus").get<int>();
  }
  for (const json& run : document.at("benchmarks")) {
    if (run.value("run_type", "iteration") != "iteration") continue;
    const std::string name = PlainName(run.value("run_name", run.value("name", "")));
    if (run.value("error_occurred", false)) {
      failures_[name] = run.value("error_message", "");
      continue;
    }
    const double time = run.at("real_time").get<double>();
    samples_[{name, "time"}].push_back(time * NanosecondsIn(run.value("time_unit", "ns")));
    for (auto member = run.begin(); member != run.end(); ++member) {
      if (!IsCounter(member)) continue;
      samples_[{name, "counter:" + member.key()}].push_back(member->get<double>());
    }
  }
}

void Measurements::AddCounts(std::istream& lines) {
  for (std::string line; std::getline(lines, line);) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream fields(line);
    std::string name;
    double count = 0;
    if (!(fields >> name >> count) || !(fields >> std::ws).eof()) {
      throw std::runtime_error(fmt::format("not a case and its count: {}", line));
    }
    samples_[{name, "instructions"}] = {count};
  }
}

std::optional<Measurement> Measurements::Find(const std::string& name,
                                              const std::string& measure) const {
  const auto found = samples_.find({name, measure});
  if (found == samples_.end() || failures_.count(name) > 0) return std::nullopt;
  return Measurement{Median(found->second), found->second.size()};
}

void Measurements::ForEach(const std::function<void(const std::string&, const std::string&,
                                                    const Measurement&)>& visit) const {
  for (const auto& [key, samples] : samples_) {
    visit(key.first, key.second, {Median(samples), samples.size()});
  }
}

}  // namespace stowra_bench
