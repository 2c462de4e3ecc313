// Redirects in a circle and to schemes that are not allowed.

#include "tests/faults/fault.h"

namespace stowra_test {
namespace {

std::string Redirect(const std::string& location) {
  return Response(302, "moved", "Location: " + location + "\r\n");
}

Fault RedirectedTo(const char* name, const char* location) {
  Fault fault = {name,
                 [location](Stage& stage) { stage.AddServer(Always(Redirect(location))); },
                 {false, 302, ""}};
  fault.kept_connections = 1;
  fault.runs = 1500;
  fault.kept_blocks = kMostKeptBlocks;
  return fault;
}

}  // namespace

std::vector<Fault> RedirectFaults() {
  return {RedirectedTo("RedirectLoop", "/"), RedirectedTo("RedirectToFile", "file:///etc/passwd"),
          RedirectedTo("RedirectToFtp", "ftp://127.0.0.1/")};
}

}  // namespace stowra_test
