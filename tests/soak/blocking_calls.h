// SPDX-License-Identifier: MIT
// Makes calls that block until the reply.

#ifndef TESTS_SOAK_BLOCKING_CALLS_H_
#define TESTS_SOAK_BLOCKING_CALLS_H_

#include <atomic>
#include <cstdint>
#include <string>
#include <thread>

#include "common_stowraapi/content/content_query.h"
#include "common_stowraapi/content/upload_config.h"
#include "common_stowraapi/platform/internet_data.h"
#include "tests/soak/answers.h"
#include "tests/soak/report.h"
#include "tests/support/raw_server.h"

namespace stowra_test {

// Makes such calls on its own thread, one after the other, from construction to Stop(). Checks each
// result against the request.
class BlockingCalls {
 public:
  BlockingCalls(const RawServer& server, std::uint32_t seed)
      : server_(server), random_(seed), thread_(&BlockingCalls::Run, this) {}
  ~BlockingCalls() {
    Stop();
    thread_.join();
  }

  BlockingCalls(const BlockingCalls&) = delete;
  BlockingCalls& operator=(const BlockingCalls&) = delete;

  void Stop() { stopping_ = true; }
  bool has_stopped() const { return has_stopped_; }

 private:
  using InternetData = ovrant::internet::InternetData;

  void Run() {
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

  Target Draw(Document document) { return {document, DrawManner(random_), ++number_}; }

  void Download() {
    const Target target = Draw(Document::kNumber);
    InternetData transport(server_.Url(target.Path()).c_str());
    const bool received = transport.Download();
    CheckReply(target, received, transport.status_code(),
               BytesOf(transport.received_data(), transport.received_data_length()));
    tally.blocking_downloads.Add();
  }

  void SendAndRead() {
    const Target target = Draw(Document::kNumber);
    const ovrant::utils::ovrant_ustring url = server_.Url(target.Path()).c_str();
    const std::string sent = BodyOf(target);
    InternetData transport(url);
    transport.set_send_data(reinterpret_cast<const unsigned char*>(sent.data()), sent.size());
    unsigned char* data = nullptr;
    unsigned long length = 0;
    int status = 0;
    ovrant::utils::StringMap headers;
    headers["X-Soak-Number"] = std::to_string(target.number).c_str();
    ovrant::utils::StringMap received_headers;
    const bool received = transport.SendAndRead(url, &data, &length, &status, &headers, false,
                                                false, true, "", "", &received_headers);
    CheckReply(target, received, status, BytesOf(data, length));
    Check(received != received_headers.empty(),
          "headers without a response, or a response without any");
    tally.blocking_uploads.Add();
  }

  void QueryFeed() {
    const Target target = Draw(Document::kFeed);
    ovrant::stowraapiclient::ContentQuery query;
    const bool good = query.QueryFeed(server_.Url(target.Path()).c_str());
    const ovrant::utils::ovrant_ustring title = std::to_string(target.number).c_str();
    Check(!good || (StatusOf(target.manner) != 0 && query.title_ == title),
          "a feed that was not requested");
    Check(good || query.title_.empty(), "a failed feed has a title");
    tally.blocking_feeds.Add();
  }

  void QueryConfiguration() {
    const Target target = Draw(Document::kConfiguration);
    ovrant::stowraapiclient::UploadConfig config;
    config.Init(server_.Url(target.Path()).c_str());
    const bool good = config.SynchronousQuery();
    const ovrant::utils::ovrant_ustring number = std::to_string(target.number).c_str();
    Check(!good || (StatusOf(target.manner) != 0 && config.success_url_ == number &&
                    config.files_.size() == 1),
          "a configuration that was not requested");
    Check(good || config.files_.empty(), "a failed configuration has files");
    tally.blocking_configurations.Add();
  }

  const RawServer& server_;
  Random random_;
  std::uint32_t number_ = 0;
  std::atomic<bool> stopping_{false};
  std::atomic<bool> has_stopped_{false};
  std::thread thread_;
};

}  // namespace stowra_test

#endif  // TESTS_SOAK_BLOCKING_CALLS_H_
