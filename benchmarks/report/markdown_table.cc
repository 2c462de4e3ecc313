// SPDX-License-Identifier: MIT
#include "benchmarks/report/markdown_table.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace stowra_bench {
namespace {

// The number of characters in a UTF-8 text. Each character of a report is one column wide.
std::size_t WidthOf(const std::string& text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
  }));
}

}  // namespace

MarkdownTable::MarkdownTable(std::vector<Column> columns) : columns_(std::move(columns)) {}

void MarkdownTable::AddRow(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }

std::string MarkdownTable::ToText() const {
  std::vector<std::string> titles;
  std::vector<std::size_t> widths;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    titles.push_back(columns_[i].title);
    widths.push_back(std::max<std::size_t>(WidthOf(titles[i]), 3));
    for (const auto& row : rows_) widths[i] = std::max(widths[i], WidthOf(row[i]));
  }
  std::string text = Line(titles, widths);
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    const bool is_right = columns_[i].align == Align::kRight;
    text += "|" + std::string(widths[i] + 1, '-') + (is_right ? ":" : "-");
  }
  text += "|\n";
  for (const auto& row : rows_) text += Line(row, widths);
  return text;
}

std::string MarkdownTable::Line(const std::vector<std::string>& cells,
                                const std::vector<std::size_t>& widths) const {
  std::string line;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const std::string filling(widths[i] - WidthOf(cells[i]), ' ');
    const bool is_right = columns_[i].align == Align::kRight;
    line += "| " + (is_right ? filling + cells[i] : cells[i] + filling) + ' ';
  }
  return line + "|\n";
}

}  // namespace stowra_bench
