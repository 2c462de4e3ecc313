// SPDX-License-Identifier: MIT
#include "host/trace_printer.h"

#include <fmt/format.h>

#include <string_view>

#include "host/waterfall_text.h"

namespace stowra {

using ovrant::internet::TransferEvent;
using Kind = TransferEvent::Kind;

namespace {

void AddHead(const char* prefix, std::string_view head, std::vector<std::string>& lines) {
  while (!head.empty()) {
    const std::string_view line = head.substr(0, head.find('\n'));
    lines.push_back(fmt::format("{} {}", prefix, line));
    head.remove_prefix(std::min(line.size() + 1, head.size()));
  }
}

std::string EndText(const TransferEvent& end) {
  const std::string url = end.request_url.utf8();
  if (!end.error.empty()) {
    return fmt::format("{} {}: {}", end.request_method, url, end.error.utf8());
  }
  return fmt::format("{} {}: HTTP status {}, bytes sent {}, received {}", end.request_method, url,
                     end.status, end.bytes_sent, end.bytes_received);
}

std::string ConnectionText(const TransferEvent& event) {
  return fmt::format("{}connected to {} port {}{}{}", event.is_reused ? "still " : "",
                     event.address.utf8(), event.port, event.tls.empty() ? "" : " with ",
                     event.tls.utf8());
}

// Empty for a step that has no line.
std::string StepText(const TransferEvent& event) {
  switch (event.kind) {
    case Kind::kQueued:
      return "queued";
    case Kind::kStarted:
      return fmt::format("started, {} {}", event.request_method, event.request_url.utf8());
    case Kind::kConnected:
      return ConnectionText(event);
    case Kind::kFirstByte:
      return "the response begins";
    case Kind::kRedirected:
      return fmt::format("HTTP status {}, redirected to {}", event.status,
                         event.redirect_url.utf8());
    case Kind::kPosted:
      return fmt::format("posted {} on thread {}", event.notification.utf8(), event.thread);
    default:
      return "";
  }
}

}  // namespace

std::vector<std::string> StepLines(const TransferEvent& event, int verbosity) {
  std::vector<std::string> lines;
  if (verbosity == 0) return lines;
  const std::string head = event.head.utf8();
  if (event.kind == Kind::kRequest) {
    AddHead(">", head, lines);
  } else {
    AddHead("<", head, lines);
  }
  const bool is_end = event.kind == Kind::kEnded;
  const std::string text = is_end ? EndText(event) : StepText(event);
  if (text.empty() || (!is_end && verbosity < 2)) return lines;
  lines.push_back(
      fmt::format("* transfer {}, {}: {}", event.number, FormatSeconds(event.times.total), text));
  return lines;
}

}  // namespace stowra
