// SPDX-License-Identifier: MIT
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

#include "emulator/form_fields.h"
#include "emulator/json_reply.h"
#include "emulator/page/page.h"
#include "emulator/request_error.h"
#include "emulator/route.h"
#include "emulator/services.h"
#include "emulator/web_address.h"

namespace stowra_emulator {
namespace {

// A page of another site may not change anything.
void CheckOrigin(const httplib::Request& request) {
  const std::string origin = request.get_header_value("Origin");
  if (!origin.empty() && origin != SiteAddress(request)) {
    throw RequestError(403, "only the emulator's own pages may change its faults");
  }
}

// The text of a rule: one field "rule", or one field for each of its parts.
std::string RuleOf(const FormFields& form) {
  if (form.count("rule") != 0) return form.at("rule");
  const auto field = [&form](const char* name) {
    const auto found = form.find(name);
    return found == form.end() ? std::string() : found->second;
  };
  std::string rule = field("route") + "=" + field("kind");
  if (!field("value").empty()) rule += ":" + field("value");
  if (!field("percent").empty()) rule += "@" + field("percent");
  return rule;
}

int IdOf(const FormFields& form) {
  try {
    return std::stoi(form.at("id"));
  } catch (const std::exception&) {
    throw RequestError(400, "the field 'id' must be the number of a fault");
  }
}

void Change(const Call& call, const FormFields& form) {
  const auto action = form.find("action");
  const std::string name = action == form.end() ? "add" : action->second;
  if (name == "add") {
    try {
      call.faults.Add(ParseFaultRule(RuleOf(form), FaultRoutes(call.source)));
    } catch (const std::invalid_argument& error) {
      throw RequestError(400, error.what());
    }
  } else if (name == "on" || name == "off") {
    call.faults.Switch(IdOf(form), name == "on");
  } else if (name == "remove") {
    call.faults.Remove(IdOf(form));
  } else {
    throw RequestError(400, "the field 'action' must be add, on, off or remove");
  }
}

}  // namespace

void AnswerFaults(const Call& call, httplib::Response& response) {
  nlohmann::ordered_json faults = nlohmann::ordered_json::array();
  for (const FaultPlan::Entry& entry : call.faults.Entries()) {
    faults.push_back({{"id", entry.id}, {"rule", entry.rule.ToString()}, {"on", entry.is_on}});
  }
  SetJson(response, {{"faults", faults}});
}

void AnswerChangeFaults(const Call& call, httplib::Response& response) {
  CheckOrigin(call.request);
  Change(call, ParseForm(call.body.text));
  if (WantsPage(call.request)) {
    response.set_redirect("/-/", 303);
  } else {
    AnswerFaults(call, response);
  }
}

}  // namespace stowra_emulator
