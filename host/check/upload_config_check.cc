// SPDX-License-Identifier: MIT
#include "host/check/upload_config_check.h"

#include <fmt/format.h>

#include "common_stowraapi/content/upload_config.h"
#include "host/check/xml_document.h"

namespace stowra {

using ovrant::stowraapiclient::UploadConfig;
using ovrant::stowraapiclient::UploadFile;
using ovrant::utils::ovrant_ustring;

namespace {

void NeedText(WatchedXml& reader, const std::string& place, const char* name,
              std::vector<Finding>& findings) {
  ovrant_ustring text;
  if (!reader.GetElementText(name, text)) {
    findings.push_back({fmt::format("{} has no {}", place, name)});
  }
}

void CheckZipped(WatchedXml& reader, std::vector<Finding>& findings) {
  ovrant_ustring text;
  if (!reader.GetElementText("zipped", text)) {
    findings.push_back({"it has no zipped; false kept", false});
  } else if (text.compare_nocase("true") != 0 && text.compare_nocase("false") != 0) {
    findings.push_back(
        {fmt::format("zipped is '{}', neither true nor false; false kept", text.utf8())});
  }
}

void CheckNumber(WatchedXml& reader, const char* name, std::vector<Finding>& findings) {
  int number = 0;
  reader.TakeLookups();
  if (reader.GetElementInt(name, number)) return;
  const std::string text = reader.TakeLookups().back().value;
  if (text.empty()) {
    findings.push_back({fmt::format("it has no {}; 0 kept", name), false});
  } else {
    findings.push_back({fmt::format("{} is '{}', which is no 32-bit number; 0 kept", name, text)});
  }
}

CheckedPart CheckFile(WatchedXml& reader, int number) {
  CheckedPart part;
  part.name = fmt::format("file {}", number);
  NeedText(reader, "it", "uploadUrl", part.findings);
  NeedText(reader, "it", "type", part.findings);
  part.is_kept = part.findings.empty();
  CheckZipped(reader, part.findings);
  ovrant_ustring text;
  for (const char* name : {"format", "name"}) {
    if (reader.GetElementText(name, text)) continue;
    part.findings.push_back({fmt::format("it has no {}; the empty text kept", name), false});
  }
  CheckNumber(reader, "width", part.findings);
  CheckNumber(reader, "height", part.findings);
  return part;
}

void CheckDocument(WatchedXml& reader, CheckReport& report) {
  if (!reader.FindElement("upload")) {
    report.findings.push_back({"its root is not the element upload without a namespace"});
    return;
  }
  NeedText(reader, "it", "successUrl", report.findings);
  NeedText(reader, "it", "failureUrl", report.findings);
  if (!reader.FindElement("files")) {
    report.findings.push_back({"it has no files"});
    return;
  }
  if (!reader.FindElement("file")) return;
  int number = 1;
  do {
    report.parts.push_back(CheckFile(reader, number++));
  } while (reader.NextElement("file"));
}

void AddValues(const UploadConfig& config, CheckReport& report) {
  report.values = {{"success_url", config.success_url_.utf8()},
                   {"failure_url", config.failure_url_.utf8()}};
  for (std::size_t i = 0; i < report.parts.size() && i < config.files_.size(); ++i) {
    const UploadFile& file = config.files_[i];
    report.parts[i].title = file.name_.utf8();
    report.parts[i].values = {
        {"upload_url", file.upload_url_.utf8()},     {"type", file.type_.utf8()},
        {"zipped", file.zipped_ ? "true" : "false"}, {"format", file.format_.utf8()},
        {"width", std::to_string(file.width_)},      {"height", std::to_string(file.height_)}};
  }
}

}  // namespace

CheckReport CheckUploadConfig(std::string document) {
  CheckReport report;
  report.kind = "upload-config";
  const auto reader = WatchDocument(document);
  if (reader == nullptr) {
    report.findings.push_back({kNotOpened});
  } else {
    CheckDocument(*reader, report);
  }
  UploadConfig config;
  report.is_usable =
      config.ParseResponse(reinterpret_cast<unsigned char*>(document.data()), document.size());
  AddValues(config, report);
  // A file without its URL or type takes the others with it.
  for (CheckedPart& part : report.parts) part.is_kept = part.is_kept && report.is_usable;
  return report;
}

}  // namespace stowra
