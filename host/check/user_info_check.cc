// SPDX-License-Identifier: MIT
#include <fmt/format.h>

#include <map>
#include <string>

#include "common_stowraapi/json/document.h"
#include "common_stowraapi/services/user_info_query.h"
#include "host/check/json_member.h"
#include "host/check/service_checks.h"
#include "host/response_check.h"

namespace stowra {

using ovrant::json::Document;
using ovrant::utils::ovrant_ustring;
using ovrant::webservices::UserInfoQuery;

namespace {

void CheckMembers(const Document& document, CheckReport& report) {
  std::map<std::string, int> seen;
  for (unsigned int i = 0; i < document.MemberCount(); ++i) {
    const std::string name = document.MemberNameAt(i).utf8();
    if (!document.MemberAt(i).IsString()) {
      report.findings.push_back({fmt::format("{} is {}, not a string; the empty text kept", name,
                                             TypeOf(document.MemberAt(i)))});
    }
    if (++seen[name] == 2) {
      report.findings.push_back({fmt::format("{} occurs again; the last one kept", name)});
    }
  }
  for (const ovrant_ustring* key : {&UserInfoQuery::kUserIdKey, &UserInfoQuery::kUserEmailKey,
                                    &UserInfoQuery::kUserVkrhIdKey}) {
    if (seen.count(key->utf8()) == 0) {
      report.findings.push_back({fmt::format("it has no {}; the old user is kept", key->utf8())});
    }
  }
  if (seen.count(UserInfoQuery::kUserDisplayNameKey.utf8()) == 0) {
    report.findings.push_back({"it has no displayname; the empty text kept", false});
  }
}

}  // namespace

CheckReport CheckUserInfo(const std::string& text) {
  CheckReport report;
  report.kind = "user-info";
  const ovrant_ustring body(text);
  Document document;
  std::string why;
  if (LoadResponse(body, document, why)) {
    CheckMembers(document, report);
  } else {
    report.findings.push_back({why});
  }
  UserInfoQuery query;
  report.is_usable = query.ParseResponse(body);
  for (unsigned int i = 0; report.is_usable && i < document.MemberCount(); ++i) {
    const ovrant_ustring name = document.MemberNameAt(i);
    report.values.emplace_back(name.utf8(), query.GetUserInfoValue(name).utf8());
  }
  return report;
}

}  // namespace stowra
