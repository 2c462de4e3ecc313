// SPDX-License-Identifier: MIT
#include <sstream>

#include "benchmarks/content/bare_expat.h"
#include "benchmarks/instructions/case.h"
#include "benchmarks/support/inputs.h"
#include "common_stowraapi/content/content_query.h"
#include "common_stowraapi/content/multipart_upload.h"
#include "common_stowraapi/content/upload_config.h"

namespace stowra_bench {
namespace {

using ovrant::stowraapiclient::ContentQuery;
using ovrant::stowraapiclient::UploadFile;

constexpr int kEntries = 12;
constexpr int kNewestVersion = 8;
constexpr std::size_t kUploadSize = 1000;

void AddFeeds(Cases& cases) {
  const std::string count = std::to_string(kEntries);
  std::string feed = MakeFeed(kEntries);
  cases.push_back({"ContentQueryLoad/stowra/" + count, [feed]() mutable {
                     ContentQuery query;
                     query.max_qmf_version_ = kNewestVersion;
                     return query.Load(reinterpret_cast<unsigned char*>(feed.data()),
                                       static_cast<int>(feed.size())) &&
                            query.items_.size() == kEntries;
                   }});
  cases.push_back({"ContentQueryLoad/expat/" + count, [feed] { return ParseBare(feed); }});
}

void AddUploads(Cases& cases) {
  UploadFile file;
  file.upload_url_ =
      "http://models.stowra.example/upload?name=Chair&type=application/vnd.brevix.qmf";
  file.file_path_ = "models/chair.qmf";
  cases.push_back({"SetupPayload/stowra/" + std::to_string(kUploadSize),
                   [file, bytes = MakeBytes(kUploadSize)] {
                     std::stringstream body;
                     ovrant::stowraapiclient::multipartupload::SetupPayload(
                         "m42", &file, reinterpret_cast<const unsigned char*>(bytes.data()),
                         bytes.size(), "--------------------0123456789", &body);
                     return body.tellp() > static_cast<std::streamoff>(kUploadSize);
                   }});
}

}  // namespace

void AddContentCases(Cases& cases) {
  AddFeeds(cases);
  AddUploads(cases);
}

}  // namespace stowra_bench
