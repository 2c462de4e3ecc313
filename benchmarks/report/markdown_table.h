// SPDX-License-Identifier: MIT
// A Markdown table that is also readable as plain text.

#ifndef BENCHMARKS_REPORT_MARKDOWN_TABLE_H_
#define BENCHMARKS_REPORT_MARKDOWN_TABLE_H_

#include <string>
#include <vector>

namespace stowra_bench {

class MarkdownTable {
 public:
  enum class Align { kLeft, kRight };

  struct Column {
    std::string title;
    Align align = Align::kLeft;
  };

  explicit MarkdownTable(std::vector<Column> columns);

  // Requires one cell for each column.
  void AddRow(std::vector<std::string> cells);

  // One line for each row. Spaces pad each column to its widest cell.
  std::string ToText() const;

 private:
  std::string Line(const std::vector<std::string>& cells,
                   const std::vector<std::size_t>& widths) const;

  const std::vector<Column> columns_;
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace stowra_bench

#endif  // BENCHMARKS_REPORT_MARKDOWN_TABLE_H_
