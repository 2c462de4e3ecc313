// SPDX-License-Identifier: MIT
#include "host/request_options.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <charconv>
#include <iterator>
#include <limits>
#include <string_view>
#include <system_error>

#include "common_stowraapi/version.h"
#include "host/header_lines.h"
#include "host/service_url.h"

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

std::string CheckVersion(const std::string& text) {
  return CheckWholeNumber(text, 0, std::numeric_limits<int>::max(), "a version number");
}

std::string CheckRetries(const std::string& text) {
  constexpr unsigned long kMostRetries = 100;
  return CheckWholeNumber(text, 0, kMostRetries, "a number from 0 to 100");
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

// Replaces "@FILE" by the headers in the file.
void ReadHeaderFiles(RequestOptions& options) {
  std::string why;
  std::vector<std::string> headers;
  for (const std::string& text : options.headers) {
    if (!ReadHeaderLines(text, headers, why)) throw CLI::ValidationError("--header", why);
  }
  options.headers = std::move(headers);

  std::vector<std::pair<std::string, std::string>> headers_to;
  for (const auto& [origin, text] : options.headers_to) {
    std::vector<std::string> lines;
    if (!ReadHeaderLines(text, lines, why)) throw CLI::ValidationError("--header-to", why);
    for (const std::string& line : lines) headers_to.emplace_back(origin, line);
  }
  options.headers_to = std::move(headers_to);
}

// The address that a command has without one on the command line, relative to --url-base. Empty if
// it needs one.
std::string DefaultAddress(const std::string& command) {
  const bool needs_one = command == "download" || command == "upload" || command == "check";
  return needs_one ? std::string() : command;
}

bool IsAddress(const std::string& text) {
  return IsWebUrl(text) || (!text.empty() && (text[0] == '/' || text[0] == '?'));
}

// The address of a search may be words, which go on in options.words.
void TakeSearchWords(RequestOptions& options) {
  if (options.url.empty() || IsAddress(options.url)) return;
  if (options.url_base.empty()) {
    throw CLI::ValidationError("URL", CheckWebUrl(options.url) + "; words need --url-base");
  }
  options.words.insert(options.words.begin(), options.url);
  options.url = SearchAddress(std::exchange(options.words, {}));
}

void CompleteUrl(const std::string& command, const std::string& url_name, RequestOptions& options) {
  if (command == "search") TakeSearchWords(options);
  if (!options.words.empty()) {
    throw CLI::ValidationError("WORDS", "they do not go with a URL");
  }
  if (options.url.empty() && !options.url_base.empty()) options.url = DefaultAddress(command);
  if (options.url.empty()) throw CLI::RequiredError(url_name);
  if (command == "check") return;  // may be a file
  options.url = ResolveUrl(options.url_base, options.url);
  const std::string why = CheckWebUrl(options.url);
  if (!why.empty()) throw CLI::ValidationError(url_name, why);
}

void AddUrl(CLI::App& command, RequestOptions& options, const char* name, const char* description) {
  command.add_option(name, options.url, description)
      ->required(DefaultAddress(command.get_name()).empty())
      ->option_text(" ")
      ->check(CLI::Validator(CheckNotEmpty, ""));
  command
      .add_option("--url-base", options.url_base,
                  "URL of the services. Addresses may then be relative to it, or be left out where "
                  "the service has its usual name")
      ->type_name("URL")
      ->envname("STOWRA_URL_BASE")
      ->check(CLI::Validator(CheckWebUrl, ""));
  command.parse_complete_callback([&command, &options, url_name = std::string(name)] {
    if (command.remaining_size() > 0) return;  // CLI11 refuses these arguments later
    ReadHeaderFiles(options);
    CompleteUrl(command.get_name(), url_name, options);
  });
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
      ->envname("STOWRA_TIMEOUT")
      ->check(CLI::Validator(CheckSeconds, ""));
  command
      .add_option("--max-time", options.max_time,
                  "Fail if the whole command takes longer (default: no limit)")
      ->type_name("SECONDS")
      ->envname("STOWRA_MAX_TIME")
      ->check(CLI::Validator(CheckSeconds, ""));
  command
      .add_option("--header", options.headers,
                  "Also send this header, written \"Name: value\", to the server of URL and to no "
                  "other. @FILE stands for the headers in a file, one a line, and keeps them out "
                  "of the list of processes. May be repeated")
      ->option_text("HEADER (Env:STOWRA_HEADER)")
      ->envname("STOWRA_HEADER")
      ->allow_extra_args(false);
  command
      .add_option("--header-to", options.headers_to,
                  "Also send this header to the server of ORIGIN, such as https://host:8443. May "
                  "be repeated")
      ->option_text("ORIGIN HEADER")
      ->allow_extra_args(false)
      ->check(CLI::Validator(CheckWebUrl, "").application_index(0));
  command
      .add_option("--cacert", options.ca_file,
                  "Trust the certificate authorities in this PEM file instead of the system's")
      ->type_name("FILE")
      ->envname("STOWRA_CACERT")
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
  AddRetryOption(command, options);
}

void AddRetryOption(CLI::App& command, RequestOptions& options) {
  command
      .add_option("--retry", options.retries,
                  "Ask again up to N times, after longer and longer pauses or when Retry-After "
                  "says, if the connection fails or the status is 429, 502, 503 or 504. Only for "
                  "requests that send nothing (default: 0)")
      ->type_name("N")
      ->envname("STOWRA_RETRY")
      ->check(CLI::Validator(CheckRetries, ""));
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

void AddMaxQmfVersion(CLI::App& command, int& version, const char* description) {
  command.add_option("--max-qmf-version", version, description)
      ->type_name("N")
      ->check(CLI::Validator(CheckVersion, ""));
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
