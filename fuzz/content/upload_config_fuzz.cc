// SPDX-License-Identifier: MIT
// An upload configuration beside a second reading, twice into one object that held something
// before. Input: the document.

#include "common_stowraapi/content/upload_config.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common_stowraapi/platform/ustring.h"
#include "fuzz/platform/xml/tree.h"
#include "fuzz/support/check.h"

namespace {

using ovrant::stowraapiclient::UploadConfig;
using ovrant::stowraapiclient::UploadFile;
using ovrant::utils::ovrant_ustring;
using stowra_fuzz::XmlNode;
using stowra_fuzz::XmlTree;

struct FileModel {
  std::string upload_url;
  std::string type;
  bool zipped = false;
  std::string name;
  std::string format;
  int width = 0;
  int height = 0;
};

bool Take(const std::optional<std::string>& from, std::string& to) {
  if (from) to = *from;
  return from.has_value();
}

bool SpellsTrue(std::string text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
  }
  return text == "true";
}

struct Model {
  std::string success_url = "https://before/success";
  std::string failure_url = "https://before/failure";
  std::vector<FileModel> files{1};

  // Whether the document is a whole configuration.
  bool Add(const XmlNode& document) {
    const XmlNode* const upload = document.Child("upload");
    if (upload == nullptr) return false;
    bool complete = Take(upload->ChildText("successUrl"), success_url);
    complete &= Take(upload->ChildText("failureUrl"), failure_url);
    const XmlNode* const list = upload->Child("files");
    if (list == nullptr) return false;
    for (const XmlNode* file = list->Child("file"); file != nullptr;
         file = file->NextSibling("file")) {
      complete &= AddFile(*file);
    }
    return complete;
  }

  bool AddFile(const XmlNode& node) {
    FileModel& file = files.emplace_back();
    const bool has_url = Take(node.ChildText("uploadUrl"), file.upload_url);
    const bool has_type = Take(node.ChildText("type"), file.type);
    file.zipped = SpellsTrue(node.ChildText("zipped").value_or(""));
    Take(node.ChildText("name"), file.name);
    Take(node.ChildText("format"), file.format);
    file.width = node.ChildInt("width").value_or(0);
    file.height = node.ChildInt("height").value_or(0);
    return has_url && has_type;
  }

  void Check(const UploadConfig& config) const {
    FUZZ_CHECK(config.success_url_.utf8() == success_url);
    FUZZ_CHECK(config.failure_url_.utf8() == failure_url);
    FUZZ_CHECK(config.files_.size() == files.size());
    for (std::size_t i = 0; i < files.size(); ++i) CheckFile(config.files_[i], files[i]);
  }

  static void CheckFile(const UploadFile& file, const FileModel& model) {
    FUZZ_CHECK(file.upload_url_.utf8() == model.upload_url);
    FUZZ_CHECK(file.type_.utf8() == model.type);
    FUZZ_CHECK(file.zipped_ == model.zipped);
    FUZZ_CHECK(file.name_.utf8() == model.name);
    FUZZ_CHECK(file.format_.utf8() == model.format);
    FUZZ_CHECK(file.width_ == model.width);
    FUZZ_CHECK(file.height_ == model.height);
    FUZZ_CHECK(file.file_path_.empty() && file.zipped_file_path_.empty());
    FUZZ_CHECK(file.opaque_value_ == 0);
  }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const XmlTree tree({reinterpret_cast<const char*>(data), size});
  UploadConfig config;
  config.Init("https://host/config");
  Model model;
  config.success_url_ = model.success_url.c_str();
  config.failure_url_ = model.failure_url.c_str();
  config.files_.resize(1);
  std::vector<unsigned char> bytes(data, data + size);
  for (int i = 0; i < 2; ++i) {
    const bool parsed = config.ParseResponse(bytes.data(), bytes.size());
    if (tree.verdict() == XmlTree::Verdict::kEither) return 0;
    const bool is_open = tree.verdict() == XmlTree::Verdict::kOpened;
    FUZZ_CHECK(parsed == (is_open && model.Add(tree.document())));
    model.Check(config);
  }
  UploadConfig copy(config);
  config.Clear();
  FUZZ_CHECK(config.url_ == "https://host/config");
  FUZZ_CHECK(config.success_url_.empty() && config.failure_url_.empty() && config.files_.empty());
  model.Check(copy);
  config = copy;
  model.Check(config);
  return 0;
}
