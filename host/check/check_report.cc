// SPDX-License-Identifier: MIT
#include "host/check/check_report.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>

#include "host/json_values.h"
#include "host/printable.h"

namespace stowra {

using ovrant::json::Document;
using ovrant::json::Value;
using ovrant::utils::ovrant_ustring;

namespace {

using Values = std::vector<std::pair<std::string, std::string>>;

bool HasLoss(const std::vector<Finding>& findings) {
  return std::any_of(findings.begin(), findings.end(),
                     [](const Finding& finding) { return finding.is_loss; });
}

std::string Line(const std::string& text) { return Printable(text) + "\n"; }

std::string ToText(const std::vector<Finding>& findings, const Values& values) {
  std::string text;
  for (const auto& [name, value] : values) text += Line(fmt::format("  {}: {}", name, value));
  for (const Finding& finding : findings) {
    text += Line((finding.is_loss ? "  ! " : "  - ") + finding.text);
  }
  return text;
}

std::string ToText(const CheckedPart& part) {
  std::string text =
      Line(fmt::format("{} {}: {}", part.name, part.is_kept ? "kept" : "dropped", part.title));
  text += ToText(part.findings, part.values);
  for (std::size_t i = 0; i < part.renditions.size(); ++i) {
    const CheckedRendition& rendition = part.renditions[i];
    text +=
        Line(fmt::format("  {} rendition {}, {}: {}", rendition.is_chosen ? '*' : '-', i + 1,
                         rendition.rtyp.empty() ? "without rtyp" : rendition.rtyp, rendition.why));
  }
  return text;
}

Value MakeString(Document& document, const std::string& text) {
  return MakeText(document, ovrant_ustring(text));
}

Value MakeFindings(Document& document, const std::vector<Finding>& findings) {
  Value array = MakeArray(document);
  for (const Finding& finding : findings) {
    Value object = MakeObject(document);
    object.AddMember("text", MakeString(document, finding.text));
    object.AddMember("loss", MakeBool(document, finding.is_loss));
    array.PushBack(object);
  }
  return array;
}

Value MakeValues(Document& document, const Values& values) {
  Value object = MakeObject(document);
  for (const auto& [name, value] : values) {
    object.AddMember(ovrant_ustring(name), MakeString(document, value));
  }
  return object;
}

Value MakeRenditions(Document& document, const std::vector<CheckedRendition>& renditions) {
  Value array = MakeArray(document);
  for (const CheckedRendition& rendition : renditions) {
    Value object = MakeObject(document);
    object.AddMember("url", MakeString(document, rendition.url));
    object.AddMember("rtyp", MakeString(document, rendition.rtyp));
    object.AddMember("chosen", MakeBool(document, rendition.is_chosen));
    object.AddMember("why", MakeString(document, rendition.why));
    array.PushBack(object);
  }
  return array;
}

Value MakePart(Document& document, const CheckedPart& part) {
  Value object = MakeObject(document);
  object.AddMember("name", MakeString(document, part.name));
  object.AddMember("title", MakeString(document, part.title));
  object.AddMember("kept", MakeBool(document, part.is_kept));
  object.AddMember("findings", MakeFindings(document, part.findings));
  object.AddMember("values", MakeValues(document, part.values));
  object.AddMember("renditions", MakeRenditions(document, part.renditions));
  return object;
}

}  // namespace

bool IsWhole(const CheckReport& report) {
  return report.is_usable && !HasLoss(report.findings) &&
         std::all_of(report.parts.begin(), report.parts.end(), [](const CheckedPart& part) {
           return part.is_kept && !HasLoss(part.findings);
         });
}

std::string ToText(const CheckReport& report) {
  const auto kept = std::count_if(report.parts.begin(), report.parts.end(),
                                  [](const CheckedPart& part) { return part.is_kept; });
  std::string text = report.kind + (report.is_usable ? ": usable" : ": not usable");
  if (!report.parts.empty()) {
    text += fmt::format(", {} of {} parts kept", kept, report.parts.size());
  }
  text += "\n" + ToText(report.findings, report.values);
  for (const CheckedPart& part : report.parts) text += ToText(part);
  return text;
}

std::string ToJson(const CheckReport& report) {
  Document document;
  document.AddMember("kind", MakeString(document, report.kind));
  document.AddMember("usable", MakeBool(document, report.is_usable));
  document.AddMember("whole", MakeBool(document, IsWhole(report)));
  document.AddMember("findings", MakeFindings(document, report.findings));
  document.AddMember("values", MakeValues(document, report.values));
  Value parts = MakeArray(document);
  for (const CheckedPart& part : report.parts) parts.PushBack(MakePart(document, part));
  document.AddMember("parts", parts);
  return ToLine(document);
}

}  // namespace stowra
