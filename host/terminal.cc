// SPDX-License-Identifier: MIT
#include "host/terminal.h"

#include <fmt/color.h>
#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "host/printable.h"

namespace stowra {

namespace {

std::string_view Environment(const char* name) {
  const char* const value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): never set here
  return value == nullptr ? "" : value;
}

}  // namespace

bool MayRedraw(std::FILE* stream) {
  return isatty(fileno(stream)) == 1 && Environment("TERM") != "dumb";
}

bool MayColour(std::FILE* stream) { return MayRedraw(stream) && Environment("NO_COLOR").empty(); }

ExitStatus WriteResult(const std::string& text) {
  if (std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0) {
    return ExitStatus::kDone;
  }
  // NOLINTNEXTLINE(concurrency-mt-unsafe): the library calls no strerror
  Complain(fmt::format("standard output: {}", std::strerror(errno)));
  return ExitStatus::kCannotRun;
}

void Note(const std::string& message) {
  const std::string line = Printable(message) + "\n";
  std::fwrite(line.data(), 1, line.size(), stderr);
}

void Complain(const std::string& message) {
  const auto style = MayColour(stderr) ? fmt::emphasis::bold | fmt::fg(fmt::terminal_color::red)
                                       : fmt::text_style();
  const std::string line = fmt::format(style, "stowra:") + " " + Printable(message) + "\n";
  std::fwrite(line.data(), 1, line.size(), stderr);
}

void Warn(const std::string& message) { Complain("warning: " + message); }

}  // namespace stowra
