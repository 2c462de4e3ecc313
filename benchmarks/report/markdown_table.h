// A table that reads well as plain text, too.

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

  // Requires as many cells as there are columns.
  void AddRow(std::vector<std::string> cells);

  // One line a row, its columns filled up with spaces to the width of the widest cell.
  std::string ToText() const;

 private:
  std::string Line(const std::vector<std::string>& cells,
                   const std::vector<std::size_t>& widths) const;

  const std::vector<Column> columns_;
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace stowra_bench

#endif  // BENCHMARKS_REPORT_MARKDOWN_TABLE_H_
