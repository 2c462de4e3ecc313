// The routes to the services.

#ifndef EMULATOR_ROUTE_H_
#define EMULATOR_ROUTE_H_

#include <httplib.h>

#include <vector>

#include "emulator/database.h"

namespace stowra_emulator {

// Answers one request from the database. Sets a status only if it is not 200. Handlers run one at a
// time, so they need no locks. An exception replaces the answer: a RequestError gives its status
// and text, any other gives status 500.
using Handler = void (*)(const httplib::Request& request, Database& database,
                         httplib::Response& response);

struct Route {
  const char* method;  // "GET" also answers HEAD.
  const char* path;
  Handler handler;
  const char* description;
};

// All routes.
const std::vector<Route>& Routes();

}  // namespace stowra_emulator

#endif  // EMULATOR_ROUTE_H_
