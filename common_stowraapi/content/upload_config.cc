// SPDX-License-Identifier: MIT
#include "common_stowraapi/content/upload_config.h"

#include <climits>
#include <memory>

#include "common_stowraapi/content/element_list.h"
#include "common_stowraapi/platform/internet_data.h"
#include "common_stowraapi/platform/xml_input.h"
#include "common_stowraapi/succeeds.h"

namespace ovrant::stowraapiclient {

using ovrant::internet::InternetData;
using ovrant::utils::ovrant_ustring;

namespace {

// False if a required value is missing.
bool ReadFile(IXMLInput& reader, UploadFile& file) {
  const bool has_url = reader.GetElementText("uploadUrl", file.upload_url_);
  const bool has_type = reader.GetElementText("type", file.type_);
  ovrant_ustring zipped("false");
  reader.GetElementText("zipped", zipped);
  file.zipped_ = zipped.compare_nocase("true") == 0;
  reader.GetElementText("format", file.format_);
  reader.GetElementInt("width", file.width_);
  reader.GetElementInt("height", file.height_);
  reader.GetElementText("name", file.name_);
  return has_url && has_type;
}

bool ReadFiles(IXMLInput& reader, std::vector<UploadFile>& files) {
  bool complete = true;
  const bool found = InElement(reader, "files", [&] {
    ForEachElement(reader, "file", [&] {
      UploadFile file;
      complete = ReadFile(reader, file) && complete;
      files.push_back(file);
    });
  });
  return found && complete;
}

bool ReadUpload(IXMLInput& reader, UploadConfig& config) {
  bool complete = false;
  InElement(reader, "upload", [&] {
    const bool has_success_url = reader.GetElementText("successUrl", config.success_url_);
    const bool has_failure_url = reader.GetElementText("failureUrl", config.failure_url_);
    complete = ReadFiles(reader, config.files_) && has_success_url && has_failure_url;
  });
  return complete;
}

bool DownloadAndParse(UploadConfig& config) {
  InternetData transport(config.url_);
  return transport.Download() &&
         config.ParseResponse(transport.received_data(), transport.received_data_length());
}

}  // namespace

UploadFile::UploadFile() = default;
UploadFile::UploadFile(const UploadFile& other) = default;
UploadFile& UploadFile::operator=(const UploadFile& other) = default;
UploadFile::~UploadFile() = default;

UploadConfig::UploadConfig() = default;
UploadConfig::UploadConfig(const UploadConfig& other) = default;
UploadConfig& UploadConfig::operator=(const UploadConfig& other) = default;
UploadConfig::~UploadConfig() = default;

void UploadConfig::Init(const ovrant_ustring& url) {
  url_ = url;
  Clear();
}

void UploadConfig::Clear() {
  success_url_.clear();
  failure_url_.clear();
  files_.clear();
}

bool UploadConfig::ParseResponse(unsigned char* data, unsigned long length) {
  if (length > INT_MAX) return false;
  return Succeeds([&] {
    const std::unique_ptr<IXMLInput> reader(Get_IXMLInput(data, static_cast<int>(length)));
    return reader && ReadUpload(*reader, *this);
  });
}

bool UploadConfig::SynchronousQuery() {
  const bool succeeded = Succeeds([this] { return DownloadAndParse(*this); });
  if (!succeeded) Clear();
  return succeeded;
}

}  // namespace ovrant::stowraapiclient
