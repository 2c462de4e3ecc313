// SPDX-License-Identifier: MIT
#include <fmt/format.h>

#include <string>

#include "common_stowraapi/json/document.h"
#include "common_stowraapi/services/update_query.h"
#include "host/check/json_member.h"
#include "host/check/service_checks.h"
#include "host/response_check.h"

namespace stowra {

using ovrant::json::Document;
using ovrant::json::Value;
using ovrant::utils::ovrant_ustring;
using ovrant::webservices::DataFileData;
using ovrant::webservices::MessageData;
using ovrant::webservices::UpdateQuery;

namespace {

void CheckOffer(const Document& document, CheckReport& report) {
  if (!document.HasMember("update")) {
    report.findings.push_back({"it has no update"});
    return;
  }
  for (const char* name : {"current_version", "expire_version"}) {
    std::vector<Finding> findings;
    const Value& offer = document["update"];
    const bool has_text = HasTyped(offer, name, JsonType::kString, kEmptyText, findings);
    if (has_text && offer[name].GetString().empty()) {
      findings.push_back({fmt::format("{} is empty", name)});
    }
    for (const Finding& finding : findings) report.findings.push_back({"update: " + finding.text});
  }
}

void CheckNumber(const Value& object, const char* name, int kept, int initial,
                 std::vector<Finding>& findings) {
  if (!HasTyped(object, name, JsonType::kNumber, std::to_string(initial), findings)) return;
  if (!object[name].IsInt()) {
    findings.push_back({fmt::format("{} is no whole number of 32 bits; {} kept", name, kept)});
  }
}

void CheckMessage(const Document& document, const MessageData& kept, CheckReport& report) {
  if (!document.HasMember("message")) return;
  const Value& message = document["message"];
  const MessageData initial;
  CheckedPart part;
  part.name = "message";
  part.title = kept.title.utf8();
  part.is_kept = message.IsObject();
  if (!part.is_kept) {
    part.findings.push_back({fmt::format("it is {}, not an object", TypeOf(message))});
  }
  CheckNumber(message, "id", kept.id, initial.id, part.findings);
  CheckNumber(message, "max_shows", kept.max_shows, initial.max_shows, part.findings);
  CheckNumber(message, "width", kept.width, initial.width, part.findings);
  CheckNumber(message, "height", kept.height, initial.height, part.findings);
  HasTyped(message, "title", JsonType::kString, kEmptyText, part.findings);
  HasTyped(message, "url", JsonType::kString, kEmptyText, part.findings);
  part.values = {{"id", std::to_string(kept.id)},
                 {"max_shows", std::to_string(kept.max_shows)},
                 {"width", std::to_string(kept.width)},
                 {"height", std::to_string(kept.height)},
                 {"url", kept.url.utf8()}};
  report.parts.push_back(part);
}

CheckedPart CheckDataFile(const Value& file, const DataFileData& kept) {
  CheckedPart part;
  part.title = kept.filename.utf8();
  part.is_kept = true;
  CheckNumber(file, "version", kept.version, DataFileData().version, part.findings);
  HasTyped(file, "filename", JsonType::kString, kEmptyText, part.findings);
  HasTyped(file, "url", JsonType::kString, kEmptyText, part.findings);
  part.values = {{"version", std::to_string(kept.version)}, {"url", kept.url.utf8()}};
  return part;
}

void CheckDataFiles(const Document& document, const std::vector<DataFileData>& kept,
                    CheckReport& report) {
  if (!document.HasMember("datafiles")) return;
  const Value& files = document["datafiles"];
  if (!files.IsArray()) {
    report.findings.push_back({fmt::format("datafiles is {}, not an array", TypeOf(files))});
    return;
  }
  std::size_t next = 0;
  for (unsigned int i = 0; i < files.Size(); ++i) {
    const Value& file = files[i];
    CheckedPart part;
    if (file.IsObject() && next < kept.size()) part = CheckDataFile(file, kept[next++]);
    if (!file.IsObject()) {
      part.findings.push_back({fmt::format("it is {}, not an object", TypeOf(file))});
    }
    part.name = fmt::format("datafile {}", i + 1);
    report.parts.push_back(part);
  }
}

}  // namespace

CheckReport CheckUpdate(const std::string& text) {
  CheckReport report;
  report.kind = "update";
  const ovrant_ustring body(text);
  UpdateQuery query;
  report.is_usable = query.ParseResponse(body);
  Document document;
  std::string why;
  if (!LoadResponse(body, document, why)) {
    report.findings.push_back({why});
    return report;
  }
  CheckOffer(document, report);
  CheckMessage(document, query.message_, report);
  CheckDataFiles(document, query.data_files_, report);
  report.values = {{"current_version", query.current_version_.utf8()},
                   {"expire_version", query.expire_version_.utf8()}};
  return report;
}

}  // namespace stowra
