// SPDX-License-Identifier: MIT
#include "tests/multipart/random_upload.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <random>
#include <sstream>
#include <string_view>
#include <utility>

#include "common_stowraapi/content/multipart_upload.h"
#include "tests/support/text.h"

namespace stowra_test {
namespace {

using ovrant::utils::ovrant_ustring;

// Characters and texts that parsers of headers, URLs or bodies might misread.
constexpr std::string_view kSyntax = ";=%&#\\:-'()<>@,/[]?{}*+~ \t.";
constexpr std::array<std::string_view, 10> kTellingTexts = {
    "%22",   "%0D%0A",       "&#8364;", "; filename=x", "filename*=UTF-8''x",
    "name=", "C:\\models\\", "\\",      "--",           "=?UTF-8?B?eA==?="};

std::string Utf8Of(std::uint32_t code) {
  const wchar_t character[] = {static_cast<wchar_t>(code), L'\0'};
  return code == 0 ? std::string(1, '\0') : ovrant_ustring(character).utf8();
}

class UploadMaker {
 public:
  explicit UploadMaker(std::uint32_t number) : random_(number) {}

  RandomUpload Make() {
    MakeBoundary();
    const std::string subject = RandomText("");
    upload_.subject_id = Text(subject);
    upload_.file.zipped_ = OneIn(2);
    const std::string file_name = FillPaths();
    const Query query = FillUrl();
    FillUnused();
    upload_.data = Data();

    AddField("name", query.name);
    AddField("subjectId", subject.substr(0, subject.find('\0')));
    AddField("subjectClass", "entity");
    AddFile(file_name, query.type);
    if (!query.task.empty()) AddField("task", query.task);
    if (!query.priority.empty()) AddField("priority", query.priority);
    if (upload_.file.zipped_) AddField("isZipped", "true");
    return std::move(upload_);
  }

 private:
  // The parameters of the upload URL that the library uses. Empty if the URL lacks them.
  struct Query {
    std::string name;
    std::string type;
    std::string task;
    std::string priority;
  };

  std::uint32_t Below(std::size_t limit) { return static_cast<std::uint32_t>(random_() % limit); }
  bool OneIn(std::size_t count) { return Below(count) == 0; }

  void MakeBoundary() {
    upload_.boundary = ovrant::stowraapiclient::multipartupload::GetBoundaryString();
    if (OneIn(4)) return;
    constexpr std::size_t kDigits = 16;  // at the end; only they vary
    for (std::size_t i = upload_.boundary.size() - kDigits; i < upload_.boundary.size(); ++i) {
      upload_.boundary[i] = static_cast<char>('0' + Below(10));
    }
  }

  // A random part of the boundary line's beginning, never the whole line.
  std::string CutBoundaryLine() {
    const std::string line = "\r\n--" + upload_.boundary;
    return line.substr(0, 1 + Below(line.size() - 1));
  }

  void BreakBoundaries(std::string& text) const {
    for (std::size_t at = text.find(upload_.boundary); at != std::string::npos;
         at = text.find(upload_.boundary)) {
      text[at] = 'b';
    }
  }

  std::uint32_t CodePoint() {
    switch (Below(8)) {
      case 0:
        return Below(0x20);
      case 1:
        return static_cast<unsigned char>(kSyntax[Below(kSyntax.size())]);
      case 2:
        return 0x80 + Below(0x780);
      case 3: {
        const std::uint32_t code = 0x800 + Below(0xF800);
        return code >= 0xD800 && code < 0xE000 ? 0xFFFD : code;
      }
      case 4:
        return 0x10000 + Below(0x100000);
      default:
        return 0x20 + Below(0x5F);
    }
  }

  std::size_t TextLength() {
    if (OneIn(8)) return 0;
    if (OneIn(500)) return 1000;
    return 1 + Below(OneIn(10) ? 200 : 20);
  }

  // A text for a name or a value, without the characters in `excluded`.
  std::string RandomText(std::string_view excluded) {
    std::string text;
    for (std::size_t left = TextLength(); left > 0; --left) {
      if (OneIn(40)) {
        text += kTellingTexts[Below(kTellingTexts.size())];
      } else if (OneIn(100)) {
        text += CutBoundaryLine();
      } else {
        text += Utf8Of(CodePoint());
      }
    }
    const auto is_excluded = [excluded](char c) {
      return c == '"' || c == '\r' || c == '\n' || excluded.find(c) != std::string_view::npos;
    };
    text.erase(std::remove_if(text.begin(), text.end(), is_excluded), text.end());
    BreakBoundaries(text);
    return text;
  }

  // Sets both paths. Returns the file name that the body must contain.
  std::string FillPaths() {
    const std::string name = RandomText("/");
    std::string folder;
    if (OneIn(2)) folder = "/";
    if (OneIn(2)) folder += RandomText("") + "/";
    ovrant_ustring& used =
        upload_.file.zipped_ ? upload_.file.zipped_file_path_ : upload_.file.file_path_;
    ovrant_ustring& unused =
        upload_.file.zipped_ ? upload_.file.file_path_ : upload_.file.zipped_file_path_;
    used = Text(folder + name);
    if (OneIn(2)) unused = Text(RandomText(""));
    return name;
  }

