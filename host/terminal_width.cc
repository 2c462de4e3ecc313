// SPDX-License-Identifier: MIT
#include "host/terminal_width.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <charconv>
#include <cstdlib>
#include <string_view>
#include <system_error>

namespace stowra {

namespace {

// 0 if the variable holds no number.
std::size_t ColumnsVariable() {
  const char* const value =
      std::getenv("COLUMNS");  // NOLINT(concurrency-mt-unsafe): never set here
  const std::string_view text = value == nullptr ? "" : value;
  std::size_t columns = 0;
  const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), columns);
  return error == std::errc() && stop == text.data() + text.size() ? columns : 0;
}

}  // namespace

std::size_t WidthOf(std::FILE* stream, std::size_t without_terminal) {
  if (const std::size_t columns = ColumnsVariable()) return columns;
  winsize size = {};
  const bool is_known = ioctl(fileno(stream), TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return is_known ? size.ws_col : without_terminal;
}

}  // namespace stowra
