// SPDX-License-Identifier: MIT
#include <cmath>
#include <nlohmann/json.hpp>

#include "benchmarks/report/report.h"

namespace stowra_bench {
namespace {

using nlohmann::ordered_json;

std::string UnitOf(const std::string& measure) {
  return measure == "time" ? "ns" : measure == "instructions" ? "instructions" : "";
}

// Leaves out rates, which only repeat the times.
bool IsKept(const std::string& measure) {
  return measure != "counter:bytes_per_second" && measure != "counter:items_per_second";
}

std::string ContextText(const Report& report) {
  ordered_json context;
  context["date"] = report.measurements.date();
  context["commit"] = report.environment.commit;
  context["processor"] = report.environment.processor;
  context["processors"] = report.measurements.processors();
  context["system"] = report.environment.system;
  context["compiler"] = report.environment.compiler;
  context["flags"] = report.environment.flags;
  for (const auto& [name, version] : report.environment.libraries) {
    context["libraries"][name] = version;
  }
  return context.dump();
}

}  // namespace

std::string SummaryText(const Report& report) {
  std::string text = "{\n\"context\": " + ContextText(report) + ",\n";
  text += "\"measurements\": [";
  const char* separator = "\n";
  report.measurements.ForEach(
      [&](const std::string& name, const std::string& measure, const Measurement& measurement) {
        if (!IsKept(measure)) return;
        ordered_json line;
        line["name"] = name;
        line["measure"] = measure;
        line["median"] = std::round(measurement.median * 100) / 100;
        line["unit"] = UnitOf(measure);
        line["repetitions"] = measurement.repetitions;
        text += separator + line.dump();
        separator = ",\n";
      });
  return text + "\n]\n}\n";
}

}  // namespace stowra_bench
