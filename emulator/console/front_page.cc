// SPDX-License-Identifier: MIT
#include <iomanip>
#include <sstream>
#include <string>

#include "emulator/console/journal.h"
#include "emulator/content/catalog.h"
#include "emulator/content/item_list.h"
#include "emulator/fault.h"
#include "emulator/page/page.h"
#include "emulator/route.h"
#include "emulator/services.h"

namespace stowra_emulator {
namespace {

constexpr int kUploads = 12;

std::string PlainText() {
  std::ostringstream page;
  page << std::left << "stowra-emulator: local services to develop and test against\n\nRoutes\n";
  for (const Route& route : Routes()) {
    page << "  " << std::setw(6) << route.method << std::setw(19) << route.path << route.description
         << '\n';
  }
  page << "\nFaults: add one to any address, as in /user-info?fault=status:503\n";
  for (const FaultDescription& fault : Faults()) {
    page << "  " << std::setw(20) << fault.usage << fault.description << '\n';
  }
  return page.str();
}

void WriteRule(MarkupWriter& page, const FaultPlan::Entry& entry) {
  const std::string rule = entry.rule.ToString();
  page.Begin("li");
  page.Begin("form", {{"class", "row"}, {"action", "/-/faults"}, {"method", "post"}});
  page.Empty("input", {{"type", "hidden"}, {"name", "id"}, {"value", std::to_string(entry.id)}});
  page.Element("button", entry.is_on ? "On" : "Off",
               {{"name", "action"},
                {"value", entry.is_on ? "off" : "on"},
                {"class", "switch"},
                {"role", "switch"},
                {"aria-checked", entry.is_on ? "true" : "false"},
                {"aria-label", "Fault " + rule}});
  page.Element("code", rule);
  page.Element("button", "Remove",
               {{"name", "action"},
                {"value", "remove"},
                {"class", "plain"},
                {"aria-label", "Remove " + rule}});
  page.End();
  page.End();
}

void WriteRouteField(MarkupWriter& page, const std::vector<std::string>& routes) {
  page.Begin("label");
  page.Text("Route ");
  if (routes.empty()) {
    page.Empty("input", {{"name", "route"}, {"value", FaultRule::kEveryRoute}});
  } else {
    page.Begin("select", {{"name", "route"}});
    page.Element("option", "every route", {{"value", FaultRule::kEveryRoute}});
    for (const std::string& route : routes) page.Element("option", route, {{"value", route}});
    page.End();
  }
  page.End();
}

void WriteNewRule(MarkupWriter& page, const std::vector<std::string>& routes) {
  page.Begin("form", {{"class", "row"}, {"action", "/-/faults"}, {"method", "post"}});
  WriteRouteField(page, routes);
  page.Begin("label");
  page.Text("Fault ");
  page.Begin("select", {{"name", "kind"}});
  for (const FaultDescription& fault : Faults()) {
    page.Element("option", fault.usage, {{"value", fault.name}});
  }
  page.End();
  page.End();
  page.Begin("label");
  page.Text("Value ");
  page.Empty("input", {{"name", "value"}, {"size", "5"}, {"placeholder", "503"}});
  page.End();
  page.Begin("label");
  page.Text("Percent ");
  page.Empty(
      "input",
      {{"name", "percent"}, {"type", "number"}, {"min", "1"}, {"max", "100"}, {"value", "100"}});
  page.End();
  page.Element("button", "Add fault", {{"name", "action"}, {"value", "add"}});
  page.End();
}

void WriteFaults(MarkupWriter& page, const Call& call) {
  page.Begin("section", {{"class", "card"}});
  page.Element("h2", "Faults");
  const std::vector<FaultPlan::Entry> entries = call.faults.Entries();
  if (entries.empty()) page.Element("p", "Every answer is in order.", {{"class", "soft"}});
  page.Begin("ul", {{"class", "rows"}});
  for (const FaultPlan::Entry& entry : entries) WriteRule(page, entry);
  page.End();
  WriteNewRule(page, FaultRoutes(call.source));
  page.Begin("details");
  page.Element("summary", "What the faults do");
  page.Begin("dl");
  for (const FaultDescription& fault : Faults()) {
    page.Begin("dt");
    page.Element("code", fault.usage);
    page.End();
    page.Element("dd", fault.description);
  }
  page.End();
  page.End();
  page.End();
}

void WriteRequests(MarkupWriter& page) {
  page.Begin("section", {{"class", "card"}});
  page.Element("h2", "Requests");
  page.Element("p", "Not connected.", {{"class", "soft"}, {"id", "requests-state"}});
  page.Element("ol", "",
               {{"class", "requests"},
                {"id", "requests"},
                {"data-longest", std::to_string(Journal::kSize)}});
  page.Element("script", "", {{"src", "/-/page.js"}, {"defer", "defer"}});
  page.End();
}

void WriteUploads(MarkupWriter& page, const Call& call) {
  page.Begin("section");
  page.Element("h2", "Latest uploads");
  const std::vector<Item> items = LatestUploads(call.database, kUploads);
  if (items.empty()) page.Element("p", "Nothing was uploaded yet.", {{"class", "soft"}});
  WriteItemList(page, items, "h3");
  page.End();
}

void WriteRoutes(MarkupWriter& page) {
  page.Begin("section", {{"class", "card"}});
  page.Element("h2", "Routes");
  page.Begin("dl");
  for (const Route& route : Routes()) {
    page.Begin("dt");
    const std::string name = std::string(route.method) + " " + route.path;
    if (*route.example == '\0') {
      page.Element("code", name);
    } else {
      page.Begin("a", {{"href", route.example}});
      page.Element("code", name);
      page.End();
    }
    page.End();
    page.Element("dd", route.description);
  }
  page.End();
  page.End();
}

}  // namespace

void AnswerIndex(const Call& call, httplib::Response& response) {
  response.set_header("Vary", "Accept");
  if (!WantsPage(call.request)) {
    response.set_content(PlainText(), "text/plain; charset=utf-8");
    return;
  }
  MarkupWriter page = BeginPage({"stowra-emulator", "", ""});
  page.Element("h1", "stowra-emulator");
  page.Element("p", "Local services to develop and test against, version " STOWRA_VERSION ".",
               {{"class", "soft"}});
  WriteFaults(page, call);
  WriteRequests(page);
  WriteUploads(page, call);
  WriteRoutes(page);
  SetPage(response, page);
}

}  // namespace stowra_emulator
