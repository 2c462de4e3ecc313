// SPDX-License-Identifier: MIT
#include "host/terminal.h"

#include <fmt/color.h>
#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "common_stowraapi/platform/ustring.h"

namespace stowra {

using ovrant::utils::ovrant_ustring;

namespace {

constexpr char16_t kReplacement = u'\uFFFD';

// C0, DEL and C1 controls, and the line and paragraph separators.
bool IsControl(char16_t unit) {
  return unit < u' ' || (unit >= 0x7F && unit <= 0x9F) || unit == 0x2028 || unit == 0x2029;
}

std::string_view Environment(const char* name) {
  const char* const value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): never set here
  return value == nullptr ? "" : value;
}

}  // namespace

std::string Printable(const std::string& text) {
  ovrant_ustring units(text.data(), text.size());
  for (unsigned long i = 0; i < units.length(); ++i) {
    if (IsControl(units.at(i))) units[i] = kReplacement;
  }
  return units.utf8();
}

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
