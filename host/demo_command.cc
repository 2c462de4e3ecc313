// SPDX-License-Identifier: MIT
// stowra demo: tries out the content service and checks the results.

#include <fmt/format.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common_stowraapi/content/content_item.h"
#include "common_stowraapi/content/content_query.h"
#include "host/command_line.h"
#include "host/commands.h"
#include "host/file_access.h"
#include "host/printable.h"
#include "host/request_options.h"
#include "host/session.h"
#include "host/stored_zip.h"
#include "host/terminal.h"
#include "host/work_folder.h"

namespace stowra {

using ovrant::stowraapiclient::ContentItem;
using ovrant::stowraapiclient::ContentQuery;
using ovrant::utils::ovrant_ustring;

namespace {

constexpr char kDemoExamples[] =
    "Examples:\n"
    "  stowra demo\n"
    "  stowra demo http://127.0.0.1:8080\n"
    "\n"
    "Searches, follows the pages to the last and back, and downloads a model. Then uploads a\n"
    "plain and a zipped file, finds both, downloads them and compares the bytes. This adds two\n"
    "models to the emulator.\n";

constexpr char kEmulator[] = "http://127.0.0.1:8080";

// The version that the emulator reports for every uploaded .qmf file.
constexpr int kUploadedVersion = 5;

constexpr int kAnyVersion = 99;

// Ends the demo. The reason has been printed to stderr.
struct Failure {
  ExitStatus status;
};

void Say(const std::string& line) {
  const ExitStatus status = WriteResult(Printable(line) + "\n");
  if (status != ExitStatus::kDone) throw Failure{status};
}

[[noreturn]] void FailCheck(const std::string& what) {
  Complain("demo: " + what);
  throw Failure{ExitStatus::kUnusableResponse};
}

void Check(bool good, const std::string& what) {
  if (!good) FailCheck(what);
}

// Quotes for a shell. The demo's own arguments contain no apostrophe.
std::string Quote(const std::string& argument) {
  const bool is_plain = argument.find_first_of("?&* ;()<>|$\"\\") == std::string::npos;
  return is_plain ? argument : "'" + argument + "'";
}

// Prints a command line and runs it in this process. Throws Failure if the command fails.
void Show(std::vector<std::string> arguments) {
  std::string line = "$ stowra";
  for (const std::string& argument : arguments) line += " " + Quote(argument);
  Say("");
  Say(line);
  arguments.insert(arguments.begin(), "stowra");
  std::vector<const char*> texts;
  texts.reserve(arguments.size());
  for (const std::string& argument : arguments) texts.push_back(argument.c_str());
  const ExitStatus status = RunCommandLine(static_cast<int>(texts.size()), texts.data());
  if (status != ExitStatus::kDone) throw Failure{status};
}

// A search that moves from page to page.
class Search {
 public:
  explicit Search(int max_qmf_version) : session_(options_) {
    query_.max_qmf_version_ = max_qmf_version;
  }

  // Takes a copy of the URL, since the query replaces its own. Throws Failure if it fails.
  void Ask(ovrant_ustring url) {
    options_.url = url.utf8();
    if (!query_.QueryFeed(url)) throw Failure{session_.Fail("it is not a search feed")};
  }

  ContentQuery& query() { return query_; }

  std::vector<std::string> ids() const {
    std::vector<std::string> ids;
    for (const ContentItem* item : query_.items_) ids.push_back(item->id_.utf8());
    return ids;
  }

