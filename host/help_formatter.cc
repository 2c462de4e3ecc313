// SPDX-License-Identifier: MIT
#include "host/help_formatter.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "host/terminal_width.h"
#include "host/wrap.h"

namespace stowra {

namespace {

constexpr std::size_t kWidthWithoutTerminal = 80;
constexpr std::size_t kNarrowestHelp = 30;
constexpr std::size_t kDescriptionColumn = 30;

}  // namespace

HelpFormatter::HelpFormatter()
    : width_(std::max(WidthOf(stdout, kWidthWithoutTerminal), kNarrowestHelp)) {
  column_width(std::min(kDescriptionColumn, width_ / 2));
}

std::string HelpFormatter::make_help(const CLI::App* app, std::string name,
                                     CLI::AppFormatMode mode) const {
  const std::string help = JoinParagraphs(app->get_footer()) + "\n" +
                           CLI::Formatter::make_help(app, std::move(name), mode);
  return WrapHelp(help, width_, column_width_);
}

std::string HelpFormatter::make_footer(const CLI::App* /*app*/) const {
  return "Exit status: 0 done, 1 cannot run, 2 wrong usage, 3 transfer failed, 4 HTTP status other "
         "than 200 (upload: than 2xx), 5 response not usable.\n";
}

}  // namespace stowra
