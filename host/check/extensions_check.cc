// SPDX-License-Identifier: MIT
#include <fmt/format.h>

#include <map>
#include <string>

#include "common_stowraapi/json/document.h"
#include "host/check/json_member.h"
#include "host/check/service_checks.h"
#include "host/response_check.h"

namespace stowra {

using ovrant::json::Document;
using ovrant::json::Value;
using ovrant::utils::ovrant_ustring;

namespace {

std::string TextIn(const Value& object, const char* name, std::vector<Finding>& findings) {
  const bool found = HasTyped(object, name, JsonType::kString, kEmptyText, findings);
  return found ? object[name].GetString().utf8() : std::string();
}

std::string FlagIn(const Value& object, const char* name, std::vector<Finding>& findings) {
  const bool found = HasTyped(object, name, JsonType::kBool, "false", findings);
  return found && object[name].GetBool() ? "true" : "false";
}

std::string VersionIn(const Value& object, std::vector<Finding>& findings) {
  const bool found = HasTyped(object, "version", JsonType::kString, "0", findings);
  return fmt::format("{}", found ? object["version"].GetString().to_float() : 0.0F);
}

// Only the number 1 enables.
std::string EnabledIn(const Value& object, std::vector<Finding>& findings) {
  if (!HasTyped(object, "enabled", JsonType::kInt, "false", findings)) return "false";
  const int number = object["enabled"].GetInt();
  if (number != 0 && number != 1) {
    findings.push_back({fmt::format("enabled is {}, neither 0 nor 1; false kept", number)});
  }
  return number == 1 ? "true" : "false";
}

CheckedPart CheckElement(const Value& element) {
  CheckedPart part;
  if (!element.IsObject()) {
    part.findings.push_back({fmt::format("it is {}, not an object", TypeOf(element))});
    return part;
  }
  part.is_kept = true;
  part.title = TextIn(element, "id", part.findings);
  part.values = {{"version", VersionIn(element, part.findings)},
                 {"file_url", TextIn(element, "file_url", part.findings)},
                 {"update", FlagIn(element, "update", part.findings)},
                 {"remote_kill", FlagIn(element, "remote_kill", part.findings)},
                 {"version_uuid", TextIn(element, "version_uuid", part.findings)},
                 {"enabled", EnabledIn(element, part.findings)}};
  return part;
}

// Of the elements with one id the last one is kept.
void DropReplaced(CheckReport& report) {
  std::map<std::string, std::size_t> last;
  for (std::size_t i = 0; i < report.parts.size(); ++i) {
    CheckedPart& part = report.parts[i];
    if (!part.is_kept) continue;
    const auto [entry, is_new] = last.emplace(part.title, i);
    if (is_new) continue;
    CheckedPart& replaced = report.parts[entry->second];
    replaced.is_kept = false;
    replaced.findings.push_back({fmt::format("{} has the same id and is kept", part.name)});
    entry->second = i;
  }
}

}  // namespace

CheckReport CheckExtensions(const std::string& text) {
  CheckReport report;
  report.kind = "extensions";
  Document document;
  std::string why;
  if (!LoadResponse(ovrant_ustring(text), document, why)) {
    report.findings.push_back({why});
    return report;
  }
  const Value& extensions = document["extensions"];
  if (!extensions.IsArray()) {
    const bool is_there = document.HasMember("extensions");
    report.findings.push_back(
        {is_there ? fmt::format("extensions is {}, not an array", TypeOf(extensions))
                  : "it has no extensions"});
    return report;
  }
  report.is_usable = true;
  for (unsigned int i = 0; i < extensions.Size(); ++i) {
    report.parts.push_back(CheckElement(extensions[i]));
    report.parts.back().name = fmt::format("element {}", i + 1);
  }
  DropReplaced(report);
  return report;
}

}  // namespace stowra
