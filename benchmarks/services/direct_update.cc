// SPDX-License-Identifier: MIT
#include "benchmarks/services/direct_update.h"

#include <rapidjson/document.h>

#include <utility>

namespace stowra_bench {
namespace {

using ovrant::utils::ovrant_ustring;
using ovrant::webservices::DataFileData;
using ovrant::webservices::MessageData;

using Json = rapidjson::Value;

const Json* Find(const Json& object, const char* name) {
  if (!object.IsObject()) return nullptr;
  const auto member = object.FindMember(name);
  return member == object.MemberEnd() ? nullptr : &member->value;
}

void Read(const Json& object, const char* name, ovrant_ustring& field) {
  const Json* const member = Find(object, name);
  if (member != nullptr && member->IsString()) field = ovrant_ustring(member->GetString());
}

void Read(const Json& object, const char* name, int& field) {
  const Json* const member = Find(object, name);
  if (member != nullptr && member->IsInt()) field = member->GetInt();
}

void ReadMessage(const Json& object, MessageData& message) {
  Read(object, "id", message.id);
  Read(object, "max_shows", message.max_shows);
  Read(object, "width", message.width);
  Read(object, "height", message.height);
  Read(object, "title", message.title);
  Read(object, "url", message.url);
}

void ReadDataFiles(const Json& list, std::vector<DataFileData>& files) {
  if (!list.IsArray()) return;
  for (const Json& element : list.GetArray()) {
    if (!element.IsObject()) continue;
    DataFileData file;
    Read(element, "version", file.version);
    Read(element, "filename", file.filename);
    Read(element, "url", file.url);
    files.push_back(std::move(file));
  }
}

}  // namespace

bool DirectUpdate(const std::string& body, UpdateResults& results) {
  std::string text = body;
  rapidjson::Document document;
  if (document.ParseInsitu(text.data()).HasParseError()) return false;
  const Json* const update = Find(document, "update");
  if (update != nullptr) {
    Read(*update, "current_version", results.current_version);
    Read(*update, "expire_version", results.expire_version);
  }
  if (const Json* message = Find(document, "message")) ReadMessage(*message, results.message);
  if (const Json* files = Find(document, "datafiles")) ReadDataFiles(*files, results.data_files);
  return !results.current_version.empty() && !results.expire_version.empty();
}

}  // namespace stowra_bench
