// The services and where they are reached.

#ifndef EMULATOR_ROUTE_H_
#define EMULATOR_ROUTE_H_

#include <httplib.h>

#include <vector>

#include "emulator/database.h"

namespace stowra_emulator {

// Answers one request from the database. Sets a status only if it is not 200. Handlers run one at a
// time, so they need no locks. One that throws has its answer replaced: by the status and text of a
// RequestError, by status 500 for any other exception.
using Handler = void (*)(const httplib::Request& request, Database& database,
                         httplib::Response& response);

struct Route {
  const char* method;  // "GET" takes HEAD too.
  const char* path;
  Handler handler;
  const char* description;
};

// Every route there is.
const std::vector<Route>& Routes();

}  // namespace stowra_emulator

#endif  // EMULATOR_ROUTE_H_
