// SPDX-License-Identifier: MIT
// stowra update: shows the offered version, message and data files.

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

#include "common_stowraapi/services/update_query.h"
#include "host/commands.h"
#include "host/json_values.h"
#include "host/request_options.h"
#include "host/response_check.h"
#include "host/session.h"
#include "host/table.h"
#include "host/terminal.h"

namespace stowra {

using ovrant::json::Document;
using ovrant::json::Value;
using ovrant::utils::ovrant_ustring;
using ovrant::webservices::DataFileData;
using ovrant::webservices::MessageData;
using ovrant::webservices::UpdateQuery;

namespace {

constexpr char kUpdateExamples[] =
    "Examples:\n"
    "  stowra update http://127.0.0.1:8080/update\n"
    "  stowra update http://127.0.0.1:8080/update --async --verbose\n"
    "  stowra update https://update.example/offer --json --timeout 5\n";

constexpr int kNoMessage = -1;

// Remembers why it refused a response.
class ExplainedUpdateQuery : public UpdateQuery {
 public:
  bool ParseResponse(const ovrant_ustring& body) override {
    const bool accepted = UpdateQuery::ParseResponse(body);
    if (!accepted) fault_ = FindFault(body);
    return accepted;
  }

  const std::string& fault() const { return fault_; }

 private:
  std::string FindFault(const ovrant_ustring& body) const {
    Document document;
    std::string why;
    if (!LoadResponse(body, document, why)) return why;
    if (!document.HasMember("update")) return Lacks({"update"});
    std::vector<std::string> missing;
    if (current_version_.empty()) missing.emplace_back("update.current_version");
    if (expire_version_.empty()) missing.emplace_back("update.expire_version");
    return Lacks(missing);
  }

  std::string fault_;
};

void AddMessage(const MessageData& message, Table& table) {
  if (message.id == kNoMessage) return;
  table.AddRow({"message", fmt::format("{}", message.id)});
  table.AddRow({"  title", message.title.utf8()});
  table.AddRow({"  url", message.url.utf8()});
  table.AddRow({"  size", fmt::format("{} x {}", message.width, message.height)});
  table.AddRow({"  max shows", fmt::format("{}", message.max_shows)});
}

std::string ToTable(const UpdateQuery& query) {
  const bool coloured = MayColour(stdout);
  Table offer(Table::Labels::kFirstColumn);
  offer.AddRow({"current version", query.current_version_.utf8()});
  offer.AddRow({"expire version", query.expire_version_.utf8()});
  AddMessage(query.message_, offer);
  if (query.data_files_.empty()) return offer.ToText(coloured);

  Table files(Table::Labels::kFirstRow);
  files.AddRow({"data file", "version", "url"});
  for (const DataFileData& file : query.data_files_) {
    files.AddRow({file.filename.utf8(), fmt::format("{}", file.version), file.url.utf8()});
  }
  return offer.ToText(coloured) + "\n" + files.ToText(coloured);
}

Value MakeMessage(Document& document, const MessageData& message) {
  if (message.id == kNoMessage) return document.MakeValue();
  Value value = MakeObject(document);
  value.AddMember("id", MakeInt(document, message.id));
  value.AddMember("max_shows", MakeInt(document, message.max_shows));
  value.AddMember("width", MakeInt(document, message.width));
  value.AddMember("height", MakeInt(document, message.height));
  value.AddMember("title", MakeText(document, message.title));
  value.AddMember("url", MakeText(document, message.url));
  return value;
}

Value MakeDataFile(Document& document, const DataFileData& file) {
  Value value = MakeObject(document);
  value.AddMember("version", MakeInt(document, file.version));
  value.AddMember("filename", MakeText(document, file.filename));
  value.AddMember("url", MakeText(document, file.url));
  return value;
}

std::string ToJson(const UpdateQuery& query) {
  Document document;
  document.AddMember("current_version", MakeText(document, query.current_version_));
  document.AddMember("expire_version", MakeText(document, query.expire_version_));
  document.AddMember("message", MakeMessage(document, query.message_));
  Value files = MakeArray(document);
  for (const DataFileData& file : query.data_files_) files.PushBack(MakeDataFile(document, file));
  document.AddMember("data_files", files);
  return ToLine(document);
}

ExitStatus RunUpdate(const RequestOptions& options) {
  const char* const success = UpdateQuery::kUpdateQuerySucceededNotification;
  Session session(options, {success, UpdateQuery::kUpdateQueryFailedNotification});
  ExplainedUpdateQuery query;
  query.Init(options.url.c_str(), nullptr);
  const bool succeeded = session.Repeat([&] {
    return options.async
               ? session.RunInBackground([&query] { query.AsynchronousRequest(); }, success)
               : query.SynchronousRequest();
  });
  if (!succeeded) return session.Fail(query.fault());
  return WriteResult(options.json ? ToJson(query) : ToTable(query));
}

}  // namespace

void AddUpdateCommand(CLI::App& app, Task& chosen) {
  const auto options = std::make_shared<RequestOptions>();
  CLI::App& command =
      *app.add_subcommand("update", "Show the offered version, message and data files");
  command.footer(kUpdateExamples);
  AddRequestOptions(command, *options);
  AddRetryOption(command, *options);
  command.callback([options, &chosen] { chosen = [options] { return RunUpdate(*options); }; });
}

}  // namespace stowra
