// SPDX-License-Identifier: MIT
// stowra download: fetches a model's file.

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <system_error>

#include "common_stowraapi/platform/internet_data.h"
#include "common_stowraapi/platform/internet_data_delegate.h"
#include "host/byte_size.h"
#include "host/commands.h"
#include "host/download_sink.h"
#include "host/error_message.h"
#include "host/file_access.h"
#include "host/http_status.h"
#include "host/json_values.h"
#include "host/request_options.h"
#include "host/session.h"
#include "host/signal_watcher.h"
#include "host/stdout_sink.h"
#include "host/table.h"
#include "host/terminal.h"

namespace stowra {

using ovrant::internet::FileSink;
using ovrant::internet::InternetData;
using ovrant::internet::InternetDataDelegate;
using ovrant::json::Document;
using ovrant::utils::ovrant_ustring;

namespace {

constexpr char kDownloadExamples[] =
    "Examples:\n"
    "  stowra download 'http://127.0.0.1:8080/download?mid=m-1001&rtyp=k2'\n"
    "  stowra download 'http://127.0.0.1:8080/download?mid=m-1001&rtyp=s7' -o chair.qmf\n"
    "\n"
    "The file is called FILE.part until it is whole. A download that breaks off keeps it, if the\n"
    "server says how to recognise the file. FILE.part.validator tells that.\n";

constexpr int kHttpPartialContent = 206;
constexpr char kStandardOutput[] = "-";

// Posted by the transfer of this command alone.
constexpr char kReceived[] = "StowraDownloadReceived";
constexpr char kFailed[] = "StowraDownloadFailed";

struct DownloadOptions : RequestOptions {
  std::string file;  // empty: the server names the file
  bool continues = false;
};

// What the user sees of a file that has arrived.
struct DownloadedFile {
  std::string name;
  std::uint64_t size = 0;
  std::uint64_t continued_size = 0;
};

std::string CheckOutput(const std::string& file) { return file.empty() ? "must not be empty" : ""; }

// Checked before the transfer, which would otherwise be in vain.
bool HasDestination(const DownloadOptions& options) {
  std::string why;
  if (options.file == kStandardOutput) return true;
  if (options.file.empty()) {
    if (CanMakeFileIn(".", why)) return true;
    Complain(fmt::format("the current folder: {}", why));
  } else {
    if (CanReplaceFile(options.file, why)) return true;
    Complain(fmt::format("{}: {}", options.file, why));
  }
  return false;
}

std::string ToTable(const DownloadedFile& file) {
  Table table(Table::Labels::kFirstColumn);
  table.AddRow({"file", file.name});
  table.AddRow({"bytes", fmt::format("{}", file.size)});
  if (file.continued_size > 0) {
    table.AddRow({"continued at", fmt::format("{}", file.continued_size)});
  }
  return table.ToText(MayColour(stdout));
}

std::string ToJson(const DownloadedFile& file) {
  Document document;
  document.AddMember("file",
                     MakeText(document, ovrant_ustring(file.name.data(), file.name.size())));
  document.AddMember("bytes", MakeSize(document, file.size));
  if (file.continued_size > 0) {
    document.AddMember("continued_at", MakeSize(document, file.continued_size));
  }
  return ToLine(document);
}

// Says how to go on with what has arrived, if that is possible.
void AdviseToContinue(const DownloadSink& sink) {
  if (!sink.CanContinue()) return;
  Note(fmt::format("{} bytes have arrived; --continue --output {} goes on from there", sink.size(),
                   sink.file()));
}

// Runs one download until it has ended or a signal arrives.
class Downloader {
 public:
  explicit Downloader(const DownloadOptions& options)
      : options_(options),
        session_(options, {kReceived, kFailed}),
        transport_(std::in_place, ovrant_ustring(options.url.data(), options.url.size())) {
    signals_.Start([this](int signal) {
      signal_ = signal;
      session_.Interrupt();
    });
  }

  // A signal may not reach a session that is gone.
  ~Downloader() { signals_.Stop(); }

  Downloader(const Downloader&) = delete;
  Downloader& operator=(const Downloader&) = delete;

  ExitStatus Run() {
    session_.ShowProgress();
    session_.Repeat([this] { return Attempt(); });
    if (signal_ != 0 && !received_) return EndBySignal();
    if (!received_) return Fail();
    if (!IsWhole()) return session_.Fail("", ErrorMessage(*transport_));
    const DownloadedFile file = {sink_->file(), sink_->size(), sink_->continued_size()};
    return WriteResult(options_.json ? ToJson(file) : ToTable(file));
  }

