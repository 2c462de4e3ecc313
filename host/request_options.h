// SPDX-License-Identifier: MIT
// The options of every command that calls a service.

#ifndef HOST_REQUEST_OPTIONS_H_
#define HOST_REQUEST_OPTIONS_H_

#include <string>
#include <utility>
#include <vector>

#include "common_stowraapi/platform/transfer_types.h"
#include "host/trace_options.h"

namespace CLI {
class App;
}  // namespace CLI

namespace stowra {

struct RequestOptions {
  std::string url;
  std::string url_base;            // relative addresses are resolved against it
  std::vector<std::string> words;  // to search for, after the first
  bool async = false;
  bool json = false;
  bool notifications = false;  // print them
  TraceOptions trace;
  float timeout = 0;   // seconds; 0: the library's default
  float max_time = 0;  // seconds for the whole command; 0: no limit
  int retries = 0;
  unsigned long max_bytes = 0;       // of a response body; 0: the library's default
  std::vector<std::string> headers;  // "Name: value", for the origin of `url`
  std::vector<std::pair<std::string, std::string>> headers_to;  // an origin, and "Name: value"
  std::string ca_file;
};

// Adds these options to `command`. Parsing fills `options`, which must outlive `command`. `url` is
// then a whole URL, and a header file stands as its headers.
void AddRequestOptions(CLI::App& command, RequestOptions& options);

// The same for a command that always waits and has no notifications. It gets no --async. The help
// shows `url_name` and `url_description`.
void AddWaitingOptions(CLI::App& command, RequestOptions& options, const char* url_name = "URL",
                       const char* url_description = "URL of the service");

// Adds --retry, which Session::Repeat obeys. AddWaitingOptions adds it, too.
void AddRetryOption(CLI::App& command, RequestOptions& options);

// Adds --max-qmf-version. Parsing sets `version`, which must outlive `command`.
void AddMaxQmfVersion(CLI::App& command, int& version, const char* description);

// An empty string if `text` is a decimal number from `least` to `most`. Otherwise an error text
// that says it is not `what`.
std::string CheckWholeNumber(const std::string& text, unsigned long least, unsigned long most,
                             const char* what);

// The settings of all transfers.
ovrant::internet::TransferDefaults MakeTransferDefaults(const RequestOptions& options);

}  // namespace stowra

#endif  // HOST_REQUEST_OPTIONS_H_
