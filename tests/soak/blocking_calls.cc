// SPDX-License-Identifier: MIT
#include "tests/soak/blocking_calls.h"

#include <string>

#include "common_stowraapi/content/content_query.h"
#include "common_stowraapi/content/upload_config.h"
#include "common_stowraapi/platform/internet_data.h"

namespace stowra_test {

using ovrant::internet::InternetData;
using ovrant::stowraapiclient::ContentQuery;
using ovrant::stowraapiclient::UploadConfig;
using ovrant::utils::ovrant_ustring;
using ovrant::utils::StringMap;

namespace {

std::string Body(const unsigned char* data, unsigned long length) {
  return length == 0 ? "" : std::string(reinterpret_cast<const char*>(data), length);
}

}  // namespace

BlockingCalls::BlockingCalls(const RawServer& server, std::uint32_t seed)
    : server_(server), random_(seed), thread_(&BlockingCalls::Run, this) {}

BlockingCalls::~BlockingCalls() {
  Stop();
  thread_.join();
}

void BlockingCalls::Run() {
  while (!stopping_ && !IsViolated()) {
    switch (random_.Draw(4)) {
      case 0:
        Download();
        break;
      case 1:
        SendAndRead();
        break;
      case 2:
        QueryFeed();
        break;
      default:
        QueryConfiguration();
    }
  }
  has_stopped_ = true;
}

Target BlockingCalls::Draw(Document document) { return {document, DrawManner(random_), ++number_}; }

void BlockingCalls::Download() {
  const Target target = Draw(Document::kNumber);
  InternetData transport(server_.Url(target.Path()).c_str());
  const bool received = transport.Download();
  CheckReply(target, received, transport.status_code(),
             Body(transport.received_data(), transport.received_data_length()));
  tally.blocking_downloads.Add();
}

void BlockingCalls::SendAndRead() {
  const Target target = Draw(Document::kNumber);
  const ovrant_ustring url = server_.Url(target.Path()).c_str();
  const std::string sent = BodyOf(target);
  InternetData transport(url);
  transport.set_send_data(reinterpret_cast<const unsigned char*>(sent.data()), sent.size());
  unsigned char* data = nullptr;
  unsigned long length = 0;
  int status = 0;
  StringMap headers;
  headers["X-Soak-Number"] = std::to_string(target.number).c_str();
  StringMap received_headers;
  const bool received = transport.SendAndRead(url, &data, &length, &status, &headers, false, false,
                                              true, "", "", &received_headers);
  CheckReply(target, received, status, Body(data, length));
  Check(received != received_headers.empty(),
        "headers without a response, or a response without any");
  tally.blocking_uploads.Add();
}

void BlockingCalls::QueryFeed() {
  const Target target = Draw(Document::kFeed);
  ContentQuery query;
  const bool good = query.QueryFeed(server_.Url(target.Path()).c_str());
  const ovrant_ustring title = std::to_string(target.number).c_str();
  Check(!good || (StatusOf(target.manner) != 0 && query.title_ == title),
        "a feed that was not requested");
  Check(good || query.title_.empty(), "a failed feed has a title");
  tally.blocking_feeds.Add();
}

void BlockingCalls::QueryConfiguration() {
  const Target target = Draw(Document::kConfiguration);
  UploadConfig config;
  config.Init(server_.Url(target.Path()).c_str());
  const bool good = config.SynchronousQuery();
  const ovrant_ustring number = std::to_string(target.number).c_str();
  Check(!good || (StatusOf(target.manner) != 0 && config.success_url_ == number &&
                  config.files_.size() == 1),
        "a configuration that was not requested");
  Check(good || config.files_.empty(), "a failed configuration has files");
  tally.blocking_configurations.Add();
}

}  // namespace stowra_test
