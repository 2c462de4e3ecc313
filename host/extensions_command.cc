// SPDX-License-Identifier: MIT
// stowra extensions: shows the status of the installed extensions.

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <map>
#include <memory>
#include <string>

#include "common_stowraapi/services/extension_store_status.h"
#include "host/body_file.h"
#include "host/commands.h"
#include "host/failure_report.h"
#include "host/json_values.h"
#include "host/request_options.h"
#include "host/session.h"
#include "host/table.h"
#include "host/terminal.h"

namespace stowra {

using ovrant::extensionstoreapi::ExtensionStoreItem;
using ovrant::extensionstoreapi::ExtensionStoreStatus;
using ovrant::json::Document;
using ovrant::json::Value;
using ovrant::utils::ovrant_ustring;

namespace {

using ItemMap = std::map<ovrant_ustring, ExtensionStoreItem>;

constexpr char kExtensionsExamples[] =
    "Examples:\n"
    "  stowra extensions http://127.0.0.1:8080/extensions --body installed.json\n"
    "  echo '{\"extensions\":[{\"id\":\"roof-tools\",\"version\":\"1.0\"}]}' |\n"
    "    stowra extensions http://127.0.0.1:8080/extensions --body - --async\n";

struct ExtensionsOptions : RequestOptions {
  std::string body_file;
};

std::string YesOrNo(bool value) { return value ? "yes" : "no"; }

std::string ToTable(const ItemMap& items) {
  Table table(Table::Labels::kFirstRow);
  table.AddRow({"extension", "version", "update", "withdrawn", "enabled", "version uuid", "url"});
  for (const auto& [id, item] : items) {
    table.AddRow({id.utf8(), fmt::format("{}", item.version), YesOrNo(item.update),
                  YesOrNo(item.remote_kill), YesOrNo(item.enabled), item.version_uuid.utf8(),
                  item.file_url.utf8()});
  }
  return table.ToText(MayColour(stdout));
}

Value MakeItem(Document& document, const ExtensionStoreItem& item) {
  Value value = MakeObject(document);
  value.AddMember("id", MakeText(document, item.id));
  value.AddMember("version_uuid", MakeText(document, item.version_uuid));
  value.AddMember("version", MakeFloat(document, item.version));
  value.AddMember("file_url", MakeText(document, item.file_url));
  value.AddMember("update", MakeBool(document, item.update));
  value.AddMember("remote_kill", MakeBool(document, item.remote_kill));
  value.AddMember("enabled", MakeBool(document, item.enabled));
  return value;
}

std::string ToJson(const ItemMap& items) {
  Document document;
  Value extensions = MakeArray(document);
  for (const auto& [id, item] : items) extensions.PushBack(MakeItem(document, item));
  document.AddMember("extensions", extensions);
  return ToLine(document);
}

ExitStatus Ask(const ExtensionsOptions& options, const std::string& body) {
  const char* const success = kExtensionStoreAsynchStatusSucceededNotification;
  Session session(options, {success, kExtensionStoreAsynchStatusFailedNotification});
  ExtensionStoreStatus status;
  status.Init(options.url.c_str(), nullptr, ovrant_ustring(body.data(), body.size()));
  const bool succeeded =
      options.async ? session.RunInBackground([&status] { status.AsynchronousStatus(); }, success)
                    : status.SynchronousStatus();
  if (!succeeded) return session.Fail("");
  const ItemMap items = status.GetItemMapFromResponse();
  // The library gives an empty map for an unreadable response and for an empty list.
  if (items.empty()) return session.Fail("it contains no extension's status");
  return WriteResult(options.json ? ToJson(items) : ToTable(items));
}

ExitStatus RunExtensions(const ExtensionsOptions& options) {
  std::string body;
  std::string why;
  if (!ReadBodyFile(options.body_file, body, why)) {
    FailureReport failure;
    failure.exit_status = ExitStatus::kUsage;
    failure.reason = "usage";
    failure.message = fmt::format("--body {}: {}", options.body_file, why);
    return Report(failure, options.json);
  }
  return Ask(options, body);
}

}  // namespace

void AddExtensionsCommand(CLI::App& app, Task& chosen) {
  const auto options = std::make_shared<ExtensionsOptions>();
  CLI::App& command =
      *app.add_subcommand("extensions", "Show the status of the installed extensions");
  command.footer(kExtensionsExamples);
  AddRequestOptions(command, *options);
  command
      .add_option(
          "--body", options->body_file,
          "Send this JSON file, which lists the installed extensions; - means standard input")
      ->option_text("FILE, required")
      ->required();
  command.callback([options, &chosen] { chosen = [options] { return RunExtensions(*options); }; });
}

}  // namespace stowra
