// SPDX-License-Identifier: MIT
#include <algorithm>

#include "emulator/route.h"
#include "emulator/services.h"

namespace stowra_emulator {

const std::vector<Route>& Routes() {
  static const std::vector<Route> routes = {
      {"GET", "/", AnswerIndex, "this page", "/"},
      {"GET", "/user-info", AnswerUserInfo, "the signed-in user; ?user=UID picks another",
       "/user-info"},
      {"GET", "/update", AnswerUpdate, "the version offered, a message, the data files", "/update"},
      {"POST", "/extensions", AnswerExtensions,
       R"(the state of installed extensions: {"extensions": [{"id": "...", "version": "1.0"}]})"},
      {"GET", "/search", AnswerSearch,
       "an Atom feed of models and collections; ?q=WORDS&start=N&count=N, uq, collection, except",
       "/search?q=chair"},
      {"GET", "/search.html", AnswerSearchPage, "the same as a web page with pictures",
       "/search.html"},
      {"GET", "/model", AnswerModelPage, "a web page on the model ?mid=MID", "/model?mid=m-1001"},
      {"GET", "/download", AnswerDownload, "the model's file; ?mid=MID&rtyp=RENDITION",
       "/download?mid=m-1001&rtyp=k2"},
      {"GET", "/thumbnail", AnswerThumbnail, "a PNG picture; ?mid=MID, &rtyp=st or lt for the size",
       "/thumbnail?mid=m-1001&rtyp=lt"},
      {"GET", "/upload-config", AnswerUploadConfig,
       "where to upload; ?name, type, task, priority, zipped=true, files=N",
       "/upload-config?name=Chair"},
      {"POST", "/upload", AnswerUpload, "a multipart form that becomes a model", "", true},
      {"GET", "/upload-succeeded", AnswerUploadSucceeded,
       "a page to show after an upload; ?mid=MID", "/upload-succeeded"},
      {"GET", "/upload-failed", AnswerUploadFailed,
       "a page to show after a failed one; ?reason=TEXT", "/upload-failed"},
      {"GET", "/-/", AnswerIndex, "this page, also while a recording is made or replayed", "/-/"},
      {"GET", "/-/faults", AnswerFaults, "the faults that are set", "/-/faults"},
      {"POST", "/-/faults", AnswerChangeFaults,
       "a change to them: rule=/update=reset@25, or id=N&action=on, off or remove"},
      {"GET", "/-/events", AnswerEvents, "the last requests and those to come, as events"},
      {"GET", "/-/page.js", AnswerScript, "the script of this page"},
  };
  return routes;
}

bool IsControlPath(const std::string& path) { return path.rfind("/-/", 0) == 0; }

std::vector<std::string> FaultRoutes(const ExchangeSource* source) {
  if (source != nullptr) return source->Paths();
  std::vector<std::string> paths;
  for (const Route& route : Routes()) {
    const bool is_service = !IsControlPath(route.path) && route.path != std::string("/");
    if (is_service) paths.emplace_back(route.path);
  }
  return paths;
}

const Route* FindRoute(const std::string& method, const std::string& path) {
  const std::string wanted = method == "HEAD" ? "GET" : method;
  const auto found = std::find_if(Routes().begin(), Routes().end(), [&](const Route& route) {
    return wanted == route.method && path == route.path;
  });
  return found == Routes().end() ? nullptr : &*found;
}

}  // namespace stowra_emulator
