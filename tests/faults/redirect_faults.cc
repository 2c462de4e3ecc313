// SPDX-License-Identifier: MIT
// Redirects in a circle, to schemes that are not allowed and to a long URL.

#include "tests/faults/fault.h"

namespace stowra_test {
namespace {

std::string Redirect(const std::string& location) {
  return Response(302, "moved", "Location: " + location + "\r\n");
}

Fault RedirectedTo(const char* name, const char* location, TransferError error) {
  Fault fault = {name, [location](Stage& stage) { stage.AddServer(Always(Redirect(location))); },
                 Failed(302, error)};
  fault.kept_connections = 1;
  return fault;
}

// libcurl takes no header line as long as this.
Fault LongLocation() {
  const std::string location = '/' + std::string(250'000, 'x');
  return {"LongLocation",
          [location](Stage& stage) { stage.AddServer(SayThenClose(Redirect(location))); },
          Failed(302, TransferError::kTooLarge)};
}

}  // namespace

std::vector<Fault> RedirectFaults() {
  return {RedirectedTo("RedirectLoop", "/", TransferError::kTooManyRedirects),
          RedirectedTo("RedirectToFile", "file:///etc/passwd", TransferError::kForbiddenRedirect),
          RedirectedTo("RedirectToFtp", "ftp://127.0.0.1/", TransferError::kForbiddenRedirect),
          LongLocation()};
}

}  // namespace stowra_test
