#include "emulator/dispatcher.h"

#include "emulator/json_reply.h"
#include "emulator/request_error.h"
#include "emulator/route.h"

namespace stowra_emulator {

void Dispatcher::Answer(const httplib::Request& request, httplib::Response& response) {
  const std::string method = request.method == "HEAD" ? "GET" : request.method;
  std::string allowed;
  for (const Route& route : Routes()) {
    if (request.path != route.path) continue;
    if (method == route.method) {
      const std::lock_guard<std::mutex> lock(mutex_);
      try {
        route.handler(request, database_, response);
      } catch (const RequestError& error) {
        SetError(response, error.status, error.what());
      }
      return;
    }
    if (!allowed.empty()) allowed += ", ";
    allowed += route.method == std::string("GET") ? "GET, HEAD" : route.method;
  }
  if (allowed.empty()) {
    SetError(response, 404, "no route '" + request.path + "'; GET / lists all routes");
  } else {
    response.set_header("Allow", allowed);
    SetError(response, 405, "'" + request.path + "' accepts only " + allowed);
  }
}

}  // namespace stowra_emulator
