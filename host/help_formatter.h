// SPDX-License-Identifier: MIT
// The layout of --help.

#ifndef HOST_HELP_FORMATTER_H_
#define HOST_HELP_FORMATTER_H_

#include <CLI/CLI.hpp>
#include <cstddef>
#include <string>

namespace stowra {

// Prints the examples first, which each command stores as its footer, and the exit statuses last.
// Wraps the lines to the width of stdout, or to 80 columns where that is no terminal.
class HelpFormatter : public CLI::Formatter {
 public:
  HelpFormatter();

  std::string make_help(const CLI::App* app, std::string name,
                        CLI::AppFormatMode mode) const override;
  std::string make_footer(const CLI::App* app) const override;

 private:
  const std::size_t width_;
};

}  // namespace stowra

#endif  // HOST_HELP_FORMATTER_H_
