// SPDX-License-Identifier: MIT
// Formats text in columns.

#ifndef HOST_TABLE_H_
#define HOST_TABLE_H_

#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

#include "host/terminal_width.h"

namespace stowra {

// Rows of cells whose columns line up on a terminal, wide characters included.
class Table {
 public:
  // Which cells are labels. Labels are bold where colour is allowed.
  enum class Labels { kFirstRow, kFirstColumn };

  explicit Table(Labels labels) : labels_(labels) {}

  // Rows may differ in length but have at least one cell. Each cell goes through Printable.
  void AddRow(const std::vector<std::string>& cells);

  // Each row as a line, two spaces between columns. Where a line would be wider than `limit`,
  // columns get narrower and cells go on in the next line. Columns keep at least eight.
  std::string ToText(bool coloured, std::size_t limit = WidthOf(stdout, kNoWidthLimit)) const;

 private:
  bool IsLabel(std::size_t row, std::size_t column) const;
  void AppendRow(std::size_t row, const std::vector<std::vector<std::string>>& cells,
                 const std::vector<std::size_t>& widths, bool coloured, std::string& text) const;

  const Labels labels_;
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace stowra

#endif  // HOST_TABLE_H_
