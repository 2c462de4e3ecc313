// SPDX-License-Identifier: MIT
#include "host/table.h"

#include <fmt/color.h>
#include <fmt/format.h>

#include <algorithm>
#include <numeric>
#include <string_view>
#include <utility>

#include "host/printable.h"
#include "host/wrap.h"

namespace stowra {

namespace {

constexpr std::string_view kGap = "  ";

// Without a limit, a wider cell makes only its own line longer.
constexpr std::size_t kWidestColumn = 60;

// With a limit, columns do not get narrower.
constexpr std::size_t kNarrowestColumn = 8;

using Row = std::vector<std::string>;

std::vector<std::size_t> WidthsOf(const std::vector<Row>& rows, std::size_t widest) {
  std::vector<std::size_t> widths;
  for (const Row& row : rows) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t i = 0; i < row.size(); ++i) {
      widths[i] = std::max(widths[i], std::min(ColumnsOf(row[i]), widest));
    }
  }
  return widths;
}

// Makes the widest columns narrower until a line has at most `limit` columns.
void Fit(std::size_t limit, std::vector<std::size_t>& widths) {
  std::size_t whole =
      std::accumulate(widths.begin(), widths.end(), (widths.size() - 1) * kGap.size());
  while (whole > limit) {
    const auto widest = std::max_element(widths.begin(), widths.end());
    if (*widest <= kNarrowestColumn) return;
    const std::size_t excess = std::min(whole - limit, *widest - kNarrowestColumn);
    std::vector<std::size_t> others(widths.begin(), widest);
    others.insert(others.end(), widest + 1, widths.end());
    const std::size_t next = others.empty() ? 0 : *std::max_element(others.begin(), others.end());
    const std::size_t less = next < *widest ? std::min(excess, *widest - next) : 1;
    *widest -= less;
    whole -= less;
  }
}

}  // namespace

void Table::AddRow(const std::vector<std::string>& cells) {
  Row& row = rows_.emplace_back();
  for (const std::string& cell : cells) row.push_back(Printable(cell));
}

std::string Table::ToText(bool coloured, std::size_t limit) const {
  if (rows_.empty()) return {};
  const bool is_limited = limit != kNoWidthLimit;
  std::vector<std::size_t> widths =
      WidthsOf(rows_, is_limited ? std::max(limit, kNarrowestColumn) : kWidestColumn);
  if (is_limited) Fit(limit, widths);
  std::string text;
  for (std::size_t row = 0; row < rows_.size(); ++row) {
    std::vector<Row> cells;
    for (std::size_t i = 0; i < rows_[row].size(); ++i) {
      cells.push_back(is_limited ? WrapText(rows_[row][i], widths[i]) : Row{rows_[row][i]});
    }
    AppendRow(row, cells, widths, coloured, text);
  }
  return text;
}

// Each cell has one line of text or more.
void Table::AppendRow(std::size_t row, const std::vector<Row>& cells,
                      const std::vector<std::size_t>& widths, bool coloured,
                      std::string& text) const {
  std::size_t height = 0;
  for (const Row& cell : cells) height = std::max(height, cell.size());
  for (std::size_t line = 0; line < height; ++line) {
    std::size_t missing = 0;  // columns before the next cell
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const std::string cell = line < cells[i].size() ? cells[i][line] : std::string();
      if (!cell.empty() || line == 0) text.append(std::exchange(missing, 0), ' ');
      const bool bold = coloured && IsLabel(row, i) && !cell.empty();
      text += bold ? fmt::format(fmt::emphasis::bold, "{}", cell) : cell;
      missing += std::max(widths[i], ColumnsOf(cell)) - ColumnsOf(cell) + kGap.size();
    }
    text += '\n';
  }
}

bool Table::IsLabel(std::size_t row, std::size_t column) const {
  return labels_ == Labels::kFirstRow ? row == 0 : column == 0;
}

}  // namespace stowra
