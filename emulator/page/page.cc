// SPDX-License-Identifier: MIT
#include "emulator/page/page.h"

#include "emulator/page/style.h"

namespace stowra_emulator {
namespace {

// Nothing comes from another site.
constexpr const char* kPolicy =
    "default-src 'none'; style-src 'unsafe-inline'; script-src 'self'; connect-src 'self'; "
    "img-src 'self' data:; form-action 'self'; base-uri 'none'; frame-ancestors 'none'";

void WriteSearchForm(MarkupWriter& page, const std::string& text) {
  page.Begin("form", {{"action", "/search.html"}, {"method", "get"}, {"role", "search"}});
  page.Empty("input", {{"type", "search"},
                       {"name", "q"},
                       {"value", text},
                       {"placeholder", "Chairs, houses, 椅子…"},
                       {"aria-label", "Search for"}});
  page.Element("button", "Search");
  page.End();
}

}  // namespace

MarkupWriter BeginPage(const PageHead& head) {
  MarkupWriter page("<!DOCTYPE html>");
  page.Begin("html", {{"lang", "en"}});
  page.Begin("head");
  page.Empty("meta", {{"charset", "utf-8"}});
  page.Empty("meta", {{"name", "color-scheme"}, {"content", "light dark"}});
  page.Empty("meta", {{"name", "viewport"}, {"content", "width=device-width, initial-scale=1"}});
  page.Element("title", head.title);
  // An empty icon keeps browsers from asking for /favicon.ico.
  page.Empty("link", {{"rel", "icon"}, {"href", "data:,"}});
  if (!head.feed_address.empty()) {
    page.Empty(
        "link",
        {{"rel", "alternate"}, {"type", "application/atom+xml"}, {"href", head.feed_address}});
  }
  page.Begin("style");
  page.Verbatim(kPageStyle);
  page.End();
  page.End();
  page.Begin("body");
  page.Begin("header");
  page.Begin("div");
  page.Element("a", "Stowra", {{"href", "/search.html"}, {"class", "home"}});
  page.Element("a", "Emulator", {{"href", "/-/"}});
  WriteSearchForm(page, head.search_text);
  page.End();
  page.End();
  page.Begin("main");
  return page;
}

void SetPage(httplib::Response& response, MarkupWriter& page) {
  response.set_header("Content-Security-Policy", kPolicy);
  response.set_content(page.Finish(), "text/html; charset=utf-8");
}

bool WantsPage(const httplib::Request& request) {
  return request.get_header_value("Accept").find("text/html") != std::string::npos;
}

}  // namespace stowra_emulator
