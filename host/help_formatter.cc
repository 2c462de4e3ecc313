// SPDX-License-Identifier: MIT
#include "host/help_formatter.h"

#include <utility>

namespace stowra {

std::string HelpFormatter::make_help(const CLI::App* app, std::string name,
                                     CLI::AppFormatMode mode) const {
  return app->get_footer() + "\n" + CLI::Formatter::make_help(app, std::move(name), mode);
}

std::string HelpFormatter::make_footer(const CLI::App* /*app*/) const {
  return "Exit status: 0 done, 1 cannot run, 2 wrong usage, 3 transfer failed, 4 HTTP status "
         "other\n"
         "than 200 (upload: than 2xx), 5 response not usable.\n";
}

}  // namespace stowra
