// What every command that asks a service takes.

#ifndef HOST_REQUEST_OPTIONS_H_
#define HOST_REQUEST_OPTIONS_H_

#include <string>
#include <vector>

#include "common_stowraapi/platform/transfer_types.h"

namespace CLI {
class App;
}  // namespace CLI

namespace stowra {

struct RequestOptions {
  std::string url;
  bool async = false;
  bool json = false;
  bool verbose = false;              // notifications are shown
  bool shows_transfers = false;      // each transfer is shown at its end
  float timeout = 0;                 // seconds; 0: the library's own
  unsigned long max_bytes = 0;       // of a response's body; 0: the library's own
  std::vector<std::string> headers;  // "Name: value"
  std::string ca_file;
};

// Adds them to `command`; `options` receives them and must live as long.
void AddRequestOptions(CLI::App& command, RequestOptions& options);

// The same for a command that only ever waits, and has no notifications to show: no --async, and
// --verbose shows the transfers. The help calls the address `url_name` and says what it is.
void AddWaitingOptions(CLI::App& command, RequestOptions& options, const char* url_name = "URL",
                       const char* url_description = "Address of the service");

// Says what is wrong with `text` when it is not a decimal number from `least` to `most`: that it is
// not `what`.
std::string CheckWholeNumber(const std::string& text, unsigned long least, unsigned long most,
                             const char* what);

// What holds for the program's transfers.
ovrant::internet::TransferDefaults MakeTransferDefaults(const RequestOptions& options);

}  // namespace stowra

#endif  // HOST_REQUEST_OPTIONS_H_
