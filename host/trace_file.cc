// SPDX-License-Identifier: MIT
#include "host/trace_file.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "host/file_access.h"
#include "host/terminal.h"

namespace stowra {

namespace {

std::string Reason(const std::string& path) {
  // NOLINTNEXTLINE(concurrency-mt-unsafe): the library calls no strerror
  return fmt::format("{}: {}", path, std::strerror(errno));
}

}  // namespace

TraceFile::TraceFile(std::string path)
    : path_(std::move(path)), file_(std::fopen(path_.c_str(), "we")) {
  if (!file_) throw std::runtime_error(Reason(path_));
}

void TraceFile::Write(const TraceRecord& record) {
  if (!file_) return;
  const std::string line = ToTraceLine(record);
  if (std::fwrite(line.data(), 1, line.size(), file_.get()) == line.size() &&
      std::fflush(file_.get()) == 0) {
    return;
  }
  Warn(Reason(path_) + " (the trace ends here)");
  file_.reset();
}

bool ReadTrace(const std::string& path, std::vector<TraceRecord>& records, std::string& why) {
  std::string content;
  if (!(path == "-" ? ReadInput(content, why) : ReadFile(path, content, why))) return false;
  std::size_t number = 0;
  for (std::string_view rest = content; !rest.empty();) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    ++number;
    std::string fault;
    if (!ReadTraceLine(line, records.emplace_back(), fault)) {
      why = fmt::format("line {}: {}", number, fault);
      return false;
    }
  }
  return true;
}

}  // namespace stowra
