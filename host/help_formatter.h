// SPDX-License-Identifier: MIT
// The layout of --help.

#ifndef HOST_HELP_FORMATTER_H_
#define HOST_HELP_FORMATTER_H_

#include <CLI/CLI.hpp>
#include <string>

namespace stowra {

// Prints the examples first, which each command stores as its footer, and the exit statuses last.
class HelpFormatter : public CLI::Formatter {
 public:
  std::string make_help(const CLI::App* app, std::string name,
                        CLI::AppFormatMode mode) const override;
  std::string make_footer(const CLI::App* app) const override;
};

}  // namespace stowra

#endif  // HOST_HELP_FORMATTER_H_
