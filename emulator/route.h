// SPDX-License-Identifier: MIT
// The routes to the services.

#ifndef EMULATOR_ROUTE_H_
#define EMULATOR_ROUTE_H_

#include <httplib.h>

#include <string>
#include <vector>

#include "emulator/call.h"

namespace stowra_emulator {

// Answers one request. Sets a status only if it is not 200. Handlers run one at a
// time, so they need no locks. An exception replaces the answer: a RequestError gives its status
// and text, any other gives status 500.
using Handler = void (*)(const Call& call, httplib::Response& response);

struct Route {
  const char* method;  // "GET" also answers HEAD.
  const char* path;
  Handler handler;
  const char* description;
  const char* example = "";  // An address to try in a browser. Empty if there is none.
  bool takes_files = false;  // True allows bodies of any size.
};

// All routes.
const std::vector<Route>& Routes();

// True for the routes of the emulator itself. Nothing is recorded, replayed or spoiled there.
bool IsControlPath(const std::string& path);

// The paths that faults may name. Empty if every path may be.
std::vector<std::string> FaultRoutes(const ExchangeSource* source);

// Null if no route has this method and path. HEAD finds the route of GET.
const Route* FindRoute(const std::string& method, const std::string& path);

}  // namespace stowra_emulator

#endif  // EMULATOR_ROUTE_H_