  std::string Type() {
    if (OneIn(2)) return "application/vnd.brevix.qmf";
    return Trimmed(RandomText("&?"));
  }

  Query FillUrl() {
    Query query;
    std::vector<std::string> parameters;
    const auto add = [&](const char* key, std::string value, std::string& into) {
      if (OneIn(4)) return;
      parameters.push_back(key + value);
      into = std::move(value);
    };
    add("name=", RandomText("&?"), query.name);
    add("type=", Type(), query.type);
    add("task=", RandomText("&?"), query.task);
    add("priority=", RandomText("&?"), query.priority);
    AddOtherParameters(parameters);
    std::shuffle(parameters.begin(), parameters.end(), random_);
    // The library uses the first of several parameters with one name.
    const std::vector<std::string> repeated = parameters;
    for (const std::string& parameter : repeated) {
      if (OneIn(16)) parameters.push_back(parameter.substr(0, parameter.find('=') + 1) + "again");
    }

    std::string url = OneIn(16) ? "" : "http://127.0.0.1/upload?";
    for (std::size_t i = 0; i < parameters.size(); ++i) url += (i == 0 ? "" : "&") + parameters[i];
    upload_.file.upload_url_ = Text(url);
    return query;
  }

  void AddOtherParameters(std::vector<std::string>& parameters) {
    constexpr std::array<const char*, 7> kOthers = {"names=x", "filetype=x", "Name=x", "name",
                                                    "",        "=x",         " task=x"};
    for (const char* other : kOthers) {
      if (OneIn(8)) parameters.emplace_back(other);
    }
  }

  // Sets members that do not appear in the body.
  void FillUnused() {
    upload_.file.type_ = Text(RandomText(""));
    upload_.file.name_ = Text(RandomText(""));
    upload_.file.format_ = Text(RandomText(""));
    upload_.file.width_ = static_cast<int>(Below(5000));
    upload_.file.height_ = static_cast<int>(Below(5000));
  }

  std::size_t DataLength() {
    if (OneIn(10)) return 0;
    if (OneIn(4000)) return Below(4 << 20);
    if (OneIn(200)) return Below(64 << 10);
    return Below(OneIn(2) ? 100 : 4000);
  }

  std::string Data() {
    std::string data(DataLength(), '\0');
    for (char& c : data) c = static_cast<char>(random_() >> 24);
    constexpr std::array<std::string_view, 7> kPieces = {
        "\r\n", "\r\n--", "--", "\r", "\n", std::string_view("\0\0", 2), "\r\n\r\n"};
    for (std::size_t left = data.empty() ? 0 : Below(8); left > 0; --left) {
      const std::string piece =
          OneIn(2) ? CutBoundaryLine() : std::string(kPieces[Below(kPieces.size())]);
      data.insert(Below(data.size() + 1), piece);
    }
    if (OneIn(8)) data.insert(0, CutBoundaryLine());
    if (OneIn(8)) data.insert(0, "--" + upload_.boundary.substr(0, Below(upload_.boundary.size())));
    if (OneIn(8)) data += CutBoundaryLine();
    BreakBoundaries(data);
    return data;
  }

  void AddField(const std::string& name, const std::string& value) {
    upload_.parts.push_back({name, {}, {}, "form-data; name=\"" + name + '"', value});
  }

  void AddFile(const std::string& file_name, const std::string& type) {
    AddField("binary", upload_.data);
    upload_.parts.back().file_name = file_name;
    upload_.parts.back().type = type;
    *upload_.parts.back().disposition += "; filename=\"" + file_name + '"';
  }

  std::mt19937 random_;
  RandomUpload upload_;
};

}  // namespace

std::uint32_t CountBodies(std::uint32_t usual) {
  const char* const count = std::getenv("STOWRA_MULTIPART_BODIES");
  return count == nullptr ? usual : static_cast<std::uint32_t>(std::stoul(count));
}

RandomUpload MakeRandomUpload(std::uint32_t number) { return UploadMaker(number).Make(); }

std::string BuiltUpload::ContentType() const {
  return headers.at(ovrant_ustring("Content-Type")).utf8();
}

BuiltUpload Build(const RandomUpload& upload) {
  namespace multipartupload = ovrant::stowraapiclient::multipartupload;
  std::stringstream out;
  multipartupload::SetupPayload(
      upload.subject_id, &upload.file, reinterpret_cast<const unsigned char*>(upload.data.data()),
      static_cast<unsigned long>(upload.data.size()), upload.boundary, &out);
  BuiltUpload built;
  built.body = out.str();
  built.headers = multipartupload::CreateHeaderDictionary(
      upload.boundary, static_cast<unsigned long>(built.body.size()));
  return built;
}

}  // namespace stowra_test
