// SPDX-License-Identifier: MIT
// stowra upload: sends the files of a model.

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "common_stowraapi/content/multipart_upload.h"
#include "common_stowraapi/content/payload_source.h"
#include "common_stowraapi/content/upload_config.h"
#include "common_stowraapi/platform/internet_data.h"
#include "host/commands.h"
#include "host/counting_source.h"
#include "host/error_message.h"
#include "host/json_values.h"
#include "host/request_options.h"
#include "host/response_headers.h"
#include "host/session.h"
#include "host/table.h"
#include "host/terminal.h"
#include "host/upload_configuration.h"
#include "host/upload_problems.h"

namespace stowra {

using ovrant::internet::InternetData;
using ovrant::json::Document;
using ovrant::json::Value;
using ovrant::stowraapiclient::UploadConfig;
using ovrant::stowraapiclient::UploadFile;
using ovrant::utils::GetFileName;
using ovrant::utils::ovrant_ustring;
namespace multipartupload = ovrant::stowraapiclient::multipartupload;

namespace {

constexpr char kUploadExamples[] =
    "Examples:\n"
    "  stowra upload http://127.0.0.1:8080/upload-config chair.qmf --subject-id m42\n"
    "  stowra upload 'http://127.0.0.1:8080/upload-config?zipped=true' chair.qmf.zip \\\n"
    "    --subject-id m42\n"
    "\n"
    "Sends each file to the next URL of the upload configuration and stops at the first failure.\n"
    "The result URL is the page to show at the end. If the configuration asks for more or fewer\n"
    "files, sends nothing and exits with status 2. A file or form that a server may misread is "
    "sent\n"
    "with a warning.\n";

struct UploadOptions : RequestOptions {
  std::vector<std::string> files;
  std::string subject_id;
};

// The outcome for one file.
struct SentFile {
  std::string file;
  std::uint64_t bytes = 0;
  int status = 0;           // HTTP; 0 without a response
  ovrant_ustring location;  // from the response's header; may be empty
};

struct Upload {
  std::vector<SentFile> files;
  ovrant_ustring result_url;
};

ovrant_ustring ToText(const std::string& utf8) { return ovrant_ustring(utf8.data(), utf8.size()); }

bool IsHttpSuccess(int status) { return status >= 200 && status < 300; }

// Sends files one after the other, each to its URL in the configuration.
class Uploader {
 public:
  Uploader(const Session& session, const UploadOptions& options)
      : session_(session), options_(options) {}

  // Fills in `sent` in any case. Prints failures to stderr.
  ExitStatus Send(const std::string& path, UploadFile& file, SentFile& sent) {
    // The user gives the file as the configuration asks for it, zipped or not.
    (file.zipped_ ? file.zipped_file_path_ : file.file_path_) = ToText(path);
    sent.file = path;
    InternetData transport(file.upload_url_);
    const std::string boundary = multipartupload::GetBoundaryString();
    const auto body =
        multipartupload::MakePayloadSource(ToText(options_.subject_id), &file, path, boundary);
    if (!body) {
      Complain(fmt::format("{}: {}", path, std::generic_category().message(errno)));
      return ExitStatus::kCannotRun;
    }
    WarnOfForm(path, file, boundary);
    // The transport knows the length itself.
    for (const auto& [header, value] : multipartupload::CreateHeaderDictionary(boundary, 0)) {
      transport.SetValueForHTTPSendHeaders(header, value);
    }
    CountingSource counting(*body, boundary);
    const bool received = transport.UploadFrom(counting);
    sent.status = transport.status_code();
    const std::string form = FormWithoutFile(file, boundary);
    std::error_code error;
    sent.bytes = std::filesystem::is_regular_file(path, error)
                     ? std::filesystem::file_size(path, error)
                     : counting.size() - std::min<std::uint64_t>(counting.size(), form.size());
    if (counting.count() > CountText(form, boundary)) {
      Warn(fmt::format("{}: the file contains the boundary {}, and a server may cut it there", path,
                       boundary));
    }
    if (!received) return session_.Fail("");
    if (!IsHttpSuccess(sent.status)) return session_.Fail("", ErrorMessage(transport));
    sent.location = FindHeader(transport.received_headers(), "Location");
    return ExitStatus::kDone;
  }

