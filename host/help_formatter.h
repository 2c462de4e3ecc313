// The form of --help.

#ifndef HOST_HELP_FORMATTER_H_
#define HOST_HELP_FORMATTER_H_

#include <CLI/CLI.hpp>
#include <string>

namespace stowra {

// Begins with the examples, which each command keeps as its footer, and ends with the exit
// statuses.
class HelpFormatter : public CLI::Formatter {
 public:
  std::string make_help(const CLI::App* app, std::string name,
                        CLI::AppFormatMode mode) const override;
  std::string make_footer(const CLI::App* app) const override;
};

}  // namespace stowra

#endif  // HOST_HELP_FORMATTER_H_
