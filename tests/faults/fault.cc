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
  return url_.empty() ? servers_.back()->Url(target) : url_;
}

Fault::Fault(const char* its_name, std::function<void(Stage& stage)> its_set, Answer its_answer,
             std::vector<Way> its_ways, int its_kept_connections)
    : name(its_name),
      set(std::move(its_set)),
      answer(std::move(its_answer)),
      ways(std::move(its_ways)),
      kept_connections(its_kept_connections) {}

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