 private:
  // True unless another attempt may do better. That one goes on with what has arrived.
  bool Attempt() {
    const bool continues = sink_ ? sink_->CanContinue() : options_.continues;
    const std::string file = continues && sink_ ? sink_->file() : options_.file;
    if (sink_) sink_->Close();
    const auto existing =
        options_.file.empty() ? FileSink::Existing::kKeep : FileSink::Existing::kReplace;
    sink_ = std::make_shared<DownloadSink>(file, options_.url, continues, existing);
    received_ = session_.RunInBackground(
        [this] { transport_->DownloadToWithDelegate(sink_, &delegate_, nullptr); }, kReceived);
    return signal_ != 0 || sink_->error() != 0 || (received_ && IsWhole());
  }

  bool IsWhole() const {
    const int status = transport_->status_code();
    return status == kHttpOk || (status == kHttpPartialContent && sink_->continued_size() > 0);
  }

  ExitStatus Fail() {
    if (sink_->error() == 0) {
      const ExitStatus status = session_.Fail("");
      AdviseToContinue(*sink_);
      return status;
    }
    const char* const advice = options_.file.empty() ? " (name another file with --output)" : "";
    Complain(fmt::format("{}: {}{}", sink_->file(), std::generic_category().message(sink_->error()),
                         advice));
    return ExitStatus::kCannotRun;
  }

  // The transport calls the sink no more once it is gone.
  ExitStatus EndBySignal() {
    transport_.reset();
    session_.HideProgress();
    Complain("interrupted");
    AdviseToContinue(*sink_);
    sink_->Close();
    signals_.Stop();
    SignalWatcher::DieOf(signal_);
    return ExitStatus::kCannotRun;
  }

  SignalWatcher signals_;  // blocks the signals before there is another thread
  std::atomic<int> signal_{0};
  const DownloadOptions& options_;
  Session session_;
  std::shared_ptr<DownloadSink> sink_;
  bool received_ = false;  // a response, in the last attempt
  InternetDataDelegate delegate_{nullptr, 0, kReceived, 0, kFailed};
  std::optional<InternetData> transport_;
};

// What has been written cannot be repeated.
ExitStatus RunToStdout(const DownloadOptions& options) {
  Session session(options);
  StdoutSink sink;
  InternetData transport(ovrant_ustring(options.url.data(), options.url.size()));
  bool received = false;
  session.Repeat([&] {
    received = transport.DownloadTo(sink) && transport.status_code() == kHttpOk;
    return received || sink.has_written();
  });
  if (received) return ExitStatus::kDone;
  if (sink.error() == 0) return session.Fail("");
  Complain(fmt::format("standard output: {}", std::generic_category().message(sink.error())));
  return ExitStatus::kCannotRun;
}

ExitStatus RunDownload(const DownloadOptions& options) {
  if (!HasDestination(options)) return ExitStatus::kCannotRun;
  if (options.file == kStandardOutput) return RunToStdout(options);
  return Downloader(options).Run();
}

}  // namespace

void AddDownloadCommand(CLI::App& app, Task& chosen) {
  const auto options = std::make_shared<DownloadOptions>();
  CLI::App& command = *app.add_subcommand("download", "Download a model's file");
  command.footer(kDownloadExamples);
  AddWaitingOptions(command, *options);
  CLI::Option* const output =
      command
          .add_option(
              "-o,--output", options->file,
              "Write to FILE, or to the target if FILE is a link, and replace an existing file; "
              "- means standard output (default: a new file in the current folder, named by the "
              "server)")
          ->type_name("FILE")
          ->check(CLI::Validator(CheckOutput, ""));
  command
      .add_flag("--continue", options->continues,
                "Go on with the download of FILE that has broken off before, if the server still "
                "has the same file")
      ->needs(output);
  command
      .add_option("--max-bytes", options->max_bytes,
                  "Fail if the file is larger (default: any size)")
      ->type_name("SIZE")
      ->transform(CLI::Validator(ReadByteSize, ""));
  command.callback([options, &chosen] {
    if (options->continues && options->file == kStandardOutput) {
      throw CLI::ValidationError("--continue", "standard output cannot be continued");
    }
    chosen = [options] { return RunDownload(*options); };
  });
}

}  // namespace stowra