 private:
  RequestOptions options_;
  const Session session_;
  ContentQuery query_;
};

std::string ReadWhole(const std::string& file) {
  std::string content;
  std::string why;
  if (!ReadFile(file, content, why)) throw std::runtime_error(file + ": " + why);
  return content;
}

// Follows the next links to the last page, then the previous links back.
void TurnPages(const std::string& url) {
  Say("");
  Say("pages of " + url);
  Search search(kAnyVersion);
  search.Ask(url.c_str());
  std::vector<std::vector<std::string>> pages = {search.ids()};
  std::size_t seen = pages[0].size();
  while (search.query().NextValid()) {
    search.Ask(search.query().next_url_);
    pages.push_back(search.ids());
    seen += pages.back().size();
    Check(seen <= static_cast<std::size_t>(search.query().total_results_),
          "the pages hold more results than the feed announces");
  }
  Say(fmt::format("  forward: {} pages, {} results", pages.size(), seen));
  Check(pages.size() > 1, "there is only one page");
  for (std::size_t page = pages.size() - 1; page > 0; --page) {
    Check(search.query().BackValid(), "a page after the first has no link to the previous page");
    search.Ask(search.query().previous_url_);
    Check(search.ids() == pages[page - 1], "a page differs on the way back");
  }
  Check(!search.query().BackValid(), "the first page has a link to a previous page");
  Say("  back: the same pages");
}

// The first download URL among the results.
std::string FindDownload(const std::string& url, int max_qmf_version) {
  Search search(max_qmf_version);
  search.Ask(url.c_str());
  for (const ContentItem* item : search.query().items_) {
    if (!item->download_url_.empty()) return item->download_url_.utf8();
  }
  FailCheck(url + ": found no model to download");
}

// Every byte value, and the delimiter of a form's parts.
std::string MakeContent() {
  std::string content = "\r\n--\r\n";
  for (int i = 0; i < 64 * 256; ++i) content += static_cast<char>((i + i / 256) & 0xFF);
  return content;
}

// A word that occurs in no other model's title.
std::string MakeWord(const char* stem) {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return fmt::format("{}{}x{}", stem, getpid(),
                     std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

class Demo {
 public:
  explicit Demo(std::string emulator) : emulator_(std::move(emulator)) {}

  void Run() {
    const std::string chairs = emulator_ + "/search?q=chair";
    Show({"search", chairs});
    Show({"search", chairs, "--all", "--max-qmf-version", "8"});
    TurnPages(emulator_ + "/search");
    Show({"download", FindDownload(chairs, 0), "-o", folder_.File("first")});
    Check(!ReadWhole(folder_.File("first")).empty(), "the first model's file is empty");
    CheckUpload(false);
    CheckUpload(true);
    Say("");
    Say("demo: all checks passed");
  }

 private:
  // Uploads a file, finds it, downloads it and compares the bytes.
  void CheckUpload(bool zipped) {
    const std::string word = MakeWord(zipped ? "z" : "p");
    const std::string config =
        fmt::format("{}/upload-config?name=Demo%20chair%20{}&zipped={}", emulator_, word, zipped);
    const std::string sent = Prepare(word, zipped);
    Show({"upload-config", config});
    Show({"upload", config, sent, "--subject-id", "demo"});

    const std::string search = emulator_ + "/search?q=" + word;
    Show({"search", search, "--max-qmf-version", fmt::format("{}", kUploadedVersion)});
    const std::string received = folder_.File("received");
    Show({"download", FindDownload(search, kUploadedVersion), "-o", received});
    Check(ReadWhole(received) == ReadWhole(sent),
          "the downloaded file differs from the uploaded one");
    Say("the downloaded file equals the uploaded one");
  }

  // Writes the file to send and returns its path.
  std::string Prepare(const std::string& word, bool zipped) const {
    const std::string name = word + ".qmf";
    std::string file = folder_.File(zipped ? name + ".zip" : name);
    const std::string content = zipped ? MakeStoredZip(name, MakeContent()) : MakeContent();
    std::string why;
    if (!WriteFile(file, content, Existing::kKeep, why)) {
      throw std::runtime_error(file + ": " + why);
    }
    return file;
  }

  const std::string emulator_;
  const WorkFolder folder_;
};

ExitStatus RunDemo(std::string url) {
  while (!url.empty() && url.back() == '/') url.pop_back();
  try {
    Demo(std::move(url)).Run();
  } catch (const Failure& failure) {
    return failure.status;
  }
  return ExitStatus::kDone;
}

}  // namespace

void AddDemoCommand(CLI::App& app, Task& chosen) {
  const auto url = std::make_shared<std::string>(kEmulator);
  CLI::App& command =
      *app.add_subcommand("demo", "Try out the content service and check the results");
  command.footer(kDemoExamples);
  command
      .add_option("EMULATOR_URL", *url,
                  fmt::format("URL of a stowra-emulator (default: {})", kEmulator))
      ->option_text(" ");
  command.callback([url, &chosen] { chosen = [url] { return RunDemo(*url); }; });
}

}  // namespace stowra
