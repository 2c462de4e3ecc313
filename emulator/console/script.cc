// SPDX-License-Identifier: MIT
#include "emulator/services.h"

namespace stowra_emulator {
namespace {

constexpr const char* kScript = R"js(// Shows the requests as they are answered.

const list = document.getElementById('requests');
const state = document.getElementById('requests-state');
const longest = Number(list.dataset.longest);

function element(name, className, text) {
  const made = document.createElement(name);
  if (className) made.className = className;
  made.textContent = text;
  return made;
}

function message(title, head, body) {
  const section = element('section', '', '');
  section.append(element('h3', '', title), element('pre', '', (head + body).trimEnd()));
  return section;
}

function item(request) {
  const details = element('details', '', '');
  const summary = element('summary', '', '');
  const kind = request.status >= 400 ? 'status bad' : 'status';
  summary.append(
      element('span', kind, String(request.status)), ' ',
      element('span', 'method', request.method), ' ',
      element('span', 'target', request.target), ' ');
  if (request.fault) summary.append(element('span', 'fault', request.fault), ' ');
  const facts = `${request.time}, ${request.milliseconds} ms, ${request.bytes} bytes`;
  summary.append(element('span', 'soft', facts));
  details.append(summary, message('Request', request.requestHead, request.requestBody),
                 message('Response', request.responseHead, request.responseBody));
  const made = element('li', '', '');
  made.append(details);
  return made;
}

const events = new EventSource('/-/events');
events.onopen = () => { state.textContent = 'Live: new requests come at the top.'; };
events.onerror = () => { state.textContent = 'Not connected. Trying again…'; };
events.onmessage = (event) => {
  list.prepend(item(JSON.parse(event.data)));
  while (list.children.length > longest) list.lastElementChild.remove();
};
)js";

}  // namespace

void AnswerScript(const Call&, httplib::Response& response) {
  response.set_content(kScript, "text/javascript; charset=utf-8");
}

}  // namespace stowra_emulator
