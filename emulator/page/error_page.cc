// SPDX-License-Identifier: MIT
#include "emulator/page/error_page.h"

#include <nlohmann/json.hpp>
#include <string>

#include "emulator/page/page.h"

namespace stowra_emulator {

void MakeErrorPage(httplib::Response& response) {
  if (response.get_header_value("Content-Type") != "application/json") return;
  const auto json = nlohmann::json::parse(response.body, nullptr, false);
  if (!json.is_object() || !json.contains("error")) return;
  const std::string status = "Status " + std::to_string(response.status);
  MarkupWriter page = BeginPage({status, "", ""});
  page.Element("h1", status);
  page.Element("p", json["error"].get<std::string>());
  page.Begin("p");
  page.Element("a", "All routes", {{"href", "/-/"}});
  page.End();
  SetPage(response, page);
}

}  // namespace stowra_emulator