 private:
  void WarnOfForm(const std::string& path, const UploadFile& file, const std::string& boundary) {
    const std::string name = GetFileName(ToText(path), true).utf8();
    for (const std::string& problem : FindUploadProblems(
             {path, name, IsZip(path), file.zipped_, boundary, previous_boundary_})) {
      Warn(fmt::format("{}: {}", path, problem));
    }
    previous_boundary_ = boundary;
  }

  // What a pipe holds can be read only once, so it counts as one.
  static bool IsZip(const std::string& path) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) return true;
    char beginning[2] = {};
    std::ifstream(path, std::ios::binary).read(beginning, sizeof(beginning));
    return std::string_view(beginning, sizeof(beginning)) == "PK";
  }

  std::string FormWithoutFile(const UploadFile& file, const std::string& boundary) const {
    std::stringstream form;
    multipartupload::SetupPayload(ToText(options_.subject_id), &file, nullptr, 0, boundary, &form);
    return form.str();
  }

  const Session& session_;
  const UploadOptions& options_;
  std::string previous_boundary_;
};

std::string ToTable(const Upload& upload) {
  const bool coloured = MayColour(stdout);
  Table files(Table::Labels::kFirstRow);
  files.AddRow({"file", "bytes", "HTTP status", "location"});
  for (const SentFile& sent : upload.files) {
    files.AddRow({sent.file, fmt::format("{}", sent.bytes), fmt::format("{}", sent.status),
                  sent.location.utf8()});
  }
  Table result(Table::Labels::kFirstColumn);
  result.AddRow({"result url", upload.result_url.utf8()});
  return files.ToText(coloured) + "\n" + result.ToText(coloured);
}

std::string ToJson(const Upload& upload) {
  Document document;
  Value files = MakeArray(document);
  for (const SentFile& sent : upload.files) {
    Value file = MakeObject(document);
    file.AddMember("file", MakeText(document, ToText(sent.file)));
    file.AddMember("bytes", MakeSize(document, sent.bytes));
    file.AddMember("status", MakeInt(document, sent.status));
    file.AddMember("location", MakeText(document, sent.location));
    files.PushBack(file);
  }
  document.AddMember("files", files);
  document.AddMember("result_url", MakeText(document, upload.result_url));
  return ToLine(document);
}

ExitStatus SendAll(const Session& session, const UploadOptions& options, UploadConfig& config) {
  Uploader uploader(session, options);
  Upload upload;
  ExitStatus status = ExitStatus::kDone;
  for (std::size_t i = 0; i < options.files.size() && status == ExitStatus::kDone; ++i) {
    status = uploader.Send(options.files[i], config.files_[i], upload.files.emplace_back());
  }
  upload.result_url = status == ExitStatus::kDone ? config.success_url_ : config.failure_url_;
  const ExitStatus written = WriteResult(options.json ? ToJson(upload) : ToTable(upload));
  return status == ExitStatus::kDone ? written : status;
}

ExitStatus RunUpload(const UploadOptions& options) {
  Session session(options);
  UploadConfig config;
  const ExitStatus status = AskForUploadConfig(session, options.url, config);
  if (status != ExitStatus::kDone) return status;
  if (config.files_.size() != options.files.size()) {
    const std::size_t wanted = config.files_.size();
    const std::size_t given = options.files.size();
    Complain(fmt::format("{}: the configuration asks for {} {}, but {} {} given", options.url,
                         wanted, wanted == 1 ? "file" : "files", given,
                         given == 1 ? "was" : "were"));
    return ExitStatus::kUsage;
  }
  session.ShowProgress();
  return SendAll(session, options, config);
}

}  // namespace

void AddUploadCommand(CLI::App& app, Task& chosen) {
  const auto options = std::make_shared<UploadOptions>();
  CLI::App& command = *app.add_subcommand("upload", "Upload the files of a model");
  command.footer(kUploadExamples);
  AddWaitingOptions(command, *options, "CONFIG_URL", "URL of the upload configuration");
  command
      .add_option("FILE", options->files,
                  "The files, as many as the configuration asks for, and zipped where it says so")
      ->option_text(" ")
      ->required()
      ->check(CLI::Validator(CLI::ExistingFile).description(""));
  command
      .add_option("--subject-id", options->subject_id,
                  "Id of the subject that the model belongs to")
      ->option_text("ID, required")
      ->required();
  command.callback([options, &chosen] { chosen = [options] { return RunUpload(*options); }; });
}

}  // namespace stowra
