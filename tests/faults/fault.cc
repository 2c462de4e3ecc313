// SPDX-License-Identifier: MIT
#include "tests/faults/fault.h"

#include <utility>

namespace stowra_test {

RawServer& Stage::AddServer(RawServer::Handler handler, RawServer::Options options) {
  options.records = false;
  return *servers_.emplace_back(std::make_unique<RawServer>(std::move(handler), options));
}

bool Stage::WaitUntilQuiet(int kept) const {
  bool quiet = true;
  for (const auto& server : servers_) {
    quiet = server->WaitUntilOpen(server == servers_.back() ? kept : 0) && quiet;
  }
  return quiet;
}

std::string Stage::Url(const char* target) const {
  return url.empty() ? servers_.back()->Url(target) : url;
}

std::vector<Way> Downloads() {
  return {Way::kDownload, Way::kDownloadWithDelegate, Way::kDownloadTo};
}

std::vector<Way> EveryWay() {
  return {Way::kDownload,    Way::kDownloadWithDelegate, Way::kDownloadTo,
          Way::kSendAndRead, Way::kUploadWithDelegate,   Way::kUploadFromWithDelegate};
}

std::vector<Way> Uploads() {
  return {Way::kSendAndRead, Way::kUploadWithDelegate, Way::kUploadFrom};
}

RawServer::Handler GoodOr(RawServer::Handler handler) {
  return [handler = std::move(handler)](const RawRequest& request, RawConnection& connection) {
    if (request.target == kGoodTarget) {
      connection.Write(Response(200, kGoodBody));
    } else {
      handler(request, connection);
    }
  };
}

RawServer::Handler SayThenClose(std::string bytes) {
  return GoodOr(AlwaysThenClose(std::move(bytes)));
}

}  // namespace stowra_test
