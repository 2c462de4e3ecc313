// SPDX-License-Identifier: MIT
#include "host/waterfall_text.h"

#include <fmt/color.h>
#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace stowra {

namespace {

constexpr std::size_t kLeastWidth = 60;
constexpr std::size_t kMostWidth = 1000;
constexpr std::size_t kMostLabel = 60;

struct Look {
  char letter;
  fmt::terminal_color colour;
};

Look LookOf(Phase phase) {
  switch (phase) {
    case Phase::kQueued:
      return {'.', fmt::terminal_color::bright_black};
    case Phase::kName:
      return {'n', fmt::terminal_color::cyan};
    case Phase::kConnect:
      return {'c', fmt::terminal_color::yellow};
    case Phase::kTls:
      return {'t', fmt::terminal_color::magenta};
    case Phase::kWait:
      return {'-', fmt::terminal_color::green};
    case Phase::kReceive:
      break;
  }
  return {'=', fmt::terminal_color::blue};
}

std::string Block(Phase phase, bool coloured) {
  const Look look = LookOf(phase);
  return coloured ? fmt::format(fmt::fg(look.colour), "\u2588") : std::string(1, look.letter);
}

// The method and the URL without its scheme. To fit the width, the query is left out, and then the
// beginning.
std::string LabelOf(const RequestRow& row, std::size_t width = std::string::npos) {
  const std::size_t scheme = row.url.find("://");
  std::string label =
      row.method + " " + (scheme == std::string::npos ? row.url : row.url.substr(scheme + 3));
  if (label.size() <= width) return label;
  const std::size_t query = label.find('?');
  if (query != std::string::npos) label.replace(query + 1, std::string::npos, "~");
  if (label.size() <= width) return label;
  const std::string start = row.method + " ~";
  return start + label.substr(label.size() - (width - start.size()));
}

// Each column shows the phase in its middle. A request that is too short for that still gets one.
std::string BarOf(const RequestRow& row, double begin, double step, std::size_t columns,
                  bool coloured) {
  std::string bar;
  bool is_empty = true;
  for (std::size_t i = 0; i < columns; ++i) {
    const double from = begin + static_cast<double>(i) * step;
    const double middle = from + step / 2;
    const bool is_last_chance = is_empty && (row.end < from + step || i + 1 == columns);
    const PhaseBar* shown = nullptr;
    for (const PhaseBar& each : row.bars) {
      const bool covers = each.begin <= middle && middle < each.end;
      if (covers || (is_last_chance && shown == nullptr)) shown = &each;
    }
    bar += shown != nullptr ? Block(shown->phase, coloured) : " ";
    is_empty = is_empty && shown == nullptr;
  }
  return bar;
}

std::string Legend(bool coloured) {
  std::string legend;
  for (const Phase phase : kPhases) {
    legend +=
        fmt::format("{}{} {}", legend.empty() ? "" : "  ", Block(phase, coloured), NameOf(phase));
  }
  return legend + "\n";
}

}  // namespace

std::string FormatSeconds(double seconds) {
  constexpr double kMilli = 1e-3;
  if (seconds >= 1) return fmt::format("{:.2f} s", seconds);
  return fmt::format("{:.{}f} ms", seconds / kMilli, seconds >= kMilli * 10 ? 0 : 2);
}

std::string ToText(const std::vector<RequestRow>& rows, std::size_t width, bool coloured) {
  if (rows.empty()) return "no transfers\n";
  const std::size_t all = std::clamp(width, kLeastWidth, kMostWidth);
  std::size_t label = 0;
  std::size_t result = 0;
  double begin = rows.front().begin;
  double end = begin;
  for (const RequestRow& row : rows) {
    label = std::max(label, LabelOf(row).size());
    result = std::max(result, row.result.size());
    begin = std::min(begin, row.begin);
    end = std::max(end, row.end);
  }
  constexpr std::size_t kTime = 9;
  constexpr std::size_t kLeastColumns = 10;
  const std::size_t others = 3 + 2 + 2 + result + 2 + kTime + 4;
  label = std::min({label, kMostLabel, all / 3, all - others - kLeastColumns});
  const std::size_t columns = all - others - label;
  const double step = std::max(end - begin, 1e-6) / static_cast<double>(columns);
  std::string text;
  for (const RequestRow& row : rows) {
    text += fmt::format("{:>3}  {:<{}}  {:<{}}  {:>{}}  |{}|\n", row.transfer, LabelOf(row, label),
                        label, row.result, result, FormatSeconds(row.end - row.begin), kTime,
                        BarOf(row, begin, step, columns, coloured));
  }
  return text + fmt::format("{:>{}}\n", FormatSeconds(end - begin) + " in all", all) +
         Legend(coloured);
}

}  // namespace stowra
