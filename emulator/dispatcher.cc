// SPDX-License-Identifier: MIT
#include "emulator/dispatcher.h"

#include "emulator/json_reply.h"
#include "emulator/request_error.h"
#include "emulator/route.h"

namespace stowra_emulator {
namespace {

// The methods of a path, or empty if it has no route.
std::string AllowedMethods(const std::string& path) {
  std::string allowed;
  for (const Route& route : Routes()) {
    if (path != route.path) continue;
    if (!allowed.empty()) allowed += ", ";
    allowed += route.method == std::string("GET") ? "GET, HEAD" : route.method;
  }
  return allowed;
}

}  // namespace

void Dispatcher::Answer(const httplib::Request& request, const RequestBody& body,
                        httplib::Response& response) {
  const Route* route = FindRoute(request.method, request.path);
  if (route == nullptr) {
    const std::string allowed = AllowedMethods(request.path);
    if (allowed.empty()) {
      SetError(response, 404, "no route '" + request.path + "'; GET / lists all routes");
    } else {
      response.set_header("Allow", allowed);
      SetError(response, 405, "'" + request.path + "' accepts only " + allowed);
    }
    return;
  }
  const std::lock_guard<std::mutex> lock(mutex_);
  try {
    route->handler({request, body, database_, uploads_, faults_, journal_, source_}, response);
  } catch (const RequestError& error) {
    SetError(response, error.status, error.what());
  }
}

}  // namespace stowra_emulator
