// SPDX-License-Identifier: MIT
#include <string>

#include "emulator/content/catalog.h"
#include "emulator/content/item_address.h"
#include "emulator/page/page.h"
#include "emulator/parameters.h"
#include "emulator/services.h"

namespace stowra_emulator {

void AnswerUploadSucceeded(const Call& call, httplib::Response& response) {
  AllowParameters(call.request, {"mid"});
  MarkupWriter page = BeginPage({"Upload succeeded", "", ""});
  page.Element("h1", "Your model is online");
  page.Begin("p");
  if (call.request.has_param("mid")) {
    const Item model = GetModel(call.database, RequiredParameter(call.request, "mid"));
    page.Text("See ");
    page.Element("a", model.title, {{"href", PageAddress("", model)}, {"class", "button"}});
  } else {
    page.Text("Search for your model to see it.");
  }
  SetPage(response, page);
}

void AnswerUploadFailed(const Call& call, httplib::Response& response) {
  AllowParameters(call.request, {"reason"});
  MarkupWriter page = BeginPage({"Upload failed", "", ""});
  page.Element("h1", "Your upload failed");
  page.Element("p", TextParameter(call.request, "reason", "Please try again."));
  SetPage(response, page);
}

}  // namespace stowra_emulator
