// SPDX-License-Identifier: MIT
#include "host/failure_report.h"

#include <fmt/format.h>

#include "host/json_values.h"
#include "host/terminal.h"

namespace stowra {

using ovrant::json::Document;
using ovrant::json::Value;
using ovrant::utils::ovrant_ustring;

namespace {

std::string ToJson(const FailureReport& failure) {
  Document document;
  Value error = MakeObject(document);
  error.AddMember("reason", MakeText(document, ovrant_ustring(failure.reason)));
  error.AddMember("message", MakeText(document, ovrant_ustring(failure.message)));
  error.AddMember("url", MakeText(document, ovrant_ustring(failure.url)));
  error.AddMember("status", MakeInt(document, failure.status));
  error.AddMember("server_message", MakeText(document, ovrant_ustring(failure.server_message)));
  document.AddMember("error", error);
  return ToLine(document);
}

}  // namespace

ExitStatus Report(const FailureReport& failure, bool json) {
  const std::string place = failure.url.empty() ? "" : failure.url + ": ";
  const std::string quote = failure.server_message.empty() ? "" : ": " + failure.server_message;
  Complain(place + failure.message + quote);
  if (json) WriteResult(ToJson(failure));
  return failure.exit_status;
}

}  // namespace stowra
