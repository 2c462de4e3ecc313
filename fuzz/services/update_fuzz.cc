// SPDX-License-Identifier: MIT
// Answers of the update service beside a model. Input: two answers, with a NUL between them: what
// the first one left counts in the second.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "common_stowraapi/platform/ustring.h"
#include "common_stowraapi/services/update_query.h"
#include "fuzz/json/json_model.h"
#include "fuzz/support/check.h"
#include "fuzz/support/input.h"

namespace {

using ovrant::utils::ovrant_ustring;
using ovrant::webservices::UpdateQuery;
using stowra_fuzz::IntRange;
using stowra_fuzz::JsonNode;
using stowra_fuzz::JsonText;
using stowra_fuzz::TakeInt;
using stowra_fuzz::TakeText;

struct DataFile {
  IntRange version{-1, -1};
  std::string filename;
  std::string url;
};

class Model {
 public:
  // Whether the answer counts as a success.
  bool Take(const JsonText& answer) {
    data_files_.clear();
    if (answer.verdict == JsonText::Verdict::kRefused) return false;
    const JsonNode& root = answer.root;
    bool valid = false;
    if (const JsonNode* const update = root.Find("update")) {
      TakeText(*update, "current_version", current_version_);
      TakeText(*update, "expire_version", expire_version_);
      valid = update->Find("expire_version") != nullptr && !current_version_.empty() &&
              !expire_version_.empty();
    }
    if (const JsonNode* const message = root.Find("message")) TakeMessage(*message);
    if (const JsonNode* const files = root.Find("datafiles")) TakeFiles(*files);
    return valid;
  }

  void Check(const UpdateQuery& query) const {
    FUZZ_CHECK(query.current_version_.utf8() == current_version_);
    FUZZ_CHECK(query.expire_version_.utf8() == expire_version_);
    CheckInt(query.message_.id, id_);
    CheckInt(query.message_.max_shows, max_shows_);
    CheckInt(query.message_.width, width_);
    CheckInt(query.message_.height, height_);
    FUZZ_CHECK(query.message_.title.utf8() == title_);
    FUZZ_CHECK(query.message_.url.utf8() == url_);
    FUZZ_CHECK(query.data_files_.size() == data_files_.size());
    for (std::size_t i = 0; i < data_files_.size(); ++i) {
      CheckInt(query.data_files_[i].version, data_files_[i].version);
      FUZZ_CHECK(query.data_files_[i].filename.utf8() == data_files_[i].filename);
      FUZZ_CHECK(query.data_files_[i].url.utf8() == data_files_[i].url);
    }
  }

 private:
  static void CheckInt(int value, const IntRange& expected) {
    FUZZ_CHECK(value == expected.low || value == expected.high);
  }

  void TakeMessage(const JsonNode& message) {
    TakeInt(message, "id", id_);
    TakeInt(message, "max_shows", max_shows_);
    TakeInt(message, "width", width_);
    TakeInt(message, "height", height_);
    TakeText(message, "title", title_);
    TakeText(message, "url", url_);
  }

  void TakeFiles(const JsonNode& files) {
    if (files.kind != JsonNode::Kind::kArray) return;
    for (const JsonNode& element : files.children) {
      if (element.kind != JsonNode::Kind::kObject) continue;
      DataFile& file = data_files_.emplace_back();
      TakeInt(element, "version", file.version);
      TakeText(element, "filename", file.filename);
      TakeText(element, "url", file.url);
    }
  }

  std::string current_version_;
  std::string expire_version_;
  IntRange id_{-1, -1};
  IntRange max_shows_{1, 1};
  IntRange width_{430, 430};
  IntRange height_{540, 540};
  std::string title_;
  std::string url_;
  std::vector<DataFile> data_files_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  stowra_fuzz::Input input(data, size);
  UpdateQuery query;
  Model model;
  model.Check(query);
  for (int i = 0; i < 2; ++i) {
    const std::string_view bytes = i == 0 ? input.Until('\0') : input.Rest();
    const ovrant_ustring body(bytes.data(), static_cast<unsigned long>(bytes.size()));
    const JsonText answer = stowra_fuzz::ReadJson(body.utf8());
    const bool succeeded = query.ParseResponse(body);
    if (answer.verdict == JsonText::Verdict::kEither) return 0;
    FUZZ_CHECK(succeeded == model.Take(answer));
    model.Check(query);
  }
  return 0;
}
