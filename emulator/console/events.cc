// SPDX-License-Identifier: MIT
#include <charconv>
#include <cstdint>
#include <ctime>
#include <nlohmann/json.hpp>
#include <string>

#include "emulator/console/journal.h"
#include "emulator/services.h"

namespace stowra_emulator {
namespace {

using nlohmann::ordered_json;

// After so long without a request, a comment shows whether the client is still there.
constexpr std::chrono::seconds kHeartbeat(5);

std::string ShownBody(const std::string& body) {
  if (body.find('\0') == std::string::npos) return body;
  return "(binary)";
}

// The time of day on this machine.
std::string ClockTime(std::chrono::system_clock::time_point time) {
  const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
  std::tm parts = {};
  ::localtime_r(&seconds, &parts);
  char text[16];
  return std::string(text, std::strftime(text, sizeof(text), "%H:%M:%S", &parts));
}

std::string ToEvent(const JournalEntry& entry) {
  const ordered_json json = {{"time", ClockTime(entry.time)},
                             {"milliseconds", entry.duration.count()},
                             {"method", entry.method},
                             {"target", entry.target},
                             {"status", entry.status},
                             {"fault", entry.fault},
                             {"bytes", entry.body_bytes},
                             {"requestHead", entry.request_head},
                             {"requestBody", ShownBody(entry.request_body)},
                             {"responseHead", entry.response_head},
                             {"responseBody", ShownBody(entry.response_body)}};
  return "id: " + std::to_string(entry.id) +
         "\ndata: " + json.dump(-1, ' ', false, ordered_json::error_handler_t::replace) + "\n\n";
}

// Where a client that comes again goes on. From the start if this run has not reached that.
std::uint64_t StartFor(const httplib::Request& request, const Journal& journal) {
  const std::string text = request.get_header_value("Last-Event-ID");
  std::uint64_t id = 0;
  std::from_chars(text.data(), text.data() + text.size(), id);
  return id > journal.last_id() ? 0 : id;
}

}  // namespace

void AnswerEvents(const Call& call, httplib::Response& response) {
  response.set_header("Cache-Control", "no-store");
  // The journal outlives every connection.
  response.set_chunked_content_provider(
      "text/event-stream", [&journal = call.journal, last = StartFor(call.request, call.journal),
                            is_first = true](std::size_t, httplib::DataSink& sink) mutable {
        // The first comment tells the client that it is connected.
        std::string events = ":\n\n";
        const auto wait = is_first ? std::chrono::seconds(0) : kHeartbeat;
        is_first = false;
        for (const auto& entry : journal.WaitForEntries(last, wait)) {
          events += ToEvent(*entry);
          last = entry->id;
        }
        return !journal.is_closed() && sink.write(events.data(), events.size());
      });
}

}  // namespace stowra_emulator
