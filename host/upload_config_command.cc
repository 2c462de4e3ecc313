// SPDX-License-Identifier: MIT
// stowra upload-config: shows where and how to upload.

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "common_stowraapi/content/upload_config.h"
#include "host/commands.h"
#include "host/json_values.h"
#include "host/request_options.h"
#include "host/session.h"
#include "host/table.h"
#include "host/terminal.h"
#include "host/upload_configuration.h"

namespace stowra {

using ovrant::json::Document;
using ovrant::json::Value;
using ovrant::stowraapiclient::UploadConfig;
using ovrant::stowraapiclient::UploadFile;

namespace {

constexpr char kUploadConfigExamples[] =
    "Examples:\n"
    "  stowra upload-config http://127.0.0.1:8080/upload-config\n"
    "  stowra upload-config 'http://127.0.0.1:8080/upload-config?zipped=true' --json\n";

std::string ToTable(const UploadConfig& config) {
  const bool coloured = MayColour(stdout);
  Table urls(Table::Labels::kFirstColumn);
  urls.AddRow({"success url", config.success_url_.utf8()});
  urls.AddRow({"failure url", config.failure_url_.utf8()});
  if (config.files_.empty()) return urls.ToText(coloured);

  Table files(Table::Labels::kFirstRow);
  files.AddRow({"file", "type", "format", "zipped", "size", "upload url"});
  for (const UploadFile& file : config.files_) {
    files.AddRow({file.name_.utf8(), file.type_.utf8(), file.format_.utf8(),
                  file.zipped_ ? "yes" : "no", fmt::format("{} x {}", file.width_, file.height_),
                  file.upload_url_.utf8()});
  }
  return urls.ToText(coloured) + "\n" + files.ToText(coloured);
}

Value MakeFile(Document& document, const UploadFile& file) {
  Value value = MakeObject(document);
  value.AddMember("upload_url", MakeText(document, file.upload_url_));
  value.AddMember("type", MakeText(document, file.type_));
  value.AddMember("zipped", MakeBool(document, file.zipped_));
  value.AddMember("name", MakeText(document, file.name_));
  value.AddMember("format", MakeText(document, file.format_));
  value.AddMember("width", MakeInt(document, file.width_));
  value.AddMember("height", MakeInt(document, file.height_));
  return value;
}

std::string ToJson(const UploadConfig& config) {
  Document document;
  document.AddMember("success_url", MakeText(document, config.success_url_));
  document.AddMember("failure_url", MakeText(document, config.failure_url_));
  Value files = MakeArray(document);
  for (const UploadFile& file : config.files_) files.PushBack(MakeFile(document, file));
  document.AddMember("files", files);
  return ToLine(document);
}

ExitStatus RunUploadConfig(const RequestOptions& options) {
  const Session session(options);
  UploadConfig config;
  const ExitStatus status = AskForUploadConfig(session, options.url, config);
  if (status != ExitStatus::kDone) return status;
  return WriteResult(options.json ? ToJson(config) : ToTable(config));
}

}  // namespace

void AddUploadConfigCommand(CLI::App& app, Task& chosen) {
  const auto options = std::make_shared<RequestOptions>();
  CLI::App& command = *app.add_subcommand("upload-config", "Show where and how to upload a model");
  command.footer(kUploadConfigExamples);
  AddWaitingOptions(command, *options, "URL", "URL of the upload configuration");
  command.callback(
      [options, &chosen] { chosen = [options] { return RunUploadConfig(*options); }; });
}

}  // namespace stowra
