// SPDX-License-Identifier: MIT
// stowra user-info: shows who is signed in.

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

#include "common_stowraapi/services/user_info_query.h"
#include "host/commands.h"
#include "host/json_values.h"
#include "host/request_options.h"
#include "host/response_check.h"
#include "host/session.h"
#include "host/table.h"
#include "host/terminal.h"

namespace stowra {

using ovrant::json::Document;
using ovrant::utils::ovrant_ustring;
using ovrant::webservices::UserInfoQuery;

namespace {

constexpr char kUserInfoExamples[] =
    "Examples:\n"
    "  stowra user-info http://127.0.0.1:8080/user-info\n"
    "  stowra user-info https://account.example/user-info --header 'Authorization: Bearer TOKEN'\n"
    "  stowra user-info http://127.0.0.1:8080/user-info --async --json\n";

std::string FindFault(const ovrant_ustring& body) {
  Document document;
  std::string why;
  if (!LoadResponse(body, document, why)) return why;
  std::vector<std::string> missing;
  for (const ovrant_ustring* key : {&UserInfoQuery::kUserIdKey, &UserInfoQuery::kUserEmailKey,
                                    &UserInfoQuery::kUserVkrhIdKey}) {
    if (!document.HasMember(*key)) missing.push_back(key->utf8());
  }
  return Lacks(missing);
}

// Remembers why it refused a response.
class ExplainedUserInfoQuery : public UserInfoQuery {
 public:
  bool ParseResponse(const ovrant_ustring& body) override {
    const bool accepted = UserInfoQuery::ParseResponse(body);
    if (!accepted) fault_ = FindFault(body);
    return accepted;
  }

  const std::string& fault() const { return fault_; }

 private:
  std::string fault_;
};

std::string ToTable(const UserInfoQuery& query) {
  Table table(Table::Labels::kFirstColumn);
  table.AddRow({"user id", query.GetUserInfoValue(UserInfoQuery::kUserIdKey).utf8()});
  table.AddRow({"name", query.GetUserInfoValue(UserInfoQuery::kUserDisplayNameKey).utf8()});
  table.AddRow({"email", query.GetUserInfoValue(UserInfoQuery::kUserEmailKey).utf8()});
  table.AddRow({"vkr id", query.GetUserInfoValue(UserInfoQuery::kUserVkrhIdKey).utf8()});
  return table.ToText(MayColour(stdout));
}

std::string ToJson(const UserInfoQuery& query) {
  Document document;
  for (const ovrant_ustring* key :
       {&UserInfoQuery::kUserIdKey, &UserInfoQuery::kUserDisplayNameKey,
        &UserInfoQuery::kUserEmailKey, &UserInfoQuery::kUserVkrhIdKey}) {
    document.AddMember(*key, MakeText(document, query.GetUserInfoValue(*key)));
  }
  return ToLine(document);
}

ExitStatus RunUserInfo(const RequestOptions& options) {
  const char* const updated = UserInfoQuery::kUserInfoUpdatedNotification;
  Session session(options, {updated});
  ExplainedUserInfoQuery query;
  query.Init(options.url.c_str(), nullptr);
  const bool succeeded = session.Repeat([&] {
    return options.async
               ? session.RunInBackground([&query] { query.AsynchronousRequest(); }, updated)
               : query.SynchronousRequest();
  });
  if (!succeeded) return session.Fail(query.fault());
  return WriteResult(options.json ? ToJson(query) : ToTable(query));
}

}  // namespace

void AddUserInfoCommand(CLI::App& app, Task& chosen) {
  const auto options = std::make_shared<RequestOptions>();
  CLI::App& command = *app.add_subcommand("user-info", "Show who is signed in");
  command.footer(kUserInfoExamples);
  AddRequestOptions(command, *options);
  AddRetryOption(command, *options);
  command.callback([options, &chosen] { chosen = [options] { return RunUserInfo(*options); }; });
}

}  // namespace stowra
