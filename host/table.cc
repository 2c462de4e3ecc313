// SPDX-License-Identifier: MIT
#include "host/table.h"

#include <fmt/color.h>
#include <fmt/format.h>

#include <algorithm>
#include <cstddef>

#include "host/printable.h"

namespace stowra {

namespace {

// A wider cell makes only its own line longer.
constexpr std::size_t kWidestColumn = 60;

// The terminal columns that `text` takes. fmt counts them only when it pads.
std::size_t WidthOf(const std::string& text) {
  const std::size_t filled = fmt::formatted_size("{:<{}}", text, kWidestColumn);
  return kWidestColumn - std::min(filled - text.size(), kWidestColumn);
}

std::vector<std::size_t> WidthsOf(const std::vector<std::vector<std::string>>& rows) {
  std::vector<std::size_t> widths;
  for (const std::vector<std::string>& row : rows) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], WidthOf(row[i]));
  }
  return widths;
}

}  // namespace

void Table::AddRow(const std::vector<std::string>& cells) {
  std::vector<std::string>& row = rows_.emplace_back();
  for (const std::string& cell : cells) row.push_back(Printable(cell));
}

std::string Table::ToText(bool coloured) const {
  constexpr const char* kGap = "  ";
  const std::vector<std::size_t> widths = WidthsOf(rows_);
  std::string text;
  for (std::size_t row = 0; row < rows_.size(); ++row) {
    const std::size_t last = rows_[row].size() - 1;
    for (std::size_t column = 0; column <= last; ++column) {
      const std::string& cell = rows_[row][column];
      const bool bold = coloured && IsLabel(row, column);
      text += bold ? fmt::format(fmt::emphasis::bold, "{}", cell) : cell;
      if (column < last) text.append(widths[column] - WidthOf(cell), ' ').append(kGap);
    }
    text += '\n';
  }
  return text;
}

bool Table::IsLabel(std::size_t row, std::size_t column) const {
  return labels_ == Labels::kFirstRow ? row == 0 : column == 0;
}

}  // namespace stowra
