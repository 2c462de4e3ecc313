#include <algorithm>

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
      {"GET", "/search", AnswerSearch,
       "an Atom feed of models and collections; ?q=WORDS&start=N&count=N, uq, collection, except"},
      {"GET", "/search.html", AnswerSearchPage, "the same as a web page with pictures"},
      {"GET", "/model", AnswerModelPage, "a web page on the model ?mid=MID"},
      {"GET", "/download", AnswerDownload, "the model's file; ?mid=MID&rtyp=RENDITION"},
      {"GET", "/thumbnail", AnswerThumbnail,
       "a PNG picture; ?mid=MID, &rtyp=st or lt for the size"},
      {"GET", "/upload-config", AnswerUploadConfig,
       "where to upload; ?name, type, task, priority, zipped=true, files=N"},
      {"POST", "/upload", AnswerUpload, "a multipart form that becomes a model", true},
      {"GET", "/upload-succeeded", AnswerUploadSucceeded,
       "a page to show after an upload; ?mid=MID"},
      {"GET", "/upload-failed", AnswerUploadFailed,
       "a page to show after a failed one; ?reason=TEXT"},
  };
  return routes;
}

const Route* FindRoute(const std::string& method, const std::string& path) {
  const std::string wanted = method == "HEAD" ? "GET" : method;
  const auto found = std::find_if(Routes().begin(), Routes().end(), [&](const Route& route) {
    return wanted == route.method && path == route.path;
  });
  return found == Routes().end() ? nullptr : &*found;
}

}  // namespace stowra_emulator
