// SPDX-License-Identifier: MIT
#include "host/request_options.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <charconv>
#include <string_view>
#include <system_error>

#include "common_stowraapi/version.h"

namespace stowra {

using ovrant::internet::TransferDefaults;
using ovrant::utils::ovrant_ustring;
using ovrant::utils::StringMap;

namespace {

constexpr std::string_view kWhiteSpace = " \t";

// Eleven days. A longer timeout is a mistake.
constexpr float kLongestTimeout = 1e6F;

std::string_view Trim(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(kWhiteSpace);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(kWhiteSpace) - begin + 1);
}

ovrant_ustring ToText(std::string_view utf8) { return ovrant_ustring(utf8.data(), utf8.size()); }

// Each check returns an error text, or an empty string.
std::string CheckNotEmpty(const std::string& text) {
  return text.empty() ? "must not be empty" : "";
}

std::string CheckHeader(const std::string& header) {
  const std::size_t colon = header.find(':');
  const bool good = colon != std::string::npos && !Trim(header.substr(0, colon)).empty();
  return good ? "" : fmt::format("'{}' is not of the form \"Name: value\"", header);
}

std::string CheckOrigin(const std::string& text) {
  const bool good = text.rfind("http://", 0) == 0 || text.rfind("https://", 0) == 0;
  return good ? "" : fmt::format("'{}' does not begin with http:// or https://", text);
}

std::string CheckSeconds(const std::string& text) {
  float seconds = 0;
  // Comparisons with NaN are false, so NaN is refused, too.
  const bool good =
      CLI::detail::lexical_cast(text, seconds) && seconds > 0 && seconds <= kLongestTimeout;
  return good ? ""
              : fmt::format("'{}' is not a number of seconds above 0 and up to {:.0f}", text,
                            kLongestTimeout);
}

// A later header replaces an earlier one of the same name in any letter case.
void AddHeader(std::string_view line, StringMap& headers) {
  const std::size_t colon = line.find(':');
  const ovrant_ustring name = ToText(Trim(line.substr(0, colon)));
  for (auto entry = headers.begin(); entry != headers.end();) {
    entry = entry->first.compare_nocase(name) == 0 ? headers.erase(entry) : std::next(entry);
  }
  headers[name] = ToText(Trim(line.substr(colon + 1)));
}

void AddUrl(CLI::App& command, RequestOptions& options, const char* name, const char* description) {
  command.add_option(name, options.url, description)
      ->required()
      ->option_text(" ")
      ->check(CLI::Validator(CheckNotEmpty, ""));
}

void AddJson(CLI::App& command, RequestOptions& options) {
  command.add_flag("--json", options.json, "Print the result as one line of JSON");
}

void AddTransferOptions(CLI::App& command, RequestOptions& options) {
  AddTraceOptions(command, options.trace);
  command
      .add_option("--timeout", options.timeout,
                  "Fail after so many seconds without progress (default: 30)")
      ->type_name("SECONDS")
      ->check(CLI::Validator(CheckSeconds, ""));
  command
      .add_option("--header", options.headers,
                  "Also send this header, written \"Name: value\", to the server of URL and to no "
                  "other; may be repeated")
      ->option_text("HEADER")
      ->allow_extra_args(false)
      ->check(CLI::Validator(CheckHeader, ""));
  command
      .add_option("--header-to", options.headers_to,
                  "Also send this header to the server of ORIGIN, such as https://host:8443; may "
                  "be repeated")
      ->option_text("ORIGIN HEADER")
      ->allow_extra_args(false)
      ->check(CLI::Validator(CheckOrigin, "").application_index(0))
      ->check(CLI::Validator(CheckHeader, "").application_index(1));
  command
      .add_option("--cacert", options.ca_file,
                  "Trust the certificate authorities in this PEM file instead of the system's")
      ->type_name("FILE")
      ->check(CLI::Validator(CLI::ExistingFile).description(""));
}

}  // namespace

void AddRequestOptions(CLI::App& command, RequestOptions& options) {
  AddUrl(command, options, "URL", "URL of the service");
  command.add_flag("--async", options.async, "Run in the background and complete on the main loop");
  AddJson(command, options);
  command.add_flag("--notifications", options.notifications,
                   "Print notifications to stderr as they arrive");
  AddTransferOptions(command, options);
}

void AddWaitingOptions(CLI::App& command, RequestOptions& options, const char* url_name,
                       const char* url_description) {
  AddUrl(command, options, url_name, url_description);
  AddJson(command, options);
  AddTransferOptions(command, options);
}

std::string CheckWholeNumber(const std::string& text, unsigned long least, unsigned long most,
                             const char* what) {
  unsigned long number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  // CLI11 would read a number with a leading zero as octal.
  const bool has_leading_zero = text.size() > 1 && text[0] == '0';
  const bool good =
      error == std::errc() && stop == end && !has_leading_zero && number >= least && number <= most;
  return good ? "" : fmt::format("'{}' is not {}", text, what);
}

TransferDefaults MakeTransferDefaults(const RequestOptions& options) {
  TransferDefaults defaults;
  defaults.inactivity_timeout = options.timeout;
  defaults.body_cap = options.max_bytes;
  defaults.ca_file = ToText(options.ca_file);
  defaults.user_agent = ToText(fmt::format("stowra/{}", CommonStowraapiVersionNumber));
  for (const std::string& header : options.headers) {
    AddHeader(header, defaults.origin_request_headers[ToText(options.url)]);
  }
  for (const auto& [origin, header] : options.headers_to) {
    AddHeader(header, defaults.origin_request_headers[ToText(origin)]);
  }
  return defaults;
}

}  // namespace stowra
