// SPDX-License-Identifier: MIT
#include "emulator/page/style.h"

namespace stowra_emulator {

const char* const kPageStyle = R"css(
    :root { --ink: #24303c; --soft: #5a6570; --line: #d5dbe0; --accent: #a9471f; --on-accent: #fff;
      --page: #f5f6f7; --card: #fff; --bad: #b3261e; }
    @media (prefers-color-scheme: dark) {
      :root { --ink: #e6eaee; --soft: #a8b2bc; --line: #36414b; --accent: #f2a583; --on-accent: #1b1410;
        --page: #13181d; --card: #1c232a; --bad: #ff9d94; }
      img { filter: brightness(.88); }
    }
    * { box-sizing: border-box; }
    body { margin: 0; color: var(--ink); background: var(--page); overflow-wrap: anywhere;
      font: 16px/1.5 system-ui, -apple-system, "Segoe UI", "DejaVu Sans", sans-serif; }
    a { color: inherit; }
    a:hover { color: var(--accent); }
    :focus-visible { outline: 3px solid var(--accent); outline-offset: 2px; border-radius: 4px; }
    header { background: var(--card); border-bottom: 1px solid var(--line); }
    header div { max-width: 1140px; margin: auto; padding: 12px 24px; display: flex; gap: 10px 22px;
      align-items: center; flex-wrap: wrap; }
    header a { text-decoration: none; }
    .home { font-weight: 700; font-size: 20px; color: var(--accent); }
    header form { flex: 1 1 220px; min-width: 0; display: flex; gap: 8px; max-width: 520px; margin-left: auto; }
    input, select, button { font: inherit; color: inherit; padding: 6px 10px; border: 1px solid var(--soft);
      border-radius: 8px; background: var(--page); max-width: 100%; }
    header input { flex: 1; min-width: 0; width: 100%; }
    button, .button { background: var(--accent); color: var(--on-accent); border-color: var(--accent);
      cursor: pointer; }
    .button { display: inline-block; padding: 8px 14px; border-radius: 8px; text-decoration: none; }
    .button:hover { color: var(--on-accent); filter: brightness(1.1); }
    button.plain { background: none; color: inherit; border-color: var(--soft); }
    main { max-width: 1140px; margin: auto; padding: 20px 24px 40px; }
    h1 { font-size: 26px; line-height: 1.25; margin: 8px 0 4px; }
    h2 { font-size: 19px; margin: 0 0 8px; }
    h3 { font-size: 16px; margin: 10px 0 4px; }
    p { margin: 4px 0; }
    code, pre { font: 14px/1.45 ui-monospace, "DejaVu Sans Mono", monospace; }
    pre { margin: 0; padding: 10px; white-space: pre-wrap; background: var(--page); border-radius: 8px; }
    .soft { color: var(--soft); font-size: 14px; }
    section { margin: 18px 0; }
    .card, .results li, .model { background: var(--card); border: 1px solid var(--line); border-radius: 12px;
      padding: 16px; }
    .results { list-style: none; margin: 18px 0; padding: 0; display: grid; gap: 18px;
      grid-template-columns: repeat(auto-fill, minmax(min(235px, 100%), 1fr)); }
    .results li { padding: 12px; }
    .results a { text-decoration: none; }
    .results p a { text-decoration: underline; }
    .results h2, .results h3 { font-size: 16px; margin: 10px 0 0; }
    img { display: block; width: 100%; height: auto; border-radius: 8px; background: #eceff1; }
    .model { display: flex; flex-wrap: wrap; gap: 28px; padding: 20px; }
    .model img { flex: 1 1 420px; min-width: 0; max-width: 640px; align-self: flex-start; }
    .model div { flex: 1 1 240px; min-width: 0; }
    .downloads { list-style: none; padding: 0; display: grid; gap: 10px; }
    .downloads .soft { display: block; }
    nav { display: flex; justify-content: space-between; font-weight: 600; }
    .rows { list-style: none; margin: 0 0 12px; padding: 0; display: grid; gap: 8px; }
    .row { display: flex; flex-wrap: wrap; gap: 8px 14px; align-items: center; }
    .row code { flex: 0 1 auto; min-width: 0; }
    .row input[type=number] { width: 5em; }
    .switch { width: 58px; text-align: center; }
    .switch[aria-checked=false] { background: none; color: inherit; border-color: var(--soft); }
    .requests { list-style: none; margin: 8px 0 0; padding: 0; }
    .requests li { border-top: 1px solid var(--line); padding: 6px 0; }
    summary { cursor: pointer; }
    .status, .method { font-weight: 600; }
    .bad { color: var(--bad); }
    .fault { border: 1px solid var(--bad); color: var(--bad); border-radius: 6px; padding: 0 6px;
      font-size: 14px; }
    details section { margin: 8px 0; }
    dl { margin: 8px 0; display: grid; gap: 2px 18px; grid-template-columns: minmax(0, 1fr); }
    dd { margin: 0 0 8px; color: var(--soft); }
    @media (min-width: 700px) { dl { grid-template-columns: minmax(180px, auto) minmax(0, 1fr); } }
    @media (max-width: 500px) { header div, main { padding-left: 14px; padding-right: 14px; } }
  )css";

}  // namespace stowra_emulator
