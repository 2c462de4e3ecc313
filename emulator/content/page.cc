#include "emulator/content/page.h"

namespace stowra_emulator {
namespace {

constexpr const char* kStyle = R"css(
    :root { --ink: #24303c; --soft: #67727d; --line: #dfe4e8; --accent: #b4532a; }
    * { box-sizing: border-box; }
    body { margin: 0; color: var(--ink); background: #f5f6f7;
      font: 16px/1.5 system-ui, -apple-system, "Segoe UI", "DejaVu Sans", sans-serif; }
    a { color: inherit; text-decoration: none; }
    a:hover, a:focus { color: var(--accent); }
    header { background: #fff; border-bottom: 1px solid var(--line); }
    header div { max-width: 1140px; margin: auto; padding: 14px 24px; display: flex; gap: 24px;
      align-items: center; flex-wrap: wrap; }
    header a { font-weight: 700; font-size: 20px; color: var(--accent); }
    form { flex: 1; display: flex; gap: 8px; max-width: 520px; }
    input, button { font: inherit; padding: 7px 12px; border: 1px solid var(--line); border-radius: 8px; }
    input { flex: 1; min-width: 0; background: #f5f6f7; }
    button, .button { background: var(--accent); color: #fff; border-color: var(--accent); cursor: pointer; }
    .button { display: inline-block; padding: 8px 14px; border-radius: 8px; }
    .button:hover, .button:focus { color: #fff; filter: brightness(1.1); }
    main { max-width: 1140px; margin: auto; padding: 20px 24px 40px; }
    h1 { font-size: 26px; margin: 8px 0 2px; }
    h2 { font-size: 16px; margin: 10px 0 0; overflow-wrap: anywhere; }
    p { margin: 4px 0; }
    .soft { color: var(--soft); font-size: 14px; }
    .results { list-style: none; margin: 18px 0; padding: 0; display: grid; gap: 18px;
      grid-template-columns: repeat(auto-fill, minmax(235px, 1fr)); }
    .results li, .model { background: #fff; border: 1px solid var(--line); border-radius: 12px; padding: 12px; }
    img { display: block; width: 100%; height: auto; border-radius: 8px; background: #eceff1; }
    .model { display: flex; flex-wrap: wrap; gap: 28px; padding: 20px; }
    .model img { flex: 1 1 420px; min-width: 0; max-width: 640px; align-self: flex-start; }
    .model div { flex: 1 1 280px; }
    .downloads { list-style: none; padding: 0; display: flex; flex-wrap: wrap; gap: 8px; }
    nav { display: flex; justify-content: space-between; font-weight: 600; }
  )css";

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
  page.Verbatim(kStyle);
  page.End();
  page.End();
  page.Begin("body");
  page.Begin("header");
  page.Begin("div");
  page.Element("a", "Stowra", {{"href", "/search.html"}});
  WriteSearchForm(page, head.search_text);
  page.End();
  page.End();
  page.Begin("main");
  return page;
}

void SetPage(httplib::Response& response, MarkupWriter& page) {
  response.set_content(page.Finish(), "text/html; charset=utf-8");
}

}  // namespace stowra_emulator
