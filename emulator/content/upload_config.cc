// SPDX-License-Identifier: MIT
#include <string>

#include "emulator/content/picture_size.h"
#include "emulator/content/rendition_type.h"
#include "emulator/markup_writer.h"
#include "emulator/parameters.h"
#include "emulator/services.h"
#include "emulator/web_address.h"

namespace stowra_emulator {
namespace {

constexpr int kMaxFiles = 20;

struct FileWanted {
  std::string name;
  std::string type;
  std::string task;
  std::string priority;
  bool is_zipped = false;
};

// Clients copy the values into the form without decoding them, so the type has few escapes.
std::string UploadAddress(const std::string& site, const FileWanted& file) {
  std::string address =
      site + "/upload?name=" + PercentEncode(file.name) + "&type=" + PercentEncode(file.type, "/+");
  if (!file.task.empty()) address += "&task=" + PercentEncode(file.task);
  if (!file.priority.empty()) address += "&priority=" + PercentEncode(file.priority);
  return address;
}

void WriteFile(MarkupWriter& config, const std::string& site, const FileWanted& file) {
  const PictureSize& picture = PictureSizes().front();
  config.Begin("file");
  config.Element("uploadUrl", UploadAddress(site, file));
  config.Element("type", file.type);
  config.Element("zipped", file.is_zipped ? "true" : "false");
  config.Element("format", ExtensionOfType(file.type));
  config.Element("width", std::to_string(picture.width));
  config.Element("height", std::to_string(picture.height));
  config.Element("name", file.name);
  config.End();
}

}  // namespace

void AnswerUploadConfig(const Call& call, httplib::Response& response) {
  AllowParameters(call.request, {"name", "type", "task", "priority", "zipped", "files"});
  FileWanted file;
  file.type = TextParameter(call.request, "type", kQmfType);
  file.task = TextParameter(call.request, "task", "create");
  file.priority = TextParameter(call.request, "priority", "1");
  file.is_zipped = FlagParameter(call.request, "zipped");
  const std::string name = TextParameter(call.request, "name", "Untitled");
  const int files = NumberParameter(call.request, "files", 1, 0, kMaxFiles);
  const std::string site = SiteAddress(call.request);

  MarkupWriter config(R"(<?xml version="1.0" encoding="UTF-8"?>)");
  config.Begin("upload");
  config.Element("successUrl", site + "/upload-succeeded");
  config.Element("failureUrl", site + "/upload-failed");
  config.Begin("files");
  for (int number = 1; number <= files; ++number) {
    file.name = number == 1 ? name : name + " " + std::to_string(number);
    WriteFile(config, site, file);
  }
  response.set_content(config.Finish(), "application/xml");
}

}  // namespace stowra_emulator
