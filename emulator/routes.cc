#include "emulator/route.h"
#include "emulator/services.h"

namespace stowra_emulator {

const std::vector<Route>& Routes() {
  static const std::vector<Route> routes = {
      {"GET", "/", AnswerIndex, "this page"},
      {"GET", "/user-info", AnswerUserInfo, "the signed-in user; ?user=UID picks another"},
      {"GET", "/update", AnswerUpdate, "the version offered, a message, the data files"},
      {"POST", "/extensions", AnswerExtensions,
       R"(the state of installed extensions: {"extensions": [{"id": "...", "version": "1.0"}]})"},
  };
  return routes;
}

}  // namespace stowra_emulator
